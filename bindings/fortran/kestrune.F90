! Made by tools/make_bindings.py from bindings/exports.toml; change that and run it.
!
! The exports of KVGasThermo for Fortran 2018 (iso_c_binding). A procedure here has the name and the words of the export;
! it stops the program with a message, before the library is called, where an array has the wrong length, a derivative
! that mask asks for is absent, or the record has no table. Types are the compiler's business.
! A library of 32 bit is that of Windows: its procedures are stdcall (GNU Fortran; other compilers have words of their own).
! Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
module kestrune
  use, intrinsic :: iso_c_binding
  implicit none
  private

  character(*), parameter, public :: kestrune_version = "0.2.0"

  ! A mixture and the settings of its calculations: packed, hence bytes, with procedures to set them. All settings 0:
  ! the defaults.
  type, bind(C), public :: MixtureRecord
    integer(c_int8_t) :: bytes(0:124) = 0_c_int8_t
  end type

  ! Statuses.
  integer(c_int32_t), parameter, public :: KV_OK = 0_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NO_WATER = -1_c_int32_t
  integer(c_int32_t), parameter, public :: KV_INHIBITOR_MASS = 1_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NO_WATER_LIMIT = 4_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NO_ROOT = 51_c_int32_t
  integer(c_int32_t), parameter, public :: KV_FEED_SUM = 111_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NOT_CONVERGED = 112_c_int32_t
  integer(c_int32_t), parameter, public :: KV_DAMPING = 113_c_int32_t
  integer(c_int32_t), parameter, public :: KV_RELAXATION = 114_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ZERO_SLOPE = 115_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NO_SATURATION = 116_c_int32_t
  integer(c_int32_t), parameter, public :: KV_UNSTABLE_POINT = 117_c_int32_t
  integer(c_int32_t), parameter, public :: KV_FOURTH_PHASE = 118_c_int32_t
  integer(c_int32_t), parameter, public :: KV_TRIVIAL = 120_c_int32_t
  integer(c_int32_t), parameter, public :: KV_TRIVIAL_LV = 121_c_int32_t
  integer(c_int32_t), parameter, public :: KV_LV_ANSWER_DOUBTFUL = 134_c_int32_t
  integer(c_int32_t), parameter, public :: KV_LL_ANSWER_DOUBTFUL = 135_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NO_START = 136_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ENVELOPE_OPEN = 140_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ENVELOPE_COLD = 141_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ENVELOPE_FULL = 142_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ENVELOPE_UNSTABLE = 143_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ENVELOPE_BROKEN = 144_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NO_CRITICAL = 145_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ENVELOPE_LIQUIDS = 146_c_int32_t
  integer(c_int32_t), parameter, public :: KV_WATER_RANGE = 151_c_int32_t
  integer(c_int32_t), parameter, public :: KV_PURE_UNKNOWN = 1001_c_int32_t
  integer(c_int32_t), parameter, public :: KV_PURE_NO_CORRELATION = 1002_c_int32_t
  integer(c_int32_t), parameter, public :: KV_PURE_RANGE = 1003_c_int32_t
  integer(c_int32_t), parameter, public :: KV_PURE_ARGUMENT = 1004_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NULL_ARGUMENT = 9002_c_int32_t
  integer(c_int32_t), parameter, public :: KV_COMPONENT_COUNT = 9003_c_int32_t
  integer(c_int32_t), parameter, public :: KV_TEMPERATURE = 9004_c_int32_t
  integer(c_int32_t), parameter, public :: KV_PRESSURE = 9005_c_int32_t
  integer(c_int32_t), parameter, public :: KV_COMPOSITION = 9006_c_int32_t
  integer(c_int32_t), parameter, public :: KV_COMPONENT_DATA = 9007_c_int32_t
  integer(c_int32_t), parameter, public :: KV_GROUP_DATA = 9008_c_int32_t
  integer(c_int32_t), parameter, public :: KV_SPECIFICATION = 9009_c_int32_t
  integer(c_int32_t), parameter, public :: KV_MEMORY = 9010_c_int32_t
  integer(c_int32_t), parameter, public :: KV_INTERNAL = 9011_c_int32_t
  integer(c_int32_t), parameter, public :: KV_NOT_FINITE = 9012_c_int32_t

  ! Columns of the component table.
  integer, parameter, public :: KV_COL_DATABANK_NUMBER = 1 ! running number in the host's databank, not read
  integer, parameter, public :: KV_COL_MOLAR_MASS = 2 ! g/mol
  integer, parameter, public :: KV_COL_MELTING_POINT = 3 ! triple or melting point, K
  integer, parameter, public :: KV_COL_BOILING_POINT = 4 ! normal boiling point, K
  integer, parameter, public :: KV_COL_TC = 5 ! critical temperature, K
  integer, parameter, public :: KV_COL_PC = 6 ! critical pressure, atm
  integer, parameter, public :: KV_COL_VC = 7 ! critical volume, cm3/mol
  integer, parameter, public :: KV_COL_ZC = 8 ! critical compressibility factor
  integer, parameter, public :: KV_COL_OMEGA = 9 ! acentric factor
  integer, parameter, public :: KV_COL_DIPOLE = 10 ! dipole moment, debye
  integer, parameter, public :: KV_COL_TMIN_PSAT = 11 ! lowest temperature of its vapour-pressure correlation, K
  integer, parameter, public :: KV_COL_CP_A = 12 ! own ideal-gas heat capacity: A, and B to E in the columns behind it
  integer, parameter, public :: KV_COL_CP_TMIN = 17 ! range of it, K
  integer, parameter, public :: KV_COL_CP_TMAX = 18 ! as the one before
  integer, parameter, public :: KV_COL_FAMILY = 41 ! family code, KV_FAMILY_WATER marks water
  integer, parameter, public :: KV_COL_CAS = 43 ! CAS number as a whole number: 7732185 is 7732-18-5

  ! Settings, routines of a host, phases and derivatives.
  integer(c_int32_t), parameter, public :: KV_TABLE_COLUMNS = 43_c_int32_t
  real(c_double), parameter, public :: KV_FAMILY_WATER = 20.0d0
  integer(c_int32_t), parameter, public :: KV_MAX_COMPONENTS = 10000_c_int32_t
  integer(c_int32_t), parameter, public :: KV_MOST_ITERATIONS = 10000_c_int32_t
  real(c_double), parameter, public :: KV_DEFAULT_CRIT = 1d-12
  real(c_double), parameter, public :: KV_DEFAULT_CLIM = 1d10
  real(c_double), parameter, public :: KV_DEFAULT_EPS = 1d-6
  integer(c_int32_t), parameter, public :: KV_DEFAULT_ITEMAX = 200_c_int32_t
  integer(c_int32_t), parameter, public :: KV_DEFAULT_NEW = 0_c_int32_t
  real(c_double), parameter, public :: KV_DEFAULT_RELAXATION = 1.0d0
  real(c_double), parameter, public :: KV_DEFAULT_PURE_TOLERANCE = 1d-12
  real(c_double), parameter, public :: KV_DEFAULT_SUM_TOLERANCE = 1d-6
  integer(c_int32_t), parameter, public :: KV_ROUTINE_COUNT = 14_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ROUTINE_LL_FLASH = 1_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ROUTINE_LV_FLASH = 2_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ROUTINE_FUGACITY = 8_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ROUTINE_LIQUID_ORDER = 10_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ROUTINE_GAS_ENTHALPY = 11_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ROUTINE_GAS_ENTROPY = 12_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ROUTINE_LIQUID_ENTHALPY = 13_c_int32_t
  integer(c_int32_t), parameter, public :: KV_ROUTINE_LIQUID_ENTROPY = 14_c_int32_t
  integer(c_int32_t), parameter, public :: KV_PHASE_GAS = 1_c_int32_t
  integer(c_int32_t), parameter, public :: KV_PHASE_LIQUID = 2_c_int32_t
  integer(c_int32_t), parameter, public :: KV_DERIV_T = 1_c_int32_t
  integer(c_int32_t), parameter, public :: KV_DERIV_P = 2_c_int32_t
  integer(c_int32_t), parameter, public :: KV_DERIV_N = 4_c_int32_t

  ! Bytes at which the fields of MixtureRecord begin.
  integer, parameter, public :: at_count = 0 ! int: number of components, 1 .. 10 000
  integer, parameter, public :: at_table = 4 ! address: ComponentTable, 43 columns of count doubles
  integer, parameter, public :: at_flags = 16 ! byte: bit 0: FreeWaterFlag
  integer, parameter, public :: at_solubility_a = 17 ! double: water solubility limit s(T) = exp(a - b / T), capped at 1
  integer, parameter, public :: at_solubility_b = 25 ! double: b of that limit, K
  integer, parameter, public :: at_CRIT = 61 ! double: convergence criterion on the iteration error
  integer, parameter, public :: at_CLIM = 69 ! double: error level below which the method may be changed, 0: never
  integer, parameter, public :: at_EPS = 77 ! double: stagnation tolerance
  integer, parameter, public :: at_ITEMAX = 85 ! int: iteration limit
  integer, parameter, public :: at_NEW = 89 ! int: iterations granted to the global method, in units of count + 1
  integer, parameter, public :: at_trace_flag = 93 ! int: not 0: write the trace
  integer, parameter, public :: at_trace_unit = 97 ! int: 6 standard output, 0 standard error, n the file fort.n
  integer, parameter, public :: at_relaxation = 101 ! double: factor of the substitution, 1: full step
  integer, parameter, public :: at_pure_tolerance = 109 ! double: a feed with one fraction above 1 - this counts as pure
  integer, parameter, public :: at_sum_tolerance = 117 ! double: largest |sum of the feed - 1| where it is tested

  interface set_field
    module procedure set_double, set_integer
  end interface
  public :: new_mixture, set_field, set_free_water, status_text
  public :: ConvertPPR78GroupData
  public :: MolecularWeight
  public :: FlashLVatTP
  public :: FlashLVatHP
  public :: FlashLVatSP
  public :: FlashLVatWP
  public :: FlashLVatWT
  public :: FlashLLVatTP
  public :: FlashLLVatHP
  public :: FlashLLVatSP
  public :: FlashLLVatWP
  public :: FlashLLVatWT
  public :: FlashLLatTP
  public :: PhaseEnvelope
  public :: CriticalPoint
  public :: WaterDewTemperature
  public :: WaterDewPressure
  public :: WaterDewLine
  public :: Humidity
  public :: WetGasComposition
  public :: HydrateLine
  public :: GasN
  public :: LiquidDensity_PPR78
  public :: GasDensity_PPR78
  public :: LiquidMolarEnthalpy_PPR78
  public :: GasMolarEnthalpy_PPR78
  public :: LiquidMolarEntropy_PPR78
  public :: GasMolarEntropy_PPR78
  public :: LiquidMolarFreeEnthalpy_PPR78
  public :: GasMolarFreeEnthalpy_PPR78
  public :: LiquidMolarEnthalpy_Derivatives_PPR78
  public :: GasMolarEnthalpy_Derivatives_PPR78
  public :: LiquidMolarEntropy_Derivatives_PPR78
  public :: GasMolarEntropy_Derivatives_PPR78
  public :: LiquidPhi_Derivatives_PPR78
  public :: GasPhi_Derivatives_PPR78
  public :: GasSpecificHeat_PPR78
  public :: GasDynamicViscosity_PPR78
  public :: GasThermalConductivity_PPR78

  ! Group data stay alive for the library.
  real(c_double), allocatable, target, save :: group_data(:)

  interface
    subroutine c_ConvertPPR78GroupData(nC, nG, counts, A, B, storage) &
        bind(C, name="ConvertPPR78GroupData")
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_ConvertPPR78GroupData
#endif
      integer(c_int32_t), value :: nC, nG
      integer(c_int32_t), intent(in) :: counts(*)
      real(c_double), intent(in) :: A(*), B(*)
      type(c_ptr), intent(in) :: storage(*)
    end subroutine
    function c_MolecularWeight(nc, x, M, mean) &
        bind(C, name="MolecularWeight") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_MolecularWeight
