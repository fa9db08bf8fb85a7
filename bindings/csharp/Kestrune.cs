// Made by tools/make_bindings.py from bindings/exports.toml; change that and run it.
//
// The exports of KVGasThermo for C# and the other languages of .NET and Mono. A method of Exports has the name and the
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
        public const string Version = "0.2.0";
        public const byte FreeWaterFlag = 1;
        public const int KV_OK = 0;
        public const int KV_NO_WATER = -1;
        public const int KV_INHIBITOR_MASS = 1;
        public const int KV_NO_WATER_LIMIT = 4;
        public const int KV_NO_ROOT = 51;
        public const int KV_FEED_SUM = 111;
        public const int KV_NOT_CONVERGED = 112;
        public const int KV_DAMPING = 113;
        public const int KV_RELAXATION = 114;
        public const int KV_ZERO_SLOPE = 115;
        public const int KV_NO_SATURATION = 116;
        public const int KV_UNSTABLE_POINT = 117;
        public const int KV_FOURTH_PHASE = 118;
        public const int KV_TRIVIAL = 120;
        public const int KV_TRIVIAL_LV = 121;
        public const int KV_LV_ANSWER_DOUBTFUL = 134;
        public const int KV_LL_ANSWER_DOUBTFUL = 135;
        public const int KV_NO_START = 136;
        public const int KV_ENVELOPE_OPEN = 140;
        public const int KV_ENVELOPE_COLD = 141;
        public const int KV_ENVELOPE_FULL = 142;
        public const int KV_ENVELOPE_UNSTABLE = 143;
        public const int KV_ENVELOPE_BROKEN = 144;
        public const int KV_NO_CRITICAL = 145;
        public const int KV_ENVELOPE_LIQUIDS = 146;
        public const int KV_WATER_RANGE = 151;
        public const int KV_PURE_UNKNOWN = 1001;
        public const int KV_PURE_NO_CORRELATION = 1002;
        public const int KV_PURE_RANGE = 1003;
        public const int KV_PURE_ARGUMENT = 1004;
        public const int KV_NULL_ARGUMENT = 9002;
        public const int KV_COMPONENT_COUNT = 9003;
        public const int KV_TEMPERATURE = 9004;
        public const int KV_PRESSURE = 9005;
        public const int KV_COMPOSITION = 9006;
        public const int KV_COMPONENT_DATA = 9007;
        public const int KV_GROUP_DATA = 9008;
        public const int KV_SPECIFICATION = 9009;
        public const int KV_MEMORY = 9010;
        public const int KV_INTERNAL = 9011;
        public const int KV_NOT_FINITE = 9012;
        public const int KV_COL_DATABANK_NUMBER = 1; // running number in the host's databank, not read
        public const int KV_COL_MOLAR_MASS = 2; // g/mol
        public const int KV_COL_MELTING_POINT = 3; // triple or melting point, K
        public const int KV_COL_BOILING_POINT = 4; // normal boiling point, K
        public const int KV_COL_TC = 5; // critical temperature, K
        public const int KV_COL_PC = 6; // critical pressure, atm
        public const int KV_COL_VC = 7; // critical volume, cm3/mol
        public const int KV_COL_ZC = 8; // critical compressibility factor
        public const int KV_COL_OMEGA = 9; // acentric factor
        public const int KV_COL_DIPOLE = 10; // dipole moment, debye
        public const int KV_COL_TMIN_PSAT = 11; // lowest temperature of its vapour-pressure correlation, K
        public const int KV_COL_CP_A = 12; // own ideal-gas heat capacity: A, and B to E in the columns behind it
        public const int KV_COL_CP_TMIN = 17; // range of it, K
        public const int KV_COL_CP_TMAX = 18; // as the one before
        public const int KV_COL_FAMILY = 41; // family code, KV_FAMILY_WATER marks water
        public const int KV_COL_CAS = 43; // CAS number as a whole number: 7732185 is 7732-18-5
        public const int KV_TABLE_COLUMNS = 43;
        public const double KV_FAMILY_WATER = 20.0;
        public const int KV_MAX_COMPONENTS = 10000;
        public const int KV_MOST_ITERATIONS = 10000;
        public const double KV_DEFAULT_CRIT = 1e-12;
        public const double KV_DEFAULT_CLIM = 1e10;
        public const double KV_DEFAULT_EPS = 1e-6;
        public const int KV_DEFAULT_ITEMAX = 200;
        public const int KV_DEFAULT_NEW = 0;
        public const double KV_DEFAULT_RELAXATION = 1.0;
        public const double KV_DEFAULT_PURE_TOLERANCE = 1e-12;
        public const double KV_DEFAULT_SUM_TOLERANCE = 1e-6;
        public const int KV_ROUTINE_COUNT = 14;
        public const int KV_ROUTINE_LL_FLASH = 1;
        public const int KV_ROUTINE_LV_FLASH = 2;
        public const int KV_ROUTINE_FUGACITY = 8;
        public const int KV_ROUTINE_LIQUID_ORDER = 10;
        public const int KV_ROUTINE_GAS_ENTHALPY = 11;
        public const int KV_ROUTINE_GAS_ENTROPY = 12;
        public const int KV_ROUTINE_LIQUID_ENTHALPY = 13;
        public const int KV_ROUTINE_LIQUID_ENTROPY = 14;
        public const int KV_PHASE_GAS = 1;
        public const int KV_PHASE_LIQUID = 2;
        public const int KV_DERIV_T = 1;
        public const int KV_DERIV_P = 2;
        public const int KV_DERIV_N = 4;
    }

    // Settings of a mixture at the offsets of the interface; all settings 0: the defaults.
    [StructLayout(LayoutKind.Explicit, Pack = 1, Size = 125)]
    public struct MixtureRecord
    {
        [FieldOffset(0)] public int count; // number of components, 1 .. 10 000
        [FieldOffset(4)] public IntPtr table; // ComponentTable, 43 columns of count doubles
        [FieldOffset(16)] public byte flags; // bit 0: FreeWaterFlag
        [FieldOffset(17)] public double solubility_a; // water solubility limit s(T) = exp(a - b / T), capped at 1
        [FieldOffset(25)] public double solubility_b; // b of that limit, K
        [FieldOffset(61)] public double CRIT; // convergence criterion on the iteration error
        [FieldOffset(69)] public double CLIM; // error level below which the method may be changed, 0: never
        [FieldOffset(77)] public double EPS; // stagnation tolerance
        [FieldOffset(85)] public int ITEMAX; // iteration limit
        [FieldOffset(89)] public int NEW; // iterations granted to the global method, in units of count + 1
        [FieldOffset(93)] public int trace_flag; // not 0: write the trace
        [FieldOffset(97)] public int trace_unit; // 6 standard output, 0 standard error, n the file fort.n
        [FieldOffset(101)] public double relaxation; // factor of the substitution, 1: full step
        [FieldOffset(109)] public double pure_tolerance; // a feed with one fraction above 1 - this counts as pure
        [FieldOffset(117)] public double sum_tolerance; // largest |sum of the feed - 1| where it is tested
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
                case 0: return "success";
                case -1: return "no component of the mixture has the CAS number of water";
                case 1: return "the molar mass of a user-defined inhibitor is not positive";
                case 4: return "the gas takes up any amount of water at this temperature and pressure";
                case 51: return "the equation of state has no root above the co-volume";
                case 111: return "the feed mole fractions do not sum to one within the tolerance of the record";
                case 112: return "no convergence within the iteration limit; what the results hold is no answer";
                case 113: return "the damping of the Newton step is exhausted";
                case 114: return "the relaxation factor fell below its limit";
                case 115: return "the derivative of the residual is zero";
                case 116: return "no temperature or pressure has this vapour fraction with two phases";
                case 117: return "a point of this vapour fraction was found, but another phase splits off before it";
                case 118: return "three phases were found, but a fourth would split off; results hold these three";
                case 120: return "the iteration ended on two identical phases or broke down";
                case 121: return "the vapour and the second liquid became the same phase";
                case 134: return "one liquid and a vapour remain; the flash that said so had a status";
                case 135: return "no vapour remains; the flash that said so had a status";
                case 136: return "no starting point for three phases could be built";
                case 140: return "the envelope is open: it reached the default highest pressure";
                case 141: return "the envelope reached the default lowest temperature";
                case 142: return "the arrays are too short for all points of the curve";
                case 143: return "another phase splits off before the marked points of the curve";
                case 144: return "the curve could not be followed to its end";
                case 145: return "the mixture has no stable critical point";
                case 146: return "a part of the curve is where a second liquid forms";
                case 151: return "temperature, pressure or gas outside the range of the water-content method";
                case 1001: return "pure-component library: component unknown";
                case 1002: return "pure-component library: no correlation for this property";
                case 1003: return "pure-component library: temperature outside the range of the correlation";
                case 1004: return "pure-component library: an argument is not finite";
                case 9002: return "an argument that is read or written is a null pointer";
                case 9003: return "the number of components is below 1 or above 10000";
                case 9004: return "the temperature is not finite or not positive";
                case 9005: return "the pressure is not finite or not positive";
                case 9006: return "a composition has an entry that is negative or not finite, or is all zero";
                case 9007: return "a critical temperature, critical pressure, acentric factor or molar mass is unusable";
                case 9008: return "no group data for this number of components: call ConvertPPR78GroupData first";
                case 9009: return "a specified quantity or option is not finite or out of range";
                case 9010: return "not enough memory for the work arrays";
                case 9011: return "unexpected failure inside the library; please report it";
                case 9012: return "the equation of state gave a value that is not finite at these conditions";
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

        /// <summary>Molar mass of a mixture. Returns the status.</summary>
        /// <param name="nc">number of components</param>
        /// <param name="x">composition, mol/mol, [nc]</param>
        /// <param name="M">molar masses, g/mol, [nc]</param>
        /// <param name="mean">sum of x[i] M[i], g/mol, out</param>
        public static int MolecularWeight(int nc, double[] x, double[] M, ref double mean)
        {
            Check.Length(x, nc, "x");
            Check.Length(M, nc, "M");
            return Native.MolecularWeight(nc, x, M, ref mean);
        }

        /// <summary>Liquid and vapour at temperature and pressure. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: cold start; clear: warm start from the result arguments</param>
        /// <param name="beta">vapour fraction, mol/mol, in and out</param>
        /// <param name="x">liquid, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="K">y / x, [count], out</param>
        public static int FlashLVatTP(double T, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double beta, double[] x, double[] y, double[] K)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(x, count, "x");
            Check.Length(y, count, "y");
            Check.Length(K, count, "K");
            return Native.FlashLVatTP(T, P, z, ref mixture.Record, routines, options, ref beta, x, y, K);
        }

        /// <summary>Liquid and vapour at enthalpy and pressure. Returns the status.</summary>
        /// <param name="H">enthalpy of one mole of feed, cal/mol</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: cold start; clear: warm start from the result arguments</param>
        /// <param name="T">temperature; exactly 0 counts as no estimate, K, in and out</param>
        /// <param name="beta">vapour fraction, mol/mol, in and out</param>
        /// <param name="x">liquid, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="K">y / x, [count], out</param>
        /// <param name="HL">molar enthalpy of the liquid, cal/mol, out</param>
        /// <param name="HV">molar enthalpy of the vapour, cal/mol, out</param>
        public static int FlashLVatHP(double H, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double T, ref double beta, double[] x, double[] y, double[] K, ref double HL, ref double HV)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(x, count, "x");
            Check.Length(y, count, "y");
            Check.Length(K, count, "K");
            return Native.FlashLVatHP(H, P, z, ref mixture.Record, routines, options, ref T, ref beta, x, y, K,
                ref HL, ref HV);
        }

        /// <summary>Liquid and vapour at entropy and pressure. Returns the status.</summary>
        /// <param name="S">entropy of one mole of feed, cal/(mol K)</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: cold start; clear: warm start from the result arguments</param>
        /// <param name="T">temperature; exactly 0 counts as no estimate, K, in and out</param>
        /// <param name="beta">vapour fraction, mol/mol, in and out</param>
        /// <param name="x">liquid, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="K">y / x, [count], out</param>
        /// <param name="SL">molar entropy of the liquid, cal/(mol K), out</param>
        /// <param name="SV">molar entropy of the vapour, cal/(mol K), out</param>
        public static int FlashLVatSP(double S, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double T, ref double beta, double[] x, double[] y, double[] K, ref double SL, ref double SV)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(x, count, "x");
            Check.Length(y, count, "y");
            Check.Length(K, count, "K");
            return Native.FlashLVatSP(S, P, z, ref mixture.Record, routines, options, ref T, ref beta, x, y, K,
                ref SL, ref SV);
        }

        /// <summary>Temperature of a vapour fraction at a pressure. Returns the status.</summary>
        /// <param name="W">vapour fraction, 0 bubble point, 1 dew point, mol/mol</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: cold start; clear: warm start from the result arguments</param>
        /// <param name="T">temperature; not above 0 counts as no estimate, K, in and out</param>
        /// <param name="x">liquid, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="K">y / x, [count], out</param>
        public static int FlashLVatWP(double W, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double T, double[] x, double[] y, double[] K)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(x, count, "x");
            Check.Length(y, count, "y");
            Check.Length(K, count, "K");
            return Native.FlashLVatWP(W, P, z, ref mixture.Record, routines, options, ref T, x, y, K);
        }

        /// <summary>Pressure of a vapour fraction at a temperature. Returns the status.</summary>
        /// <param name="W">vapour fraction, 0 bubble point, 1 dew point, mol/mol</param>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: cold start; clear: warm start from the result arguments</param>
        /// <param name="P">pressure; not above 0 counts as no estimate, atm, in and out</param>
        /// <param name="x">liquid, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="K">y / x, [count], out</param>
        public static int FlashLVatWT(double W, double T, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double P, double[] x, double[] y, double[] K)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(x, count, "x");
            Check.Length(y, count, "y");
            Check.Length(K, count, "K");
            return Native.FlashLVatWT(W, T, z, ref mixture.Record, routines, options, ref P, x, y, K);
        }

        /// <summary>Up to two liquids and a vapour at temperature and pressure. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: the result arguments hold an estimate</param>
        /// <param name="beta">share of liquid A, mol/mol, in and out</param>
        /// <param name="V">share of the vapour, mol/mol, in and out</param>
        /// <param name="xA">liquid A, the lighter one, mol/mol, [count], in and out</param>
        /// <param name="xB">liquid B, the denser one, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="KLL">xA / xB, [count], out</param>
        /// <param name="KLV">y / xA, [count], out</param>
        public static int FlashLLVatTP(double T, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double beta, ref double V, double[] xA, double[] xB, double[] y, double[] KLL, double[] KLV)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(xA, count, "xA");
            Check.Length(xB, count, "xB");
            Check.Length(y, count, "y");
            Check.Length(KLL, count, "KLL");
            Check.Length(KLV, count, "KLV");
            return Native.FlashLLVatTP(T, P, z, ref mixture.Record, routines, options, ref beta, ref V, xA, xB, y,
                KLL, KLV);
        }

        /// <summary>Up to two liquids and a vapour at enthalpy and pressure. Returns the status.</summary>
        /// <param name="H">enthalpy of one mole of feed, cal/mol</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: the result arguments hold an estimate</param>
        /// <param name="T">temperature; exactly 0 counts as no estimate, K, in and out</param>
        /// <param name="beta">share of liquid A, mol/mol, in and out</param>
        /// <param name="V">share of the vapour, mol/mol, in and out</param>
        /// <param name="xA">liquid A, the lighter one, mol/mol, [count], in and out</param>
        /// <param name="xB">liquid B, the denser one, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="KLL">xA / xB, [count], out</param>
        /// <param name="KLV">y / xA, [count], out</param>
        /// <param name="HA">molar enthalpy of liquid A, cal/mol, out</param>
        /// <param name="HB">molar enthalpy of liquid B, cal/mol, out</param>
        /// <param name="HV">molar enthalpy of the vapour, cal/mol, out</param>
        public static int FlashLLVatHP(double H, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double T, ref double beta, ref double V, double[] xA, double[] xB, double[] y, double[] KLL,
            double[] KLV, ref double HA, ref double HB, ref double HV)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(xA, count, "xA");
            Check.Length(xB, count, "xB");
            Check.Length(y, count, "y");
            Check.Length(KLL, count, "KLL");
            Check.Length(KLV, count, "KLV");
            return Native.FlashLLVatHP(H, P, z, ref mixture.Record, routines, options, ref T, ref beta, ref V, xA,
                xB, y, KLL, KLV, ref HA, ref HB, ref HV);
        }

        /// <summary>Up to two liquids and a vapour at entropy and pressure. Returns the status.</summary>
        /// <param name="S">entropy of one mole of feed, cal/(mol K)</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: the result arguments hold an estimate</param>
        /// <param name="T">temperature; exactly 0 counts as no estimate, K, in and out</param>
        /// <param name="beta">share of liquid A, mol/mol, in and out</param>
        /// <param name="V">share of the vapour, mol/mol, in and out</param>
        /// <param name="xA">liquid A, the lighter one, mol/mol, [count], in and out</param>
        /// <param name="xB">liquid B, the denser one, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="KLL">xA / xB, [count], out</param>
        /// <param name="KLV">y / xA, [count], out</param>
        /// <param name="SA">molar entropy of liquid A, cal/(mol K), out</param>
        /// <param name="SB">molar entropy of liquid B, cal/(mol K), out</param>
        /// <param name="SV">molar entropy of the vapour, cal/(mol K), out</param>
        public static int FlashLLVatSP(double S, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double T, ref double beta, ref double V, double[] xA, double[] xB, double[] y, double[] KLL,
            double[] KLV, ref double SA, ref double SB, ref double SV)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(xA, count, "xA");
            Check.Length(xB, count, "xB");
            Check.Length(y, count, "y");
            Check.Length(KLL, count, "KLL");
            Check.Length(KLV, count, "KLV");
            return Native.FlashLLVatSP(S, P, z, ref mixture.Record, routines, options, ref T, ref beta, ref V, xA,
                xB, y, KLL, KLV, ref SA, ref SB, ref SV);
        }

        /// <summary>Temperature of a vapour fraction beside up to two liquids. Returns the status.</summary>
        /// <param name="W">vapour fraction, 0 bubble point, 1 dew point, mol/mol</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: the result arguments hold an estimate</param>
        /// <param name="T">temperature; not above 0 counts as no estimate, K, in and out</param>
        /// <param name="beta">share of liquid A, mol/mol, in and out</param>
        /// <param name="xA">liquid A, the lighter one, mol/mol, [count], in and out</param>
        /// <param name="xB">liquid B, the denser one, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="KLL">xA / xB, [count], out</param>
        /// <param name="KLV">y / xA, [count], out</param>
        public static int FlashLLVatWP(double W, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double T, ref double beta, double[] xA, double[] xB, double[] y, double[] KLL, double[] KLV)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(xA, count, "xA");
            Check.Length(xB, count, "xB");
            Check.Length(y, count, "y");
            Check.Length(KLL, count, "KLL");
            Check.Length(KLV, count, "KLV");
            return Native.FlashLLVatWP(W, P, z, ref mixture.Record, routines, options, ref T, ref beta, xA, xB, y,
                KLL, KLV);
        }

        /// <summary>Pressure of a vapour fraction beside up to two liquids. Returns the status.</summary>
        /// <param name="W">vapour fraction, 0 bubble point, 1 dew point, mol/mol</param>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: the result arguments hold an estimate</param>
        /// <param name="P">pressure; not above 0 counts as no estimate, atm, in and out</param>
        /// <param name="beta">share of liquid A, mol/mol, in and out</param>
        /// <param name="xA">liquid A, the lighter one, mol/mol, [count], in and out</param>
        /// <param name="xB">liquid B, the denser one, mol/mol, [count], in and out</param>
        /// <param name="y">vapour, mol/mol, [count], in and out</param>
        /// <param name="KLL">xA / xB, [count], out</param>
        /// <param name="KLV">y / xA, [count], out</param>
        public static int FlashLLVatWT(double W, double T, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double P, ref double beta, double[] xA, double[] xB, double[] y, double[] KLL, double[] KLV)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(xA, count, "xA");
            Check.Length(xB, count, "xB");
            Check.Length(y, count, "y");
            Check.Length(KLL, count, "KLL");
            Check.Length(KLV, count, "KLV");
            return Native.FlashLLVatWT(W, T, z, ref mixture.Record, routines, options, ref P, ref beta, xA, xB, y,
                KLL, KLV);
        }

        /// <summary>Two liquids at temperature and pressure. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">start, 1: the result arguments hold an estimate</param>
        /// <param name="beta">share of liquid 2, mol/mol, in and out</param>
        /// <param name="liquid1">the denser liquid, mol/mol, [count], in and out</param>
        /// <param name="liquid2">the lighter liquid, mol/mol, [count], in and out</param>
        /// <param name="K">liquid2 / liquid1, [count], out</param>
        public static int FlashLLatTP(double T, double P, double[] z, Mixture mixture, IntPtr routines, int options,
            ref double beta, double[] liquid1, double[] liquid2, double[] K)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(liquid1, count, "liquid1");
            Check.Length(liquid2, count, "liquid2");
            Check.Length(K, count, "K");
            return Native.FlashLLatTP(T, P, z, ref mixture.Record, routines, options, ref beta, liquid1, liquid2, K);
        }

        /// <summary>Bubble and dew curves, or the line of a vapour fraction. Returns the status.</summary>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="routines">routines of the host; null: the library's own</param>
        /// <param name="options">0</param>
        /// <param name="first_P">first pressure, 0: 1 atm, atm</param>
        /// <param name="max_P">highest pressure, 0: 2000 atm, atm</param>
        /// <param name="min_T">lowest temperature, 0: 50 K, K</param>
        /// <param name="points">number wanted, 0: as traced</param>
        /// <param name="capacity">of the three point arrays</param>
        /// <param name="fraction">1: bubble and dew curves; between 0 and 1: that line, mol/mol</param>
        /// <param name="accuracy">0, or 1e-10 and more: every point is converged to 1e-10</param>
        /// <param name="T">temperatures, K, [capacity], out</param>
        /// <param name="P">pressures, atm, [capacity], out</param>
        /// <param name="kind">1 dew, 0 bubble, 0.5 critical, 4 two liquids, [capacity], out</param>
        /// <param name="number_of_points">points found, out</param>
        /// <param name="number_of_critical_points">critical points among them, out</param>
        /// <param name="cricondentherm_T">highest temperature, K, out</param>
        /// <param name="cricondentherm_P">and its pressure, atm, out</param>
        /// <param name="cricondenbar_T">temperature of the highest pressure, K, out</param>
        /// <param name="cricondenbar_P">highest pressure, atm, out</param>
        public static int PhaseEnvelope(double[] z, Mixture mixture, IntPtr routines, int options, double first_P,
            double max_P, double min_T, int points, int capacity, double fraction, double accuracy, double[] T,
            double[] P, double[] kind, ref int number_of_points, ref int number_of_critical_points,
            ref double cricondentherm_T, ref double cricondentherm_P, ref double cricondenbar_T,
            ref double cricondenbar_P)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(T, capacity, "T");
            Check.Length(P, capacity, "P");
            Check.Length(kind, capacity, "kind");
            return Native.PhaseEnvelope(z, ref mixture.Record, routines, options, first_P, max_P, min_T, points,
                capacity, fraction, accuracy, T, P, kind, ref number_of_points, ref number_of_critical_points,
                ref cricondentherm_T, ref cricondentherm_P, ref cricondenbar_T, ref cricondenbar_P);
        }

        /// <summary>Critical point of a mixture. Returns the status.</summary>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="options">0</param>
        /// <param name="Tc">temperature, K, out</param>
        /// <param name="Pc">pressure, atm, out</param>
        /// <param name="Vc">molar volume, cm3/mol, out</param>
        /// <param name="Zc">compressibility factor, out</param>
        public static int CriticalPoint(double[] z, Mixture mixture, int options, ref double Tc, ref double Pc,
            ref double Vc, ref double Zc)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            return Native.CriticalPoint(z, ref mixture.Record, options, ref Tc, ref Pc, ref Vc, ref Zc);
        }

        /// <summary>Water dew temperature at a pressure. Returns the status.</summary>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="method">1 (or 0) equation of state, 2 chart</param>
        /// <param name="routes">0</param>
        /// <param name="unused">not read</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="reserved">not read</param>
        /// <param name="T">dew temperature, in: a start, K, in and out</param>
        public static int WaterDewTemperature(double P, double[] z, int method, int routes, int unused,
            Mixture mixture, int reserved, ref double T)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            return Native.WaterDewTemperature(P, z, method, routes, unused, ref mixture.Record, reserved, ref T);
        }

        /// <summary>Water dew pressure at a temperature. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="method">1 (or 0) equation of state, 2 chart</param>
        /// <param name="routes">0</param>
        /// <param name="unused">not read</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="reserved">not read</param>
        /// <param name="P">dew pressure, in: a start, atm, in and out</param>
        public static int WaterDewPressure(double T, double[] z, int method, int routes, int unused, Mixture mixture,
            int reserved, ref double P)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            return Native.WaterDewPressure(T, z, method, routes, unused, ref mixture.Record, reserved, ref P);
        }

        /// <summary>Water dew temperatures at pressures evenly spaced in ln P. Returns the status.</summary>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="method">1 (or 0) equation of state, 2 chart</param>
        /// <param name="routes">0</param>
        /// <param name="unused">not read</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="reserved">not read</param>
        /// <param name="min_P">first pressure, 0: 1 atm, atm</param>
        /// <param name="max_P">last pressure, 0: 200 atm, atm</param>
        /// <param name="points">number of points</param>
        /// <param name="T">dew temperatures, 0 where there is none, K, [points], out</param>
        /// <param name="P">pressures, atm, [points], out</param>
        /// <param name="status">status of every point, [points], out</param>
        /// <param name="found">points with status 0, out</param>
        public static int WaterDewLine(double[] z, int method, int routes, int unused, Mixture mixture, int reserved,
            double min_P, double max_P, int points, double[] T, double[] P, int[] status, ref int found)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(T, points, "T");
            Check.Length(P, points, "P");
            Check.Length(status, points, "status");
            return Native.WaterDewLine(z, method, routes, unused, ref mixture.Record, reserved, min_P, max_P, points,
                T, P, status, ref found);
        }

        /// <summary>Water in a saturated gas. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="method">1 (or 0) equation of state, 2 chart</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="water_fraction">water in the saturated gas, mol/mol, out</param>
        /// <param name="water_content">the same in mass per normal volume, 0 C and 1 atm, mg/Nm3, out</param>
        public static int Humidity(double T, double P, int method, double[] z, Mixture mixture,
            ref double water_fraction, ref double water_content)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            return Native.Humidity(T, P, method, z, ref mixture.Record, ref water_fraction, ref water_content);
        }

        /// <summary>The gas saturated with water. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="method_switch">1: method 1, and method 2 where that fails</param>
        /// <param name="method">1 (or 0) equation of state, 2 chart</param>
        /// <param name="routes">0</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="reserved">not read</param>
        /// <param name="wet">the saturated gas; may be z, mol/mol, [count], out</param>
        public static int WetGasComposition(double T, double P, double[] z, int method_switch, int method,
            int routes, Mixture mixture, int reserved, double[] wet)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(wet, count, "wet");
            return Native.WetGasComposition(T, P, z, method_switch, method, routes, ref mixture.Record, reserved,
                wet);
        }

        /// <summary>Hydrate formation curve of a gas by its gravity. Returns the status.</summary>
        /// <param name="z">feed, mol/mol, [count]</param>
        /// <param name="kind">inhibitor: 0 none, 1 methanol, 2 NaCl, 3 KCl, 4 CaCl2, 5 of molar mass M</param>
        /// <param name="M">molar mass of inhibitor 5, g/mol</param>
        /// <param name="percent">inhibitor in the aqueous solution, % by mass</param>
        /// <param name="points">number of points</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="unused">not read</param>
        /// <param name="T">temperatures, K, [points], out</param>
        /// <param name="P">pressures, atm, [points], out</param>
        public static int HydrateLine(double[] z, int kind, double M, double percent, int points, Mixture mixture,
            int unused, double[] T, double[] P)
        {
            int count = Check.Count(mixture);
            Check.Length(z, count, "z");
            Check.Length(T, points, "T");
            Check.Length(P, points, "P");
            return Native.HydrateLine(z, kind, M, percent, points, ref mixture.Record, unused, T, P);
        }

        /// <summary>Gas at T and P against the normal state (0 C, 1 atm). Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="Z">compressibility factor at T and P, out</param>
        /// <param name="Z_normal">and at the normal state, out</param>
        /// <param name="density_normal">density at the normal state, kg/m3, out</param>
        /// <param name="normal_volume">normal m3 in one m3 at T and P, Nm3/m3, out</param>
        public static int GasN(double T, double P, double[] x, Mixture mixture, ref double Z, ref double Z_normal,
            ref double density_normal, ref double normal_volume)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.GasN(T, P, x, ref mixture.Record, ref Z, ref Z_normal, ref density_normal,
                ref normal_volume);
        }

        /// <summary>Mass density of a liquid. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="density">mass density, g/cm3, out</param>
        /// <param name="d_dT">derivative with T, g/cm3/K, out</param>
        /// <param name="d_dP">derivative with P, g/cm3/atm, out</param>
        /// <param name="d2_dTdP">second derivative, g/cm3/K/atm, out</param>
        public static int LiquidDensity_PPR78(double T, double P, double[] x, Mixture mixture, ref double density,
            ref double d_dT, ref double d_dP, ref double d2_dTdP)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.LiquidDensity_PPR78(T, P, x, ref mixture.Record, ref density, ref d_dT, ref d_dP,
                ref d2_dTdP);
        }

        /// <summary>Mass density of a gas. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="density">mass density, g/cm3, out</param>
        /// <param name="d_dT">derivative with T, g/cm3/K, out</param>
        /// <param name="d_dP">derivative with P, g/cm3/atm, out</param>
        /// <param name="d2_dTdP">second derivative, g/cm3/K/atm, out</param>
        public static int GasDensity_PPR78(double T, double P, double[] x, Mixture mixture, ref double density,
            ref double d_dT, ref double d_dP, ref double d2_dTdP)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.GasDensity_PPR78(T, P, x, ref mixture.Record, ref density, ref d_dT, ref d_dP, ref d2_dTdP);
        }

        /// <summary>Molar enthalpy of a liquid. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="value">molar enthalpy, cal/mol, out</param>
        public static int LiquidMolarEnthalpy_PPR78(double T, double P, double[] x, Mixture mixture, ref double value)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.LiquidMolarEnthalpy_PPR78(T, P, x, ref mixture.Record, ref value);
        }

        /// <summary>Molar enthalpy of a gas. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="value">molar enthalpy, cal/mol, out</param>
        public static int GasMolarEnthalpy_PPR78(double T, double P, double[] x, Mixture mixture, ref double value)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.GasMolarEnthalpy_PPR78(T, P, x, ref mixture.Record, ref value);
        }

        /// <summary>Molar entropy of a liquid. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="value">molar entropy, cal/(mol K), out</param>
        public static int LiquidMolarEntropy_PPR78(double T, double P, double[] x, Mixture mixture, ref double value)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.LiquidMolarEntropy_PPR78(T, P, x, ref mixture.Record, ref value);
        }

        /// <summary>Molar entropy of a gas. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="value">molar entropy, cal/(mol K), out</param>
        public static int GasMolarEntropy_PPR78(double T, double P, double[] x, Mixture mixture, ref double value)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.GasMolarEntropy_PPR78(T, P, x, ref mixture.Record, ref value);
        }

        /// <summary>Molar free enthalpy of a liquid. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="value">molar free enthalpy, cal/mol, out</param>
        public static int LiquidMolarFreeEnthalpy_PPR78(double T, double P, double[] x, Mixture mixture,
            ref double value)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.LiquidMolarFreeEnthalpy_PPR78(T, P, x, ref mixture.Record, ref value);
        }

        /// <summary>Molar free enthalpy of a gas. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="value">molar free enthalpy, cal/mol, out</param>
        public static int GasMolarFreeEnthalpy_PPR78(double T, double P, double[] x, Mixture mixture,
            ref double value)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.GasMolarFreeEnthalpy_PPR78(T, P, x, ref mixture.Record, ref value);
        }

        /// <summary>Molar enthalpy of a liquid with derivatives. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="mask">derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn</param>
        /// <param name="value">molar enthalpy, cal/mol, out</param>
        /// <param name="d_dT">derivative with T, cal/(mol K), out, only with bit 1 of mask</param>
        /// <param name="d_dP">derivative with P, cal/(mol atm), out, only with bit 2 of mask</param>
        /// <param name="d_dn">derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask</param>
        public static int LiquidMolarEnthalpy_Derivatives_PPR78(double T, double P, double[] x, Mixture mixture,
            int mask, ref double value, ref double d_dT, ref double d_dP, double[] d_dn)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            if ((mask & 4) != 0 || d_dn != null) Check.Length(d_dn, count, "d_dn");
            return Native.LiquidMolarEnthalpy_Derivatives_PPR78(T, P, x, ref mixture.Record, mask, ref value,
                ref d_dT, ref d_dP, d_dn);
        }

        /// <summary>Molar enthalpy of a gas with derivatives. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="mask">derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn</param>
        /// <param name="value">molar enthalpy, cal/mol, out</param>
        /// <param name="d_dT">derivative with T, cal/(mol K), out, only with bit 1 of mask</param>
        /// <param name="d_dP">derivative with P, cal/(mol atm), out, only with bit 2 of mask</param>
        /// <param name="d_dn">derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask</param>
        public static int GasMolarEnthalpy_Derivatives_PPR78(double T, double P, double[] x, Mixture mixture,
            int mask, ref double value, ref double d_dT, ref double d_dP, double[] d_dn)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            if ((mask & 4) != 0 || d_dn != null) Check.Length(d_dn, count, "d_dn");
            return Native.GasMolarEnthalpy_Derivatives_PPR78(T, P, x, ref mixture.Record, mask, ref value, ref d_dT,
                ref d_dP, d_dn);
        }

        /// <summary>Molar entropy of a liquid with derivatives. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="mask">derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn</param>
        /// <param name="value">molar entropy, cal/(mol K), out</param>
        /// <param name="d_dT">derivative with T, cal/(mol K2), out, only with bit 1 of mask</param>
        /// <param name="d_dP">derivative with P, cal/(mol K atm), out, only with bit 2 of mask</param>
        /// <param name="d_dn">derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask</param>
        public static int LiquidMolarEntropy_Derivatives_PPR78(double T, double P, double[] x, Mixture mixture,
            int mask, ref double value, ref double d_dT, ref double d_dP, double[] d_dn)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            if ((mask & 4) != 0 || d_dn != null) Check.Length(d_dn, count, "d_dn");
            return Native.LiquidMolarEntropy_Derivatives_PPR78(T, P, x, ref mixture.Record, mask, ref value,
                ref d_dT, ref d_dP, d_dn);
        }

        /// <summary>Molar entropy of a gas with derivatives. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="mask">derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn</param>
        /// <param name="value">molar entropy, cal/(mol K), out</param>
        /// <param name="d_dT">derivative with T, cal/(mol K2), out, only with bit 1 of mask</param>
        /// <param name="d_dP">derivative with P, cal/(mol K atm), out, only with bit 2 of mask</param>
        /// <param name="d_dn">derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask</param>
        public static int GasMolarEntropy_Derivatives_PPR78(double T, double P, double[] x, Mixture mixture,
            int mask, ref double value, ref double d_dT, ref double d_dP, double[] d_dn)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            if ((mask & 4) != 0 || d_dn != null) Check.Length(d_dn, count, "d_dn");
            return Native.GasMolarEntropy_Derivatives_PPR78(T, P, x, ref mixture.Record, mask, ref value, ref d_dT,
                ref d_dP, d_dn);
        }

        /// <summary>ln phi of a liquid with derivatives. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="option">2</param>
        /// <param name="mask">derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn</param>
        /// <param name="ln_phi">ln of the fugacity coefficients, [count], out</param>
        /// <param name="d_dT">derivatives with T, 1/K, [count], out, only with bit 1 of mask</param>
        /// <param name="d_dP">derivatives with P, 1/atm, [count], out, only with bit 2 of mask</param>
        /// <param name="d_dn">entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask</param>
        public static int LiquidPhi_Derivatives_PPR78(double T, double P, double[] x, Mixture mixture, int option,
            int mask, double[] ln_phi, double[] d_dT, double[] d_dP, double[] d_dn)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            Check.Length(ln_phi, count, "ln_phi");
            if ((mask & 1) != 0 || d_dT != null) Check.Length(d_dT, count, "d_dT");
            if ((mask & 2) != 0 || d_dP != null) Check.Length(d_dP, count, "d_dP");
            if ((mask & 4) != 0 || d_dn != null) Check.Length(d_dn, (long)count * count, "d_dn");
            return Native.LiquidPhi_Derivatives_PPR78(T, P, x, ref mixture.Record, option, mask, ln_phi, d_dT, d_dP,
                d_dn);
        }

        /// <summary>ln phi of a gas with derivatives. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="option">2</param>
        /// <param name="mask">derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn</param>
        /// <param name="ln_phi">ln of the fugacity coefficients, [count], out</param>
        /// <param name="d_dT">derivatives with T, 1/K, [count], out, only with bit 1 of mask</param>
        /// <param name="d_dP">derivatives with P, 1/atm, [count], out, only with bit 2 of mask</param>
        /// <param name="d_dn">entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask</param>
        public static int GasPhi_Derivatives_PPR78(double T, double P, double[] x, Mixture mixture, int option,
            int mask, double[] ln_phi, double[] d_dT, double[] d_dP, double[] d_dn)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            Check.Length(ln_phi, count, "ln_phi");
            if ((mask & 1) != 0 || d_dT != null) Check.Length(d_dT, count, "d_dT");
            if ((mask & 2) != 0 || d_dP != null) Check.Length(d_dP, count, "d_dP");
            if ((mask & 4) != 0 || d_dn != null) Check.Length(d_dn, (long)count * count, "d_dn");
            return Native.GasPhi_Derivatives_PPR78(T, P, x, ref mixture.Record, option, mask, ln_phi, d_dT, d_dP,
                d_dn);
        }

        /// <summary>Heat capacities of a gas and what follows from them. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="Cp">at constant pressure, cal/(mol K), out</param>
        /// <param name="Cv">at constant volume, cal/(mol K), out</param>
        /// <param name="speed_of_sound">speed of sound, m/s, out</param>
        /// <param name="joule_thomson">Joule-Thomson coefficient, K/atm, out</param>
        public static int GasSpecificHeat_PPR78(double T, double P, double[] x, Mixture mixture, ref double Cp,
            ref double Cv, ref double speed_of_sound, ref double joule_thomson)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.GasSpecificHeat_PPR78(T, P, x, ref mixture.Record, ref Cp, ref Cv, ref speed_of_sound,
                ref joule_thomson);
        }

        /// <summary>Viscosity of a gas. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="viscosity">dynamic viscosity, cP, out</param>
        public static int GasDynamicViscosity_PPR78(double T, double P, double[] x, Mixture mixture,
            ref double viscosity)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.GasDynamicViscosity_PPR78(T, P, x, ref mixture.Record, ref viscosity);
        }

        /// <summary>Thermal conductivity of a gas. Returns the status.</summary>
        /// <param name="T">temperature, above 0, K</param>
        /// <param name="P">pressure, above 0, atm</param>
        /// <param name="x">composition of the phase, mol/mol, [count]</param>
        /// <param name="mixture">record of the mixture; only its flags change, and only during the call</param>
        /// <param name="conductivity">thermal conductivity, W/(m K), out</param>
        public static int GasThermalConductivity_PPR78(double T, double P, double[] x, Mixture mixture,
            ref double conductivity)
        {
            int count = Check.Count(mixture);
            Check.Length(x, count, "x");
            return Native.GasThermalConductivity_PPR78(T, P, x, ref mixture.Record, ref conductivity);
        }
    }

    internal static class Native
    {
        // The system's own convention: stdcall in a 32-bit process on Windows, C everywhere else.
        [DllImport("KVGasThermo")]
        internal static extern void ConvertPPR78GroupData(int nC, int nG, int[] counts, double[] A, double[] B,
            IntPtr[] storage);

        [DllImport("KVGasThermo")]
        internal static extern int MolecularWeight(int nc, double[] x, double[] M, ref double mean);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLVatTP(double T, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double beta, double[] x, double[] y, double[] K);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLVatHP(double H, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double T, ref double beta, double[] x, double[] y, double[] K,
            ref double HL, ref double HV);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLVatSP(double S, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double T, ref double beta, double[] x, double[] y, double[] K,
            ref double SL, ref double SV);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLVatWP(double W, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double T, double[] x, double[] y, double[] K);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLVatWT(double W, double T, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double P, double[] x, double[] y, double[] K);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLLVatTP(double T, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double beta, ref double V, double[] xA, double[] xB, double[] y,
            double[] KLL, double[] KLV);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLLVatHP(double H, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double T, ref double beta, ref double V, double[] xA, double[] xB,
            double[] y, double[] KLL, double[] KLV, ref double HA, ref double HB, ref double HV);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLLVatSP(double S, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double T, ref double beta, ref double V, double[] xA, double[] xB,
            double[] y, double[] KLL, double[] KLV, ref double SA, ref double SB, ref double SV);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLLVatWP(double W, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double T, ref double beta, double[] xA, double[] xB, double[] y,
            double[] KLL, double[] KLV);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLLVatWT(double W, double T, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double P, ref double beta, double[] xA, double[] xB, double[] y,
            double[] KLL, double[] KLV);

        [DllImport("KVGasThermo")]
        internal static extern int FlashLLatTP(double T, double P, double[] z, ref MixtureRecord mixture,
            IntPtr routines, int options, ref double beta, double[] liquid1, double[] liquid2, double[] K);

        [DllImport("KVGasThermo")]
        internal static extern int PhaseEnvelope(double[] z, ref MixtureRecord mixture, IntPtr routines, int options,
            double first_P, double max_P, double min_T, int points, int capacity, double fraction, double accuracy,
            double[] T, double[] P, double[] kind, ref int number_of_points, ref int number_of_critical_points,
            ref double cricondentherm_T, ref double cricondentherm_P, ref double cricondenbar_T,
            ref double cricondenbar_P);

        [DllImport("KVGasThermo")]
        internal static extern int CriticalPoint(double[] z, ref MixtureRecord mixture, int options, ref double Tc,
            ref double Pc, ref double Vc, ref double Zc);

        [DllImport("KVGasThermo")]
        internal static extern int WaterDewTemperature(double P, double[] z, int method, int routes, int unused,
            ref MixtureRecord mixture, int reserved, ref double T);

        [DllImport("KVGasThermo")]
        internal static extern int WaterDewPressure(double T, double[] z, int method, int routes, int unused,
            ref MixtureRecord mixture, int reserved, ref double P);

        [DllImport("KVGasThermo")]
        internal static extern int WaterDewLine(double[] z, int method, int routes, int unused,
            ref MixtureRecord mixture, int reserved, double min_P, double max_P, int points, double[] T, double[] P,
            int[] status, ref int found);

        [DllImport("KVGasThermo")]
        internal static extern int Humidity(double T, double P, int method, double[] z, ref MixtureRecord mixture,
            ref double water_fraction, ref double water_content);

        [DllImport("KVGasThermo")]
        internal static extern int WetGasComposition(double T, double P, double[] z, int method_switch, int method,
            int routes, ref MixtureRecord mixture, int reserved, double[] wet);

        [DllImport("KVGasThermo")]
        internal static extern int HydrateLine(double[] z, int kind, double M, double percent, int points,
            ref MixtureRecord mixture, int unused, double[] T, double[] P);

        [DllImport("KVGasThermo")]
        internal static extern int GasN(double T, double P, double[] x, ref MixtureRecord mixture, ref double Z,
            ref double Z_normal, ref double density_normal, ref double normal_volume);

        [DllImport("KVGasThermo")]
        internal static extern int LiquidDensity_PPR78(double T, double P, double[] x, ref MixtureRecord mixture,
            ref double density, ref double d_dT, ref double d_dP, ref double d2_dTdP);

        [DllImport("KVGasThermo")]
        internal static extern int GasDensity_PPR78(double T, double P, double[] x, ref MixtureRecord mixture,
            ref double density, ref double d_dT, ref double d_dP, ref double d2_dTdP);

        [DllImport("KVGasThermo")]
        internal static extern int LiquidMolarEnthalpy_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, ref double value);

        [DllImport("KVGasThermo")]
        internal static extern int GasMolarEnthalpy_PPR78(double T, double P, double[] x, ref MixtureRecord mixture,
            ref double value);

        [DllImport("KVGasThermo")]
        internal static extern int LiquidMolarEntropy_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, ref double value);

        [DllImport("KVGasThermo")]
        internal static extern int GasMolarEntropy_PPR78(double T, double P, double[] x, ref MixtureRecord mixture,
            ref double value);

        [DllImport("KVGasThermo")]
        internal static extern int LiquidMolarFreeEnthalpy_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, ref double value);

        [DllImport("KVGasThermo")]
        internal static extern int GasMolarFreeEnthalpy_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, ref double value);

        [DllImport("KVGasThermo")]
        internal static extern int LiquidMolarEnthalpy_Derivatives_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, int mask, ref double value, ref double d_dT, ref double d_dP, double[] d_dn);

        [DllImport("KVGasThermo")]
        internal static extern int GasMolarEnthalpy_Derivatives_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, int mask, ref double value, ref double d_dT, ref double d_dP, double[] d_dn);

        [DllImport("KVGasThermo")]
        internal static extern int LiquidMolarEntropy_Derivatives_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, int mask, ref double value, ref double d_dT, ref double d_dP, double[] d_dn);

        [DllImport("KVGasThermo")]
        internal static extern int GasMolarEntropy_Derivatives_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, int mask, ref double value, ref double d_dT, ref double d_dP, double[] d_dn);

        [DllImport("KVGasThermo")]
        internal static extern int LiquidPhi_Derivatives_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, int option, int mask, double[] ln_phi, double[] d_dT, double[] d_dP,
            double[] d_dn);

        [DllImport("KVGasThermo")]
        internal static extern int GasPhi_Derivatives_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, int option, int mask, double[] ln_phi, double[] d_dT, double[] d_dP,
            double[] d_dn);

        [DllImport("KVGasThermo")]
        internal static extern int GasSpecificHeat_PPR78(double T, double P, double[] x, ref MixtureRecord mixture,
            ref double Cp, ref double Cv, ref double speed_of_sound, ref double joule_thomson);

        [DllImport("KVGasThermo")]
        internal static extern int GasDynamicViscosity_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, ref double viscosity);

        [DllImport("KVGasThermo")]
        internal static extern int GasThermalConductivity_PPR78(double T, double P, double[] x,
            ref MixtureRecord mixture, ref double conductivity);
    }
}
