Attribute VB_Name = "RichGas"
' A rich gas: flash, dew point, extremes of the envelope, properties of its vapour, into the sheet that is open. Import
' this module and Kestrune.bas, and set the folder of the three DLLs below.
Option Explicit

Private Const FOLDER As String = "C:\Kestrune"

Private Sub FillDoubles(values() As Double, ParamArray numbers() As Variant)
    Dim k As Long
    ReDim values(0 To UBound(numbers))
    For k = 0 To UBound(numbers): values(k) = numbers(k): Next k
End Sub

Private Sub FillLongs(values() As Long, ParamArray numbers() As Variant)
    Dim k As Long
    ReDim values(0 To UBound(numbers))
    For k = 0 To UBound(numbers): values(k) = numbers(k): Next k
End Sub

Private Sub FillColumn(table() As Double, ByVal count As Long, ByVal column As Long, ParamArray numbers() As Variant)
    Dim k As Long
    For k = 0 To UBound(numbers): table((column - 1) * count + k) = numbers(k): Next k
End Sub

Private Sub Show(ByRef row As Long, ByVal name As String, ByVal value As Double)
    row = row + 1
    ActiveSheet.Cells(row, 1).Value = name
    ActiveSheet.Cells(row, 2).Value = value
End Sub

Private Sub Require(ByVal what As String, ByVal status As Long)
    If status <> KV_OK Then Err.Raise 513, "RichGas", what & ": status " & status & ", " & StatusText(status)
End Sub

Public Sub RichGas()
    Const CAPACITY As Long = 500, T As Double = 260, P As Double = 40 ' K, atm
    Dim z() As Double, table() As Double, counts() As Long, A() As Double, B() As Double, gas() As Byte
    Dim n As Long, k As Long, row As Long, points As Long, critical_points As Long
    Dim beta As Double, dew_T As Double, e(1 To 4) As Double, density As Double, H As Double, viscosity As Double
    Dim Cp As Double, Cv As Double, sound As Double, joule_thomson As Double, d1 As Double, d2 As Double, d3 As Double
    n = 6
    ReDim table(0 To KV_TABLE_COLUMNS * n - 1)
    ' The gas of data/components.csv and data/ppr78_interactions.csv, by tools/make_bindings.py.
    ' methane, ethane, propane, n-butane, n-pentane, carbon dioxide
    FillDoubles z, 0.76, 0.09, 0.06, 0.04, 0.03, 0.02
    FillColumn table, 6, 2, 16.04246, 30.06904, 44.09562, 58.12220, 72.14878, 44.00950 ' molar mass, g/mol
    FillColumn table, 6, 3, 90.6941, 90.368, 85.525, 134.895, 143.47, 216.592 ' triple point, K
    FillColumn table, 6, 4, 111.6672, 184.5686, 231.0362, 272.6599, 309.2093, 194.67 ' normal boiling point, K
    FillColumn table, 6, 5, 190.564, 305.32, 369.83, 425.12, 469.7, 304.21 ' critical temperature, K
    FillColumn table, 6, 6, 45.388601, 48.082902, 41.924500, 37.463607, 33.259314, 72.864545 ' critical pressure, atm
    FillColumn table, 6, 7, 98.6, 145.5, 200.0, 255.0, 313.0, 94.0 ' critical volume, cm3/mol
    FillColumn table, 6, 8, 0.28620, 0.27924, 0.27630, 0.27385, 0.27010, 0.27438 ' critical compressibility factor
    FillColumn table, 6, 9, 0.0115478, 0.099493, 0.152291, 0.200164, 0.251506, 0.223621 ' acentric factor
    FillColumn table, 6, 10, 0.0, 0.0, 0.08, 0.0, 0.0, 0.0 ' dipole moment, debye
    FillColumn table, 6, 11, 90.69, 90.35, 85.47, 134.86, 143.42, 216.58 ' lowest temperature of the vapour pressure, K
    FillColumn table, 6, 41, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0 ' family code
    FillColumn table, 6, 43, 74828.0, 74840.0, 74986.0, 106978.0, 109660.0, 124389.0 ' CAS number
    ' Groups CH3, CH2, CH4, C2H6, CO2: how often in each component, and their interactions in MPa.
    FillLongs counts, _
        0, 0, 1, 0, 0, _
        0, 0, 0, 1, 0, _
        2, 1, 0, 0, 0, _
        2, 2, 0, 0, 0, _
        2, 3, 0, 0, 0, _
        0, 0, 0, 0, 1
    FillDoubles A, _
        0, 0, 0, 0, 0, _
        65.54, 0, 0, 0, 0, _
        28.48, 37.75, 0, 0, 0, _
        3.775, 29.85, 9.951, 0, 0, _
        144.8, 141.4, 136.6, 136.2, 0
    FillDoubles B, _
        0, 0, 0, 0, 0, _
        105.7, 0, 0, 0, 0, _
        20.25, 74.81, 0, 0, 0, _
        8.922, 65.88, 13.73, 0, 0, _
        401.5, 237.1, 214.8, 235.7, 0
    ' end of the gas
    UseFolder FOLDER
    NewMixture gas, table, n
    ConvertPPR78GroupData n, CLng(Sqr(UBound(A) + 1)), counts, A, B

    ReDim x(0 To n - 1) As Double, y(0 To n - 1) As Double, ratios(0 To n - 1) As Double
    ReDim dew_x(0 To n - 1) As Double, dew_y(0 To n - 1) As Double
    Require "flash", FlashLVatTP(T, P, z, gas, 0, 1, beta, x, y, ratios)
    Show row, "vapour_fraction", beta
    For k = 0 To n - 1: Show row, "K", ratios(k): Next k
    Require "dew point", FlashLVatWP(1, P, z, gas, 0, 1, dew_T, dew_x, dew_y, ratios)
    Show row, "dew_temperature", dew_T

    ReDim T_curve(0 To CAPACITY - 1) As Double, P_curve(0 To CAPACITY - 1) As Double, kinds(0 To CAPACITY - 1) As Double
    Require "envelope", PhaseEnvelope(z, gas, 0, 0, 0, 0, 200, 0, CAPACITY, 1, 0, T_curve, P_curve, kinds, points, _
        critical_points, e(1), e(2), e(3), e(4))
    Show row, "cricondentherm_T", e(1)
    Show row, "cricondentherm_P", e(2)
    Show row, "cricondenbar_T", e(3)
    Show row, "cricondenbar_P", e(4)

    Require "density", GasDensity_PPR78(T, P, y, gas, density, d1, d2, d3)
    Require "enthalpy", GasMolarEnthalpy_PPR78(T, P, y, gas, H)
    Require "heat", GasSpecificHeat_PPR78(T, P, y, gas, Cp, Cv, sound, joule_thomson)
    Require "viscosity", GasDynamicViscosity_PPR78(T, P, y, gas, viscosity)
    Show row, "density", density
    Show row, "enthalpy", H
    Show row, "speed_of_sound", sound
    Show row, "viscosity", viscosity
End Sub
