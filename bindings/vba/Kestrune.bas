Attribute VB_Name = "Kestrune"
' Made by tools/make_bindings.py from bindings/exports.toml; change that and run it.
'
' The exports of KVGasThermo for VBA (Excel 2010 and later, 32- and 64-bit; the 64-bit Office needs the 64-bit DLLs; older
' ones take the second half of the declarations). A function here has the name and the words of the export and returns
' the status; it raises error 5, before the library is called, where an array has the wrong number of elements or the
' record has no table. All arrays have one dimension and any lower bound; arrays of derivatives are always needed.
' The three DLLs lie in one folder: open it once with UseFolder, or put it into the PATH.
' A record is an array of 125 bytes: NewMixture makes it, SetDouble and SetLong set its fields.
' Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
Option Explicit

Public Const KESTRUNE_VERSION As String = "0.2.0"
Public Const RECORD_SIZE As Long = 125
Public Const FREE_WATER_FLAG As Long = 1

' Statuses.
Public Const KV_OK As Long = 0
Public Const KV_NO_WATER As Long = -1
Public Const KV_INHIBITOR_MASS As Long = 1
Public Const KV_NO_WATER_LIMIT As Long = 4
Public Const KV_NO_ROOT As Long = 51
Public Const KV_FEED_SUM As Long = 111
Public Const KV_NOT_CONVERGED As Long = 112
Public Const KV_DAMPING As Long = 113
Public Const KV_RELAXATION As Long = 114
Public Const KV_ZERO_SLOPE As Long = 115
Public Const KV_NO_SATURATION As Long = 116
Public Const KV_UNSTABLE_POINT As Long = 117
Public Const KV_FOURTH_PHASE As Long = 118
Public Const KV_TRIVIAL As Long = 120
Public Const KV_TRIVIAL_LV As Long = 121
Public Const KV_LV_ANSWER_DOUBTFUL As Long = 134
Public Const KV_LL_ANSWER_DOUBTFUL As Long = 135
Public Const KV_NO_START As Long = 136
Public Const KV_ENVELOPE_OPEN As Long = 140
Public Const KV_ENVELOPE_COLD As Long = 141
Public Const KV_ENVELOPE_FULL As Long = 142
Public Const KV_ENVELOPE_UNSTABLE As Long = 143
Public Const KV_ENVELOPE_BROKEN As Long = 144
Public Const KV_NO_CRITICAL As Long = 145
Public Const KV_ENVELOPE_LIQUIDS As Long = 146
Public Const KV_WATER_RANGE As Long = 151
Public Const KV_PURE_UNKNOWN As Long = 1001
Public Const KV_PURE_NO_CORRELATION As Long = 1002
Public Const KV_PURE_RANGE As Long = 1003
Public Const KV_PURE_ARGUMENT As Long = 1004
Public Const KV_NULL_ARGUMENT As Long = 9002
Public Const KV_COMPONENT_COUNT As Long = 9003
Public Const KV_TEMPERATURE As Long = 9004
Public Const KV_PRESSURE As Long = 9005
Public Const KV_COMPOSITION As Long = 9006
Public Const KV_COMPONENT_DATA As Long = 9007
Public Const KV_GROUP_DATA As Long = 9008
Public Const KV_SPECIFICATION As Long = 9009
Public Const KV_MEMORY As Long = 9010
Public Const KV_INTERNAL As Long = 9011
Public Const KV_NOT_FINITE As Long = 9012

' Columns of the component table.
Public Const KV_COL_DATABANK_NUMBER As Long = 1 ' running number in the host's databank, not read
Public Const KV_COL_MOLAR_MASS As Long = 2 ' g/mol
Public Const KV_COL_MELTING_POINT As Long = 3 ' triple or melting point, K
Public Const KV_COL_BOILING_POINT As Long = 4 ' normal boiling point, K
Public Const KV_COL_TC As Long = 5 ' critical temperature, K
Public Const KV_COL_PC As Long = 6 ' critical pressure, atm
Public Const KV_COL_VC As Long = 7 ' critical volume, cm3/mol
Public Const KV_COL_ZC As Long = 8 ' critical compressibility factor
Public Const KV_COL_OMEGA As Long = 9 ' acentric factor
Public Const KV_COL_DIPOLE As Long = 10 ' dipole moment, debye
Public Const KV_COL_TMIN_PSAT As Long = 11 ' lowest temperature of its vapour-pressure correlation, K
Public Const KV_COL_CP_A As Long = 12 ' own ideal-gas heat capacity: A, and B to E in the columns behind it
Public Const KV_COL_CP_TMIN As Long = 17 ' range of it, K
Public Const KV_COL_CP_TMAX As Long = 18 ' as the one before
Public Const KV_COL_FAMILY As Long = 41 ' family code, KV_FAMILY_WATER marks water
Public Const KV_COL_CAS As Long = 43 ' CAS number as a whole number: 7732185 is 7732-18-5

' Settings, routines of a host, phases and derivatives.
Public Const KV_TABLE_COLUMNS As Long = 43
Public Const KV_FAMILY_WATER As Double = 20.0
Public Const KV_MAX_COMPONENTS As Long = 10000
Public Const KV_MOST_ITERATIONS As Long = 10000
Public Const KV_DEFAULT_CRIT As Double = 1E-12
Public Const KV_DEFAULT_CLIM As Double = 1E10
Public Const KV_DEFAULT_EPS As Double = 1E-6
Public Const KV_DEFAULT_ITEMAX As Long = 200
Public Const KV_DEFAULT_NEW As Long = 0
Public Const KV_DEFAULT_RELAXATION As Double = 1.0
Public Const KV_DEFAULT_PURE_TOLERANCE As Double = 1E-12
Public Const KV_DEFAULT_SUM_TOLERANCE As Double = 1E-6
Public Const KV_ROUTINE_COUNT As Long = 14
Public Const KV_ROUTINE_LL_FLASH As Long = 1
Public Const KV_ROUTINE_LV_FLASH As Long = 2
Public Const KV_ROUTINE_FUGACITY As Long = 8
Public Const KV_ROUTINE_LIQUID_ORDER As Long = 10
Public Const KV_ROUTINE_GAS_ENTHALPY As Long = 11
Public Const KV_ROUTINE_GAS_ENTROPY As Long = 12
Public Const KV_ROUTINE_LIQUID_ENTHALPY As Long = 13
Public Const KV_ROUTINE_LIQUID_ENTROPY As Long = 14
Public Const KV_PHASE_GAS As Long = 1
Public Const KV_PHASE_LIQUID As Long = 2
Public Const KV_DERIV_T As Long = 1
Public Const KV_DERIV_P As Long = 2
Public Const KV_DERIV_N As Long = 4

' Bytes at which the fields of the record begin.
Public Const AT_count As Long = 0 ' int: number of components, 1 .. 10 000
Public Const AT_table As Long = 4 ' address: ComponentTable, 43 columns of count doubles
Public Const AT_flags As Long = 16 ' byte: bit 0: FreeWaterFlag
Public Const AT_solubility_a As Long = 17 ' double: water solubility limit s(T) = exp(a - b / T), capped at 1
Public Const AT_solubility_b As Long = 25 ' double: b of that limit, K
Public Const AT_CRIT As Long = 61 ' double: convergence criterion on the iteration error
Public Const AT_CLIM As Long = 69 ' double: error level below which the method may be changed, 0: never
Public Const AT_EPS As Long = 77 ' double: stagnation tolerance
Public Const AT_ITEMAX As Long = 85 ' int: iteration limit
Public Const AT_NEW As Long = 89 ' int: iterations granted to the global method, in units of count + 1
Public Const AT_trace_flag As Long = 93 ' int: not 0: write the trace
Public Const AT_trace_unit As Long = 97 ' int: 6 standard output, 0 standard error, n the file fort.n
Public Const AT_relaxation As Long = 101 ' double: factor of the substitution, 1: full step
Public Const AT_pure_tolerance As Long = 109 ' double: a feed with one fraction above 1 - this counts as pure
Public Const AT_sum_tolerance As Long = 117 ' double: largest |sum of the feed - 1| where it is tested

#If VBA7 Then
Private Declare PtrSafe Sub CopyMemory Lib "kernel32" Alias "RtlMoveMemory" (ByRef destination As Any, ByRef source As Any, ByVal length As LongPtr)
Private Declare PtrSafe Function LoadLibraryW Lib "kernel32" (ByVal path As LongPtr) As LongPtr
Private Declare PtrSafe Sub c_ConvertPPR78GroupData Lib "KVGasThermo.dll" Alias "ConvertPPR78GroupData" (ByVal nC As Long, _
    ByVal nG As Long, ByRef counts As Long, ByRef A As Double, ByRef B As Double, ByRef storage As LongPtr)
Private Declare PtrSafe Function c_MolecularWeight Lib "KVGasThermo.dll" Alias "MolecularWeight" (ByVal nc As Long, _
    ByRef x As Double, ByRef M As Double, ByRef mean As Double) As Long
Private Declare PtrSafe Function c_FlashLVatTP Lib "KVGasThermo.dll" Alias "FlashLVatTP" (ByVal T As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef beta As Double, ByRef x As Double, ByRef y As Double, _
    ByRef K As Double) As Long
