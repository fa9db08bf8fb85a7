/*
 * KVGasThermo: phase equilibria and properties of natural gases with PPR78. The 39 exports.
 *
 * Units: temperature K, pressure atm, energy cal/mol, entropy and heat capacity cal/(mol K), molar volume
 * cm3/mol, density g/cm3, unless a line says otherwise. Compositions are mole fractions, [count] of the
 * MixtureRecord. The flashes work on the feed divided by its sum; the property exports use the composition
 * as it is given.
 *
 * Every export but ConvertPPR78GroupData returns a StatusCode (status.h). Arguments that cannot be worked
 * with end the call at once with a status of the 9000 block, unless a status of its own is said below to belong
 * to them (111 for a feed that does not sum to one). Nothing thrown leaves the library, and the
 * floating-point environment of the host (x87 control word, MXCSR) is the same before and after a call. The one
 * exception is a sibling library that is missing: after a message the call ends with the non-continuable system
 * exception 0xEFFFFFFF, and a host that survives it has to restore its floating-point environment itself.
 * The property exports do not look at the FreeWaterFlag unless a line says so.
 *
 * Threads: calls may run at the same time on different MixtureRecords. A flash writes the flags byte of its
 * own record during the call. ConvertPPR78GroupData changes what every later call reads: never run it
 * while another call is under way.
 *
 * Stack: a call needs at most 256 kB of the stack of its thread, whatever the mixture; what a host's own routines
 * need comes on top of it.
 *
 * Time: a flash may spend 4e7/(count + 8)^2 evaluations of ln phi, not more than 100 000 and not less than 4 000,
 * of three phases at a vapour fraction twice as many, an envelope four times; settings cannot raise that. One with
 * composition derivatives counts as three (of many components as more), a new temperature as six. A flash that has
 * spent it ends with 112, one at a vapour fraction with 116; an envelope ends where it is, with 144 and the points up
 * to there. Critical points and the water exports are bounded by their iterations alone.
 *
 * "48 bytes" is what the arguments of an export take on the stack of a 32-bit process and the export removes from
 * it: 8 for a double by value, 4 for an integer or an address. For FlashLVatTP 2 * 8 + 8 * 4:
 *
 *   offset   0  8   16   20       24        28       32    36  40  44
 *            T  P   z    mixture  routines  options  beta  x   y   K
 *
 * A declaration in another language is right when its arguments add up to the number.
 *
 * "options" of the two-phase flashes: bit 0 set = cold start; clear = warm start from the result arguments
 * (an unusable estimate counts as a cold start). Of the three-phase flashes: bit 0 set = the result
 * arguments hold an estimate.
 */
#ifndef KESTRUNE_KVGASTHERMO_H
#define KESTRUNE_KVGASTHERMO_H

#include "kestrune/platform.h"
#include "kestrune/records.h"
#include "kestrune/status.h"
#include "kestrune/version.h"

KV_EXTERN_C_BEGIN

/* ---- Group data and molar mass ---------------------------------------------------------------- */

/*
 * Hands over the group decomposition of the components and the group interactions, once, before any other
 * calculation. The five buffers belong to the host, are filled here and read at every later call: keep them
 * alive. Calling again replaces the stored addresses. 24 bytes.
 *
 * nC       number of components
 * nG       number of groups, the host's choice
 * counts   [nG * nC] how often group k occurs in component i; one column of nG counts per component
 * A, B     [nG * nG] group interactions in MPa, column-major; only the strict upper triangle (k < l) is read
 * storage  six addresses of double buffers; [0] not used, [1] A in atm [nG * nG], [2] B in atm [nG * nG],
 *          [3] group fractions [nC * nG], [4] ratio B/A [nG * nG], [5] differences [nG * nC * nC]
 */
KV_API void KV_CALL ConvertPPR78GroupData(int32_t nC, int32_t nG, const int32_t* counts, const double* A,
                                          const double* B, double* const* storage);

