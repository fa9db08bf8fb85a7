Attribute VB_Name = "Kestrune"
' @MADE@
'
' The exports of @LIBRARY@ for VBA (Excel 2010 and later, 32- and 64-bit; the 64-bit Office needs the 64-bit DLLs; older
' ones take the second half of the declarations). A function here has the name and the words of the export and returns
' the status; it raises error 5, before the library is called, where an array has the wrong number of elements or the
' record has no table. All arrays have one dimension and any lower bound; arrays of derivatives are always needed.
' The three DLLs lie in one folder: open it once with UseFolder, or put it into the PATH.
' A record is an array of @SIZE@ bytes: NewMixture makes it, SetDouble and SetLong set its fields.
' Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
Option Explicit

Public Const KESTRUNE_VERSION As String = "@VERSION@"
Public Const RECORD_SIZE As Long = @SIZE@
Public Const FREE_WATER_FLAG As Long = 1

' Statuses.
@STATUSES@

' Columns of the component table.
@COLUMNS@

' Settings, routines of a host, phases and derivatives.
@CONSTANTS@

' Bytes at which the fields of the record begin.
@OFFSETS@

#If VBA7 Then
Private Declare PtrSafe Sub CopyMemory Lib "kernel32" Alias "RtlMoveMemory" (ByRef destination As Any, ByRef source As Any, ByVal length As LongPtr)
Private Declare PtrSafe Function LoadLibraryW Lib "kernel32" (ByVal path As LongPtr) As LongPtr
@DECLARES7@
#Else
Public Enum LongPtr
    [_]
End Enum
Private Declare Sub CopyMemory Lib "kernel32" Alias "RtlMoveMemory" (ByRef destination As Any, ByRef source As Any, ByVal length As Long)
Private Declare Function LoadLibraryW Lib "kernel32" (ByVal path As Long) As Long
@DECLARES6@
#End If

' Group data stay alive for the library.
Private group_A() As Double, group_B() As Double, group_fractions() As Double, group_ratio() As Double
Private group_differences() As Double

' Opens the library in a folder, so that every call finds it there. Raises error 53 where it cannot be opened.
Public Sub UseFolder(ByVal folder As String)
    If Right$(folder, 1) <> "\" Then folder = folder & "\"
    If LoadLibraryW(StrPtr(folder & "@LIBRARY@.dll")) = 0 Then
        Err.Raise 53, "Kestrune", folder & "@LIBRARY@.dll cannot be opened, or is not for this Office (32 or 64 bit)"
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
@TEXTS@
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

@FUNCTIONS@