Private Declare PtrSafe Function c_FlashLVatHP Lib "KVGasThermo.dll" Alias "FlashLVatHP" (ByVal H As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef x As Double, ByRef y As Double, _
    ByRef K As Double, ByRef HL As Double, ByRef HV As Double) As Long
Private Declare PtrSafe Function c_FlashLVatSP Lib "KVGasThermo.dll" Alias "FlashLVatSP" (ByVal S As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef x As Double, ByRef y As Double, _
    ByRef K As Double, ByRef SL As Double, ByRef SV As Double) As Long
Private Declare PtrSafe Function c_FlashLVatWP Lib "KVGasThermo.dll" Alias "FlashLVatWP" (ByVal W As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef T As Double, ByRef x As Double, ByRef y As Double, ByRef K As Double) As Long
Private Declare PtrSafe Function c_FlashLVatWT Lib "KVGasThermo.dll" Alias "FlashLVatWT" (ByVal W As Double, _
    ByVal T As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef P As Double, ByRef x As Double, ByRef y As Double, ByRef K As Double) As Long
Private Declare PtrSafe Function c_FlashLLVatTP Lib "KVGasThermo.dll" Alias "FlashLLVatTP" (ByVal T As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef beta As Double, ByRef V As Double, ByRef xA As Double, ByRef xB As Double, _
    ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double) As Long
Private Declare PtrSafe Function c_FlashLLVatHP Lib "KVGasThermo.dll" Alias "FlashLLVatHP" (ByVal H As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef V As Double, ByRef xA As Double, _
    ByRef xB As Double, ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double, ByRef HA As Double, _
    ByRef HB As Double, ByRef HV As Double) As Long
Private Declare PtrSafe Function c_FlashLLVatSP Lib "KVGasThermo.dll" Alias "FlashLLVatSP" (ByVal S As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef V As Double, ByRef xA As Double, _
    ByRef xB As Double, ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double, ByRef SA As Double, _
    ByRef SB As Double, ByRef SV As Double) As Long
Private Declare PtrSafe Function c_FlashLLVatWP Lib "KVGasThermo.dll" Alias "FlashLLVatWP" (ByVal W As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef xA As Double, ByRef xB As Double, _
    ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double) As Long
Private Declare PtrSafe Function c_FlashLLVatWT Lib "KVGasThermo.dll" Alias "FlashLLVatWT" (ByVal W As Double, _
    ByVal T As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef P As Double, ByRef beta As Double, ByRef xA As Double, ByRef xB As Double, _
    ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double) As Long
Private Declare PtrSafe Function c_FlashLLatTP Lib "KVGasThermo.dll" Alias "FlashLLatTP" (ByVal T As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByRef beta As Double, ByRef liquid1 As Double, ByRef liquid2 As Double, _
    ByRef K As Double) As Long
Private Declare PtrSafe Function c_PhaseEnvelope Lib "KVGasThermo.dll" Alias "PhaseEnvelope" (ByRef z As Double, _
    ByRef mixture As Byte, ByVal routines As LongPtr, ByVal options As Long, ByVal first_P As Double, _
    ByVal max_P As Double, ByVal min_T As Double, ByVal points As Long, ByVal capacity As Long, _
    ByVal fraction As Double, ByVal accuracy As Double, ByRef T As Double, ByRef P As Double, _
    ByRef kind As Double, ByRef number_of_points As Long, ByRef number_of_critical_points As Long, _
    ByRef cricondentherm_T As Double, ByRef cricondentherm_P As Double, ByRef cricondenbar_T As Double, _
    ByRef cricondenbar_P As Double) As Long
Private Declare PtrSafe Function c_CriticalPoint Lib "KVGasThermo.dll" Alias "CriticalPoint" (ByRef z As Double, _
    ByRef mixture As Byte, ByVal options As Long, ByRef Tc As Double, ByRef Pc As Double, ByRef Vc As Double, _
    ByRef Zc As Double) As Long
Private Declare PtrSafe Function c_WaterDewTemperature Lib "KVGasThermo.dll" Alias "WaterDewTemperature" (ByVal P As Double, _
    ByRef z As Double, ByVal method As Long, ByVal routes As Long, ByVal unused As Long, _
    ByRef mixture As Byte, ByVal reserved As Long, ByRef T As Double) As Long
Private Declare PtrSafe Function c_WaterDewPressure Lib "KVGasThermo.dll" Alias "WaterDewPressure" (ByVal T As Double, _
    ByRef z As Double, ByVal method As Long, ByVal routes As Long, ByVal unused As Long, _
    ByRef mixture As Byte, ByVal reserved As Long, ByRef P As Double) As Long
Private Declare PtrSafe Function c_WaterDewLine Lib "KVGasThermo.dll" Alias "WaterDewLine" (ByRef z As Double, _
    ByVal method As Long, ByVal routes As Long, ByVal unused As Long, ByRef mixture As Byte, _
    ByVal reserved As Long, ByVal min_P As Double, ByVal max_P As Double, ByVal points As Long, _
    ByRef T As Double, ByRef P As Double, ByRef status As Long, ByRef found As Long) As Long
Private Declare PtrSafe Function c_Humidity Lib "KVGasThermo.dll" Alias "Humidity" (ByVal T As Double, _
    ByVal P As Double, ByVal method As Long, ByRef z As Double, ByRef mixture As Byte, _
    ByRef water_fraction As Double, ByRef water_content As Double) As Long
Private Declare PtrSafe Function c_WetGasComposition Lib "KVGasThermo.dll" Alias "WetGasComposition" (ByVal T As Double, _
    ByVal P As Double, ByRef z As Double, ByVal method_switch As Long, ByVal method As Long, _
    ByVal routes As Long, ByRef mixture As Byte, ByVal reserved As Long, ByRef wet As Double) As Long
Private Declare PtrSafe Function c_HydrateLine Lib "KVGasThermo.dll" Alias "HydrateLine" (ByRef z As Double, _
    ByVal kind As Long, ByVal M As Double, ByVal percent As Double, ByVal points As Long, _
    ByRef mixture As Byte, ByVal unused As Long, ByRef T As Double, ByRef P As Double) As Long
Private Declare PtrSafe Function c_GasN Lib "KVGasThermo.dll" Alias "GasN" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef Z As Double, ByRef Z_normal As Double, _
    ByRef density_normal As Double, ByRef normal_volume As Double) As Long
Private Declare PtrSafe Function c_LiquidDensity_PPR78 Lib "KVGasThermo.dll" Alias "LiquidDensity_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef density As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d2_dTdP As Double) As Long
Private Declare PtrSafe Function c_GasDensity_PPR78 Lib "KVGasThermo.dll" Alias "GasDensity_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef density As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d2_dTdP As Double) As Long
Private Declare PtrSafe Function c_LiquidMolarEnthalpy_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarEnthalpy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare PtrSafe Function c_GasMolarEnthalpy_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarEnthalpy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare PtrSafe Function c_LiquidMolarEntropy_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarEntropy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare PtrSafe Function c_GasMolarEntropy_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarEntropy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare PtrSafe Function c_LiquidMolarFreeEnthalpy_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarFreeEnthalpy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare PtrSafe Function c_GasMolarFreeEnthalpy_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarFreeEnthalpy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare PtrSafe Function c_LiquidMolarEnthalpy_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarEnthalpy_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal mask As Long, ByRef value As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare PtrSafe Function c_GasMolarEnthalpy_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarEnthalpy_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal mask As Long, ByRef value As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare PtrSafe Function c_LiquidMolarEntropy_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarEntropy_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal mask As Long, ByRef value As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare PtrSafe Function c_GasMolarEntropy_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarEntropy_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal mask As Long, ByRef value As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare PtrSafe Function c_LiquidPhi_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "LiquidPhi_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal option_ As Long, ByVal mask As Long, _
    ByRef ln_phi As Double, ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare PtrSafe Function c_GasPhi_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "GasPhi_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal option_ As Long, ByVal mask As Long, _
    ByRef ln_phi As Double, ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare PtrSafe Function c_GasSpecificHeat_PPR78 Lib "KVGasThermo.dll" Alias "GasSpecificHeat_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef Cp As Double, ByRef Cv As Double, _
    ByRef speed_of_sound As Double, ByRef joule_thomson As Double) As Long
Private Declare PtrSafe Function c_GasDynamicViscosity_PPR78 Lib "KVGasThermo.dll" Alias "GasDynamicViscosity_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef viscosity As Double) As Long
Private Declare PtrSafe Function c_GasThermalConductivity_PPR78 Lib "KVGasThermo.dll" Alias "GasThermalConductivity_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef conductivity As Double) As Long
#Else
Public Enum LongPtr
    [_]
End Enum
Private Declare Sub CopyMemory Lib "kernel32" Alias "RtlMoveMemory" (ByRef destination As Any, ByRef source As Any, ByVal length As Long)
Private Declare Function LoadLibraryW Lib "kernel32" (ByVal path As Long) As Long
Private Declare Sub c_ConvertPPR78GroupData Lib "KVGasThermo.dll" Alias "ConvertPPR78GroupData" (ByVal nC As Long, _
    ByVal nG As Long, ByRef counts As Long, ByRef A As Double, ByRef B As Double, ByRef storage As Long)