/*
 * Molar mass of a mixture: sum of x[i] * M[i] in the unit of M; 0 for nc < 1, where x or M is null, and
 * where the sum is no number. Always returns 0. 16 bytes.
 */
KV_API StatusCode KV_CALL MolecularWeight(int32_t nc, const double* x, const double* M, double* mean);

/* ---- Flashes of two phases -------------------------------------------------------------------- */

/*
 * Liquid and vapour at temperature and pressure. 48 bytes.
 *
 * T        temperature, K, > 0              P  pressure, atm, > 0
 * z        [count] feed                      mixture  its record
 * routines may be null                       options  bit 0: 1 cold start, 0 warm start
 * beta     in/out vapour fraction, 0 .. 1 of the feed
 * x, y     [count] in/out liquid and vapour; a phase that is absent holds the incipient phase, the one of
 *          lowest tangent-plane distance (the feed again where no second phase can be told apart)
 * K        [count] out y[i] / x[i] of the arrays returned, of a single phase too, within 1e-15 .. 1e15; the latter
 *          also where x[i] is 0
 *
 * 0 = equilibrium found, one or two phases. Of two phases the vapour is the one that is packed less densely
 * (smaller co-volume over volume). A single phase is the vapour (beta 1) when its molar volume is above the
 * pseudo-critical one of the mixture, 3.9514 b, else the liquid (beta 0). With the FreeWaterFlag x is the whole
 * liquid: hydrocarbons with water up to the solubility limit, and all free water. Above 1.25 times the
 * pseudo-critical temperature (Kay) of the dry feed, hydrocarbons beside free water count as vapour however
 * dense they are; a fluid that is stable as one of the two only is called that. A feed with less than 1e-15 of
 * water is treated as with the flag clear, to the last bit. Of three phases the two of lowest Gibbs energy are
 * returned (with the flag, where hydrocarbons would form two liquids, one of the pairs; two liquids without a gas
 * are x and y in the order in which the rules have a state, not by packing). What is returned with 0 balances to
 * 1e-12 and has ln fugacities equal to 1e-8 (by a host's routine, and where what met CRIT could not be made
 * better: to the square root of CRIT).
 *
 * 112, 120: no answer; the results hold the last iterate. With the flag also where the rules of free water have
 * no state: solubility limits above about a fifth, hydrocarbons near their critical point. 9012: the model has no
 * digits there: |ln phi| of 1e7 or more of what is there, several phases below 1 K or above 1e6 K. Others: the
 * status of the fugacity routine.
 */
KV_API StatusCode KV_CALL FlashLVatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                      const ModelRoutines* routines, int32_t options, double* beta, double* x,
                                      double* y, double* K);

/*
 * At enthalpy (cal/mol) or entropy (cal/(mol K)) of one mole of feed and pressure. 60 bytes.
 *
 * H, S     of one mole of feed               P  pressure, atm, > 0
 * T        in/out, K; exactly 0 becomes 298.15. An estimate outside 60 .. 2000 K is not started from
 * beta, x, y  in/out as FlashLVatTP; a warm start begins with the flash at T from this estimate
 * HL, HV   out: molar enthalpy (entropy) of the liquid and of the vapour, 0 for a phase that is absent; at the
 *          root of lower Gibbs energy, so that the lighter one of two liquids has a liquid's value
 *
 * 0 = found: T is such that the phases add up to the value within 1e-9 of it (of R T or R where that is more),
 * and the state is that of FlashLVatTP there. Where the vapour grows at one temperature, or within a hair of
 * one (single components, azeotropes), its fraction is found. 112: no temperature between 3 and 10 000 K has
 * the value, it lies in the jump from one pair of phases to another (at a three-phase temperature), or no
 * convergence; 113: the search behind the main solver ran out of damping. Temperatures outside the range of a
 * heat-capacity correlation are no failure (1003 does not appear); other statuses of the pure-component library
 * come back as 1000 + n. Where the record's host has routines of its own for enthalpy or entropy, these are
 * called (ModelRoutines). With a liquid that splits in two (three phases in all) the two phases of lowest Gibbs
 * energy count, and an answer exists only where their enthalpy passes through the value.
 */
