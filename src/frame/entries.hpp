// The entries of the two sibling libraries by name, and what all answers of the pure-component library share.
// Nothing in here leads to the libraries themselves.
#ifndef KESTRUNE_FRAME_ENTRIES_HPP
#define KESTRUNE_FRAME_ENTRIES_HPP

#include <cstddef>
#include <cstdint>

#include "kestrune/kvcmpdpurelite.h"

namespace kestrune::frame {

// Entries of the pure-component library, one enumerator for each name of the host header.
enum class PureProperty : std::int32_t {
#define KV_ENUMERATE(name) name,
  KV_PURE_PROPERTIES(KV_ENUMERATE) KV_PURE_INTEGRALS(KV_ENUMERATE)
#undef KV_ENUMERATE
      count
};
#define KV_COUNT(name) +1
inline constexpr std::size_t kPureCheckCount = 0 KV_PURE_PROPERTIES(KV_COUNT);
#undef KV_COUNT

// Entries of the pure-component library that are not about one property.
#define KV_PURE_SERVICES(X) \
  X(AvailableCorrelations)  \
  X(CorrelationInfo)        \
  X(SetTempFolder)          \
  X(SetThermoCodes)         \
  X(KVCmpdPure_Free)
enum class PureService : std::int32_t {
#define KV_ENUMERATE(name) name,
  KV_PURE_SERVICES(KV_ENUMERATE)
#undef KV_ENUMERATE
      count
};

// Entries of the tools library.
#define KV_TOOLS_ENTRIES(X) \
  X(BRACUB)                 \
  X(CalcKayMR)              \
  X(CalcKUOP)               \
  X(CalcSG)                 \
  X(MeABP)                  \
  X(DGEFA)                  \
  X(DGESL)                  \
  X(MRINV)                  \
  X(MRSL01)                 \
  X(MRSL02)                 \
  X(REGLIN)                 \
  X(CNEWTON)                \
  X(GANEW)                  \
  X(MCOLT7)                 \
  X(SetOutputFiles)         \
  X(CloseOutputFiles)
enum class ToolsEntry : std::int32_t {
#define KV_ENUMERATE(name) name,
  KV_TOOLS_ENTRIES(KV_ENUMERATE)
#undef KV_ENUMERATE
      count
};

inline constexpr std::size_t kUnitLength = 15;
// J/cal, thermochemical: exact by definition.
inline constexpr double kJoulePerCalorie = 4.184;

}  // namespace kestrune::frame

#endif
