/*
 * Records that a host shares with the library. Packed: the offsets are part of the interface, and this
 * header asserts every one of them on 32- and 64-bit targets.
 *
 * The library reads these records and the arrays they point to during a call and keeps no address of
 * them afterwards (the buffers of ConvertPPR78GroupData are the one exception, see kvgasthermo.h).
 */
#ifndef KESTRUNE_RECORDS_H
#define KESTRUNE_RECORDS_H

#include <stddef.h>
#include <stdint.h>

#include "kestrune/platform.h"
#include "kestrune/status.h"

/*
 * ComponentTable: doubles, column-major, count rows and at least KV_TABLE_COLUMNS columns.
 * Entry (component i, column k), both from 1, lies at [(k - 1) * count + (i - 1)].
 * A column that is 0 or not finite counts as unknown: what needs it falls back and never divides by it.
 * Tc, Pc and the acentric factor are needed by every calculation with the equation of state.
 *
 * Columns 12 to 18 are for a component that the pure-component library does not know. They are read only where
 * column 43 holds no CAS number and Tmin and Tmax are a range: the ideal-gas heat capacity, J/(mol K), is then
 * A + B T + C T^2 + D T^3 + E T^4 (T in K) from Tmin to Tmax, and stays at its value at the end beyond, with
 * KV_PURE_RANGE. Such a component has its low-pressure viscosity and conductivity from Tc, Pc and the molar mass.
 */
enum KvTableColumn {
  KV_COL_DATABANK_NUMBER = 1, /* running number in the host's databank, not read */
  KV_COL_MOLAR_MASS = 2,      /* g/mol */
  KV_COL_MELTING_POINT = 3,   /* triple or melting point, K */
  KV_COL_BOILING_POINT = 4,   /* normal boiling point, K */
  KV_COL_TC = 5,              /* critical temperature, K */
  KV_COL_PC = 6,              /* critical pressure, atm */
  KV_COL_VC = 7,              /* critical volume, cm3/mol */
  KV_COL_ZC = 8,              /* critical compressibility factor */
  KV_COL_OMEGA = 9,           /* acentric factor */
  KV_COL_DIPOLE = 10,         /* dipole moment, debye */
  KV_COL_TMIN_PSAT = 11,      /* lowest temperature of its vapour-pressure correlation, K */
  KV_COL_CP_A = 12,           /* own ideal-gas heat capacity: A, and B to E in the columns behind it */
  KV_COL_CP_TMIN = 17,        /* range of it, K */
  KV_COL_CP_TMAX = 18,
  KV_COL_FAMILY = 41, /* family code, KV_FAMILY_WATER marks water */
  KV_COL_CAS = 43     /* CAS number as a whole number: 7732185 is 7732-18-5 */
};
#define KV_TABLE_COLUMNS 43
#define KV_FAMILY_WATER 20.0

/* Largest component count the library works with. */
#define KV_MAX_COMPONENTS 10000

/* Bit 0 of MixtureRecord.flags: water, when present, may form a free-water phase of its own. */
enum { FreeWaterFlag = 1 };

#pragma pack(push, 1)
typedef struct MixtureRecord {
  int32_t count;       /*   0  number of components, 1 .. KV_MAX_COMPONENTS */
  const double* table; /*   4  ComponentTable, [43 * count]; 8 bytes wide on 64-bit targets */
#if UINTPTR_MAX > 0xffffffffu
  uint8_t reserved8[4]; /*  12  not read */
#else
  uint8_t reserved8[8]; /*   8  not read */
#endif
  uint8_t flags;          /*  16  bit 0: FreeWaterFlag; cleared during some calls, always put back */
  double solubility_a;    /*  17  water solubility limit in the hydrocarbon liquid */
  double solubility_b;    /*  25  s(T) = exp(solubility_a - solubility_b / T), capped at 1; B in K */
  uint8_t reserved33[28]; /* 33  not read */
  double CRIT;            /*  61  convergence criterion on the iteration error (a sum of squares) */
  double CLIM;            /*  69  error level below which the method may be changed, 0 = never */
  double EPS;             /*  77  stagnation tolerance on the relative change of the error */
  int32_t ITEMAX;         /*  85  iteration limit, up to KV_MOST_ITERATIONS */
  int32_t NEW;            /*  89  iterations granted to the global method, in units of (count + 1) */
  int32_t trace_flag;     /*  93  non-zero: write the trace; 1 is the short trace of the three-phase flash */
  int32_t trace_unit;     /*  97  6 standard output, 0 standard error, n the file fort.n */
  double relaxation;      /* 101  factor of the successive-substitution update, 1 = full step */
  double pure_tolerance;  /* 109 a feed with one fraction above 1 - pure_tolerance counts as pure */
  double sum_tolerance;   /* 117  largest |sum of the feed - 1| where a calculation tests it, 0 = exact */
} MixtureRecord;
#pragma pack(pop)

/*
 * Settings that a careful host uses. They are also the settings of a block (bytes 61 to 124) that is zero
 * throughout, as in a record that was only cleared; any other block is taken as it stands. Two things are not:
 * more iterations than KV_MOST_ITERATIONS count as that many, and a relaxation factor or sum_tolerance that is
 * not finite counts as its default.
 */