KV_API StatusCode KV_CALL FlashLVatHP(double H, double P, const double* z, MixtureRecord* mixture,
                                      const ModelRoutines* routines, int32_t options, double* T, double* beta,
                                      double* x, double* y, double* K, double* HL, double* HV);
KV_API StatusCode KV_CALL FlashLVatSP(double S, double P, const double* z, MixtureRecord* mixture,
                                      const ModelRoutines* routines, int32_t options, double* T, double* beta,
                                      double* x, double* y, double* K, double* SL, double* SV);

/*
 * At vapour fraction and pressure or temperature. 48 bytes.
 *
 * W        vapour fraction: 0 bubble point, 1 dew point; below 0 counts as 0, above 1 as 1
 * P, T     the first one given, > 0; the other in/out, an estimate not greater than 0 becomes 298.15 K or 1
 *          atm, as does a temperature below the least of column 11 of the components (200 K at most)
 * x, y, K  as of FlashLVatTP
 *
 * These two, and the two of three phases, look for water by its family code alone and know no retry.
 *
 * 0 = found: ln fugacities equal to 1e-8, and nothing splits off. Where several points exist a cold start
 * returns the one that is reached first from low pressure: the lower of two pressures, and of two dew
 * temperatures the higher. A warm start (estimate of T or P, x, y) stays on the branch of its estimate. 116: no
 * temperature (pressure) has this vapour fraction with a vapour and a liquid; T or P, x, y, K stay as they
 * were. 117: a point was found and is returned, but another phase splits off before it: a second liquid at low
 * temperature, mostly. With the FreeWaterFlag x is the whole liquid, and at W = 1 the incipient liquid may be
 * water.
 */
KV_API StatusCode KV_CALL FlashLVatWP(double W, double P, const double* z, MixtureRecord* mixture,
                                      const ModelRoutines* routines, int32_t options, double* T, double* x,
                                      double* y, double* K);
KV_API StatusCode KV_CALL FlashLVatWT(double W, double T, const double* z, MixtureRecord* mixture,
                                      const ModelRoutines* routines, int32_t options, double* P, double* x,
                                      double* y, double* K);

/* ---- Flashes of three phases ------------------------------------------------------------------ */

/*
 * Up to two liquids and a vapour at T and P (Michelsen 1982, 1994): the state of lowest Gibbs energy among one,
 * two and three fluid phases. 60 bytes.
 *
 * T, P       temperature, K, and pressure, atm, > 0
 * z          [count] feed; its sum is tested (111)
 * options    bit 0 set: the results hold an estimate, an unusable one is ignored
 * beta, V    in/out share of the feed in liquid A and in the vapour; the rest is liquid B
 * xA, xB, y  [count] in/out liquid A, liquid B, vapour; mole fractions below 1e-15 are written as 0
 * KLL, KLV   [count] out xA/xB and y/xA, within 1e-15 .. 1e15, which also stands where the phase below has none
 *            of a component
 *
 *   three phases        0 < beta, 0 < V, beta + V < 1; A is the lighter liquid, B the denser one
 *   vapour, one liquid  beta 0, the liquid in B whatever it is, xA and KLL zero, KLV = y/xB
 *   two liquids         V 0, y and KLV zero
 *   one liquid          V 0; beta 0 and the liquid in B with KLL 1e15; with free water beta 1, the liquid in A
 *   a vapour alone      V 1, beta 0, xA and xB zero, KLV 1e15
 *
 * Of two phases the less densely packed one (b/v) is called vapour above the critical volume of the equation
 * (3.9514 b) or its own pseudo-critical temperature (1.25 times that beside an aqueous liquid), else it is a
 * liquid. With the FreeWaterFlag the liquid of FlashLVatTP is taken apart: A hydrocarbons at their solubility
 * limit, B water.
 *
 * 0 = found: ln fugacities equal to 1e-8, and nothing splits off. 111: the feed does not sum to one within
 * sum_tolerance. 112, 114, 120: no answer, results hold the best state seen. 118: three phases, and a fourth
 * would split off; with the FreeWaterFlag also where hydrocarbons would form two liquids, of which its rules
 * know one. With flashes of the host: 134, 135 an answer of two phases or one after a liquid-vapour flash
 * (entry 2) with a status that ends flashes, 136 what a flash left was nothing to start from, or the
 * liquid-liquid flash (entry 1) had such a status.
 */
