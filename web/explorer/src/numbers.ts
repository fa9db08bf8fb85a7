// Numbers as the page writes them.

/** Six digits; with an exponent where the number is far from one. */
export function shown(value: number | null | undefined, digits = 6): string {
  if (value === null || value === undefined || !Number.isFinite(value)) return "-";
  if (value === 0) return "0";
  const size = Math.abs(value);
  return size >= 1e-4 && size < 1e6 ? value.toPrecision(digits) : value.toExponential(digits - 2);
}

/** A temperature or a pressure: two decimals less than that many digits need, no zeros behind the point. */
export const short = (value: number, digits = 6): string => String(Number(value.toPrecision(digits)));

export const unitSymbol = (unit: string): string => (unit === "C" || unit === "F" ? `\u00b0${unit}` : unit);

export const withUnit = (value: number, unit: string, digits = 6): string =>
  `${short(value, digits)} ${unitSymbol(unit)}`;

/** A column of CSV in the words of the command line: "temperature_C", "density_kg_m3". */
export const heading = (quantity: string, unit: string): string =>
  [quantity, unit]
    .join(" ")
    .trim()
    .replace(/[^A-Za-z0-9]+/g, "_")
    .replace(/_$/, "");

/** Whether the comma of "1,000" may part decimals or thousands. */
export const isUnclear = (text: string): boolean => /^[-+\u2212]?[1-9]\d{0,2},\d{3}(e[-+]?\d+)?%?$/i.test(text.trim());