Private Declare Function c_MolecularWeight Lib "KVGasThermo.dll" Alias "MolecularWeight" (ByVal nc As Long, _
    ByRef x As Double, ByRef M As Double, ByRef mean As Double) As Long
Private Declare Function c_FlashLVatTP Lib "KVGasThermo.dll" Alias "FlashLVatTP" (ByVal T As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef beta As Double, ByRef x As Double, ByRef y As Double, _
    ByRef K As Double) As Long
Private Declare Function c_FlashLVatHP Lib "KVGasThermo.dll" Alias "FlashLVatHP" (ByVal H As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef x As Double, ByRef y As Double, _
    ByRef K As Double, ByRef HL As Double, ByRef HV As Double) As Long
Private Declare Function c_FlashLVatSP Lib "KVGasThermo.dll" Alias "FlashLVatSP" (ByVal S As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef x As Double, ByRef y As Double, _
    ByRef K As Double, ByRef SL As Double, ByRef SV As Double) As Long
Private Declare Function c_FlashLVatWP Lib "KVGasThermo.dll" Alias "FlashLVatWP" (ByVal W As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef T As Double, ByRef x As Double, ByRef y As Double, ByRef K As Double) As Long
Private Declare Function c_FlashLVatWT Lib "KVGasThermo.dll" Alias "FlashLVatWT" (ByVal W As Double, _
    ByVal T As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef P As Double, ByRef x As Double, ByRef y As Double, ByRef K As Double) As Long
Private Declare Function c_FlashLLVatTP Lib "KVGasThermo.dll" Alias "FlashLLVatTP" (ByVal T As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef beta As Double, ByRef V As Double, ByRef xA As Double, ByRef xB As Double, _
    ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double) As Long
Private Declare Function c_FlashLLVatHP Lib "KVGasThermo.dll" Alias "FlashLLVatHP" (ByVal H As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef V As Double, ByRef xA As Double, _
    ByRef xB As Double, ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double, ByRef HA As Double, _
    ByRef HB As Double, ByRef HV As Double) As Long
Private Declare Function c_FlashLLVatSP Lib "KVGasThermo.dll" Alias "FlashLLVatSP" (ByVal S As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef V As Double, ByRef xA As Double, _
    ByRef xB As Double, ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double, ByRef SA As Double, _
    ByRef SB As Double, ByRef SV As Double) As Long
Private Declare Function c_FlashLLVatWP Lib "KVGasThermo.dll" Alias "FlashLLVatWP" (ByVal W As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef T As Double, ByRef beta As Double, ByRef xA As Double, ByRef xB As Double, _
    ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double) As Long
Private Declare Function c_FlashLLVatWT Lib "KVGasThermo.dll" Alias "FlashLLVatWT" (ByVal W As Double, _
    ByVal T As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef P As Double, ByRef beta As Double, ByRef xA As Double, ByRef xB As Double, _
    ByRef y As Double, ByRef KLL As Double, ByRef KLV As Double) As Long
Private Declare Function c_FlashLLatTP Lib "KVGasThermo.dll" Alias "FlashLLatTP" (ByVal T As Double, _
    ByVal P As Double, ByRef z As Double, ByRef mixture As Byte, ByVal routines As Long, _
    ByVal options As Long, ByRef beta As Double, ByRef liquid1 As Double, ByRef liquid2 As Double, _
    ByRef K As Double) As Long
Private Declare Function c_PhaseEnvelope Lib "KVGasThermo.dll" Alias "PhaseEnvelope" (ByRef z As Double, _
    ByRef mixture As Byte, ByVal routines As Long, ByVal options As Long, ByVal first_P As Double, _
    ByVal max_P As Double, ByVal min_T As Double, ByVal points As Long, ByVal capacity As Long, _
    ByVal fraction As Double, ByVal accuracy As Double, ByRef T As Double, ByRef P As Double, _
    ByRef kind As Double, ByRef number_of_points As Long, ByRef number_of_critical_points As Long, _
    ByRef cricondentherm_T As Double, ByRef cricondentherm_P As Double, ByRef cricondenbar_T As Double, _
    ByRef cricondenbar_P As Double) As Long
Private Declare Function c_CriticalPoint Lib "KVGasThermo.dll" Alias "CriticalPoint" (ByRef z As Double, _
    ByRef mixture As Byte, ByVal options As Long, ByRef Tc As Double, ByRef Pc As Double, ByRef Vc As Double, _
    ByRef Zc As Double) As Long
Private Declare Function c_WaterDewTemperature Lib "KVGasThermo.dll" Alias "WaterDewTemperature" (ByVal P As Double, _
    ByRef z As Double, ByVal method As Long, ByVal routes As Long, ByVal unused As Long, _
    ByRef mixture As Byte, ByVal reserved As Long, ByRef T As Double) As Long
Private Declare Function c_WaterDewPressure Lib "KVGasThermo.dll" Alias "WaterDewPressure" (ByVal T As Double, _
    ByRef z As Double, ByVal method As Long, ByVal routes As Long, ByVal unused As Long, _
    ByRef mixture As Byte, ByVal reserved As Long, ByRef P As Double) As Long
Private Declare Function c_WaterDewLine Lib "KVGasThermo.dll" Alias "WaterDewLine" (ByRef z As Double, _
    ByVal method As Long, ByVal routes As Long, ByVal unused As Long, ByRef mixture As Byte, _
    ByVal reserved As Long, ByVal min_P As Double, ByVal max_P As Double, ByVal points As Long, _
    ByRef T As Double, ByRef P As Double, ByRef status As Long, ByRef found As Long) As Long
Private Declare Function c_Humidity Lib "KVGasThermo.dll" Alias "Humidity" (ByVal T As Double, _
    ByVal P As Double, ByVal method As Long, ByRef z As Double, ByRef mixture As Byte, _
    ByRef water_fraction As Double, ByRef water_content As Double) As Long
Private Declare Function c_WetGasComposition Lib "KVGasThermo.dll" Alias "WetGasComposition" (ByVal T As Double, _
    ByVal P As Double, ByRef z As Double, ByVal method_switch As Long, ByVal method As Long, _
    ByVal routes As Long, ByRef mixture As Byte, ByVal reserved As Long, ByRef wet As Double) As Long
Private Declare Function c_HydrateLine Lib "KVGasThermo.dll" Alias "HydrateLine" (ByRef z As Double, _
    ByVal kind As Long, ByVal M As Double, ByVal percent As Double, ByVal points As Long, _
    ByRef mixture As Byte, ByVal unused As Long, ByRef T As Double, ByRef P As Double) As Long
Private Declare Function c_GasN Lib "KVGasThermo.dll" Alias "GasN" (ByVal T As Double, ByVal P As Double, _
    ByRef x As Double, ByRef mixture As Byte, ByRef Z As Double, ByRef Z_normal As Double, _
    ByRef density_normal As Double, ByRef normal_volume As Double) As Long
Private Declare Function c_LiquidDensity_PPR78 Lib "KVGasThermo.dll" Alias "LiquidDensity_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef density As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d2_dTdP As Double) As Long
Private Declare Function c_GasDensity_PPR78 Lib "KVGasThermo.dll" Alias "GasDensity_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef density As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d2_dTdP As Double) As Long
Private Declare Function c_LiquidMolarEnthalpy_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarEnthalpy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare Function c_GasMolarEnthalpy_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarEnthalpy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare Function c_LiquidMolarEntropy_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarEntropy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare Function c_GasMolarEntropy_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarEntropy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare Function c_LiquidMolarFreeEnthalpy_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarFreeEnthalpy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare Function c_GasMolarFreeEnthalpy_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarFreeEnthalpy_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef value As Double) As Long
Private Declare Function c_LiquidMolarEnthalpy_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarEnthalpy_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal mask As Long, ByRef value As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare Function c_GasMolarEnthalpy_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarEnthalpy_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal mask As Long, ByRef value As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare Function c_LiquidMolarEntropy_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "LiquidMolarEntropy_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal mask As Long, ByRef value As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare Function c_GasMolarEntropy_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "GasMolarEntropy_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal mask As Long, ByRef value As Double, _
    ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare Function c_LiquidPhi_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "LiquidPhi_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal option_ As Long, ByVal mask As Long, _
    ByRef ln_phi As Double, ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare Function c_GasPhi_Derivatives_PPR78 Lib "KVGasThermo.dll" Alias "GasPhi_Derivatives_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByVal option_ As Long, ByVal mask As Long, _
    ByRef ln_phi As Double, ByRef d_dT As Double, ByRef d_dP As Double, ByRef d_dn As Double) As Long
Private Declare Function c_GasSpecificHeat_PPR78 Lib "KVGasThermo.dll" Alias "GasSpecificHeat_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef Cp As Double, ByRef Cv As Double, _
    ByRef speed_of_sound As Double, ByRef joule_thomson As Double) As Long
