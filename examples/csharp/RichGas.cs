// A rich gas: flash, dew point, extremes of the envelope, properties of its vapour. How to build it: docs/hosts.md.
using System;
using System.Globalization;
using Kestrune;

static class RichGas
{
    // The gas of data/components.csv and data/ppr78_interactions.csv, by tools/make_bindings.py.
    static readonly double[] z = { 0.76, 0.09, 0.06, 0.04, 0.03, 0.02 }; // methane, ethane, propane, n-butane, n-pentane, carbon dioxide
    static readonly int[] columnNumbers = { 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 41, 43 };
    static readonly double[][] columns = {
        new double[] { 16.04246, 30.06904, 44.09562, 58.12220, 72.14878, 44.00950 }, // 2: molar mass, g/mol
        new double[] { 90.6941, 90.368, 85.525, 134.895, 143.47, 216.592 }, // 3: triple point, K
        new double[] { 111.6672, 184.5686, 231.0362, 272.6599, 309.2093, 194.67 }, // 4: normal boiling point, K
        new double[] { 190.564, 305.32, 369.83, 425.12, 469.7, 304.21 }, // 5: critical temperature, K
        new double[] { 45.388601, 48.082902, 41.924500, 37.463607, 33.259314, 72.864545 }, // 6: critical pressure, atm
        new double[] { 98.6, 145.5, 200.0, 255.0, 313.0, 94.0 }, // 7: critical volume, cm3/mol
        new double[] { 0.28620, 0.27924, 0.27630, 0.27385, 0.27010, 0.27438 }, // 8: critical compressibility factor
        new double[] { 0.0115478, 0.099493, 0.152291, 0.200164, 0.251506, 0.223621 }, // 9: acentric factor
        new double[] { 0.0, 0.0, 0.08, 0.0, 0.0, 0.0 }, // 10: dipole moment, debye
        new double[] { 90.69, 90.35, 85.47, 134.86, 143.42, 216.58 }, // 11: lowest temperature of the vapour pressure, K
        new double[] { 0.0, 0.0, 0.0, 0.0, 0.0, 0.0 }, // 41: family code
        new double[] { 74828.0, 74840.0, 74986.0, 106978.0, 109660.0, 124389.0 }, // 43: CAS number
    };
    // Groups CH3, CH2, CH4, C2H6, CO2: how often in each component, and their interactions in MPa.
    static readonly int[] counts = {
        0, 0, 1, 0, 0,
        0, 0, 0, 1, 0,
        2, 1, 0, 0, 0,
        2, 2, 0, 0, 0,
        2, 3, 0, 0, 0,
        0, 0, 0, 0, 1 };
    static readonly double[] A = {
        0, 0, 0, 0, 0,
        65.54, 0, 0, 0, 0,
        28.48, 37.75, 0, 0, 0,
        3.775, 29.85, 9.951, 0, 0,
        144.8, 141.4, 136.6, 136.2, 0 };
    static readonly double[] B = {
        0, 0, 0, 0, 0,
        105.7, 0, 0, 0, 0,
        20.25, 74.81, 0, 0, 0,
        8.922, 65.88, 13.73, 0, 0,
        401.5, 237.1, 214.8, 235.7, 0 };
    // end of the gas

    static void Show(string name, double value)
    {
        Console.WriteLine("{0,-18} {1}", name, value.ToString("R", CultureInfo.InvariantCulture));
    }

    static void Require(string what, int status)
    {
        if (status != Constants.KV_OK)
            throw new InvalidOperationException(what + ": status " + status + ", " + Exports.StatusText(status));
    }

    static double[] Flash(Mixture gas, double T, double P)
    {
        int n = z.Length;
        double beta = 0, dewT = 0;
        double[] x = new double[n], y = new double[n], K = new double[n];
        Require("flash", Exports.FlashLVatTP(T, P, z, gas, IntPtr.Zero, 1, ref beta, x, y, K));
        Show("vapour_fraction", beta);
        foreach (double k in K) Show("K", k);
        Require("dew point", Exports.FlashLVatWP(1.0, P, z, gas, IntPtr.Zero, 1, ref dewT, new double[n], new double[n], K));
        Show("dew_temperature", dewT);
        return y;
    }

    static void Envelope(Mixture gas)
    {
        const int capacity = 500;
        double thermT = 0, thermP = 0, barT = 0, barP = 0;
        int points = 0, criticalPoints = 0;
        Require("envelope", Exports.PhaseEnvelope(z, gas, IntPtr.Zero, 0, 0, 0, 200, 0, capacity, 1.0, 0, new double[capacity],
            new double[capacity], new double[capacity], ref points, ref criticalPoints, ref thermT, ref thermP, ref barT,
            ref barP));
        Show("cricondentherm_T", thermT);
        Show("cricondentherm_P", thermP);
        Show("cricondenbar_T", barT);
        Show("cricondenbar_P", barP);
    }

    static void Properties(Mixture gas, double T, double P, double[] y)
    {
        double density = 0, d_dT = 0, d_dP = 0, d2 = 0, H = 0, Cp = 0, Cv = 0, sound = 0, jouleThomson = 0, viscosity = 0;
        Require("density", Exports.GasDensity_PPR78(T, P, y, gas, ref density, ref d_dT, ref d_dP, ref d2));
        Require("enthalpy", Exports.GasMolarEnthalpy_PPR78(T, P, y, gas, ref H));
        Require("heat", Exports.GasSpecificHeat_PPR78(T, P, y, gas, ref Cp, ref Cv, ref sound, ref jouleThomson));
        Require("viscosity", Exports.GasDynamicViscosity_PPR78(T, P, y, gas, ref viscosity));
        Show("density", density);
        Show("enthalpy", H);
        Show("speed_of_sound", sound);
        Show("viscosity", viscosity);
    }

    static void Main()
    {
        int n = z.Length, groups = (int)Math.Round(Math.Sqrt(A.Length));
        var table = new double[Constants.KV_TABLE_COLUMNS * n];
        for (int c = 0; c < columns.Length; c++) Array.Copy(columns[c], 0, table, (columnNumbers[c] - 1) * n, n);
        Exports.ConvertPPR78GroupData(n, groups, counts, A, B);
        using (var gas = new Mixture(table, n))
        {
            double[] y = Flash(gas, 260.0, 40.0); // K, atm
            Envelope(gas);
            Properties(gas, 260.0, 40.0, y);
        }
    }
}