KV_API StatusCode KV_CALL FlashLLVatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                       const ModelRoutines* routines, int32_t options, double* beta, double* V,
                                       double* xA, double* xB, double* y, double* KLL, double* KLV);

/*
 * At enthalpy (cal/mol) or entropy (cal/(mol K)) of one mole of feed and pressure. 76 bytes.
 *
 * H, S        of one mole of feed             P  pressure, atm, > 0
 * T           in/out, K; 0 becomes 298.15
 * beta .. KLV as of FlashLLVatTP
 * HA, HB, HV  out: molar value of A, B and the vapour, 0 for a phase that is absent
 *
 * Where temperature stands still while the value changes, as beside three phases of two components, the
 * amounts are what is solved for. 112: no temperature between 3 and 10 000 K has the value, or it was not
 * found.
 */
KV_API StatusCode KV_CALL FlashLLVatHP(double H, double P, const double* z, MixtureRecord* mixture,
                                       const ModelRoutines* routines, int32_t options, double* T, double* beta,
                                       double* V, double* xA, double* xB, double* y, double* KLL, double* KLV,
                                       double* HA, double* HB, double* HV);
KV_API StatusCode KV_CALL FlashLLVatSP(double S, double P, const double* z, MixtureRecord* mixture,
                                       const ModelRoutines* routines, int32_t options, double* T, double* beta,
                                       double* V, double* xA, double* xB, double* y, double* KLL, double* KLV,
                                       double* SA, double* SB, double* SV);

/*
 * At vapour fraction and pressure or temperature. 60 bytes.
 *
 * W           vapour fraction; 0: bubble point, y is the vapour about to appear over one liquid (beta 1, in A) or
 *             two; 1: dew point, B is the liquid about to appear
 * P, T        the first one given, > 0; the other in/out, an estimate not greater than 0 counts as none
 * beta .. KLV as of FlashLLVatTP with V = W
 *
 * 116: no such state was met; 112: not found; the results then stay as they were. 117: with the FreeWaterFlag, as
 * of FlashLVatWP.
 */
KV_API StatusCode KV_CALL FlashLLVatWP(double W, double P, const double* z, MixtureRecord* mixture,
                                       const ModelRoutines* routines, int32_t options, double* T, double* beta,
                                       double* xA, double* xB, double* y, double* KLL, double* KLV);
KV_API StatusCode KV_CALL FlashLLVatWT(double W, double T, const double* z, MixtureRecord* mixture,
                                       const ModelRoutines* routines, int32_t options, double* P, double* beta,
                                       double* xA, double* xB, double* y, double* KLL, double* KLV);

/*
 * Two liquids at T and P, without a vapour: each takes its liquid root. 48 bytes.
 *
 * options  bit 0 set: beta, liquid1 and liquid2 hold an estimate
 * beta     in/out share of liquid 2: z = (1 - beta) liquid1 + beta liquid2
 * liquid1  [count] in/out the denser one
 * liquid2  [count] in/out the lighter one
 * K        [count] out liquid2 / liquid1, 1e15 where liquid1 lacks a component
 *
 * A component of which z as it is given has more than 1 - the pure tolerance counts as the whole feed, so that z should be
 * in fractions here: one liquid then, with K = 1e-15; of a feed that does not split K is 0. With the FreeWaterFlag water
 * beyond the solubility limit of the others is a liquid of its own.
 */