Private Declare Function c_GasDynamicViscosity_PPR78 Lib "KVGasThermo.dll" Alias "GasDynamicViscosity_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef viscosity As Double) As Long
Private Declare Function c_GasThermalConductivity_PPR78 Lib "KVGasThermo.dll" Alias "GasThermalConductivity_PPR78" (ByVal T As Double, _
    ByVal P As Double, ByRef x As Double, ByRef mixture As Byte, ByRef conductivity As Double) As Long
#End If

' Group data stay alive for the library.
Private group_A() As Double, group_B() As Double, group_fractions() As Double, group_ratio() As Double
Private group_differences() As Double

' Opens the library in a folder, so that every call finds it there. Raises error 53 where it cannot be opened.
Public Sub UseFolder(ByVal folder As String)
    If Right$(folder, 1) <> "\" Then folder = folder & "\"
    If LoadLibraryW(StrPtr(folder & "KVGasThermo.dll")) = 0 Then
        Err.Raise 53, "Kestrune", folder & "KVGasThermo.dll cannot be opened, or is not for this Office (32 or 64 bit)"
    End If
End Sub

' Makes the record of count components. table: 43 * count doubles, column by column; it has to live as long as the
' record is used.
Public Sub NewMixture(mixture() As Byte, table() As Double, ByVal count As Long)
    Dim address As LongPtr
    If count < 1 Then Err.Raise 5, "Kestrune", "NewMixture: count: " & count & ", at least one is needed"
    NeedDoubles table, CDbl(KV_TABLE_COLUMNS) * count, "NewMixture", "table"
    ReDim mixture(0 To RECORD_SIZE - 1)
    SetLong mixture, AT_count, count
    address = VarPtr(table(LBound(table)))
    CopyMemory mixture(AT_table), address, LenB(address)
End Sub

' Sets a field of the record, field one of AT_...
Public Sub SetDouble(mixture() As Byte, ByVal field As Long, ByVal value As Double)
    CopyMemory mixture(LBound(mixture) + field), value, 8
End Sub

Public Sub SetLong(mixture() As Byte, ByVal field As Long, ByVal value As Long)
    CopyMemory mixture(LBound(mixture) + field), value, 4
End Sub

Public Sub SetFreeWater(mixture() As Byte, ByVal yes As Boolean)
    mixture(LBound(mixture) + AT_flags) = IIf(yes, FREE_WATER_FLAG, 0)
End Sub

Public Function StatusText(ByVal status As Long) As String
    Select Case status
        Case 0: StatusText = "success"
        Case -1: StatusText = "no component of the mixture has the CAS number of water"
        Case 1: StatusText = "the molar mass of a user-defined inhibitor is not positive"
        Case 4: StatusText = "the gas takes up any amount of water at this temperature and pressure"
        Case 51: StatusText = "the equation of state has no root above the co-volume"
        Case 111: StatusText = "the feed mole fractions do not sum to one within the tolerance of the record"
        Case 112: StatusText = "no convergence within the iteration limit; what the results hold is no answer"
        Case 113: StatusText = "the damping of the Newton step is exhausted"
        Case 114: StatusText = "the relaxation factor fell below its limit"
        Case 115: StatusText = "the derivative of the residual is zero"
        Case 116: StatusText = "no temperature or pressure has this vapour fraction with two phases"
        Case 117: StatusText = "a point of this vapour fraction was found, but another phase splits off before it"
        Case 118: StatusText = "three phases were found, but a fourth would split off; results hold these three"
        Case 120: StatusText = "the iteration ended on two identical phases or broke down"
        Case 121: StatusText = "the vapour and the second liquid became the same phase"
        Case 134: StatusText = "one liquid and a vapour remain; the flash that said so had a status"
        Case 135: StatusText = "no vapour remains; the flash that said so had a status"
        Case 136: StatusText = "no starting point for three phases could be built"
        Case 140: StatusText = "the envelope is open: it reached the default highest pressure"
        Case 141: StatusText = "the envelope reached the default lowest temperature"
        Case 142: StatusText = "the arrays are too short for all points of the curve"
        Case 143: StatusText = "another phase splits off before the marked points of the curve"
        Case 144: StatusText = "the curve could not be followed to its end"
        Case 145: StatusText = "the mixture has no stable critical point"
        Case 146: StatusText = "a part of the curve is where a second liquid forms"
        Case 151: StatusText = "temperature, pressure or gas outside the range of the water-content method"
        Case 1001: StatusText = "pure-component library: component unknown"
        Case 1002: StatusText = "pure-component library: no correlation for this property"
        Case 1003: StatusText = "pure-component library: temperature outside the range of the correlation"
        Case 1004: StatusText = "pure-component library: an argument is not finite"
        Case 9002: StatusText = "an argument that is read or written is a null pointer"
        Case 9003: StatusText = "the number of components is below 1 or above 10000"
        Case 9004: StatusText = "the temperature is not finite or not positive"
        Case 9005: StatusText = "the pressure is not finite or not positive"
        Case 9006: StatusText = "a composition has an entry that is negative or not finite, or is all zero"
        Case 9007: StatusText = "a critical temperature, critical pressure, acentric factor or molar mass is unusable"
        Case 9008: StatusText = "no group data for this number of components: call ConvertPPR78GroupData first"
        Case 9009: StatusText = "a specified quantity or option is not finite or out of range"
        Case 9010: StatusText = "not enough memory for the work arrays"
        Case 9011: StatusText = "unexpected failure inside the library; please report it"
        Case 9012: StatusText = "the equation of state gave a value that is not finite at these conditions"
        Case Else: StatusText = "unknown status"
    End Select
End Function

Private Sub NeedDoubles(values() As Double, ByVal wanted As Double, ByVal routine As String, ByVal word As String)
    Dim length As Double
    On Error Resume Next ' an array without elements has no bounds
    length = CDbl(UBound(values)) - LBound(values) + 1
    On Error GoTo 0
    Need length, wanted, routine, word
End Sub

Private Sub NeedLongs(values() As Long, ByVal wanted As Double, ByVal routine As String, ByVal word As String)
    Dim length As Double
    On Error Resume Next
    length = CDbl(UBound(values)) - LBound(values) + 1
    On Error GoTo 0
    Need length, wanted, routine, word
End Sub

' An array is never empty: its first element is what is passed.
Private Sub Need(ByVal length As Double, ByVal wanted As Double, ByVal routine As String, ByVal word As String)
    If length = wanted And length > 0 Then Exit Sub
    Err.Raise 5, "Kestrune", routine & ": " & word & ": " & length & " elements, " & wanted & " are needed"
End Sub

Private Function CountOf(mixture() As Byte, ByVal routine As String) As Long
    Dim count As Long, length As Long, address As LongPtr
    On Error Resume Next
    length = UBound(mixture) - LBound(mixture) + 1
    On Error GoTo 0
    If length <> RECORD_SIZE Then Err.Raise 5, "Kestrune", routine & ": mixture: a record has " & RECORD_SIZE & " bytes"
    CopyMemory count, mixture(LBound(mixture)), 4
    CopyMemory address, mixture(LBound(mixture) + AT_table), LenB(address)
    If count < 1 Or address = 0 Then
        Err.Raise 5, "Kestrune", routine & ": mixture: the record has no components or no table: see NewMixture"
    End If
    CountOf = count
End Function

' Hands over groups and group interactions, once, before any other calculation. counts: how often group k occurs in
' component i, one column a component; A, B: interactions in MPa, column by column, upper triangle read.
Public Sub ConvertPPR78GroupData(ByVal nC As Long, ByVal nG As Long, counts() As Long, A() As Double, B() As Double)
    Dim storage(0 To 5) As LongPtr
    If nC < 1 Then Err.Raise 5, "Kestrune", "ConvertPPR78GroupData: nC: " & nC & ", at least one is needed"
    If nG < 1 Then Err.Raise 5, "Kestrune", "ConvertPPR78GroupData: nG: " & nG & ", at least one is needed"
    If CDbl(nG) * nC * nC > 2147483647# Then
        Err.Raise 5, "Kestrune", "ConvertPPR78GroupData: nC: nG * nC * nC is more than 32 bits hold"
    End If
    NeedLongs counts, CDbl(nG) * nC, "ConvertPPR78GroupData", "counts"
    NeedDoubles A, CDbl(nG) * nG, "ConvertPPR78GroupData", "A"
    NeedDoubles B, CDbl(nG) * nG, "ConvertPPR78GroupData", "B"
    ReDim group_A(0 To nG * nG - 1): ReDim group_B(0 To nG * nG - 1): ReDim group_ratio(0 To nG * nG - 1)
    ReDim group_fractions(0 To nC * nG - 1): ReDim group_differences(0 To nG * nC * nC - 1)
    storage(1) = VarPtr(group_A(0)): storage(2) = VarPtr(group_B(0)): storage(3) = VarPtr(group_fractions(0))
    storage(4) = VarPtr(group_ratio(0)): storage(5) = VarPtr(group_differences(0))
    c_ConvertPPR78GroupData nC, nG, counts(LBound(counts)), A(LBound(A)), B(LBound(B)), storage(0)
End Sub

