// Wrong calls: the binding answers with its language's error before the library is called.
using System;
using Kestrune;

static class Wrong
{
    static void Try(Action call)
    {
        try
        {
            call();
            Console.WriteLine("not refused");
        }
        catch (ObjectDisposedException e) { Console.WriteLine(e.GetType().Name + " " + e.ObjectName); }
        catch (ArgumentException e) { Console.WriteLine(e.GetType().Name + " " + e.ParamName); }
    }

    static void Main()
    {
        double beta = 0;
        double[] z = { 0.5, 0.5 }, x = new double[2], y = new double[2], K = new double[2], one = new double[1];
        var gas = new Mixture(new double[2 * Constants.KV_TABLE_COLUMNS], 2);
        Try(() => Exports.FlashLVatTP(300, 1, null, gas, IntPtr.Zero, 1, ref beta, x, y, K));
        Try(() => Exports.FlashLVatTP(300, 1, z, gas, IntPtr.Zero, 1, ref beta, x, y, one));
        Try(() => new Mixture(one, 2));
        Try(() => Exports.LiquidPhi_Derivatives_PPR78(300, 1, z, gas, 2, Constants.KV_DERIV_T, x, null, null, null));
        int big = 40000; // nC * nC does not fit 32 bits
        Try(() => Exports.ConvertPPR78GroupData(big, 2, new int[2 * big], new double[4], new double[4]));
        gas.Record.count = 3;
        Try(() => Exports.FlashLVatTP(300, 1, new double[3], gas, IntPtr.Zero, 1, ref beta, x, y, K));
        gas.Dispose();
        Try(() => Exports.FlashLVatTP(300, 1, z, gas, IntPtr.Zero, 1, ref beta, x, y, K));
    }
}
