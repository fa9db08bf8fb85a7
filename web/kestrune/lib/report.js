// A state as the command line reports it: phases by their names, and what is to be said of it.
import { numberOf, optionsOf } from "./arguments.js";
import { KestruneError } from "./errors.js";
import { PROPERTIES } from "./phase.js";

function phaseOf(units, { name, fraction, x, molar_mass: molarMass, values }) {
  const shown = ([row, quantity]) => (values[row] === null ? null : units.fromSi(quantity, values[row], molarMass));
  const properties = Object.entries(PROPERTIES).map(([property, place]) => [property, shown(place)]);
  return { name, fraction, x: Float64Array.from(x), molarMass, ...Object.fromEntries(properties) };
}

/** As many phases as there are at T and P, plain data. */
export function report(mixture, given) {
  const { T, P, units } = optionsOf("report", given, ["T", "P", "units"]);
  const shownIn = mixture.unitsOf(units);
  const at = [shownIn.toSi("temperature", numberOf("T", T)), shownIn.toSi("pressure", numberOf("P", P))];
  const [module, handle] = mixture.native();
  const { status, phases, overall, notes } = JSON.parse(module.read("kw_report", handle, ...at));
  if (status !== 0) {
    const what = `report of ${mixture.title} at ${shownIn.label("T", "temperature", T)} and ${shownIn.label("P", "pressure", P)}`;
    throw new KestruneError(status, mixture.statusText(status), what);
  }
  return { T, P, phases: phases.map((p) => phaseOf(shownIn, p)), overall: phaseOf(shownIn, overall), notes };
}
