// What goes wrong: statuses of calculations as errors.

/** Statuses that come with a value: success, and a correlation continued beyond its range. */
export const isGood = (status) => status === 0 || status === 1003;

/** Status of a failure that is none of the calculation's: the module stopped. */
export const INTERNAL = 9011;

/** A calculation that ended without an answer: `status` as in kestrune/status.h, `text` what it means. */
export class KestruneError extends Error {
  constructor(status, text, what = "") {
    super(`${what ? `${what}: ` : ""}${text} (status ${status})`);
    this.name = "KestruneError";
    this.status = status;
    this.text = text;
    this.what = what;
  }
}
