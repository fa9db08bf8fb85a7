/**
 * The exports of @LIBRARY@ in the WebAssembly module, version @VERSION@, word by word. @MADE@
 * Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
 */
import type { Kestrune } from "./index.js";

/** Status: [name, text]. */
export const STATUS: Readonly<Record<number, readonly [string, string]>>;

/** Columns of the component table, from 1. */
export const COLUMN: {
@COLUMNS@
};

export const CONSTANT: {
@CONSTANTS@
};

/** A mixture and the settings of its calculations, all 0 for the defaults. */
export class MixtureRecord {
  /** table: 43 * count doubles, column by column. */
  constructor(table: Float64Array | readonly number[], count: number);
  count: number;
  table: Float64Array;
@FIELDS@
}

/** Methods by the names of the exports, of a module of their own: group data are one per module. */
export function bareExports(kestrune: Kestrune): BareExports;

export interface BareExports {
@EXPORTS@
}
