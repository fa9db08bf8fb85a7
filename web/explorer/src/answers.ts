// Calculations that may end without an answer.
import { KestruneError, type Kestrune } from "kestrune";
import { inWords } from "./gas.ts";
import { texts } from "./texts.ts";

/** What a calculation gives, or what to say instead; a trap goes on to the worker. */
export function answerOf<V>(kestrune: Kestrune, make: () => V): V | string {
  try {
    return make();
  } catch (error) {
    if (!kestrune.alive) throw error;
    return error instanceof KestruneError ? texts.statusOf(error.text, error.status) : inWords(error);
  }
}