KV_API StatusCode KV_CALL FlashLLatTP(double T, double P, const double* z, MixtureRecord* mixture,
                                      const ModelRoutines* routines, int32_t options, double* beta,
                                      double* liquid1, double* liquid2, double* K);

/* ---- Envelope and critical point -------------------------------------------------------------- */

/*
 * Outline of the one-phase region (bubble and dew curves), or a quality line, by the equation of state: the
 * FreeWaterFlag is not looked at. 100 bytes. All outputs are zeroed at entry.
 *
 * options    0
 * first_P    first pressure, atm (0: 1)         max_P  highest pressure, atm (0: 2000)
 * min_T      lowest temperature, K (0: 50); no point lies outside these three
 * points     wanted, evenly spaced in length of the curve with both axes (ln T, ln P) scaled to it; ends,
 *            critical points and extremes are among them; 0: as traced
 * capacity   of the three point arrays
 * fraction   1.0: bubble and dew; between 0 and 1: the line of that vapour fraction, to the critical point
 * accuracy   0, or 1e-10 and more; every point is converged to 1e-10 in ln fugacities whatever it says
 * T, P       [capacity] out, K and atm
 * kind       [capacity] out: 1.0 dew, 0.0 bubble, 0.5 critical point, 4.0 two liquids (below), the fraction on
 *            a quality line. 2.0 more (3.0, 2.0, 6.0, 2.0 + fraction): another phase splits off before the
 *            point, and no branch was found that bounds the one-phase region
 * number_of_points, number_of_critical_points  out
 * cricondentherm_T, _P, cricondenbar_T, _P     out, K and atm: highest extreme of T and of P along the dew and
 *            bubble branches (along the line, of a quality line), solved for; 0 where they have none between
 *            their ends
 *
 * The curve begins with the dew point at first_P and passes through the critical points; where it does not come
 * back to first_P a second part begins with the bubble point there. Where a third phase splits off it goes on
 * along the branch of that phase. All stable critical points on the curve are listed; with a host's fugacity
 * routine they are interpolated. A single component, or several entries of the same constants and groups, has
 * its vapour-pressure curve (kind: the fraction) up to its critical point, which then is both extremes.
 *
 * kind 4.0: the feed is a dense fluid beside which a second dense fluid begins to form. It belongs to whole
 * branches: from a corner, a critical point between two liquids or a pressure that is the lowest along the
 * curve to the next of these or to the end, both phases are packed more densely than a pure component at its
 * critical point (b/V above 1/3.95) at every point traced. As a rule such a line is steep and lies at low
 * temperature. A dew or bubble branch has a thinner phase somewhere.
 *
 * 0 = the curve came back to first_P, or to a max_P or min_T that was given. 116: no point at first_P. 140,
 * 141: it ended at the default max_P (open) or min_T. 142: more points than capacity: the first ones of them as
 * traced, capacity points over the whole curve when a number was wanted. 143: some points are marked 2.0 more.
 * 144: it could not be followed to its end. 146: a part of it has the kind 4.0. 9009: a limit, points,
 * capacity, fraction or accuracy is negative, not finite, out of range, or first_P is not below max_P. Others:
 * of the model. With more than one of 140 .. 146 the first in the order 144, 142, 143, 146, 140, 141 is
 * returned.
 */
KV_API StatusCode KV_CALL PhaseEnvelope(const double* z, MixtureRecord* mixture, const ModelRoutines* routines,
                                        int32_t options, double first_P, double max_P, double min_T,
                                        int32_t points, int32_t capacity, double fraction, double accuracy,
                                        double* T, double* P, double* kind, int32_t* number_of_points,
                                        int32_t* number_of_critical_points, double* cricondentherm_T,
                                        double* cricondentherm_P, double* cricondenbar_T,
                                        double* cricondenbar_P);

