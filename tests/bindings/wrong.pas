{ Wrong calls: the binding answers with its language's error before the library is called. }
program wrong;

{$mode objfpc}{$H+}

uses
  SysUtils, kestrune;

var
  table: array[0..2 * KV_TABLE_COLUMNS - 1] of Double;
  z, x, y, K: array[0..1] of Double;
  short: array[0..0] of Double;
  three: array[0..2] of Double;
  beta: Double;
  gas, empty: TMixtureRecord;
  none: array of Double;
  counts: array[0..79999] of LongInt;
  number: Integer;
begin
  gas := NewMixture(table, 2);
  FillChar(empty, SizeOf(empty), 0);
  none := nil;
  for number := 1 to 6 do
    try
      case number of
        1: FlashLVatTP(300, 1, z, gas, nil, 1, beta, x, y, short);
        2: FlashLVatTP(300, 1, z, empty, nil, 1, beta, x, y, K);
        3: NewMixture(three, 2);
        4: LiquidPhi_Derivatives_PPR78(300, 1, z, gas, 2, KV_DERIV_T, x, none, none, none);
        5: ConvertPPR78GroupData(40000, 2, counts, z, z); { nC * nC does not fit 32 bits }
        6: ConvertPPR78GroupData(2, 0, counts, z, z);
      end;
      WriteLn('not refused: ', number);
    except
      on e: Exception do WriteLn(e.ClassName, ' ', e.Message);
    end;
end.
