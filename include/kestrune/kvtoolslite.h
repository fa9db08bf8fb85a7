/*
 * KVToolsLite: numerical tools. Every argument by reference, arrays column-major, every entry undecorated.
 * A status argument, where there is one, is 0 for success.
 */
#ifndef KESTRUNE_KVTOOLSLITE_H
#define KESTRUNE_KVTOOLSLITE_H

#include "kestrune/platform.h"

KV_EXTERN_C_BEGIN

/*
 * Compressibility factor from c0 Z^3 + c1 Z^2 + c2 Z + c3 = 0, the cubic of a generalised equation of state
 * with the constants u, w and the dimensionless A, B > 0 (A may be negative). phase 1: largest root, 2:
 * smallest root above B. settings[8]: [0] relative tolerance of the last correction (0: full precision); [1] !=
 * 0: Z holds a starting value on entry, tried first; the others are 0. A starting value changes the time, never
 * the root.
 *
 * status 0: the phase asked for has a root of its own (three real roots above B, or the only one lies on the
 * side asked for: above the inflection point of the cubic for a gas, below it for a liquid);
 * 1: only one real root above B and it belongs to the other phase, that root is returned;
 * 51: no root above B (B not positive, c0 = 0, a value that is not finite, or constants with 1 + u + w <= 0
 * that leave none), Z is left alone.
 */
KV_API void KV_CALL BRACUB(const double* c0, const double* c1, const double* c2, const double* c3, double* Z,
                           int32_t* status, const int32_t* phase, const double* u, const double* w,
                           const double* A, const double* B, const double* settings);

/*
 * Kay's pseudo-critical constants of a mixture, sums over x: out Tcm, Pcm, Vcm, Zcm, Mm in the units given.
 * Pcm by the modified Prausnitz-Gunn rule R Zcm Tcm / Vcm where every Vc and Zc is known (units K, atm,
 * cm3/mol), else by Kay's sum.
 */
KV_API void KV_CALL CalcKayMR(const int32_t* nc, const double* x, const double* Tc, const double* Pc,
                              const double* Vc, const double* Zc, const double* M, double* Tcm, double* Pcm,
                              double* Vcm, double* Zcm, double* Mm);

/* Watson factor K = (1.8 Tb)^(1/3) / SG; Tb mean average boiling point, K; SG specific gravity 60/60 F. */
KV_API void KV_CALL CalcKUOP(const double* Tb, const double* SG, double* K, int32_t* status);
/* Specific gravity 60/60 F from the Watson factor and the mean average boiling point, K. */
KV_API void KV_CALL CalcSG(const double* Tb, const double* K, double* SG, int32_t* status);
/*
 * Mean average boiling point, K, of n cuts: boiling points Tb[n] (K), mole fractions x[n], mass fractions
 * w[n]: half of (molal average + cubic average), the latter over volume fractions from SG[n].
 */
KV_API void KV_CALL MeABP(const int32_t* n, const double* Tb, const double* x, const double* w,
                          const double* SG, double* result, int32_t* status);

/* LU factors of a[lda * n] with partial pivoting: ipvt[n] pivot rows from 1; info 0, or k when U(k,k) = 0. */
KV_API void KV_CALL DGEFA(double* a, const int32_t* lda, const int32_t* n, int32_t* ipvt, int32_t* info);
/* Solves a x = b (job 0) or transposed a x = b (job not 0) with the factors of DGEFA; b[n] is replaced. */
KV_API void KV_CALL DGESL(const double* a, const int32_t* lda, const int32_t* n, const int32_t* ipvt, double* b,
                          const int32_t* job);

/* a[lda * n] replaced by its inverse. status 0; 1 singular; 2 bad argument. */
KV_API void KV_CALL MRINV(const int32_t* n, const int32_t* lda, double* a, int32_t* status);
/* a x = b, one right-hand side b[n], partial pivoting; a is destroyed. status as MRINV. */
KV_API void KV_CALL MRSL01(const int32_t* n, const int32_t* lda, double* a, double* b, int32_t* status);
/* a X = B, m right-hand sides b[ldb * m]; a is destroyed. status as MRINV. */
KV_API void KV_CALL MRSL02(const int32_t* n, const int32_t* lda, double* a, const int32_t* m,
                           const int32_t* ldb, double* b, int32_t* status);
/* Least-squares line y = intercept + slope x through n points. status 0; 1 fewer than 2 points or all x equal.
 */
KV_API void KV_CALL REGLIN(const int32_t* n, const double* x, const double* y, double* slope, double* intercept,
                           double* correlation, int32_t* status);

/* User routine of the solvers: f[n] at x[n]; sets flag to non-zero where it cannot be evaluated. */
typedef void(KV_CALL* KvResidual)(const int32_t* n, const double* x, double* f, int32_t* flag, void* user);

/*
 * Damped Newton for F(x) = 0 with a Jacobian by differences. x[n] in/out; tolerance on max |f|; itemax;
 * units[7]: output units of error messages, diagnostics, first output, function values, Jacobian, solution,
 * unknowns, 0 = none; f[n] out residuals; iterations out.
 * status 0; 1 iteration limit; 2 singular Jacobian; 3 no descent; 4 F cannot be evaluated; 5 bad argument.
 */
KV_API void KV_CALL CNEWTON(const int32_t* n, double* x, double* f, KvResidual residual, void* user,
                            const double* tolerance, const int32_t* itemax, const int32_t* units,
                            int32_t* iterations, int32_t* status);
/* The same problem with a rank-one (Broyden) update of the Jacobian; trace_switch and unit, 0 = none. */
KV_API void KV_CALL GANEW(const int32_t* n, double* x, double* f, KvResidual residual, void* user,
                          const double* tolerance, const int32_t* itemax, const int32_t* trace_switch,
                          const int32_t* unit, int32_t* iterations, int32_t* status);

/*
 * Orthogonal collocation on [0, 1]: n interior points, zeros of the shifted Jacobi polynomial with weight
 * (1-x)^alpha x^beta; n0, n1 = 1 includes x = 0, x = 1. nt = n + n0 + n1. Out: x[nt] nodes, a[nt * nt] first-
 * and b[nt * nt] second-derivative matrices, w[nt] quadrature weights for the weight function 1 (sum 1). status
 * 0; 1 bad argument.
 */
KV_API void KV_CALL MCOLT7(const int32_t* n, const int32_t* n0, const int32_t* n1, const double* alpha,
                           const double* beta, double* x, double* a, double* b, double* w, int32_t* status);

/* Names (260 characters each, blank-padded) and units of count trace files; closed by CloseOutputFiles. */
KV_API void KV_CALL SetOutputFiles(const int32_t* count, const char* names, const int32_t* units,
                                   int32_t* status);
KV_API void KV_CALL CloseOutputFiles(int32_t* status);

KV_EXTERN_C_END

#endif
