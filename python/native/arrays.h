/*
 * Kestrune for arrays of states: a C interface for hosts that want thousands of flashes in one call, such as the Python
 * package. It opens KVGasThermo at run time as every host does and brings the databank and the mixtures of the command
 * line with it.
 *
 * Units are SI: K, Pa, J/mol, J/(mol K), kg/m3, m3/mol, m/s, Pa s, W/(m K), K/Pa, 1/Pa, mole fractions. Arrays of count
 * states are contiguous; compositions are [count * nc], the component fastest, nc the components of the mixture.
 *
 * Every state starts cold: a result depends on its state alone, to the last bit, and not on threads or neighbours.
 *
 * Errors: a function that calculates returns 0, or -1 with a message in text (size bytes, with its zero). A function that
 * writes a text returns its length without the zero, which may be above size - 1 (then it is cut), or -1 with the
 * message instead. Statuses of single states are those of kestrune/status.h; what has none of 0 and 1003 is NaN.
 *
 * Threads: every function may be called from several threads at once. The group data of the library are one per process:
 * calls on one mixture run together, a call on another waits its turn.
 */
#ifndef KESTRUNE_ARRAYS_H
#define KESTRUNE_ARRAYS_H

#include <stdint.h>

#if defined(_WIN32)
#define KA_API __declspec(dllexport)
#else
#define KA_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct KaMixture KaMixture;

/* Opens the calculation library, its siblings beside it; once in a process, again with the same path does nothing. */
KA_API int32_t ka_open(const char* library, char* text, int32_t size);

/* Version of the build, "0.2.0". */
KA_API const char* ka_version(void);

/* Text of a status, never null. */
KA_API const char* ka_status_text(int32_t status);

/* JSON of the components of the databank that contain the filter text: name, formula, cas, constants. */
KA_API int32_t ka_components(const char* filter, char* text, int32_t size);

/* JSON of a unit system by name ("si", "C,bar", "C,bar,kJ/kmol"): {"temperature": {"name", "factor", "offset", "per_mass"}, ...};
 * value in the base unit = (value + offset) * factor, per mass times the molar mass in kg/mol. */
KA_API int32_t ka_units(const char* system, char* text, int32_t size);

/*
 * A mixture from what the command line reads: the text of a mixture file, JSON or lines, or "methane=0.9,ethane=0.1".
 * Null with a message in text.
 *
 * basis         "mole", "mass" or "" for what the text says
 * set           "2022" or "original"
 * allow_missing 1: group interactions without a published value count as zero at any amount
 * with_water    1: water is one of the components, of amount 0 where the text has none
 * free_water    1: water may form a phase of its own; solubility "A,B" of exp(A - B/T) or ""
 * settings      "crit=1e-12,itemax=100" or ""
 */
KA_API KaMixture* ka_mixture(const char* source, const char* basis, const char* set, int32_t allow_missing,
                             int32_t with_water, int32_t free_water, const char* solubility,
                             const char* settings, char* text, int32_t size);
/* Frees a mixture on which no call is under way. */
KA_API void ka_free(KaMixture* mixture);
/* JSON: title, set, z, molar_mass, given_sum, notes and the components with their constants. */
KA_API int32_t ka_describe(const KaMixture* mixture, char* text, int32_t size);

enum KaGiven { KA_TP = 0, KA_HP = 1, KA_SP = 2, KA_WP = 3, KA_WT = 4 };

typedef struct KaFlash {
  int32_t given;   /* KaGiven */
  int32_t phases;  /* 2: liquid and vapour; 3: up to two liquids and a vapour */
  int64_t count;   /* states */
  int32_t threads; /* 0: one per processor */
  int32_t reserved;
  const double *first,
      *second;         /* [count] in the order of the name: T, P; H, P; S, P; vapour fraction, P or T */
  const double* z;     /* [count * nc], or null: that of the mixture */
  double *T, *P;       /* [count] out */
  double* fraction[3]; /* [count] out: vapour, liquid, second liquid; [2] is null with two phases */
  double* x[3];        /* [count * nc] out, NaN for a phase that is absent */
  int32_t* status;     /* [count] out */
} KaFlash;

/* Of one liquid the second is absent; of two the first one is the lighter. A phase about to form at vapour fraction 0 or
 * 1 has its composition and the fraction 0. */