' Molar mass of a mixture. Returns the status.
'   nc: number of components
'   x: composition, mol/mol, [nc]
'   M: molar masses, g/mol, [nc]
'   mean: sum of x[i] M[i], g/mol, out
Public Function MolecularWeight(ByVal nc As Long, x() As Double, M() As Double, ByRef mean As Double) As Long
    NeedDoubles x, nc, "MolecularWeight", "x"
    NeedDoubles M, nc, "MolecularWeight", "M"
    MolecularWeight = c_MolecularWeight(nc, x(LBound(x)), M(LBound(M)), mean)
End Function

' Liquid and vapour at temperature and pressure. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: cold start; clear: warm start from the result arguments
'   beta: vapour fraction, mol/mol, in and out
'   x: liquid, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   K: y / x, [count], out
Public Function FlashLVatTP(ByVal T As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef beta As Double, x() As Double, y() As Double, _
    K() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLVatTP")
    NeedDoubles z, count, "FlashLVatTP", "z"
    NeedDoubles x, count, "FlashLVatTP", "x"
    NeedDoubles y, count, "FlashLVatTP", "y"
    NeedDoubles K, count, "FlashLVatTP", "K"
    FlashLVatTP = c_FlashLVatTP(T, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, beta, _
        x(LBound(x)), y(LBound(y)), K(LBound(K)))
End Function

' Liquid and vapour at enthalpy and pressure. Returns the status.
'   H: enthalpy of one mole of feed, cal/mol
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: cold start; clear: warm start from the result arguments
'   T: temperature; exactly 0 counts as no estimate, K, in and out
'   beta: vapour fraction, mol/mol, in and out
'   x: liquid, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   K: y / x, [count], out
'   HL: molar enthalpy of the liquid, cal/mol, out
'   HV: molar enthalpy of the vapour, cal/mol, out
Public Function FlashLVatHP(ByVal H As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef T As Double, ByRef beta As Double, x() As Double, _
    y() As Double, K() As Double, ByRef HL As Double, ByRef HV As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLVatHP")
    NeedDoubles z, count, "FlashLVatHP", "z"
    NeedDoubles x, count, "FlashLVatHP", "x"
    NeedDoubles y, count, "FlashLVatHP", "y"
    NeedDoubles K, count, "FlashLVatHP", "K"
    FlashLVatHP = c_FlashLVatHP(H, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, T, beta, _
        x(LBound(x)), y(LBound(y)), K(LBound(K)), HL, HV)
End Function

' Liquid and vapour at entropy and pressure. Returns the status.
'   S: entropy of one mole of feed, cal/(mol K)
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: cold start; clear: warm start from the result arguments
'   T: temperature; exactly 0 counts as no estimate, K, in and out
'   beta: vapour fraction, mol/mol, in and out
'   x: liquid, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   K: y / x, [count], out
'   SL: molar entropy of the liquid, cal/(mol K), out
'   SV: molar entropy of the vapour, cal/(mol K), out
Public Function FlashLVatSP(ByVal S As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef T As Double, ByRef beta As Double, x() As Double, _
    y() As Double, K() As Double, ByRef SL As Double, ByRef SV As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLVatSP")
    NeedDoubles z, count, "FlashLVatSP", "z"
    NeedDoubles x, count, "FlashLVatSP", "x"
    NeedDoubles y, count, "FlashLVatSP", "y"
    NeedDoubles K, count, "FlashLVatSP", "K"
    FlashLVatSP = c_FlashLVatSP(S, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, T, beta, _
        x(LBound(x)), y(LBound(y)), K(LBound(K)), SL, SV)
End Function

' Temperature of a vapour fraction at a pressure. Returns the status.
'   W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: cold start; clear: warm start from the result arguments
'   T: temperature; not above 0 counts as no estimate, K, in and out
'   x: liquid, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   K: y / x, [count], out
Public Function FlashLVatWP(ByVal W As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef T As Double, x() As Double, y() As Double, _
    K() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLVatWP")
    NeedDoubles z, count, "FlashLVatWP", "z"
    NeedDoubles x, count, "FlashLVatWP", "x"
    NeedDoubles y, count, "FlashLVatWP", "y"
    NeedDoubles K, count, "FlashLVatWP", "K"
    FlashLVatWP = c_FlashLVatWP(W, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, T, _
        x(LBound(x)), y(LBound(y)), K(LBound(K)))
End Function

' Pressure of a vapour fraction at a temperature. Returns the status.
'   W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
'   T: temperature, above 0, K
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: cold start; clear: warm start from the result arguments
'   P: pressure; not above 0 counts as no estimate, atm, in and out
'   x: liquid, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   K: y / x, [count], out
Public Function FlashLVatWT(ByVal W As Double, ByVal T As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef P As Double, x() As Double, y() As Double, _
    K() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLVatWT")
    NeedDoubles z, count, "FlashLVatWT", "z"
    NeedDoubles x, count, "FlashLVatWT", "x"
    NeedDoubles y, count, "FlashLVatWT", "y"
    NeedDoubles K, count, "FlashLVatWT", "K"
    FlashLVatWT = c_FlashLVatWT(W, T, z(LBound(z)), mixture(LBound(mixture)), routines, options, P, _
        x(LBound(x)), y(LBound(y)), K(LBound(K)))
End Function

' Up to two liquids and a vapour at temperature and pressure. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: the result arguments hold an estimate
'   beta: share of liquid A, mol/mol, in and out
'   V: share of the vapour, mol/mol, in and out
'   xA: liquid A, the lighter one, mol/mol, [count], in and out
'   xB: liquid B, the denser one, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   KLL: xA / xB, [count], out
'   KLV: y / xA, [count], out
Public Function FlashLLVatTP(ByVal T As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef beta As Double, ByRef V As Double, _
    xA() As Double, xB() As Double, y() As Double, KLL() As Double, KLV() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLLVatTP")
    NeedDoubles z, count, "FlashLLVatTP", "z"
    NeedDoubles xA, count, "FlashLLVatTP", "xA"
    NeedDoubles xB, count, "FlashLLVatTP", "xB"
    NeedDoubles y, count, "FlashLLVatTP", "y"
    NeedDoubles KLL, count, "FlashLLVatTP", "KLL"
    NeedDoubles KLV, count, "FlashLLVatTP", "KLV"
    FlashLLVatTP = c_FlashLLVatTP(T, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, beta, V, _
        xA(LBound(xA)), xB(LBound(xB)), y(LBound(y)), KLL(LBound(KLL)), KLV(LBound(KLV)))
End Function

' Up to two liquids and a vapour at enthalpy and pressure. Returns the status.
'   H: enthalpy of one mole of feed, cal/mol
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: the result arguments hold an estimate
'   T: temperature; exactly 0 counts as no estimate, K, in and out
'   beta: share of liquid A, mol/mol, in and out
'   V: share of the vapour, mol/mol, in and out
'   xA: liquid A, the lighter one, mol/mol, [count], in and out
'   xB: liquid B, the denser one, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   KLL: xA / xB, [count], out
'   KLV: y / xA, [count], out
'   HA: molar enthalpy of liquid A, cal/mol, out
'   HB: molar enthalpy of liquid B, cal/mol, out
'   HV: molar enthalpy of the vapour, cal/mol, out
Public Function FlashLLVatHP(ByVal H As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef T As Double, ByRef beta As Double, _
    ByRef V As Double, xA() As Double, xB() As Double, y() As Double, KLL() As Double, KLV() As Double, _
    ByRef HA As Double, ByRef HB As Double, ByRef HV As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLLVatHP")
    NeedDoubles z, count, "FlashLLVatHP", "z"
    NeedDoubles xA, count, "FlashLLVatHP", "xA"
    NeedDoubles xB, count, "FlashLLVatHP", "xB"
    NeedDoubles y, count, "FlashLLVatHP", "y"
    NeedDoubles KLL, count, "FlashLLVatHP", "KLL"
    NeedDoubles KLV, count, "FlashLLVatHP", "KLV"
    FlashLLVatHP = c_FlashLLVatHP(H, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, T, beta, _
        V, xA(LBound(xA)), xB(LBound(xB)), y(LBound(y)), KLL(LBound(KLL)), KLV(LBound(KLV)), HA, HB, HV)
End Function

' Up to two liquids and a vapour at entropy and pressure. Returns the status.
'   S: entropy of one mole of feed, cal/(mol K)
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: the result arguments hold an estimate
'   T: temperature; exactly 0 counts as no estimate, K, in and out
'   beta: share of liquid A, mol/mol, in and out
'   V: share of the vapour, mol/mol, in and out
'   xA: liquid A, the lighter one, mol/mol, [count], in and out
'   xB: liquid B, the denser one, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   KLL: xA / xB, [count], out
'   KLV: y / xA, [count], out
'   SA: molar entropy of liquid A, cal/(mol K), out
'   SB: molar entropy of liquid B, cal/(mol K), out
'   SV: molar entropy of the vapour, cal/(mol K), out
Public Function FlashLLVatSP(ByVal S As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef T As Double, ByRef beta As Double, _
    ByRef V As Double, xA() As Double, xB() As Double, y() As Double, KLL() As Double, KLV() As Double, _
    ByRef SA As Double, ByRef SB As Double, ByRef SV As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLLVatSP")
    NeedDoubles z, count, "FlashLLVatSP", "z"
    NeedDoubles xA, count, "FlashLLVatSP", "xA"
    NeedDoubles xB, count, "FlashLLVatSP", "xB"
    NeedDoubles y, count, "FlashLLVatSP", "y"
    NeedDoubles KLL, count, "FlashLLVatSP", "KLL"
    NeedDoubles KLV, count, "FlashLLVatSP", "KLV"
    FlashLLVatSP = c_FlashLLVatSP(S, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, T, beta, _
        V, xA(LBound(xA)), xB(LBound(xB)), y(LBound(y)), KLL(LBound(KLL)), KLV(LBound(KLV)), SA, SB, SV)
End Function

' Temperature of a vapour fraction beside up to two liquids. Returns the status.
'   W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: the result arguments hold an estimate
'   T: temperature; not above 0 counts as no estimate, K, in and out
'   beta: share of liquid A, mol/mol, in and out
'   xA: liquid A, the lighter one, mol/mol, [count], in and out
'   xB: liquid B, the denser one, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   KLL: xA / xB, [count], out
'   KLV: y / xA, [count], out
Public Function FlashLLVatWP(ByVal W As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef T As Double, ByRef beta As Double, _
    xA() As Double, xB() As Double, y() As Double, KLL() As Double, KLV() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLLVatWP")
    NeedDoubles z, count, "FlashLLVatWP", "z"
    NeedDoubles xA, count, "FlashLLVatWP", "xA"
    NeedDoubles xB, count, "FlashLLVatWP", "xB"
    NeedDoubles y, count, "FlashLLVatWP", "y"
    NeedDoubles KLL, count, "FlashLLVatWP", "KLL"
    NeedDoubles KLV, count, "FlashLLVatWP", "KLV"
    FlashLLVatWP = c_FlashLLVatWP(W, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, T, beta, _
        xA(LBound(xA)), xB(LBound(xB)), y(LBound(y)), KLL(LBound(KLL)), KLV(LBound(KLV)))
End Function

' Pressure of a vapour fraction beside up to two liquids. Returns the status.
'   W: vapour fraction, 0 bubble point, 1 dew point, mol/mol
'   T: temperature, above 0, K
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: the result arguments hold an estimate
'   P: pressure; not above 0 counts as no estimate, atm, in and out
'   beta: share of liquid A, mol/mol, in and out
'   xA: liquid A, the lighter one, mol/mol, [count], in and out
'   xB: liquid B, the denser one, mol/mol, [count], in and out
'   y: vapour, mol/mol, [count], in and out
'   KLL: xA / xB, [count], out
'   KLV: y / xA, [count], out
Public Function FlashLLVatWT(ByVal W As Double, ByVal T As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef P As Double, ByRef beta As Double, _
    xA() As Double, xB() As Double, y() As Double, KLL() As Double, KLV() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLLVatWT")
    NeedDoubles z, count, "FlashLLVatWT", "z"
    NeedDoubles xA, count, "FlashLLVatWT", "xA"
    NeedDoubles xB, count, "FlashLLVatWT", "xB"
    NeedDoubles y, count, "FlashLLVatWT", "y"
    NeedDoubles KLL, count, "FlashLLVatWT", "KLL"
    NeedDoubles KLV, count, "FlashLLVatWT", "KLV"
    FlashLLVatWT = c_FlashLLVatWT(W, T, z(LBound(z)), mixture(LBound(mixture)), routines, options, P, beta, _
        xA(LBound(xA)), xB(LBound(xB)), y(LBound(y)), KLL(LBound(KLL)), KLV(LBound(KLV)))
End Function

' Two liquids at temperature and pressure. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: start, 1: the result arguments hold an estimate
'   beta: share of liquid 2, mol/mol, in and out
'   liquid1: the denser liquid, mol/mol, [count], in and out
'   liquid2: the lighter liquid, mol/mol, [count], in and out
'   K: liquid2 / liquid1, [count], out
Public Function FlashLLatTP(ByVal T As Double, ByVal P As Double, z() As Double, mixture() As Byte, _
    ByVal routines As LongPtr, ByVal options As Long, ByRef beta As Double, liquid1() As Double, _
    liquid2() As Double, K() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "FlashLLatTP")
    NeedDoubles z, count, "FlashLLatTP", "z"
    NeedDoubles liquid1, count, "FlashLLatTP", "liquid1"
    NeedDoubles liquid2, count, "FlashLLatTP", "liquid2"
    NeedDoubles K, count, "FlashLLatTP", "K"
    FlashLLatTP = c_FlashLLatTP(T, P, z(LBound(z)), mixture(LBound(mixture)), routines, options, beta, _
        liquid1(LBound(liquid1)), liquid2(LBound(liquid2)), K(LBound(K)))
End Function

' Bubble and dew curves, or the line of a vapour fraction. Returns the status.
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   routines: routines of the host; null: the library's own
'   options: 0
'   first_P: first pressure, 0: 1 atm, atm
'   max_P: highest pressure, 0: 2000 atm, atm
'   min_T: lowest temperature, 0: 50 K, K
'   points: number wanted, 0: as traced
'   capacity: of the three point arrays
'   fraction: 1: bubble and dew curves; between 0 and 1: that line, mol/mol
'   accuracy: 0, or 1e-10 and more: every point is converged to 1e-10
'   T: temperatures, K, [capacity], out
'   P: pressures, atm, [capacity], out
'   kind: 1 dew, 0 bubble, 0.5 critical, 4 two liquids, [capacity], out
'   number_of_points: points found, out
'   number_of_critical_points: critical points among them, out
'   cricondentherm_T: highest temperature, K, out
'   cricondentherm_P: and its pressure, atm, out
'   cricondenbar_T: temperature of the highest pressure, K, out
'   cricondenbar_P: highest pressure, atm, out
Public Function PhaseEnvelope(z() As Double, mixture() As Byte, ByVal routines As LongPtr, _
    ByVal options As Long, ByVal first_P As Double, ByVal max_P As Double, ByVal min_T As Double, _
    ByVal points As Long, ByVal capacity As Long, ByVal fraction As Double, ByVal accuracy As Double, _
    T() As Double, P() As Double, kind() As Double, ByRef number_of_points As Long, _
    ByRef number_of_critical_points As Long, ByRef cricondentherm_T As Double, _
    ByRef cricondentherm_P As Double, ByRef cricondenbar_T As Double, ByRef cricondenbar_P As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "PhaseEnvelope")
    NeedDoubles z, count, "PhaseEnvelope", "z"
    NeedDoubles T, capacity, "PhaseEnvelope", "T"
    NeedDoubles P, capacity, "PhaseEnvelope", "P"
    NeedDoubles kind, capacity, "PhaseEnvelope", "kind"
    PhaseEnvelope = c_PhaseEnvelope(z(LBound(z)), mixture(LBound(mixture)), routines, options, first_P, _
        max_P, min_T, points, capacity, fraction, accuracy, T(LBound(T)), P(LBound(P)), kind(LBound(kind)), _
        number_of_points, number_of_critical_points, cricondentherm_T, cricondentherm_P, cricondenbar_T, _
        cricondenbar_P)
End Function

' Critical point of a mixture. Returns the status.
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   options: 0
'   Tc: temperature, K, out
'   Pc: pressure, atm, out
'   Vc: molar volume, cm3/mol, out
'   Zc: compressibility factor, out
Public Function CriticalPoint(z() As Double, mixture() As Byte, ByVal options As Long, ByRef Tc As Double, _
    ByRef Pc As Double, ByRef Vc As Double, ByRef Zc As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "CriticalPoint")
    NeedDoubles z, count, "CriticalPoint", "z"
    CriticalPoint = c_CriticalPoint(z(LBound(z)), mixture(LBound(mixture)), options, Tc, Pc, Vc, Zc)
End Function

' Water dew temperature at a pressure. Returns the status.
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   method: 1 (or 0) equation of state, 2 chart
'   routes: 0
'   unused: not read
'   mixture: record of the mixture; only its flags change, and only during the call
'   reserved: not read
'   T: dew temperature, in: a start, K, in and out
Public Function WaterDewTemperature(ByVal P As Double, z() As Double, ByVal method As Long, _
    ByVal routes As Long, ByVal unused As Long, mixture() As Byte, ByVal reserved As Long, _
    ByRef T As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "WaterDewTemperature")
    NeedDoubles z, count, "WaterDewTemperature", "z"
    WaterDewTemperature = c_WaterDewTemperature(P, z(LBound(z)), method, routes, unused, _
        mixture(LBound(mixture)), reserved, T)
End Function

' Water dew pressure at a temperature. Returns the status.
'   T: temperature, above 0, K
'   z: feed, mol/mol, [count]
'   method: 1 (or 0) equation of state, 2 chart
'   routes: 0
'   unused: not read
'   mixture: record of the mixture; only its flags change, and only during the call
'   reserved: not read
'   P: dew pressure, in: a start, atm, in and out
Public Function WaterDewPressure(ByVal T As Double, z() As Double, ByVal method As Long, _
    ByVal routes As Long, ByVal unused As Long, mixture() As Byte, ByVal reserved As Long, _
    ByRef P As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "WaterDewPressure")
    NeedDoubles z, count, "WaterDewPressure", "z"
    WaterDewPressure = c_WaterDewPressure(T, z(LBound(z)), method, routes, unused, mixture(LBound(mixture)), _
        reserved, P)
End Function

' Water dew temperatures at pressures evenly spaced in ln P. Returns the status.
'   z: feed, mol/mol, [count]
'   method: 1 (or 0) equation of state, 2 chart
'   routes: 0
'   unused: not read
'   mixture: record of the mixture; only its flags change, and only during the call
'   reserved: not read
'   min_P: first pressure, 0: 1 atm, atm
'   max_P: last pressure, 0: 200 atm, atm
'   points: number of points
'   T: dew temperatures, 0 where there is none, K, [points], out
'   P: pressures, atm, [points], out
'   status: status of every point, [points], out
'   found: points with status 0, out
Public Function WaterDewLine(z() As Double, ByVal method As Long, ByVal routes As Long, ByVal unused As Long, _
    mixture() As Byte, ByVal reserved As Long, ByVal min_P As Double, ByVal max_P As Double, _
    ByVal points As Long, T() As Double, P() As Double, status() As Long, ByRef found As Long) As Long
    Dim count As Long
    count = CountOf(mixture, "WaterDewLine")
    NeedDoubles z, count, "WaterDewLine", "z"
    NeedDoubles T, points, "WaterDewLine", "T"
    NeedDoubles P, points, "WaterDewLine", "P"
    NeedLongs status, points, "WaterDewLine", "status"
    WaterDewLine = c_WaterDewLine(z(LBound(z)), method, routes, unused, mixture(LBound(mixture)), reserved, _
        min_P, max_P, points, T(LBound(T)), P(LBound(P)), status(LBound(status)), found)
End Function

' Water in a saturated gas. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   method: 1 (or 0) equation of state, 2 chart
'   z: feed, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   water_fraction: water in the saturated gas, mol/mol, out
'   water_content: the same in mass per normal volume, 0 C and 1 atm, mg/Nm3, out
Public Function Humidity(ByVal T As Double, ByVal P As Double, ByVal method As Long, z() As Double, _
    mixture() As Byte, ByRef water_fraction As Double, ByRef water_content As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "Humidity")
    NeedDoubles z, count, "Humidity", "z"
    Humidity = c_Humidity(T, P, method, z(LBound(z)), mixture(LBound(mixture)), water_fraction, water_content)
End Function

' The gas saturated with water. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   z: feed, mol/mol, [count]
'   method_switch: 1: method 1, and method 2 where that fails
'   method: 1 (or 0) equation of state, 2 chart
'   routes: 0
'   mixture: record of the mixture; only its flags change, and only during the call
'   reserved: not read
'   wet: the saturated gas; may be z, mol/mol, [count], out
Public Function WetGasComposition(ByVal T As Double, ByVal P As Double, z() As Double, _
    ByVal method_switch As Long, ByVal method As Long, ByVal routes As Long, mixture() As Byte, _
    ByVal reserved As Long, wet() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "WetGasComposition")
    NeedDoubles z, count, "WetGasComposition", "z"
    NeedDoubles wet, count, "WetGasComposition", "wet"
    WetGasComposition = c_WetGasComposition(T, P, z(LBound(z)), method_switch, method, routes, _
        mixture(LBound(mixture)), reserved, wet(LBound(wet)))
End Function

' Hydrate formation curve of a gas by its gravity. Returns the status.
'   z: feed, mol/mol, [count]
'   kind: inhibitor: 0 none, 1 methanol, 2 NaCl, 3 KCl, 4 CaCl2, 5 of molar mass M
'   M: molar mass of inhibitor 5, g/mol
'   percent: inhibitor in the aqueous solution, % by mass
'   points: number of points
'   mixture: record of the mixture; only its flags change, and only during the call
'   unused: not read
'   T: temperatures, K, [points], out
'   P: pressures, atm, [points], out
Public Function HydrateLine(z() As Double, ByVal kind As Long, ByVal M As Double, ByVal percent As Double, _
    ByVal points As Long, mixture() As Byte, ByVal unused As Long, T() As Double, P() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "HydrateLine")
    NeedDoubles z, count, "HydrateLine", "z"
    NeedDoubles T, points, "HydrateLine", "T"
    NeedDoubles P, points, "HydrateLine", "P"
    HydrateLine = c_HydrateLine(z(LBound(z)), kind, M, percent, points, mixture(LBound(mixture)), unused, _
        T(LBound(T)), P(LBound(P)))
End Function

' Gas at T and P against the normal state (0 C, 1 atm). Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   Z: compressibility factor at T and P, out
'   Z_normal: and at the normal state, out
'   density_normal: density at the normal state, kg/m3, out
'   normal_volume: normal m3 in one m3 at T and P, Nm3/m3, out
Public Function GasN(ByVal T As Double, ByVal P As Double, x() As Double, mixture() As Byte, _
    ByRef Z As Double, ByRef Z_normal As Double, ByRef density_normal As Double, _
    ByRef normal_volume As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasN")
    NeedDoubles x, count, "GasN", "x"
    GasN = c_GasN(T, P, x(LBound(x)), mixture(LBound(mixture)), Z, Z_normal, density_normal, normal_volume)
End Function

' Mass density of a liquid. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   density: mass density, g/cm3, out
'   d_dT: derivative with T, g/cm3/K, out
'   d_dP: derivative with P, g/cm3/atm, out
'   d2_dTdP: second derivative, g/cm3/K/atm, out
Public Function LiquidDensity_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, mixture() As Byte, _
    ByRef density As Double, ByRef d_dT As Double, ByRef d_dP As Double, ByRef d2_dTdP As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "LiquidDensity_PPR78")
    NeedDoubles x, count, "LiquidDensity_PPR78", "x"
    LiquidDensity_PPR78 = c_LiquidDensity_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), density, d_dT, _
        d_dP, d2_dTdP)
End Function

' Mass density of a gas. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   density: mass density, g/cm3, out
'   d_dT: derivative with T, g/cm3/K, out
'   d_dP: derivative with P, g/cm3/atm, out
'   d2_dTdP: second derivative, g/cm3/K/atm, out
Public Function GasDensity_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, mixture() As Byte, _
    ByRef density As Double, ByRef d_dT As Double, ByRef d_dP As Double, ByRef d2_dTdP As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasDensity_PPR78")
    NeedDoubles x, count, "GasDensity_PPR78", "x"
    GasDensity_PPR78 = c_GasDensity_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), density, d_dT, d_dP, _
        d2_dTdP)
End Function

' Molar enthalpy of a liquid. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   value: molar enthalpy, cal/mol, out
Public Function LiquidMolarEnthalpy_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByRef value As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "LiquidMolarEnthalpy_PPR78")
    NeedDoubles x, count, "LiquidMolarEnthalpy_PPR78", "x"
    LiquidMolarEnthalpy_PPR78 = c_LiquidMolarEnthalpy_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), _
        value)
End Function

' Molar enthalpy of a gas. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   value: molar enthalpy, cal/mol, out
Public Function GasMolarEnthalpy_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByRef value As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasMolarEnthalpy_PPR78")
    NeedDoubles x, count, "GasMolarEnthalpy_PPR78", "x"
    GasMolarEnthalpy_PPR78 = c_GasMolarEnthalpy_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), value)
End Function

' Molar entropy of a liquid. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   value: molar entropy, cal/(mol K), out
Public Function LiquidMolarEntropy_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByRef value As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "LiquidMolarEntropy_PPR78")
    NeedDoubles x, count, "LiquidMolarEntropy_PPR78", "x"
    LiquidMolarEntropy_PPR78 = c_LiquidMolarEntropy_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), value)
