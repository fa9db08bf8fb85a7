// @MADE@
//
// The exports of @LIBRARY@ for C# and the other languages of .NET and Mono. A method of Exports has the name and the
// words of the export and returns the status; it throws ArgumentNullException or ArgumentException, before the library
// is called, where an array is null or has the wrong length. An array of derivatives that mask does not ask for may be
// null. The three libraries lie beside the program or where the system looks.
// Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
using System;
using System.Runtime.InteropServices;

namespace Kestrune
{
    public static class Constants
    {
        public const string Version = "@VERSION@";
        public const byte FreeWaterFlag = 1;
@STATUSES@
@COLUMNS@
@CONSTANTS@
    }

    // Settings of a mixture at the offsets of the interface; all settings 0: the defaults.
    [StructLayout(LayoutKind.Explicit, Pack = 1, Size = @SIZE@)]
    public struct MixtureRecord
    {
@FIELDS@
    }

    // A mixture: its record, and the component table that the record points to (43 * count doubles, column by column).
    public sealed class Mixture : IDisposable
    {
        public MixtureRecord Record;
        private GCHandle table;
        private readonly int made; // components that the table has

        public Mixture(double[] componentTable, int count)
        {
            if (count < 1) throw new ArgumentException("at least one component is needed", "count");
            Check.Length(componentTable, (long)Constants.KV_TABLE_COLUMNS * count, "componentTable");
            table = GCHandle.Alloc(componentTable, GCHandleType.Pinned);
            Record.count = made = count;
            Record.table = table.AddrOfPinnedObject();
        }

        public bool FreeWater
        {
            get { return (Record.flags & Constants.FreeWaterFlag) != 0; }
            set { Record.flags = value ? Constants.FreeWaterFlag : (byte)0; }
        }

        // Throws where the host has changed the count of the record without its table.
        internal void CheckCount()
        {
            if (Record.count != made && Record.table == table.AddrOfPinnedObject())
                throw new ArgumentException("count is " + Record.count + ", but the record was made with " + made, "mixture");
        }

        public void Dispose()
        {
            if (table.IsAllocated) table.Free();
            Record.table = IntPtr.Zero;
        }
    }

    internal static class Check
    {
        public static void Length(Array values, long wanted, string name)
        {
            if (values == null) throw new ArgumentNullException(name);
            if (values.Length != Math.Max(wanted, 0))
                throw new ArgumentException(values.Length + " elements, " + Math.Max(wanted, 0) + " are needed", name);
        }

        public static int Count(Mixture mixture)
        {
            if (mixture == null) throw new ArgumentNullException("mixture");
            if (mixture.Record.table == IntPtr.Zero) throw new ObjectDisposedException("mixture");
            if (mixture.Record.count < 1) throw new ArgumentException("the record has no components", "mixture");
            mixture.CheckCount();
            return mixture.Record.count;
        }
    }

    public static class Exports
    {
        private static GCHandle[] groupData = new GCHandle[0];

        // Text of a status.
        public static string StatusText(int status)
        {
            switch (status)
            {
@TEXTS@
                default: return "unknown status";
            }
        }

        // Hands over groups and group interactions, once, before any other calculation. counts: how often group k
        // occurs in component i, one column a component; A, B: interactions in MPa, column by column, upper triangle.
        public static void ConvertPPR78GroupData(int nC, int nG, int[] counts, double[] A, double[] B)
        {
            if (nC < 1) throw new ArgumentException("at least one component is needed", "nC");
            if (nG < 1) throw new ArgumentException("at least one group is needed", "nG");
            Check.Length(counts, (long)nG * nC, "counts");
            Check.Length(A, (long)nG * nG, "A");
            Check.Length(B, (long)nG * nG, "B");
            if ((long)nG * nC > int.MaxValue / nC)
                throw new ArgumentException("nG * nC * nC is more than an array can have", "nC");
            int[] sizes = { 1, nG * nG, nG * nG, nC * nG, nG * nG, nG * nC * nC };
            var fresh = new GCHandle[sizes.Length];
            var storage = new IntPtr[sizes.Length];
            for (int k = 0; k < sizes.Length; k++)
            {
                fresh[k] = GCHandle.Alloc(new double[sizes[k]], GCHandleType.Pinned);
                storage[k] = fresh[k].AddrOfPinnedObject();
            }
            Native.ConvertPPR78GroupData(nC, nG, counts, A, B, storage);
            foreach (GCHandle old in groupData) old.Free();
            groupData = fresh;
        }

@METHODS@
    }

    internal static class Native
    {
        // The system's own convention: stdcall in a 32-bit process on Windows, C everywhere else.
@EXTERNS@
    }
}
