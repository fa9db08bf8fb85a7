/*
 * What the npm package calls beside python/native/arrays.h, in its manner: 0 or the length of a text, or -1 with a message in
 * text. Units are SI.
 */
#ifndef KESTRUNE_WEB_H
#define KESTRUNE_WEB_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* JSON of a component of the databank: name, formula, cas, molar_mass (g/mol), Tc, Pc, other names, and its properties: those
 * that the library of pure components has a correlation of, each with index, title, quantity, T_min, T_max (K) and source. */
__attribute__((visibility("default"))) int32_t kw_pure(const char* component, char* text, int32_t size);
/* Values of the property with that index at T[count]; NaN where there is none. outside: 1 where the correlation is continued
 * beyond its range. */
__attribute__((visibility("default"))) int32_t kw_pure_values(const char* component, int32_t index,
                                                              int32_t count, const double* T, double* values,
                                                              int8_t* outside, char* text, int32_t size);
/* Temperatures T[count] at which the component boils under P[count]; NaN outside the range of its vapour pressure. */
__attribute__((visibility("default"))) int32_t kw_pure_boiling(const char* component, int32_t count,
                                                               const double* P, double* T, char* text,
                                                               int32_t size);

struct KaMixture;
/* JSON of the state at T and P as the command line reports it: status; phases, each with name, fraction (of the moles), x,
 * molar_mass (g/mol) and values in the order of KaProperty, null where there is none; overall, the same of all of them
 * together; notes, what is to be said of the state. */
__attribute__((visibility("default"))) int32_t kw_report(struct KaMixture* mixture, double T, double P,
                                                         char* text, int32_t size);
/* JSON of what the hydrate correlation was made from: T and P, the ends of its ranges without inhibitor; warnings, what the gas
 * and its inhibitor (kind of HydrateLine, percent by mass of the solution) are outside of it. */
__attribute__((visibility("default"))) int32_t kw_hydrate_range(const struct KaMixture* mixture,
                                                                int32_t inhibitor, double percent, char* text,
                                                                int32_t size);

#ifdef __cplusplus
}
#endif

#endif