#endif
      integer(c_int32_t), value :: nc
      real(c_double), intent(in) :: x(*), M(*)
      real(c_double), intent(inout) :: mean
      integer(c_int32_t) :: code
    end function
    function c_FlashLVatTP(T, P, z, mixture, routines, options, beta, x, y, K) &
        bind(C, name="FlashLVatTP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLVatTP
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: beta, x(*), y(*), K(*)
      integer(c_int32_t) :: code
    end function
    function c_FlashLVatHP(H, P, z, mixture, routines, options, T, beta, x, y, K, HL, HV) &
        bind(C, name="FlashLVatHP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLVatHP
#endif
      real(c_double), value :: H, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: T, beta, x(*), y(*), K(*), HL, HV
      integer(c_int32_t) :: code
    end function
    function c_FlashLVatSP(S, P, z, mixture, routines, options, T, beta, x, y, K, SL, SV) &
        bind(C, name="FlashLVatSP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLVatSP
#endif
      real(c_double), value :: S, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: T, beta, x(*), y(*), K(*), SL, SV
      integer(c_int32_t) :: code
    end function
    function c_FlashLVatWP(W, P, z, mixture, routines, options, T, x, y, K) &
        bind(C, name="FlashLVatWP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLVatWP
#endif
      real(c_double), value :: W, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: T, x(*), y(*), K(*)
      integer(c_int32_t) :: code
    end function
    function c_FlashLVatWT(W, T, z, mixture, routines, options, P, x, y, K) &
        bind(C, name="FlashLVatWT") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLVatWT
#endif
      real(c_double), value :: W, T
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: P, x(*), y(*), K(*)
      integer(c_int32_t) :: code
    end function
    function c_FlashLLVatTP(T, P, z, mixture, routines, options, beta, V, xA, xB, y, KLL, KLV) &
        bind(C, name="FlashLLVatTP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLLVatTP
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: beta, V, xA(*), xB(*), y(*), KLL(*), KLV(*)
      integer(c_int32_t) :: code
    end function
    function c_FlashLLVatHP(H, P, z, mixture, routines, options, T, beta, V, xA, xB, y, KLL, KLV, HA, HB, HV) &
        bind(C, name="FlashLLVatHP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLLVatHP
#endif
      real(c_double), value :: H, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: T, beta, V, xA(*), xB(*), y(*), KLL(*), KLV(*), HA, HB, HV
      integer(c_int32_t) :: code
    end function
    function c_FlashLLVatSP(S, P, z, mixture, routines, options, T, beta, V, xA, xB, y, KLL, KLV, SA, SB, SV) &
        bind(C, name="FlashLLVatSP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLLVatSP
#endif
      real(c_double), value :: S, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: T, beta, V, xA(*), xB(*), y(*), KLL(*), KLV(*), SA, SB, SV
      integer(c_int32_t) :: code
    end function
    function c_FlashLLVatWP(W, P, z, mixture, routines, options, T, beta, xA, xB, y, KLL, KLV) &
        bind(C, name="FlashLLVatWP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLLVatWP
#endif
      real(c_double), value :: W, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: T, beta, xA(*), xB(*), y(*), KLL(*), KLV(*)
      integer(c_int32_t) :: code
    end function
    function c_FlashLLVatWT(W, T, z, mixture, routines, options, P, beta, xA, xB, y, KLL, KLV) &
        bind(C, name="FlashLLVatWT") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLLVatWT
#endif
      real(c_double), value :: W, T
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: P, beta, xA(*), xB(*), y(*), KLL(*), KLV(*)
      integer(c_int32_t) :: code
    end function
    function c_FlashLLatTP(T, P, z, mixture, routines, options, beta, liquid1, liquid2, K) &
        bind(C, name="FlashLLatTP") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_FlashLLatTP
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: beta, liquid1(*), liquid2(*), K(*)
      integer(c_int32_t) :: code
    end function
    function c_PhaseEnvelope(z, mixture, routines, options, first_P, max_P, min_T, points, capacity, fraction, &
      accuracy, T, P, kind, number_of_points, number_of_critical_points, cricondentherm_T, cricondentherm_P, &
      cricondenbar_T, cricondenbar_P) &
        bind(C, name="PhaseEnvelope") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_PhaseEnvelope
#endif
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      type(c_ptr), value :: routines
      integer(c_int32_t), value :: options
      real(c_double), value :: first_P, max_P, min_T
      integer(c_int32_t), value :: points, capacity
      real(c_double), value :: fraction, accuracy
      real(c_double), intent(inout) :: T(*), P(*), kind(*)
      integer(c_int32_t), intent(inout) :: number_of_points, number_of_critical_points
      real(c_double), intent(inout) :: cricondentherm_T, cricondentherm_P, cricondenbar_T, cricondenbar_P
      integer(c_int32_t) :: code
    end function
    function c_CriticalPoint(z, mixture, options, Tc, Pc, Vc, Zc) &
        bind(C, name="CriticalPoint") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_CriticalPoint
#endif
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: options
      real(c_double), intent(inout) :: Tc, Pc, Vc, Zc
      integer(c_int32_t) :: code
    end function
    function c_WaterDewTemperature(P, z, method, routes, unused, mixture, reserved, T) &
        bind(C, name="WaterDewTemperature") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_WaterDewTemperature
#endif
      real(c_double), value :: P
      real(c_double), intent(in) :: z(*)
      integer(c_int32_t), value :: method, routes, unused
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: reserved
      real(c_double), intent(inout) :: T
      integer(c_int32_t) :: code
    end function
    function c_WaterDewPressure(T, z, method, routes, unused, mixture, reserved, P) &
        bind(C, name="WaterDewPressure") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_WaterDewPressure
#endif
      real(c_double), value :: T
      real(c_double), intent(in) :: z(*)
      integer(c_int32_t), value :: method, routes, unused
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: reserved
      real(c_double), intent(inout) :: P
      integer(c_int32_t) :: code
    end function
    function c_WaterDewLine(z, method, routes, unused, mixture, reserved, min_P, max_P, points, T, P, status, &
      found) &
        bind(C, name="WaterDewLine") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_WaterDewLine
#endif
      real(c_double), intent(in) :: z(*)
      integer(c_int32_t), value :: method, routes, unused
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: reserved
      real(c_double), value :: min_P, max_P
      integer(c_int32_t), value :: points
      real(c_double), intent(inout) :: T(*), P(*)
      integer(c_int32_t), intent(inout) :: status(*), found
      integer(c_int32_t) :: code
    end function
    function c_Humidity(T, P, method, z, mixture, water_fraction, water_content) &
        bind(C, name="Humidity") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_Humidity
#endif
      real(c_double), value :: T, P
      integer(c_int32_t), value :: method
      real(c_double), intent(in) :: z(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: water_fraction, water_content
      integer(c_int32_t) :: code
    end function
    function c_WetGasComposition(T, P, z, method_switch, method, routes, mixture, reserved, wet) &
        bind(C, name="WetGasComposition") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_WetGasComposition
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: z(*)
      integer(c_int32_t), value :: method_switch, method, routes
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: reserved
      real(c_double), intent(inout) :: wet(*)
      integer(c_int32_t) :: code
    end function
    function c_HydrateLine(z, kind, M, percent, points, mixture, unused, T, P) &
        bind(C, name="HydrateLine") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_HydrateLine
#endif
      real(c_double), intent(in) :: z(*)
      integer(c_int32_t), value :: kind
      real(c_double), value :: M, percent
      integer(c_int32_t), value :: points
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: unused
      real(c_double), intent(inout) :: T(*), P(*)
      integer(c_int32_t) :: code
    end function
    function c_GasN(T, P, x, mixture, Z, Z_normal, density_normal, normal_volume) &
        bind(C, name="GasN") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasN
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: Z, Z_normal, density_normal, normal_volume
      integer(c_int32_t) :: code
    end function
    function c_LiquidDensity_PPR78(T, P, x, mixture, density, d_dT, d_dP, d2_dTdP) &
        bind(C, name="LiquidDensity_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_LiquidDensity_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: density, d_dT, d_dP, d2_dTdP
      integer(c_int32_t) :: code
    end function
    function c_GasDensity_PPR78(T, P, x, mixture, density, d_dT, d_dP, d2_dTdP) &
        bind(C, name="GasDensity_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasDensity_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: density, d_dT, d_dP, d2_dTdP
      integer(c_int32_t) :: code
    end function
    function c_LiquidMolarEnthalpy_PPR78(T, P, x, mixture, value) &
        bind(C, name="LiquidMolarEnthalpy_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_LiquidMolarEnthalpy_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: value
      integer(c_int32_t) :: code
    end function
    function c_GasMolarEnthalpy_PPR78(T, P, x, mixture, value) &
        bind(C, name="GasMolarEnthalpy_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasMolarEnthalpy_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: value
      integer(c_int32_t) :: code
    end function
    function c_LiquidMolarEntropy_PPR78(T, P, x, mixture, value) &
        bind(C, name="LiquidMolarEntropy_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_LiquidMolarEntropy_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: value
      integer(c_int32_t) :: code
    end function
    function c_GasMolarEntropy_PPR78(T, P, x, mixture, value) &
        bind(C, name="GasMolarEntropy_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasMolarEntropy_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: value
      integer(c_int32_t) :: code
    end function
    function c_LiquidMolarFreeEnthalpy_PPR78(T, P, x, mixture, value) &
        bind(C, name="LiquidMolarFreeEnthalpy_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_LiquidMolarFreeEnthalpy_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: value
      integer(c_int32_t) :: code
    end function
    function c_GasMolarFreeEnthalpy_PPR78(T, P, x, mixture, value) &
        bind(C, name="GasMolarFreeEnthalpy_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasMolarFreeEnthalpy_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: value
      integer(c_int32_t) :: code
    end function
    function c_LiquidMolarEnthalpy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn) &
        bind(C, name="LiquidMolarEnthalpy_Derivatives_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_LiquidMolarEnthalpy_Derivatives_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: mask
      real(c_double), intent(inout) :: value
      real(c_double), intent(inout), optional :: d_dT, d_dP, d_dn(*)
      integer(c_int32_t) :: code
    end function
    function c_GasMolarEnthalpy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn) &
        bind(C, name="GasMolarEnthalpy_Derivatives_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasMolarEnthalpy_Derivatives_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: mask
      real(c_double), intent(inout) :: value
      real(c_double), intent(inout), optional :: d_dT, d_dP, d_dn(*)
      integer(c_int32_t) :: code
    end function
    function c_LiquidMolarEntropy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn) &
        bind(C, name="LiquidMolarEntropy_Derivatives_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_LiquidMolarEntropy_Derivatives_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: mask
      real(c_double), intent(inout) :: value
      real(c_double), intent(inout), optional :: d_dT, d_dP, d_dn(*)
      integer(c_int32_t) :: code
    end function
    function c_GasMolarEntropy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn) &
        bind(C, name="GasMolarEntropy_Derivatives_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasMolarEntropy_Derivatives_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: mask
      real(c_double), intent(inout) :: value
      real(c_double), intent(inout), optional :: d_dT, d_dP, d_dn(*)
      integer(c_int32_t) :: code
    end function
    function c_LiquidPhi_Derivatives_PPR78(T, P, x, mixture, option, mask, ln_phi, d_dT, d_dP, d_dn) &
        bind(C, name="LiquidPhi_Derivatives_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_LiquidPhi_Derivatives_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: option, mask
      real(c_double), intent(inout) :: ln_phi(*)
      real(c_double), intent(inout), optional :: d_dT(*), d_dP(*), d_dn(*)
      integer(c_int32_t) :: code
    end function
    function c_GasPhi_Derivatives_PPR78(T, P, x, mixture, option, mask, ln_phi, d_dT, d_dP, d_dn) &
        bind(C, name="GasPhi_Derivatives_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasPhi_Derivatives_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      integer(c_int32_t), value :: option, mask
      real(c_double), intent(inout) :: ln_phi(*)
      real(c_double), intent(inout), optional :: d_dT(*), d_dP(*), d_dn(*)
      integer(c_int32_t) :: code
    end function
    function c_GasSpecificHeat_PPR78(T, P, x, mixture, Cp, Cv, speed_of_sound, joule_thomson) &
        bind(C, name="GasSpecificHeat_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasSpecificHeat_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: Cp, Cv, speed_of_sound, joule_thomson
      integer(c_int32_t) :: code
    end function
    function c_GasDynamicViscosity_PPR78(T, P, x, mixture, viscosity) &
        bind(C, name="GasDynamicViscosity_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasDynamicViscosity_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: viscosity
      integer(c_int32_t) :: code
    end function
    function c_GasThermalConductivity_PPR78(T, P, x, mixture, conductivity) &
        bind(C, name="GasThermalConductivity_PPR78") result(code)
      import :: c_double, c_int32_t, c_ptr, MixtureRecord
#if __SIZEOF_POINTER__ == 4
      !GCC$ ATTRIBUTES STDCALL :: c_GasThermalConductivity_PPR78
#endif
      real(c_double), value :: T, P
      real(c_double), intent(in) :: x(*)
      type(MixtureRecord), intent(inout) :: mixture
      real(c_double), intent(inout) :: conductivity
      integer(c_int32_t) :: code
    end function
  end interface

contains

  ! Record of a component table(count, 43), which stays with the host and has to live as long as the record is used.
  function new_mixture(table) result(mixture)
    real(c_double), intent(inout), target :: table(:, :) ! a variable: the record points to it
    type(MixtureRecord) :: mixture
    integer(c_intptr_t) :: address
    integer :: width
    if (size(table, 2) < 43) call stop_with("new_mixture", "table", "43 columns are needed")
    if (size(table, 1) < 1) call stop_with("new_mixture", "table", "at least one component is needed")
    if (.not. is_contiguous(table)) call stop_with("new_mixture", "table", "the section is not in one piece of memory")
    call set_integer(mixture, at_count, int(size(table, 1), c_int32_t))
    address = transfer(c_loc(table), address)
    width = storage_size(address) / 8
    mixture%bytes(at_table:at_table + width - 1) = transfer(address, mixture%bytes)
  end function

  ! Sets a field of doubles, field one of at_...
  subroutine set_double(mixture, field, value)
    type(MixtureRecord), intent(inout) :: mixture
    integer, intent(in) :: field
    real(c_double), intent(in) :: value
    mixture%bytes(field:field + 7) = transfer(value, mixture%bytes)
  end subroutine

  subroutine set_integer(mixture, field, value)
    type(MixtureRecord), intent(inout) :: mixture
    integer, intent(in) :: field
    integer(c_int32_t), intent(in) :: value
    mixture%bytes(field:field + 3) = transfer(value, mixture%bytes)
  end subroutine

  subroutine set_free_water(mixture, on)
    type(MixtureRecord), intent(inout) :: mixture
    logical, intent(in) :: on
    mixture%bytes(at_flags) = merge(1_c_int8_t, 0_c_int8_t, on)
  end subroutine

  function status_text(status) result(text)
    integer(c_int32_t), intent(in) :: status
    character(:), allocatable :: text
    select case (status)
    case (KV_OK)
      text = "success"
    case (KV_NO_WATER)
      text = "no component of the mixture has the CAS number of water"
    case (KV_INHIBITOR_MASS)
      text = "the molar mass of a user-defined inhibitor is not positive"
    case (KV_NO_WATER_LIMIT)
      text = "the gas takes up any amount of water at this temperature and pressure"
    case (KV_NO_ROOT)
      text = "the equation of state has no root above the co-volume"
    case (KV_FEED_SUM)
      text = "the feed mole fractions do not sum to one within the tolerance of the record"
    case (KV_NOT_CONVERGED)
      text = "no convergence within the iteration limit; what the results hold is no answer"
    case (KV_DAMPING)
      text = "the damping of the Newton step is exhausted"
    case (KV_RELAXATION)
      text = "the relaxation factor fell below its limit"
    case (KV_ZERO_SLOPE)
      text = "the derivative of the residual is zero"
    case (KV_NO_SATURATION)
      text = "no temperature or pressure has this vapour fraction with two phases"
    case (KV_UNSTABLE_POINT)
      text = "a point of this vapour fraction was found, but another phase splits off before it"
    case (KV_FOURTH_PHASE)
      text = "three phases were found, but a fourth would split off; results hold these three"
    case (KV_TRIVIAL)
      text = "the iteration ended on two identical phases or broke down"
    case (KV_TRIVIAL_LV)
      text = "the vapour and the second liquid became the same phase"
    case (KV_LV_ANSWER_DOUBTFUL)
      text = "one liquid and a vapour remain; the flash that said so had a status"
    case (KV_LL_ANSWER_DOUBTFUL)
      text = "no vapour remains; the flash that said so had a status"
    case (KV_NO_START)
      text = "no starting point for three phases could be built"
    case (KV_ENVELOPE_OPEN)
      text = "the envelope is open: it reached the default highest pressure"
    case (KV_ENVELOPE_COLD)
      text = "the envelope reached the default lowest temperature"
    case (KV_ENVELOPE_FULL)
      text = "the arrays are too short for all points of the curve"
    case (KV_ENVELOPE_UNSTABLE)
      text = "another phase splits off before the marked points of the curve"
    case (KV_ENVELOPE_BROKEN)
      text = "the curve could not be followed to its end"
    case (KV_NO_CRITICAL)
      text = "the mixture has no stable critical point"
    case (KV_ENVELOPE_LIQUIDS)
      text = "a part of the curve is where a second liquid forms"
    case (KV_WATER_RANGE)
      text = "temperature, pressure or gas outside the range of the water-content method"
    case (KV_PURE_UNKNOWN)
      text = "pure-component library: component unknown"
    case (KV_PURE_NO_CORRELATION)
      text = "pure-component library: no correlation for this property"
    case (KV_PURE_RANGE)
      text = "pure-component library: temperature outside the range of the correlation"
    case (KV_PURE_ARGUMENT)
      text = "pure-component library: an argument is not finite"
    case (KV_NULL_ARGUMENT)
      text = "an argument that is read or written is a null pointer"
    case (KV_COMPONENT_COUNT)
      text = "the number of components is below 1 or above 10000"
    case (KV_TEMPERATURE)
      text = "the temperature is not finite or not positive"
    case (KV_PRESSURE)
      text = "the pressure is not finite or not positive"
    case (KV_COMPOSITION)
      text = "a composition has an entry that is negative or not finite, or is all zero"
    case (KV_COMPONENT_DATA)
      text = "a critical temperature, critical pressure, acentric factor or molar mass is unusable"
    case (KV_GROUP_DATA)
      text = "no group data for this number of components: call ConvertPPR78GroupData first"
    case (KV_SPECIFICATION)
      text = "a specified quantity or option is not finite or out of range"
    case (KV_MEMORY)
      text = "not enough memory for the work arrays"
    case (KV_INTERNAL)
      text = "unexpected failure inside the library; please report it"
    case (KV_NOT_FINITE)
      text = "the equation of state gave a value that is not finite at these conditions"
    case default
      text = "unknown status"
    end select
  end function

  subroutine stop_with(procedure, word, reason)
    character(*), intent(in) :: procedure, word, reason
    error stop procedure // ": " // word // ": " // reason
  end subroutine

  ! Number of components; stops where the record cannot be worked with.
  function count_of(mixture, procedure) result(count)
    type(MixtureRecord), intent(in) :: mixture
    character(*), intent(in) :: procedure
    integer(c_int32_t) :: count
    count = transfer(mixture%bytes(0:3), count)
    if (count < 1 .or. all(mixture%bytes(at_table:at_table + storage_size(0_c_intptr_t) / 8 - 1) == 0)) &
      call stop_with(procedure, "mixture", "the record has no components or no table: see new_mixture")
  end function

  subroutine need(length, wanted, procedure, word)
    integer, intent(in) :: length
    integer(c_int64_t), intent(in) :: wanted
    character(*), intent(in) :: procedure, word
    character(80) :: reason
    if (length == max(wanted, 0_c_int64_t)) return
    write (reason, '(i0, " elements, ", i0, " are needed")') length, max(wanted, 0_c_int64_t)
    call stop_with(procedure, word, trim(reason))
  end subroutine

  subroutine need_derivative(present, mask, bit, procedure, word)
    logical, intent(in) :: present
    integer(c_int32_t), intent(in) :: mask
    integer, intent(in) :: bit
    character(*), intent(in) :: procedure, word
    if (iand(mask, bit) /= 0 .and. .not. present) call stop_with(procedure, word, "absent, but mask asks for it")
  end subroutine

  ! Hands over groups and group interactions, once, before any other calculation.
  ! counts(nG, nC): how often group k occurs in component i; A, B(nG, nG): interactions, MPa, upper triangle read.
  subroutine ConvertPPR78GroupData(nC, nG, counts, A, B)
    integer(c_int32_t), intent(in) :: nC, nG
    integer(c_int32_t), intent(in), contiguous :: counts(:)
    real(c_double), intent(in), contiguous :: A(:), B(:)
    real(c_double), allocatable, target :: fresh(:)
    type(c_ptr) :: storage(6)
    integer(c_int64_t) :: sizes(6), first
    integer :: k
    character(*), parameter :: me = "ConvertPPR78GroupData"
    if (nC < 1) call stop_with(me, "nC", "at least one component is needed")
    if (nG < 1) call stop_with(me, "nG", "at least one group is needed")
    if (int(nG, c_int64_t) * nC > huge(nC) / nC) call stop_with(me, "nC", "nG * nC * nC is more than 32 bits hold")
    call need(size(counts), int(nG, c_int64_t) * nC, me, "counts")
    call need(size(A), int(nG, c_int64_t) * nG, me, "A")
    call need(size(B), int(nG, c_int64_t) * nG, me, "B")
    sizes = int([1, size(A), size(A), size(counts), size(A), nG * nC * nC], c_int64_t)
    allocate (fresh(sum(sizes)))
    first = 1
    do k = 1, 6
      storage(k) = c_loc(fresh(first))
      first = first + sizes(k)
    end do
    call c_ConvertPPR78GroupData(nC, nG, counts, A, B, storage)
    call move_alloc(fresh, group_data)
  end subroutine

  ! Molar mass of a mixture. Returns the status.
  !   nc: number of components
  !   x: composition, mol/mol, [nc]
  !   M: molar masses, g/mol, [nc]
  !   mean: sum of x[i] M[i], g/mol, out
  function MolecularWeight(nc, x, M, mean) result(code)
    integer(c_int32_t), intent(in) :: nc
    real(c_double), intent(in), contiguous :: x(:), M(:)
    real(c_double), intent(inout) :: mean
    integer(c_int32_t) :: code
    character(*), parameter :: me = "MolecularWeight"
    call need(size(x), int(nc, c_int64_t), me, "x")
    call need(size(M), int(nc, c_int64_t), me, "M")
    code = c_MolecularWeight(nc, x, M, mean)
  end function

  ! Liquid and vapour at temperature and pressure. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: cold start; clear: warm start from the result arguments
  !   beta: vapour fraction, mol/mol, in and out
  !   x: liquid, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   K: y / x, [count], out
  function FlashLVatTP(T, P, z, mixture, routines, options, beta, x, y, K) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: beta
    real(c_double), intent(inout), contiguous :: x(:), y(:), K(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLVatTP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(x), int(count, c_int64_t), me, "x")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(K), int(count, c_int64_t), me, "K")
    code = c_FlashLVatTP(T, P, z, mixture, routines, options, beta, x, y, K)
  end function

  ! Liquid and vapour at enthalpy and pressure. Returns the status.
  !   H: enthalpy of one mole of feed, cal/mol
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: cold start; clear: warm start from the result arguments
  !   T: temperature; exactly 0 counts as no estimate, K, in and out
  !   beta: vapour fraction, mol/mol, in and out
  !   x: liquid, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   K: y / x, [count], out
  !   HL: molar enthalpy of the liquid, cal/mol, out
  !   HV: molar enthalpy of the vapour, cal/mol, out
  function FlashLVatHP(H, P, z, mixture, routines, options, T, beta, x, y, K, HL, HV) result(code)
    real(c_double), intent(in) :: H, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: T, beta
    real(c_double), intent(inout), contiguous :: x(:), y(:), K(:)
    real(c_double), intent(inout) :: HL, HV
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLVatHP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(x), int(count, c_int64_t), me, "x")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(K), int(count, c_int64_t), me, "K")
    code = c_FlashLVatHP(H, P, z, mixture, routines, options, T, beta, x, y, K, HL, HV)
  end function

  ! Liquid and vapour at entropy and pressure. Returns the status.
  !   S: entropy of one mole of feed, cal/(mol K)
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: cold start; clear: warm start from the result arguments
  !   T: temperature; exactly 0 counts as no estimate, K, in and out
  !   beta: vapour fraction, mol/mol, in and out
  !   x: liquid, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   K: y / x, [count], out
  !   SL: molar entropy of the liquid, cal/(mol K), out
  !   SV: molar entropy of the vapour, cal/(mol K), out
  function FlashLVatSP(S, P, z, mixture, routines, options, T, beta, x, y, K, SL, SV) result(code)
    real(c_double), intent(in) :: S, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: T, beta
    real(c_double), intent(inout), contiguous :: x(:), y(:), K(:)
    real(c_double), intent(inout) :: SL, SV
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLVatSP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(x), int(count, c_int64_t), me, "x")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(K), int(count, c_int64_t), me, "K")
    code = c_FlashLVatSP(S, P, z, mixture, routines, options, T, beta, x, y, K, SL, SV)
  end function

  ! Temperature of a vapour fraction at a pressure. Returns the status.
  !   W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: cold start; clear: warm start from the result arguments
  !   T: temperature; not above 0 counts as no estimate, K, in and out
  !   x: liquid, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   K: y / x, [count], out
  function FlashLVatWP(W, P, z, mixture, routines, options, T, x, y, K) result(code)
    real(c_double), intent(in) :: W, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: T
    real(c_double), intent(inout), contiguous :: x(:), y(:), K(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLVatWP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(x), int(count, c_int64_t), me, "x")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(K), int(count, c_int64_t), me, "K")
    code = c_FlashLVatWP(W, P, z, mixture, routines, options, T, x, y, K)
  end function

  ! Pressure of a vapour fraction at a temperature. Returns the status.
  !   W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
  !   T: temperature, above 0, K
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: cold start; clear: warm start from the result arguments
  !   P: pressure; not above 0 counts as no estimate, atm, in and out
  !   x: liquid, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   K: y / x, [count], out
  function FlashLVatWT(W, T, z, mixture, routines, options, P, x, y, K) result(code)
    real(c_double), intent(in) :: W, T
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: P
    real(c_double), intent(inout), contiguous :: x(:), y(:), K(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLVatWT"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(x), int(count, c_int64_t), me, "x")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(K), int(count, c_int64_t), me, "K")
    code = c_FlashLVatWT(W, T, z, mixture, routines, options, P, x, y, K)
  end function

  ! Up to two liquids and a vapour at temperature and pressure. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: the result arguments hold an estimate
  !   beta: share of liquid A, mol/mol, in and out
  !   V: share of the vapour, mol/mol, in and out
  !   xA: liquid A, the lighter one, mol/mol, [count], in and out
  !   xB: liquid B, the denser one, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   KLL: xA / xB, [count], out
  !   KLV: y / xA, [count], out
  function FlashLLVatTP(T, P, z, mixture, routines, options, beta, V, xA, xB, y, KLL, KLV) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: beta, V
    real(c_double), intent(inout), contiguous :: xA(:), xB(:), y(:), KLL(:), KLV(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLLVatTP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(xA), int(count, c_int64_t), me, "xA")
    call need(size(xB), int(count, c_int64_t), me, "xB")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(KLL), int(count, c_int64_t), me, "KLL")
    call need(size(KLV), int(count, c_int64_t), me, "KLV")
    code = c_FlashLLVatTP(T, P, z, mixture, routines, options, beta, V, xA, xB, y, KLL, KLV)
  end function

  ! Up to two liquids and a vapour at enthalpy and pressure. Returns the status.
  !   H: enthalpy of one mole of feed, cal/mol
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: the result arguments hold an estimate
  !   T: temperature; exactly 0 counts as no estimate, K, in and out
  !   beta: share of liquid A, mol/mol, in and out
  !   V: share of the vapour, mol/mol, in and out
  !   xA: liquid A, the lighter one, mol/mol, [count], in and out
  !   xB: liquid B, the denser one, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   KLL: xA / xB, [count], out
  !   KLV: y / xA, [count], out
  !   HA: molar enthalpy of liquid A, cal/mol, out
  !   HB: molar enthalpy of liquid B, cal/mol, out
  !   HV: molar enthalpy of the vapour, cal/mol, out
  function FlashLLVatHP(H, P, z, mixture, routines, options, T, beta, V, xA, xB, y, KLL, KLV, HA, HB, &
      HV) result(code)
    real(c_double), intent(in) :: H, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: T, beta, V
    real(c_double), intent(inout), contiguous :: xA(:), xB(:), y(:), KLL(:), KLV(:)
    real(c_double), intent(inout) :: HA, HB, HV
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLLVatHP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(xA), int(count, c_int64_t), me, "xA")
    call need(size(xB), int(count, c_int64_t), me, "xB")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(KLL), int(count, c_int64_t), me, "KLL")
    call need(size(KLV), int(count, c_int64_t), me, "KLV")
    code = c_FlashLLVatHP(H, P, z, mixture, routines, options, T, beta, V, xA, xB, y, KLL, KLV, HA, HB, HV)
  end function

  ! Up to two liquids and a vapour at entropy and pressure. Returns the status.
  !   S: entropy of one mole of feed, cal/(mol K)
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: the result arguments hold an estimate
  !   T: temperature; exactly 0 counts as no estimate, K, in and out
  !   beta: share of liquid A, mol/mol, in and out
  !   V: share of the vapour, mol/mol, in and out
  !   xA: liquid A, the lighter one, mol/mol, [count], in and out
  !   xB: liquid B, the denser one, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   KLL: xA / xB, [count], out
  !   KLV: y / xA, [count], out
  !   SA: molar entropy of liquid A, cal/(mol K), out
  !   SB: molar entropy of liquid B, cal/(mol K), out
  !   SV: molar entropy of the vapour, cal/(mol K), out
  function FlashLLVatSP(S, P, z, mixture, routines, options, T, beta, V, xA, xB, y, KLL, KLV, SA, SB, &
      SV) result(code)
    real(c_double), intent(in) :: S, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: T, beta, V
    real(c_double), intent(inout), contiguous :: xA(:), xB(:), y(:), KLL(:), KLV(:)
    real(c_double), intent(inout) :: SA, SB, SV
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLLVatSP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(xA), int(count, c_int64_t), me, "xA")
    call need(size(xB), int(count, c_int64_t), me, "xB")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(KLL), int(count, c_int64_t), me, "KLL")
    call need(size(KLV), int(count, c_int64_t), me, "KLV")
    code = c_FlashLLVatSP(S, P, z, mixture, routines, options, T, beta, V, xA, xB, y, KLL, KLV, SA, SB, SV)
  end function

  ! Temperature of a vapour fraction beside up to two liquids. Returns the status.
  !   W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: the result arguments hold an estimate
  !   T: temperature; not above 0 counts as no estimate, K, in and out
  !   beta: share of liquid A, mol/mol, in and out
  !   xA: liquid A, the lighter one, mol/mol, [count], in and out
  !   xB: liquid B, the denser one, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   KLL: xA / xB, [count], out
  !   KLV: y / xA, [count], out
  function FlashLLVatWP(W, P, z, mixture, routines, options, T, beta, xA, xB, y, KLL, KLV) result(code)
    real(c_double), intent(in) :: W, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: T, beta
    real(c_double), intent(inout), contiguous :: xA(:), xB(:), y(:), KLL(:), KLV(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLLVatWP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(xA), int(count, c_int64_t), me, "xA")
    call need(size(xB), int(count, c_int64_t), me, "xB")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(KLL), int(count, c_int64_t), me, "KLL")
    call need(size(KLV), int(count, c_int64_t), me, "KLV")
    code = c_FlashLLVatWP(W, P, z, mixture, routines, options, T, beta, xA, xB, y, KLL, KLV)
  end function

  ! Pressure of a vapour fraction beside up to two liquids. Returns the status.
  !   W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
  !   T: temperature, above 0, K
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: the result arguments hold an estimate
  !   P: pressure; not above 0 counts as no estimate, atm, in and out
  !   beta: share of liquid A, mol/mol, in and out
  !   xA: liquid A, the lighter one, mol/mol, [count], in and out
  !   xB: liquid B, the denser one, mol/mol, [count], in and out
  !   y: vapour, mol/mol, [count], in and out
  !   KLL: xA / xB, [count], out
  !   KLV: y / xA, [count], out
  function FlashLLVatWT(W, T, z, mixture, routines, options, P, beta, xA, xB, y, KLL, KLV) result(code)
    real(c_double), intent(in) :: W, T
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: P, beta
    real(c_double), intent(inout), contiguous :: xA(:), xB(:), y(:), KLL(:), KLV(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLLVatWT"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(xA), int(count, c_int64_t), me, "xA")
    call need(size(xB), int(count, c_int64_t), me, "xB")
    call need(size(y), int(count, c_int64_t), me, "y")
    call need(size(KLL), int(count, c_int64_t), me, "KLL")
    call need(size(KLV), int(count, c_int64_t), me, "KLV")
    code = c_FlashLLVatWT(W, T, z, mixture, routines, options, P, beta, xA, xB, y, KLL, KLV)
  end function

  ! Two liquids at temperature and pressure. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: start, 1: the result arguments hold an estimate
  !   beta: share of liquid 2, mol/mol, in and out
  !   liquid1: the denser liquid, mol/mol, [count], in and out
  !   liquid2: the lighter liquid, mol/mol, [count], in and out
  !   K: liquid2 / liquid1, [count], out
  function FlashLLatTP(T, P, z, mixture, routines, options, beta, liquid1, liquid2, K) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: beta
    real(c_double), intent(inout), contiguous :: liquid1(:), liquid2(:), K(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "FlashLLatTP"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(liquid1), int(count, c_int64_t), me, "liquid1")
    call need(size(liquid2), int(count, c_int64_t), me, "liquid2")
    call need(size(K), int(count, c_int64_t), me, "K")
    code = c_FlashLLatTP(T, P, z, mixture, routines, options, beta, liquid1, liquid2, K)
  end function

  ! Bubble and dew curves, or the line of a vapour fraction. Returns the status.
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   routines: routines of the host; null: the library's own
  !   options: 0
  !   first_P: first pressure, 0: 1 atm, atm
  !   max_P: highest pressure, 0: 2000 atm, atm
  !   min_T: lowest temperature, 0: 50 K, K
  !   points: number wanted, 0: as traced
  !   capacity: of the three point arrays
  !   fraction: 1: bubble and dew curves; between 0 and 1: that line, mol/mol
  !   accuracy: 0, or 1e-10 and more: every point is converged to 1e-10
  !   T: temperatures, K, [capacity], out
  !   P: pressures, atm, [capacity], out
  !   kind: 1 dew, 0 bubble, 0.5 critical, 4 two liquids, [capacity], out
  !   number_of_points: points found, out
  !   number_of_critical_points: critical points among them, out
  !   cricondentherm_T: highest temperature, K, out
  !   cricondentherm_P: and its pressure, atm, out
  !   cricondenbar_T: temperature of the highest pressure, K, out
  !   cricondenbar_P: highest pressure, atm, out
  function PhaseEnvelope(z, mixture, routines, options, first_P, max_P, min_T, points, capacity, fraction, &
      accuracy, T, P, kind, number_of_points, number_of_critical_points, cricondentherm_T, cricondentherm_P, &
      cricondenbar_T, cricondenbar_P) result(code)
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    type(c_ptr), intent(in) :: routines
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(in) :: first_P, max_P, min_T
    integer(c_int32_t), intent(in) :: points, capacity
    real(c_double), intent(in) :: fraction, accuracy
    real(c_double), intent(inout), contiguous :: T(:), P(:), kind(:)
    integer(c_int32_t), intent(inout) :: number_of_points, number_of_critical_points
    real(c_double), intent(inout) :: cricondentherm_T, cricondentherm_P, cricondenbar_T, cricondenbar_P
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "PhaseEnvelope"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(T), int(capacity, c_int64_t), me, "T")
    call need(size(P), int(capacity, c_int64_t), me, "P")
    call need(size(kind), int(capacity, c_int64_t), me, "kind")
    code = c_PhaseEnvelope(z, mixture, routines, options, first_P, max_P, min_T, points, capacity, fraction, &
      accuracy, T, P, kind, number_of_points, number_of_critical_points, cricondentherm_T, cricondentherm_P, &
      cricondenbar_T, cricondenbar_P)
  end function

  ! Critical point of a mixture. Returns the status.
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   options: 0
  !   Tc: temperature, K, out
  !   Pc: pressure, atm, out
  !   Vc: molar volume, cm3/mol, out
  !   Zc: compressibility factor, out
  function CriticalPoint(z, mixture, options, Tc, Pc, Vc, Zc) result(code)
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: options
    real(c_double), intent(inout) :: Tc, Pc, Vc, Zc
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "CriticalPoint"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    code = c_CriticalPoint(z, mixture, options, Tc, Pc, Vc, Zc)
  end function

  ! Water dew temperature at a pressure. Returns the status.
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   method: 1 (or 0) equation of state, 2 chart
  !   routes: 0
  !   unused: not read
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   reserved: not read
  !   T: dew temperature, in: a start, K, in and out
  function WaterDewTemperature(P, z, method, routes, unused, mixture, reserved, T) result(code)
    real(c_double), intent(in) :: P
    real(c_double), intent(in), contiguous :: z(:)
    integer(c_int32_t), intent(in) :: method, routes, unused
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: reserved
    real(c_double), intent(inout) :: T
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "WaterDewTemperature"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    code = c_WaterDewTemperature(P, z, method, routes, unused, mixture, reserved, T)
  end function

  ! Water dew pressure at a temperature. Returns the status.
  !   T: temperature, above 0, K
  !   z: feed, mol/mol, [count]
  !   method: 1 (or 0) equation of state, 2 chart
  !   routes: 0
  !   unused: not read
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   reserved: not read
  !   P: dew pressure, in: a start, atm, in and out
  function WaterDewPressure(T, z, method, routes, unused, mixture, reserved, P) result(code)
    real(c_double), intent(in) :: T
    real(c_double), intent(in), contiguous :: z(:)
    integer(c_int32_t), intent(in) :: method, routes, unused
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: reserved
    real(c_double), intent(inout) :: P
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "WaterDewPressure"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    code = c_WaterDewPressure(T, z, method, routes, unused, mixture, reserved, P)
  end function

  ! Water dew temperatures at pressures evenly spaced in ln P. Returns the status.
  !   z: feed, mol/mol, [count]
  !   method: 1 (or 0) equation of state, 2 chart
  !   routes: 0
  !   unused: not read
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   reserved: not read
  !   min_P: first pressure, 0: 1 atm, atm
  !   max_P: last pressure, 0: 200 atm, atm
  !   points: number of points
  !   T: dew temperatures, 0 where there is none, K, [points], out
  !   P: pressures, atm, [points], out
  !   status: status of every point, [points], out
  !   found: points with status 0, out
  function WaterDewLine(z, method, routes, unused, mixture, reserved, min_P, max_P, points, T, P, status, &
      found) result(code)
    real(c_double), intent(in), contiguous :: z(:)
    integer(c_int32_t), intent(in) :: method, routes, unused
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: reserved
    real(c_double), intent(in) :: min_P, max_P
    integer(c_int32_t), intent(in) :: points
    real(c_double), intent(inout), contiguous :: T(:), P(:)
    integer(c_int32_t), intent(inout), contiguous :: status(:)
    integer(c_int32_t), intent(inout) :: found
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "WaterDewLine"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(T), int(points, c_int64_t), me, "T")
    call need(size(P), int(points, c_int64_t), me, "P")
    call need(size(status), int(points, c_int64_t), me, "status")
    code = c_WaterDewLine(z, method, routes, unused, mixture, reserved, min_P, max_P, points, T, P, status, found)
  end function

  ! Water in a saturated gas. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   method: 1 (or 0) equation of state, 2 chart
  !   z: feed, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   water_fraction: water in the saturated gas, mol/mol, out
  !   water_content: the same in mass per normal volume, 0 C and 1 atm, mg/Nm3, out
  function Humidity(T, P, method, z, mixture, water_fraction, water_content) result(code)
    real(c_double), intent(in) :: T, P
    integer(c_int32_t), intent(in) :: method
    real(c_double), intent(in), contiguous :: z(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: water_fraction, water_content
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "Humidity"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    code = c_Humidity(T, P, method, z, mixture, water_fraction, water_content)
  end function

  ! The gas saturated with water. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   z: feed, mol/mol, [count]
  !   method_switch: 1: method 1, and method 2 where that fails
  !   method: 1 (or 0) equation of state, 2 chart
  !   routes: 0
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   reserved: not read
  !   wet: the saturated gas; may be z, mol/mol, [count], out
  function WetGasComposition(T, P, z, method_switch, method, routes, mixture, reserved, wet) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: z(:)
    integer(c_int32_t), intent(in) :: method_switch, method, routes
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: reserved
    real(c_double), intent(inout), contiguous :: wet(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "WetGasComposition"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(wet), int(count, c_int64_t), me, "wet")
    code = c_WetGasComposition(T, P, z, method_switch, method, routes, mixture, reserved, wet)
  end function

  ! Hydrate formation curve of a gas by its gravity. Returns the status.
  !   z: feed, mol/mol, [count]
  !   kind: inhibitor: 0 none, 1 methanol, 2 NaCl, 3 KCl, 4 CaCl2, 5 of molar mass M
  !   M: molar mass of inhibitor 5, g/mol
  !   percent: inhibitor in the aqueous solution, % by mass
  !   points: number of points
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   unused: not read
  !   T: temperatures, K, [points], out
  !   P: pressures, atm, [points], out
  function HydrateLine(z, kind, M, percent, points, mixture, unused, T, P) result(code)
    real(c_double), intent(in), contiguous :: z(:)
    integer(c_int32_t), intent(in) :: kind
    real(c_double), intent(in) :: M, percent
    integer(c_int32_t), intent(in) :: points
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: unused
    real(c_double), intent(inout), contiguous :: T(:), P(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "HydrateLine"
    count = count_of(mixture, me)
    call need(size(z), int(count, c_int64_t), me, "z")
    call need(size(T), int(points, c_int64_t), me, "T")
    call need(size(P), int(points, c_int64_t), me, "P")
    code = c_HydrateLine(z, kind, M, percent, points, mixture, unused, T, P)
  end function

  ! Gas at T and P against the normal state (0 C, 1 atm). Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   Z: compressibility factor at T and P, out
  !   Z_normal: and at the normal state, out
  !   density_normal: density at the normal state, kg/m3, out
  !   normal_volume: normal m3 in one m3 at T and P, Nm3/m3, out
  function GasN(T, P, x, mixture, Z, Z_normal, density_normal, normal_volume) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: Z, Z_normal, density_normal, normal_volume
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasN"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_GasN(T, P, x, mixture, Z, Z_normal, density_normal, normal_volume)
  end function

  ! Mass density of a liquid. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   density: mass density, g/cm3, out
  !   d_dT: derivative with T, g/cm3/K, out
  !   d_dP: derivative with P, g/cm3/atm, out
  !   d2_dTdP: second derivative, g/cm3/K/atm, out
  function LiquidDensity_PPR78(T, P, x, mixture, density, d_dT, d_dP, d2_dTdP) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: density, d_dT, d_dP, d2_dTdP
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "LiquidDensity_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_LiquidDensity_PPR78(T, P, x, mixture, density, d_dT, d_dP, d2_dTdP)
  end function

  ! Mass density of a gas. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   density: mass density, g/cm3, out
  !   d_dT: derivative with T, g/cm3/K, out
  !   d_dP: derivative with P, g/cm3/atm, out
  !   d2_dTdP: second derivative, g/cm3/K/atm, out
  function GasDensity_PPR78(T, P, x, mixture, density, d_dT, d_dP, d2_dTdP) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: density, d_dT, d_dP, d2_dTdP
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasDensity_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_GasDensity_PPR78(T, P, x, mixture, density, d_dT, d_dP, d2_dTdP)
  end function

  ! Molar enthalpy of a liquid. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   value: molar enthalpy, cal/mol, out
  function LiquidMolarEnthalpy_PPR78(T, P, x, mixture, value) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: value
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "LiquidMolarEnthalpy_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_LiquidMolarEnthalpy_PPR78(T, P, x, mixture, value)
  end function

  ! Molar enthalpy of a gas. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   value: molar enthalpy, cal/mol, out
  function GasMolarEnthalpy_PPR78(T, P, x, mixture, value) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: value
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasMolarEnthalpy_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_GasMolarEnthalpy_PPR78(T, P, x, mixture, value)
  end function

  ! Molar entropy of a liquid. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   value: molar entropy, cal/(mol K), out
  function LiquidMolarEntropy_PPR78(T, P, x, mixture, value) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: value
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "LiquidMolarEntropy_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_LiquidMolarEntropy_PPR78(T, P, x, mixture, value)
  end function

  ! Molar entropy of a gas. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   value: molar entropy, cal/(mol K), out
  function GasMolarEntropy_PPR78(T, P, x, mixture, value) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: value
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasMolarEntropy_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_GasMolarEntropy_PPR78(T, P, x, mixture, value)
  end function

  ! Molar free enthalpy of a liquid. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   value: molar free enthalpy, cal/mol, out
  function LiquidMolarFreeEnthalpy_PPR78(T, P, x, mixture, value) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: value
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "LiquidMolarFreeEnthalpy_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_LiquidMolarFreeEnthalpy_PPR78(T, P, x, mixture, value)
  end function

  ! Molar free enthalpy of a gas. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   value: molar free enthalpy, cal/mol, out
  function GasMolarFreeEnthalpy_PPR78(T, P, x, mixture, value) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: value
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasMolarFreeEnthalpy_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_GasMolarFreeEnthalpy_PPR78(T, P, x, mixture, value)
  end function

  ! Molar enthalpy of a liquid with derivatives. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
  !   value: molar enthalpy, cal/mol, out
  !   d_dT: derivative with T, cal/(mol K), out, only with bit 1 of mask
  !   d_dP: derivative with P, cal/(mol atm), out, only with bit 2 of mask
  !   d_dn: derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask
  function LiquidMolarEnthalpy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: mask
    real(c_double), intent(inout) :: value
    real(c_double), intent(inout), optional :: d_dT, d_dP
    real(c_double), intent(inout), contiguous, optional :: d_dn(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "LiquidMolarEnthalpy_Derivatives_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    call need_derivative(present(d_dT), mask, 1, me, "d_dT")
    call need_derivative(present(d_dP), mask, 2, me, "d_dP")
    call need_derivative(present(d_dn), mask, 4, me, "d_dn")
    if (present(d_dn)) call need(size(d_dn), int(count, c_int64_t), me, "d_dn")
    code = c_LiquidMolarEnthalpy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn)
  end function

  ! Molar enthalpy of a gas with derivatives. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
  !   value: molar enthalpy, cal/mol, out
  !   d_dT: derivative with T, cal/(mol K), out, only with bit 1 of mask
  !   d_dP: derivative with P, cal/(mol atm), out, only with bit 2 of mask
  !   d_dn: derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask
  function GasMolarEnthalpy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: mask
    real(c_double), intent(inout) :: value
    real(c_double), intent(inout), optional :: d_dT, d_dP
    real(c_double), intent(inout), contiguous, optional :: d_dn(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasMolarEnthalpy_Derivatives_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    call need_derivative(present(d_dT), mask, 1, me, "d_dT")
    call need_derivative(present(d_dP), mask, 2, me, "d_dP")
    call need_derivative(present(d_dn), mask, 4, me, "d_dn")
    if (present(d_dn)) call need(size(d_dn), int(count, c_int64_t), me, "d_dn")
    code = c_GasMolarEnthalpy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn)
  end function

  ! Molar entropy of a liquid with derivatives. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
  !   value: molar entropy, cal/(mol K), out
  !   d_dT: derivative with T, cal/(mol K2), out, only with bit 1 of mask
  !   d_dP: derivative with P, cal/(mol K atm), out, only with bit 2 of mask
  !   d_dn: derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask
  function LiquidMolarEntropy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: mask
    real(c_double), intent(inout) :: value
    real(c_double), intent(inout), optional :: d_dT, d_dP
    real(c_double), intent(inout), contiguous, optional :: d_dn(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "LiquidMolarEntropy_Derivatives_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    call need_derivative(present(d_dT), mask, 1, me, "d_dT")
    call need_derivative(present(d_dP), mask, 2, me, "d_dP")
    call need_derivative(present(d_dn), mask, 4, me, "d_dn")
    if (present(d_dn)) call need(size(d_dn), int(count, c_int64_t), me, "d_dn")
    code = c_LiquidMolarEntropy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn)
  end function

  ! Molar entropy of a gas with derivatives. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
  !   value: molar entropy, cal/(mol K), out
  !   d_dT: derivative with T, cal/(mol K2), out, only with bit 1 of mask
  !   d_dP: derivative with P, cal/(mol K atm), out, only with bit 2 of mask
  !   d_dn: derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask
  function GasMolarEntropy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: mask
    real(c_double), intent(inout) :: value
    real(c_double), intent(inout), optional :: d_dT, d_dP
    real(c_double), intent(inout), contiguous, optional :: d_dn(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasMolarEntropy_Derivatives_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    call need_derivative(present(d_dT), mask, 1, me, "d_dT")
    call need_derivative(present(d_dP), mask, 2, me, "d_dP")
    call need_derivative(present(d_dn), mask, 4, me, "d_dn")
    if (present(d_dn)) call need(size(d_dn), int(count, c_int64_t), me, "d_dn")
    code = c_GasMolarEntropy_Derivatives_PPR78(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn)
  end function

  ! ln phi of a liquid with derivatives. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   option: 2
  !   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
  !   ln_phi: ln of the fugacity coefficients, [count], out
  !   d_dT: derivatives with T, 1/K, [count], out, only with bit 1 of mask
  !   d_dP: derivatives with P, 1/atm, [count], out, only with bit 2 of mask
  !   d_dn: entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask
  function LiquidPhi_Derivatives_PPR78(T, P, x, mixture, option, mask, ln_phi, d_dT, d_dP, d_dn) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: option, mask
    real(c_double), intent(inout), contiguous :: ln_phi(:)
    real(c_double), intent(inout), contiguous, optional :: d_dT(:), d_dP(:), d_dn(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "LiquidPhi_Derivatives_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    call need(size(ln_phi), int(count, c_int64_t), me, "ln_phi")
    call need_derivative(present(d_dT), mask, 1, me, "d_dT")
    if (present(d_dT)) call need(size(d_dT), int(count, c_int64_t), me, "d_dT")
    call need_derivative(present(d_dP), mask, 2, me, "d_dP")
    if (present(d_dP)) call need(size(d_dP), int(count, c_int64_t), me, "d_dP")
    call need_derivative(present(d_dn), mask, 4, me, "d_dn")
    if (present(d_dn)) call need(size(d_dn), int(count, c_int64_t) * count, me, "d_dn")
    code = c_LiquidPhi_Derivatives_PPR78(T, P, x, mixture, option, mask, ln_phi, d_dT, d_dP, d_dn)
  end function

  ! ln phi of a gas with derivatives. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   option: 2
  !   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
  !   ln_phi: ln of the fugacity coefficients, [count], out
  !   d_dT: derivatives with T, 1/K, [count], out, only with bit 1 of mask
  !   d_dP: derivatives with P, 1/atm, [count], out, only with bit 2 of mask
  !   d_dn: entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask
  function GasPhi_Derivatives_PPR78(T, P, x, mixture, option, mask, ln_phi, d_dT, d_dP, d_dn) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    integer(c_int32_t), intent(in) :: option, mask
    real(c_double), intent(inout), contiguous :: ln_phi(:)
    real(c_double), intent(inout), contiguous, optional :: d_dT(:), d_dP(:), d_dn(:)
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasPhi_Derivatives_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    call need(size(ln_phi), int(count, c_int64_t), me, "ln_phi")
    call need_derivative(present(d_dT), mask, 1, me, "d_dT")
    if (present(d_dT)) call need(size(d_dT), int(count, c_int64_t), me, "d_dT")
    call need_derivative(present(d_dP), mask, 2, me, "d_dP")
    if (present(d_dP)) call need(size(d_dP), int(count, c_int64_t), me, "d_dP")
    call need_derivative(present(d_dn), mask, 4, me, "d_dn")
    if (present(d_dn)) call need(size(d_dn), int(count, c_int64_t) * count, me, "d_dn")
    code = c_GasPhi_Derivatives_PPR78(T, P, x, mixture, option, mask, ln_phi, d_dT, d_dP, d_dn)
  end function

  ! Heat capacities of a gas and what follows from them. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   Cp: at constant pressure, cal/(mol K), out
  !   Cv: at constant volume, cal/(mol K), out
  !   speed_of_sound: speed of sound, m/s, out
  !   joule_thomson: Joule-Thomson coefficient, K/atm, out
  function GasSpecificHeat_PPR78(T, P, x, mixture, Cp, Cv, speed_of_sound, joule_thomson) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: Cp, Cv, speed_of_sound, joule_thomson
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasSpecificHeat_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_GasSpecificHeat_PPR78(T, P, x, mixture, Cp, Cv, speed_of_sound, joule_thomson)
  end function

  ! Viscosity of a gas. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   viscosity: dynamic viscosity, cP, out
  function GasDynamicViscosity_PPR78(T, P, x, mixture, viscosity) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: viscosity
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasDynamicViscosity_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_GasDynamicViscosity_PPR78(T, P, x, mixture, viscosity)
  end function

  ! Thermal conductivity of a gas. Returns the status.
  !   T: temperature, above 0, K
  !   P: pressure, above 0, atm
  !   x: composition of the phase, mol/mol, [count]
  !   mixture: record of the mixture; only its flags change, and only during the call
  !   conductivity: thermal conductivity, W/(m K), out
  function GasThermalConductivity_PPR78(T, P, x, mixture, conductivity) result(code)
    real(c_double), intent(in) :: T, P
    real(c_double), intent(in), contiguous :: x(:)
    type(MixtureRecord), intent(inout) :: mixture
    real(c_double), intent(inout) :: conductivity
    integer(c_int32_t) :: code, count
    character(*), parameter :: me = "GasThermalConductivity_PPR78"
    count = count_of(mixture, me)
    call need(size(x), int(count, c_int64_t), me, "x")
    code = c_GasThermalConductivity_PPR78(T, P, x, mixture, conductivity)
  end function

end module
