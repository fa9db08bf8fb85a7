/*
 * Status codes: one list, expanded into the enumeration and into the texts.
 *
 * Every export but ConvertPPR78GroupData returns a StatusCode. 0 is success. The texts live on the host's
 * side (this header); the library exports calculations only.
 *
 *   0            success
 *   -1 .. 203    codes of the calculations
 *   1000 + n     error n of the pure-component library
 *   9000 + n     the call itself could not be worked with; nothing was calculated
 */
#ifndef KESTRUNE_STATUS_H
#define KESTRUNE_STATUS_H

#include <stdint.h>

typedef int32_t StatusCode;

#define KV_STATUS_LIST(X)                                                                                    \
  X(KV_OK, 0, "success")                                                                                     \
  X(KV_NO_WATER, -1, "no component of the mixture has the CAS number of water")                              \
  X(KV_INHIBITOR_MASS, 1, "the molar mass of a user-defined inhibitor is not positive")                      \
  X(KV_NO_WATER_LIMIT, 4, "the gas takes up any amount of water at this temperature and pressure")           \
  X(KV_NO_ROOT, 51, "the equation of state has no root above the co-volume")                                 \
  X(KV_FEED_SUM, 111, "the feed mole fractions do not sum to one within the tolerance of the record")        \
  X(KV_NOT_CONVERGED, 112, "no convergence within the iteration limit; what the results hold is no answer")  \
  X(KV_DAMPING, 113, "the damping of the Newton step is exhausted")                                          \
  X(KV_RELAXATION, 114, "the relaxation factor fell below its limit")                                        \
  X(KV_ZERO_SLOPE, 115, "the derivative of the residual is zero")                                            \
  X(KV_NO_SATURATION, 116, "no temperature or pressure has this vapour fraction with two phases")            \
  X(KV_UNSTABLE_POINT, 117,                                                                                  \
    "a point of this vapour fraction was found, but another phase splits off before it")                     \
  X(KV_FOURTH_PHASE, 118, "three phases were found, but a fourth would split off; results hold these three") \
  X(KV_TRIVIAL, 120, "the iteration ended on two identical phases or broke down")                            \
  X(KV_TRIVIAL_LV, 121, "the vapour and the second liquid became the same phase")                            \
  X(KV_LV_ANSWER_DOUBTFUL, 134, "one liquid and a vapour remain; the flash that said so had a status")       \
  X(KV_LL_ANSWER_DOUBTFUL, 135, "no vapour remains; the flash that said so had a status")                    \
  X(KV_NO_START, 136, "no starting point for three phases could be built")                                   \
  X(KV_ENVELOPE_OPEN, 140, "the envelope is open: it reached the default highest pressure")                  \
  X(KV_ENVELOPE_COLD, 141, "the envelope reached the default lowest temperature")                            \
  X(KV_ENVELOPE_FULL, 142, "the arrays are too short for all points of the curve")                           \
  X(KV_ENVELOPE_UNSTABLE, 143, "another phase splits off before the marked points of the curve")             \
  X(KV_ENVELOPE_BROKEN, 144, "the curve could not be followed to its end")                                   \
  X(KV_NO_CRITICAL, 145, "the mixture has no stable critical point")                                         \
  X(KV_ENVELOPE_LIQUIDS, 146, "a part of the curve is where a second liquid forms")                          \
  X(KV_WATER_RANGE, 151, "temperature, pressure or gas outside the range of the water-content method")       \
  X(KV_PURE_UNKNOWN, 1001, "pure-component library: component unknown")                                      \
  X(KV_PURE_NO_CORRELATION, 1002, "pure-component library: no correlation for this property")                \
  X(KV_PURE_RANGE, 1003, "pure-component library: temperature outside the range of the correlation")         \
  X(KV_PURE_ARGUMENT, 1004, "pure-component library: an argument is not finite")                             \
  X(KV_NULL_ARGUMENT, 9002, "an argument that is read or written is a null pointer")                         \
  X(KV_COMPONENT_COUNT, 9003, "the number of components is below 1 or above 10000")                          \
  X(KV_TEMPERATURE, 9004, "the temperature is not finite or not positive")                                   \
  X(KV_PRESSURE, 9005, "the pressure is not finite or not positive")                                         \
  X(KV_COMPOSITION, 9006, "a composition has an entry that is negative or not finite, or is all zero")       \
  X(KV_COMPONENT_DATA, 9007,                                                                                 \
    "a critical temperature, critical pressure, acentric factor or molar mass is unusable")                  \
  X(KV_GROUP_DATA, 9008, "no group data for this number of components: call ConvertPPR78GroupData first")    \
  X(KV_SPECIFICATION, 9009, "a specified quantity or option is not finite or out of range")                  \
  X(KV_MEMORY, 9010, "not enough memory for the work arrays")                                                \
  X(KV_INTERNAL, 9011, "unexpected failure inside the library; please report it")                            \
  X(KV_NOT_FINITE, 9012, "the equation of state gave a value that is not finite at these conditions")

enum KvStatus {
#define KV_STATUS_ENUM(name, value, text) name = value,
  KV_STATUS_LIST(KV_STATUS_ENUM)
#undef KV_STATUS_ENUM
      KV_STATUS_COUNT_GUARD = 0x7fffffff
};

/* First status of the block that says that the call could not be worked with. */
#define KV_STATUS_CALL_BLOCK 9000

/* Text of a status in English; never null. Codes that stand in no list get a general text. */
static inline const char* kv_status_text(StatusCode status) {
  switch (status) {
#define KV_STATUS_TEXT(name, value, text) \
  case value:                             \
    return text;
    KV_STATUS_LIST(KV_STATUS_TEXT)
#undef KV_STATUS_TEXT
    default:
      return status > 1000 && status < 2000 ? "pure-component library: error" : "unknown status";
  }
}

#endif