/*
 * Critical point of a mixture by the equation of state. 28 bytes.
 *
 * options  0
 * Tc, Pc   out, K and atm
 * Vc, Zc   out, cm3/mol, and the compressibility factor
 *
 * 0 = found: of several stable critical points that of highest temperature. A single component returns Tc, Pc
 * and, where it is known, Vc of its table. 145: the mixture has no stable critical point. The results are
 * written for 0 only.
 */
KV_API StatusCode KV_CALL CriticalPoint(const double* z, MixtureRecord* mixture, int32_t options, double* Tc,
                                        double* Pc, double* Vc, double* Zc);

/* ---- Water and hydrates ----------------------------------------------------------------------- */

/*
 * method  1 (or 0): balance of fugacities of water in the gas (PPR78; k_ij of water for a gas: Soreide and
 *         Whitson 1992) and in liquid water with dissolved CO2 and H2S, or ice; 150 to 640 K, to 2000 atm
 *         2: chart correlation with acid-gas correction (Bukacek 1955, Maddox 1974); 233.15 to 510.93 K, to
 *         680.46 atm, and without group data; others: KV_SPECIFICATION
 * routes  0                                   unused  not read
 *
 * KV_NO_WATER without a component that is water (CAS 7732-18-5); KV_NO_WATER_LIMIT (4) where the gas takes up
 * any amount of water; KV_WATER_RANGE outside the range of the method. Dew points: KV_FEED_SUM where the feed,
 * an empty one among them, does not sum to one, and KV_NO_WATER, in front of the checks of the conditions;
 * KV_NOT_CONVERGED after ITEMAX + 1 updates; this or KV_ZERO_SLOPE where there is no solution.
 */
/* Dew temperature at P. T in: a start, where it is in range; out: the result, or the last temperature. 36
 * bytes. */
KV_API StatusCode KV_CALL WaterDewTemperature(double P, const double* z, int32_t method, int32_t routes,
                                              int32_t unused, MixtureRecord* mixture, int32_t reserved,
                                              double* T);
/*
 * Dew pressure at T. P in: a start, 1 atm where it is not within 0 .. 1e10; out: the result, or the last
 * pressure. A start at which the content is right within 1e-8 comes back unchanged. KV_ZERO_SLOPE: the content
 * does not depend on the pressure. 36 bytes.
 */
KV_API StatusCode KV_CALL WaterDewPressure(double T, const double* z, int32_t method, int32_t routes,
                                           int32_t unused, MixtureRecord* mixture, int32_t reserved, double* P);
/*
 * Dew temperatures at pressures evenly spaced in ln P from min_P (0: 1 atm) to max_P (0: 200 atm). T, P, status
 * [points], T 0 where there is none; found: the number of points with status 0. KV_OK when there is one, else
 * the status of the first. 60 bytes.
 */
KV_API StatusCode KV_CALL WaterDewLine(const double* z, int32_t method, int32_t routes, int32_t unused,
                                       MixtureRecord* mixture, int32_t reserved, double min_P, double max_P,
                                       int32_t points, double* T, double* P, int32_t* status, int32_t* found);
/*
 * water_fraction of the gas saturated at T and P; water_content in mg per normal m3 of it (0 C, 1 atm, ideal
 * gas). Both 0 on failure. z with or without water. 36 bytes.
 */
KV_API StatusCode KV_CALL Humidity(double T, double P, int32_t method, const double* z, MixtureRecord* mixture,
                                   double* water_fraction, double* water_content);
/*
 * wet [count]: the gas saturated with water, dry components in the proportions of z; may be z; left alone on
 * failure. method_switch 1: method 1, and method 2 where that ends with a status other than -1, 0, 1 and 4. 44
 * bytes.
 */
KV_API StatusCode KV_CALL WetGasComposition(double T, double P, const double* z, int32_t method_switch,
                                            int32_t method, int32_t routes, MixtureRecord* mixture,
                                            int32_t reserved, double* wet);