End Function

' Molar entropy of a gas. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   value: molar entropy, cal/(mol K), out
Public Function GasMolarEntropy_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, mixture() As Byte, _
    ByRef value As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasMolarEntropy_PPR78")
    NeedDoubles x, count, "GasMolarEntropy_PPR78", "x"
    GasMolarEntropy_PPR78 = c_GasMolarEntropy_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), value)
End Function

' Molar free enthalpy of a liquid. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   value: molar free enthalpy, cal/mol, out
Public Function LiquidMolarFreeEnthalpy_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByRef value As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "LiquidMolarFreeEnthalpy_PPR78")
    NeedDoubles x, count, "LiquidMolarFreeEnthalpy_PPR78", "x"
    LiquidMolarFreeEnthalpy_PPR78 = c_LiquidMolarFreeEnthalpy_PPR78(T, P, x(LBound(x)), _
        mixture(LBound(mixture)), value)
End Function

' Molar free enthalpy of a gas. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   value: molar free enthalpy, cal/mol, out
Public Function GasMolarFreeEnthalpy_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByRef value As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasMolarFreeEnthalpy_PPR78")
    NeedDoubles x, count, "GasMolarFreeEnthalpy_PPR78", "x"
    GasMolarFreeEnthalpy_PPR78 = c_GasMolarFreeEnthalpy_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), _
        value)