KA_API int32_t ka_flash(KaMixture* mixture, const KaFlash* job, char* text, int32_t size);

/* Rows of ka_properties, and the bits (1 << row) of those wanted. */
enum KaProperty {
  KA_Z,
  KA_DENSITY,
  KA_VOLUME,
  KA_ENTHALPY,
  KA_ENTROPY,
  KA_FREE_ENTHALPY,
  KA_CP,
  KA_CV,
  KA_SOUND,
  KA_JOULE_THOMSON,
  KA_COMPRESSIBILITY,
  KA_VISCOSITY,
  KA_CONDUCTIVITY,
  KA_NORMAL_DENSITY,
  KA_NORMAL_VOLUME,
  KA_STANDARD_DENSITY,
  KA_STANDARD_VOLUME,
  KA_STANDARD_CUBIC_FEET,
  KA_PROPERTY_COUNT
};

enum { KA_LIGHT = 3 };

/*
 * Properties of the phase at T, P [count]: 1 gas, 2 liquid, 3 the lighter phase of a flash, which is a gas unless it is
 * packed like a liquid and the liquid root has the lower free enthalpy.
 *
 * x       [count * nc], or null: that of the mixture; a state whose T or first fraction is NaN has NaN and status 0
 * values  [KA_PROPERTY_COUNT * count] out, a row per property; rows that are not wanted may be anything
 * status  [count] out: the first one of those wanted that has no value
 */
KA_API int32_t ka_properties(KaMixture* mixture, int32_t phase, int64_t count, const double* T, const double* P,
                             const double* x, int32_t wanted, int32_t threads, double* values, int32_t* status,
                             char* text, int32_t size);
/* ln of the fugacity coefficients [count * nc]. */
KA_API int32_t ka_ln_phi(KaMixture* mixture, int32_t phase, int64_t count, const double* T, const double* P,
                         const double* x, int32_t threads, double* ln_phi, int32_t* status, char* text,
                         int32_t size);
/* 1 where a liquid counts as aqueous: water, alcohols, glycols and ammonia above a half, water at least 1 %. */
KA_API int32_t ka_aqueous(KaMixture* mixture, int64_t count, const double* x, int8_t* aqueous, char* text,
                          int32_t size);

/* Bubble and dew curve (fraction 1) or a quality line. limits: first and highest pressure, lowest temperature, 0 for the
 * defaults. T, P, kind [capacity] as PhaseEnvelope; found: points. extremes: cricondentherm T, P, cricondenbar T, P,
 * 0 where there are none. */
KA_API int32_t ka_envelope(KaMixture* mixture, double fraction, const double* limits, int32_t points,
                           int32_t capacity, double* T, double* P, double* kind, int32_t* found,
                           double* extremes, int32_t* status, char* text, int32_t size);
/* values: T, P, molar volume, Z of the critical point. */
KA_API int32_t ka_critical(KaMixture* mixture, double* values, int32_t* status, char* text, int32_t size);
/* k_ij at T [nc * nc]. */
KA_API int32_t ka_kij(KaMixture* mixture, double T, double* kij, char* text, int32_t size);

/*
 * Water in a gas, by the equation of state (method 1) or by chart (2). z as of ka_flash, water among its components.
 * ka_saturation: mole fraction of water at saturation at T and P, and mg in one normal m3.
 * ka_water_dew: the dew temperature at pressures (at_pressure 1), or the dew pressure at temperatures (0).
 */
KA_API int32_t ka_saturation(KaMixture* mixture, int32_t method, int64_t count, const double* T,
                             const double* P, const double* z, int32_t threads, double* fraction,
                             double* content, int32_t* status, char* text, int32_t size);
KA_API int32_t ka_water_dew(KaMixture* mixture, int32_t method, int32_t at_pressure, int64_t count,
                            const double* given, const double* z, int32_t threads, double* found,
                            int32_t* status, char* text, int32_t size);
/* Hydrate curve of the gas, [count] points; inhibitor and its molar mass as HydrateLine. */
KA_API int32_t ka_hydrate(KaMixture* mixture, int32_t inhibitor, double molar_mass, double percent,
                          int32_t count, double* T, double* P, int32_t* status, char* text, int32_t size);

#ifdef __cplusplus
}
#endif

#endif