#define KV_MOST_ITERATIONS 10000
#define KV_DEFAULT_CRIT 1e-12
#define KV_DEFAULT_CLIM 1e10
#define KV_DEFAULT_EPS 1e-6
#define KV_DEFAULT_ITEMAX 200
#define KV_DEFAULT_NEW 0
#define KV_DEFAULT_RELAXATION 1.0
#define KV_DEFAULT_PURE_TOLERANCE 1e-12
#define KV_DEFAULT_SUM_TOLERANCE 1e-6

/*
 * Model routines record: fourteen routine addresses with the library's calling convention. The record may
 * be null and so may any entry; the library's own PPR78 routine then stands in its place, which is also
 * the fast path. entry[k - 1] is entry k; the entries that are not named here are not called. An entry that is
 * the library's own export counts as null; behind a routine that forwards to it, it gives the same answers.
 *
 * Statuses of routines: at or below 50, 201, 202 and KV_PURE_RANGE go on with what was written; any other ends
 * the flash at once and is what the flash returns, even where it is a number that the flash uses itself. What
 * is written and is not finite ends it with KV_NOT_FINITE. A fugacity routine whose numbers are rounded is good
 * for what CRIT asks of it. Flashes of the host (entries 1 and 2) are called with options 0 and zeroed results,
 * and give a start: the answer is tested like any other. Their statuses: FlashLLVatTP.
 */
enum KvRoutine {
  KV_ROUTINE_LL_FLASH = 1,         /* as FlashLLatTP */
  KV_ROUTINE_LV_FLASH = 2,         /* as FlashLVatTP */
  KV_ROUTINE_FUGACITY = 8,         /* KvFugacityRoutine */
  KV_ROUTINE_LIQUID_ORDER = 10,    /* as LiquidDensity_PPR78 */
  KV_ROUTINE_GAS_ENTHALPY = 11,    /* as GasMolarEnthalpy_PPR78 */
  KV_ROUTINE_GAS_ENTROPY = 12,     /* as GasMolarEntropy_PPR78 */
  KV_ROUTINE_LIQUID_ENTHALPY = 13, /* as LiquidMolarEnthalpy_PPR78 */
  KV_ROUTINE_LIQUID_ENTROPY = 14   /* as LiquidMolarEntropy_PPR78 */
};
#define KV_ROUTINE_COUNT 14

typedef struct ModelRoutines {
  void* entry[KV_ROUTINE_COUNT];
} ModelRoutines;

/* Phase selector of every property and fugacity call. */
enum KvPhase { KV_PHASE_GAS = 1, KV_PHASE_LIQUID = 2 };

/* Derivative requests, added together. An output whose bit is clear is not written and may be null. */
enum KvDerivative { KV_DERIV_T = 1, KV_DERIV_P = 2, KV_DERIV_N = 4 };

/*
 * A host's fugacity routine (entry 8). T in K, P in atm, x[count] mole fractions, phase 1 gas or 2 liquid,
 * option always 2, mask of KvDerivative. Writes ln phi[count]; d/dT[count] in 1/K; d/dP[count] in 1/atm;
 * d/dn[count * count]: entry (i, j) = d ln phi_i / d n_j at constant T, P and other mole numbers for one
 * mole in total, component i fastest; left alone, they count as those of an ideal mixture, with which flashes
 * are slow and may fail beside critical points. Returns a StatusCode, 0 for success.
 */
typedef StatusCode(KV_CALL* KvFugacityRoutine)(double T, double P, const double* x, MixtureRecord* mixture,
                                               int32_t phase, int32_t option, int32_t mask, double* ln_phi,
                                               double* dln_phi_dT, double* dln_phi_dP, double* dln_phi_dn);

/* Compile-time checks that work in C99 and in C++: a moved field or one of another size stops the build. */
#define KV_ASSERT_FIELD(type, field, offset, kind) \
  typedef char kv_assert_##type##_##field          \
      [(offsetof(type, field) == (offset) && sizeof(((type*)0)->field) == sizeof(kind)) ? 1 : -1]
KV_ASSERT_FIELD(MixtureRecord, count, 0, int32_t);
KV_ASSERT_FIELD(MixtureRecord, table, 4, void*);
KV_ASSERT_FIELD(MixtureRecord, flags, 16, uint8_t);
KV_ASSERT_FIELD(MixtureRecord, solubility_a, 17, double);
KV_ASSERT_FIELD(MixtureRecord, solubility_b, 25, double);
KV_ASSERT_FIELD(MixtureRecord, CRIT, 61, double);
KV_ASSERT_FIELD(MixtureRecord, CLIM, 69, double);
KV_ASSERT_FIELD(MixtureRecord, EPS, 77, double);
KV_ASSERT_FIELD(MixtureRecord, ITEMAX, 85, int32_t);
KV_ASSERT_FIELD(MixtureRecord, NEW, 89, int32_t);
KV_ASSERT_FIELD(MixtureRecord, trace_flag, 93, int32_t);
KV_ASSERT_FIELD(MixtureRecord, trace_unit, 97, int32_t);
KV_ASSERT_FIELD(MixtureRecord, relaxation, 101, double);
KV_ASSERT_FIELD(MixtureRecord, pure_tolerance, 109, double);
KV_ASSERT_FIELD(MixtureRecord, sum_tolerance, 117, double);
typedef char kv_assert_MixtureRecord_size[(sizeof(MixtureRecord) == 125) ? 1 : -1];
typedef char kv_assert_ModelRoutines_size[(sizeof(ModelRoutines) == KV_ROUTINE_COUNT * sizeof(void*)) ? 1 : -1];

#endif
