{ @MADE@

  The exports of @LIBRARY@ for Free Pascal and Delphi. A function here has the name and the words of the export and
  returns the status; it raises EArgumentException, before the library is called, where an array has the wrong length
  or the record has no table. An array of derivatives that mask does not ask for may be empty.
  Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise. }
unit kestrune;

{$ifdef fpc}{$mode objfpc}{$endif}{$H+}

interface

uses
  SysUtils;

const
  KestruneVersion = '@VERSION@';
  { Statuses. }
@STATUSES@
  { Columns of the component table, from 1. }
@COLUMNS@
  { Settings, routines of a host, phases and derivatives. }
@CONSTANTS@
  FreeWaterFlag = 1;

type
  { A mixture and the settings of its calculations; all settings 0: the defaults. }
  TMixtureRecord = packed record
@FIELDS@
  end;

  { Addresses of a host's routines, entry k at k; nil: the library's own. }
  TModelRoutines = array[1..KV_ROUTINE_COUNT] of Pointer;
  PModelRoutines = ^TModelRoutines;

{ Record of count components; table: 43 * count doubles, column by column, which has to live as long as the record. }
function NewMixture(const table: array of Double; count: LongInt): TMixtureRecord;
function StatusText(status: LongInt): string;

{ Hands over groups and group interactions, once, before any other calculation. counts: how often group k occurs in
  component i, one column a component; A, B: interactions in MPa, column by column, upper triangle read. }
procedure ConvertPPR78GroupData(nC, nG: LongInt; const counts: array of LongInt; const A, B: array of Double);

@DECLARATIONS@

implementation

const
  LibraryName = {$ifdef windows}'@LIBRARY@.dll'{$else}'@LIBRARY@'{$endif};

{$if sizeof(TMixtureRecord) <> @SIZE@}{$error TMixtureRecord is not packed}{$endif}

type
  TBuffers = array[0..5] of array of Double;

var
  GroupBuffers: TBuffers; { stay alive for the library }

@EXTERNALS@

procedure Need(length: Int64; wanted: Int64; const routine, word: string);
begin
  if wanted < 0 then wanted := 0;
  if length <> wanted then
    raise EArgumentException.CreateFmt('%s: %s: %d elements, %d are needed', [routine, word, length, wanted]);
end;

function CountOf(const mixture: TMixtureRecord; const routine: string): LongInt;
begin
  if (mixture.count < 1) or (mixture.table = nil) then
    raise EArgumentException.CreateFmt('%s: mixture: the record has no components or no table', [routine]);
  Result := mixture.count;
end;

{ Address of the first element; nil of an empty array. }
function First(const values: array of Double): PDouble;
begin
  if High(values) < 0 then Result := nil else Result := @values[0];
end;

function First(const values: array of LongInt): PLongInt;
begin
  if High(values) < 0 then Result := nil else Result := @values[0];
end;

function NewMixture(const table: array of Double; count: LongInt): TMixtureRecord;
begin
  if count < 1 then raise EArgumentException.CreateFmt('NewMixture: count: %d, at least one component is needed', [count]);
  Need(High(table) + 1, Int64(KV_TABLE_COLUMNS) * count, 'NewMixture', 'table');
  FillChar(Result, SizeOf(Result), 0);
  Result.count := count;
  Result.table := @table[0];
end;

function StatusText(status: LongInt): string;
begin
  case status of
@TEXTS@
  else
    Result := 'unknown status';
  end;
end;

procedure ConvertPPR78GroupData(nC, nG: LongInt; const counts: array of LongInt; const A, B: array of Double);
var
  fresh: TBuffers;
  storage: array[0..5] of PDouble;
  k: Integer;
begin
  if nC < 1 then raise EArgumentException.CreateFmt('ConvertPPR78GroupData: nC: %d, at least one is needed', [nC]);
  if nG < 1 then raise EArgumentException.CreateFmt('ConvertPPR78GroupData: nG: %d, at least one is needed', [nG]);
  if Int64(nG) * nC > High(LongInt) div nC then
    raise EArgumentException.Create('ConvertPPR78GroupData: nC: nG * nC * nC is more than 32 bits hold');
  Need(High(counts) + 1, Int64(nG) * nC, 'ConvertPPR78GroupData', 'counts');
  Need(High(A) + 1, Int64(nG) * nG, 'ConvertPPR78GroupData', 'A');
  Need(High(B) + 1, Int64(nG) * nG, 'ConvertPPR78GroupData', 'B');
  SetLength(fresh[0], 1);
  SetLength(fresh[1], nG * nG);
  SetLength(fresh[2], nG * nG);
  SetLength(fresh[3], nC * nG);
  SetLength(fresh[4], nG * nG);
  SetLength(fresh[5], nG * nC * nC);
  for k := 0 to 5 do storage[k] := @fresh[k][0];
  c_ConvertPPR78GroupData(nC, nG, First(counts), First(A), First(B), @storage[0]);
  GroupBuffers := fresh;
end;

@FUNCTIONS@
end.