End Function

' Molar enthalpy of a liquid with derivatives. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
'   value: molar enthalpy, cal/mol, out
'   d_dT: derivative with T, cal/(mol K), out, only with bit 1 of mask
'   d_dP: derivative with P, cal/(mol atm), out, only with bit 2 of mask
'   d_dn: derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask
Public Function LiquidMolarEnthalpy_Derivatives_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByVal mask As Long, ByRef value As Double, ByRef d_dT As Double, ByRef d_dP As Double, _
    d_dn() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "LiquidMolarEnthalpy_Derivatives_PPR78")
    NeedDoubles x, count, "LiquidMolarEnthalpy_Derivatives_PPR78", "x"
    NeedDoubles d_dn, count, "LiquidMolarEnthalpy_Derivatives_PPR78", "d_dn"
    LiquidMolarEnthalpy_Derivatives_PPR78 = c_LiquidMolarEnthalpy_Derivatives_PPR78(T, P, x(LBound(x)), _
        mixture(LBound(mixture)), mask, value, d_dT, d_dP, d_dn(LBound(d_dn)))
End Function

' Molar enthalpy of a gas with derivatives. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
'   value: molar enthalpy, cal/mol, out
'   d_dT: derivative with T, cal/(mol K), out, only with bit 1 of mask
'   d_dP: derivative with P, cal/(mol atm), out, only with bit 2 of mask
'   d_dn: derivatives with the mole numbers, cal/mol, [count], out, only with bit 4 of mask
Public Function GasMolarEnthalpy_Derivatives_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByVal mask As Long, ByRef value As Double, ByRef d_dT As Double, ByRef d_dP As Double, _
    d_dn() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasMolarEnthalpy_Derivatives_PPR78")
    NeedDoubles x, count, "GasMolarEnthalpy_Derivatives_PPR78", "x"
    NeedDoubles d_dn, count, "GasMolarEnthalpy_Derivatives_PPR78", "d_dn"
    GasMolarEnthalpy_Derivatives_PPR78 = c_GasMolarEnthalpy_Derivatives_PPR78(T, P, x(LBound(x)), _
        mixture(LBound(mixture)), mask, value, d_dT, d_dP, d_dn(LBound(d_dn)))
