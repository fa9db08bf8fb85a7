// What the types promise; never run. tsc --noEmit --strict accepts it, and the marked lines are refused.
import { KestruneError, loadKestrune, type Phase } from "kestrune";
import { bareExports, MixtureRecord } from "kestrune/exports";

const kestrune = await loadKestrune({ onMessage: (line) => console.log(line) });
const gas = kestrune.mixture({ methane: 0.9, ethane: 0.1 }, { units: "C,bar" });
const one = gas.flash({ T: 20, P: 40 });
const beta: number = one.beta;
const density: number = one.liquid.density;
const many = gas.flash({ T: [20, 30], P: 40, phases: 2 });
const betas: Float64Array = many.beta;
const x: Float64Array[] = many.vapour.x;
const feeds: Float64Array = gas.flash({ T: 20, P: 40, z: [[1, 0], [0, 1]] }).T;
const phases: Phase<number>[] = [...one];
const dew: number = gas.water.dew({ P: 70, water: 60e-6 }).T;
const lines: Float64Array[] = gas.envelope({ quality: [0.5] }).curve.lines.map((l) => l.T);
const report: [string, number | null][] = gas.report({ T: 20, P: 40 }).phases.map((p) => [p.name, p.viscosity]);
const warnings: string[] = gas.hydrateRange({ inhibitor: "MEG", percent: 20 }).warnings;
// @ts-expect-error three of them
gas.flash({ T: 20, P: 40, H: 0 });
// @ts-expect-error no such phase
gas.properties({ T: 20, P: 40, phase: "solid" });
try {
  gas.bubble({ P: 500 });
} catch (error) {
  if (error instanceof KestruneError) console.log(error.status, error.text);
}
const status: number = bareExports(kestrune).MolecularWeight(1, [1], [16], new Float64Array(1));
console.log(beta, density, betas, x, feeds, phases, dew, lines, report, warnings, status, new MixtureRecord([], 1));