/*
 * Hydrate formation curve of a gas by its gravity, 253.15 K to 200 atm without inhibitor. Towler and Mokhatab
 * 2005, Hammerschmidt 1934. 44 bytes.
 *
 * kind     0 none, 1 methanol, 2 NaCl, 3 KCl, 4 CaCl2, 5 of molar mass M
 * M        g/mol, of kind 5 only; KV_INHIBITOR_MASS where it is not positive
 * percent  by mass of the inhibitor in the aqueous solution
 * points   0 or less: nothing is read or written
 * T, P     [points] out, K and atm
 *
 * Nothing else is checked: what the formula gives for a gas without a gravity is written, though no number.
 */
KV_API StatusCode KV_CALL HydrateLine(const double* z, int32_t kind, double M, double percent, int32_t points,
                                      MixtureRecord* mixture, int32_t unused, double* T, double* P);

/* ---- Properties of one phase ------------------------------------------------------------------ */

/*
 * Where the phase asked for (Gas.., Liquid..) has no root of its own, the only root there is serves.
 *
 * Ideal-gas parts come from the pure-component library, for the components that are present (mole fraction
 * above 1e-15) and for no others; so do the low-pressure viscosities and conductivities. Its statuses come back as
 * 1000 + n: with 1003 (temperature outside the range of a correlation, which is then continued safely) the outputs
 * are filled all the same; with 1001, 1002 and 1004 they are 0.
 */

/*
 * Gas at T, P against the normal state (0 C, 1 atm). 40 bytes.
 *
 * Z, Z_normal     compressibility factors at T and P and at the normal state
 * density_normal  kg/m3 at the normal state; 0 with KV_COMPONENT_DATA without a molar mass, the others being filled
 * normal_volume   normal m3 in one m3 at T and P
 */
KV_API StatusCode KV_CALL GasN(double T, double P, const double* x, MixtureRecord* mixture, double* Z,
                               double* Z_normal, double* density_normal, double* normal_volume);

/*
 * Mass density, g/cm3, with d/dT (g/cm3/K), d/dP (g/cm3/atm) and d2/dTdP at constant composition. Water is that
 * of the equation of state, with and without FreeWaterFlag. 40 bytes.
 */
KV_API StatusCode KV_CALL LiquidDensity_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                              double* density, double* d_dT, double* d_dP, double* d2_dTdP);
KV_API StatusCode KV_CALL GasDensity_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                           double* density, double* d_dT, double* d_dP, double* d2_dTdP);

/*
 * Molar enthalpy and free enthalpy (H - T S), cal/mol; molar entropy, cal/(mol K). Zero point: every component
 * as an ideal gas at 298.15 K, for the entropy at 1 atm. 28 bytes.
 *
 * With the FreeWaterFlag set, any water (family code 20) in a liquid, from a mole fraction of 1e-15 upwards, is
 * liquid water beside the others: water has its enthalpy of vaporisation and its vapour pressure, the equation
 * of state sees the others alone, their fractions divided by 1 - x_w. The solubility limit plays no part, so
 * that H and S are continuous where water saturates. A phase with less water is the same with and without the
 * flag.
 *
 * Without the flag, water and ammonia in one phase have an enthalpy of mixing, for which their molar masses are
 * needed (KV_COMPONENT_DATA).
 */
KV_API StatusCode KV_CALL LiquidMolarEnthalpy_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                    double* value);
KV_API StatusCode KV_CALL GasMolarEnthalpy_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                 double* value);
KV_API StatusCode KV_CALL LiquidMolarEntropy_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                   double* value);
KV_API StatusCode KV_CALL GasMolarEntropy_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                double* value);
KV_API StatusCode KV_CALL LiquidMolarFreeEnthalpy_PPR78(double T, double P, const double* x,
                                                        MixtureRecord* mixture, double* value);
KV_API StatusCode KV_CALL GasMolarFreeEnthalpy_PPR78(double T, double P, const double* x,
                                                     MixtureRecord* mixture, double* value);