End Function

' Molar entropy of a liquid with derivatives. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
'   value: molar entropy, cal/(mol K), out
'   d_dT: derivative with T, cal/(mol K2), out, only with bit 1 of mask
'   d_dP: derivative with P, cal/(mol K atm), out, only with bit 2 of mask
'   d_dn: derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask
Public Function LiquidMolarEntropy_Derivatives_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByVal mask As Long, ByRef value As Double, ByRef d_dT As Double, ByRef d_dP As Double, _
    d_dn() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "LiquidMolarEntropy_Derivatives_PPR78")
    NeedDoubles x, count, "LiquidMolarEntropy_Derivatives_PPR78", "x"
    NeedDoubles d_dn, count, "LiquidMolarEntropy_Derivatives_PPR78", "d_dn"
    LiquidMolarEntropy_Derivatives_PPR78 = c_LiquidMolarEntropy_Derivatives_PPR78(T, P, x(LBound(x)), _
        mixture(LBound(mixture)), mask, value, d_dT, d_dP, d_dn(LBound(d_dn)))
End Function

' Molar entropy of a gas with derivatives. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
'   value: molar entropy, cal/(mol K), out
'   d_dT: derivative with T, cal/(mol K2), out, only with bit 1 of mask
'   d_dP: derivative with P, cal/(mol K atm), out, only with bit 2 of mask
'   d_dn: derivatives with the mole numbers, cal/(mol K), [count], out, only with bit 4 of mask
Public Function GasMolarEntropy_Derivatives_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByVal mask As Long, ByRef value As Double, ByRef d_dT As Double, ByRef d_dP As Double, _
    d_dn() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasMolarEntropy_Derivatives_PPR78")
    NeedDoubles x, count, "GasMolarEntropy_Derivatives_PPR78", "x"
    NeedDoubles d_dn, count, "GasMolarEntropy_Derivatives_PPR78", "d_dn"
    GasMolarEntropy_Derivatives_PPR78 = c_GasMolarEntropy_Derivatives_PPR78(T, P, x(LBound(x)), _
        mixture(LBound(mixture)), mask, value, d_dT, d_dP, d_dn(LBound(d_dn)))
End Function

' ln phi of a liquid with derivatives. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   option_: 2
'   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
'   ln_phi: ln of the fugacity coefficients, [count], out
'   d_dT: derivatives with T, 1/K, [count], out, only with bit 1 of mask
'   d_dP: derivatives with P, 1/atm, [count], out, only with bit 2 of mask
'   d_dn: entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask
Public Function LiquidPhi_Derivatives_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByVal option_ As Long, ByVal mask As Long, ln_phi() As Double, d_dT() As Double, _
    d_dP() As Double, d_dn() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "LiquidPhi_Derivatives_PPR78")
    NeedDoubles x, count, "LiquidPhi_Derivatives_PPR78", "x"
    NeedDoubles ln_phi, count, "LiquidPhi_Derivatives_PPR78", "ln_phi"
    NeedDoubles d_dT, count, "LiquidPhi_Derivatives_PPR78", "d_dT"
    NeedDoubles d_dP, count, "LiquidPhi_Derivatives_PPR78", "d_dP"
    NeedDoubles d_dn, CDbl(count) * count, "LiquidPhi_Derivatives_PPR78", "d_dn"
    LiquidPhi_Derivatives_PPR78 = c_LiquidPhi_Derivatives_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), _
        option_, mask, ln_phi(LBound(ln_phi)), d_dT(LBound(d_dT)), d_dP(LBound(d_dP)), d_dn(LBound(d_dn)))
End Function

' ln phi of a gas with derivatives. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   option_: 2
'   mask: derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn
'   ln_phi: ln of the fugacity coefficients, [count], out
'   d_dT: derivatives with T, 1/K, [count], out, only with bit 1 of mask
'   d_dP: derivatives with P, 1/atm, [count], out, only with bit 2 of mask
'   d_dn: entry (i, j) = d ln phi_i / d n_j, i fastest, [count * count], out, only with bit 4 of mask
Public Function GasPhi_Derivatives_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByVal option_ As Long, ByVal mask As Long, ln_phi() As Double, d_dT() As Double, _
    d_dP() As Double, d_dn() As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasPhi_Derivatives_PPR78")
    NeedDoubles x, count, "GasPhi_Derivatives_PPR78", "x"
    NeedDoubles ln_phi, count, "GasPhi_Derivatives_PPR78", "ln_phi"
    NeedDoubles d_dT, count, "GasPhi_Derivatives_PPR78", "d_dT"
    NeedDoubles d_dP, count, "GasPhi_Derivatives_PPR78", "d_dP"
    NeedDoubles d_dn, CDbl(count) * count, "GasPhi_Derivatives_PPR78", "d_dn"
    GasPhi_Derivatives_PPR78 = c_GasPhi_Derivatives_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), _
        option_, mask, ln_phi(LBound(ln_phi)), d_dT(LBound(d_dT)), d_dP(LBound(d_dP)), d_dn(LBound(d_dn)))
End Function

' Heat capacities of a gas and what follows from them. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   Cp: at constant pressure, cal/(mol K), out
'   Cv: at constant volume, cal/(mol K), out
'   speed_of_sound: speed of sound, m/s, out
'   joule_thomson: Joule-Thomson coefficient, K/atm, out
Public Function GasSpecificHeat_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, mixture() As Byte, _
    ByRef Cp As Double, ByRef Cv As Double, ByRef speed_of_sound As Double, _
    ByRef joule_thomson As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasSpecificHeat_PPR78")
    NeedDoubles x, count, "GasSpecificHeat_PPR78", "x"
    GasSpecificHeat_PPR78 = c_GasSpecificHeat_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), Cp, Cv, _
        speed_of_sound, joule_thomson)
End Function

' Viscosity of a gas. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   viscosity: dynamic viscosity, cP, out
Public Function GasDynamicViscosity_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByRef viscosity As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasDynamicViscosity_PPR78")
    NeedDoubles x, count, "GasDynamicViscosity_PPR78", "x"
    GasDynamicViscosity_PPR78 = c_GasDynamicViscosity_PPR78(T, P, x(LBound(x)), mixture(LBound(mixture)), _
        viscosity)
End Function

' Thermal conductivity of a gas. Returns the status.
'   T: temperature, above 0, K
'   P: pressure, above 0, atm
'   x: composition of the phase, mol/mol, [count]
'   mixture: record of the mixture; only its flags change, and only during the call
'   conductivity: thermal conductivity, W/(m K), out
Public Function GasThermalConductivity_PPR78(ByVal T As Double, ByVal P As Double, x() As Double, _
    mixture() As Byte, ByRef conductivity As Double) As Long
    Dim count As Long
    count = CountOf(mixture, "GasThermalConductivity_PPR78")
    NeedDoubles x, count, "GasThermalConductivity_PPR78", "x"
    GasThermalConductivity_PPR78 = c_GasThermalConductivity_PPR78(T, P, x(LBound(x)), _
        mixture(LBound(mixture)), conductivity)
End Function