/*
 * The same with derivatives as the mask asks (KvDerivative). d_dn[count] may be null without its bit: entry j
 * is the derivative of the molar value with n_j at constant T, P and other mole numbers for one mole in total,
 * so that value + d_dn[j] is the partial molar quantity and the sum of x[j] d_dn[j] is 0. For a component that
 * is absent it is the limit of a trace (for the entropy, whose limit is infinite, with ln x at 1e-15); its heat
 * capacity is asked for only here, and counts as 0 when it is not known. Beside liquid water (see above) with
 * nothing else every trace is alone; water that is absent is a component like any other. The enthalpy and d_dn
 * of the entropy are analytic; d_dT and d_dP of the entropy are differences of it, good to about 1e-9 relative,
 * less within 1e-5 of T of the end of a root, and KV_NOT_FINITE where no step is small enough. 44 bytes.
 */
KV_API StatusCode KV_CALL LiquidMolarEnthalpy_Derivatives_PPR78(double T, double P, const double* x,
                                                                MixtureRecord* mixture, int32_t mask,
                                                                double* value, double* d_dT, double* d_dP,
                                                                double* d_dn);
KV_API StatusCode KV_CALL GasMolarEnthalpy_Derivatives_PPR78(double T, double P, const double* x,
                                                             MixtureRecord* mixture, int32_t mask,
                                                             double* value, double* d_dT, double* d_dP,
                                                             double* d_dn);
KV_API StatusCode KV_CALL LiquidMolarEntropy_Derivatives_PPR78(double T, double P, const double* x,
                                                               MixtureRecord* mixture, int32_t mask,
                                                               double* value, double* d_dT, double* d_dP,
                                                               double* d_dn);
KV_API StatusCode KV_CALL GasMolarEntropy_Derivatives_PPR78(double T, double P, const double* x,
                                                            MixtureRecord* mixture, int32_t mask, double* value,
                                                            double* d_dT, double* d_dP, double* d_dn);

/*
 * ln phi[count] of a phase with d/dT[count] (1/K), d/dP[count] (1/atm) and d/dn[count * count] as the mask
 * asks: entry (i, j) = d ln phi_i / d n_j for one mole in total, component i fastest. "option" is 2.
 * Where the phase asked for has no root of its own, the only root there is serves. 48 bytes.
 */
KV_API StatusCode KV_CALL LiquidPhi_Derivatives_PPR78(double T, double P, const double* x,
                                                      MixtureRecord* mixture, int32_t option, int32_t mask,
                                                      double* ln_phi, double* d_dT, double* d_dP, double* d_dn);
KV_API StatusCode KV_CALL GasPhi_Derivatives_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                   int32_t option, int32_t mask, double* ln_phi, double* d_dT,
                                                   double* d_dP, double* d_dn);

/*
 * Heat capacities of a gas and what follows from them. 40 bytes.
 *
 * Cp, Cv          cal/(mol K)
 * speed_of_sound  m/s; 0 with KV_COMPONENT_DATA without a molar mass and with KV_NOT_FINITE where it is imaginary,
 *                 the others being filled
 * joule_thomson   K/atm
 *
 * Where the k_ij change steeply with temperature (water in dense hydrocarbons) the model's Cp or Cv can be negative.
 * Such values are returned as they are, with status 0.
 */
KV_API StatusCode KV_CALL GasSpecificHeat_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                double* Cp, double* Cv, double* speed_of_sound,
                                                double* joule_thomson);

/*
 * Viscosity in cP and thermal conductivity in W/(m K) of a gas: low-pressure values of the components from the
 * pure-component library, mixed, and a correction for the density. Outside the range of a component's
 * correlation (1003) its corresponding-states curve continues it. 28 bytes.
 */
KV_API StatusCode KV_CALL GasDynamicViscosity_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                    double* viscosity);
KV_API StatusCode KV_CALL GasThermalConductivity_PPR78(double T, double P, const double* x,
                                                       MixtureRecord* mixture, double* conductivity);

KV_EXTERN_C_END

#endif
