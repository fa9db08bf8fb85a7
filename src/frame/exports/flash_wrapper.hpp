// What every flash export does around its core: arguments, the flags byte, water, and the retry.
#ifndef KESTRUNE_FRAME_EXPORTS_FLASH_WRAPPER_HPP
#define KESTRUNE_FRAME_EXPORTS_FLASH_WRAPPER_HPP

#include <algorithm>

#include "flash/host.hpp"
#include "flash/wet/free_water.hpp"
#include "frame/boundary.hpp"
#include "frame/cas.hpp"
#include "support/status.hpp"

namespace kestrune::exports {

/*
 * Whether the arguments of a calculation can be read at all: for those whose further checks give way to a
 * result that their feed has.
 */
template <class... Pointers>
StatusCode check_readable(const double* z, const MixtureRecord* mixture, const Pointers*... outputs) {
  const StatusCode status = frame::check_pointers(z, mixture, outputs...);
  if (status != KV_OK || mixture->count < 1) return status;
  return mixture->count > KV_MAX_COMPONENTS ? StatusCode{KV_COMPONENT_COUNT}
                                            : frame::check_pointers(mixture->table);
}

// Puts the host's flags byte back on every way out of a call.
class FlagsKeeper {
 public:
  explicit FlagsKeeper(MixtureRecord& mixture) : mixture_(mixture), saved_(mixture.flags) {}
  ~FlagsKeeper() { mixture_.flags = saved_; }
  FlagsKeeper(const FlagsKeeper&) = delete;
  FlagsKeeper& operator=(const FlagsKeeper&) = delete;

 private:
  MixtureRecord& mixture_;
  std::uint8_t saved_;
};

inline bool free_water(const MixtureRecord& mixture) {
  return (mixture.flags & FreeWaterFlag) != 0;
}

/* Whether the host asks for free water and the feed z has some, by its family code alone. */
inline bool wet_feed(const MixtureRecord& mixture, const double* z) {
  return free_water(mixture) && flash::has_free_water(mixture, z);
}

/*
 * Number of the water component (from 1) when the host asks for free water and the feed z has some; without
 * that the flags byte is cleared for the call and the result is 0. Water is what has its CAS number here and
 * its family code in the calculations: a table with one of the two alone has none.
 */
inline std::int32_t locate_water(MixtureRecord& mixture, const double* z) {
  if (!free_water(mixture)) return 0;
  const std::int32_t iw = frame::find_cas(mixture.count, mixture.table, frame::WaterCas);
  if (iw != 0 && flash::has_free_water(mixture, z)) return iw;
  mixture.flags = 0;
  return 0;
}

inline double water_critical_pressure(const MixtureRecord& mixture, std::int32_t iw) {
  return mixture.table[static_cast<std::size_t>(KV_COL_PC - 1) * mixture.count + (iw - 1)];
}

/*
 * The routines of a host without those that are exports of this library: for them the built-in paths stand,
 * which give the same answers.
 */
flash::HostRoutines foreign_routines(const ModelRoutines* record);

/* The same for a call with this many components, with a multiple of the work that a flash may take. */
inline flash::HostRoutines routines_of_call(const ModelRoutines* record, std::int32_t count,
                                            double times = 1.0) {
  flash::HostRoutines host = foreign_routines(record);
  host.allowed = static_cast<std::int64_t>(times * static_cast<double>(flash::allowed_work(count)));
  return host;
}

/* Whether the work of a call has ended it. */
inline bool out_of_work(const flash::HostRoutines& host) {
  return host.spent > host.allowed;
}

/* The check of the condition that a point of given vapour fraction is looked for at. */
template <class Call>
StatusCode check_given(const Call& call) {
  return call.find == decltype(call.find)::temperature ? frame::check_pressure(call.given)
                                                       : frame::check_temperature(call.given);
}

/*
 * Runs a core: kHostStatus when a routine of the host ended it, or its work did, whatever the core made of that. A
 * retry has at least half of the work of a call.
 */
template <class Core>
StatusCode run_core(flash::HostRoutines& host, Core&& core) {
  host.status = KV_OK;
  host.spent = std::min(host.spent, host.allowed / 2);
  const StatusCode status = core();
  return host.status != KV_OK ? flash::kHostStatus : status;
}

/* The status that the host is told: that of its own routine as it stood. */
inline StatusCode told(const flash::HostRoutines& host, StatusCode status) {
  return status == flash::kHostStatus ? host.status : status;
}

/* A core without a wrapper: the status is its own. */
template <class Core>
StatusCode run_and_tell(flash::HostRoutines& host, Core&& core) {
  return told(host, run_core(host, core));
}

/* The same for points of given vapour fraction: a search that has used up its work has met none. */
template <class Core>
StatusCode run_search(flash::HostRoutines& host, Core&& core) {
  const StatusCode status = run_and_tell(host, core);
  return status == KV_NOT_CONVERGED && out_of_work(host) ? StatusCode{KV_NO_SATURATION} : status;
}

/*
 * Whether a flash that ended with this status may end better without free water or from another start. One that
 * ran out of work may not: it has not been told that there is no answer, and another model has another one.
 */
inline bool worth_a_retry(const flash::HostRoutines& host, StatusCode status) {
  return status != KV_OK && !support::of_arguments(status) && !out_of_work(host);
}

inline StatusCode hide_single_phase(StatusCode status) {
  return status == KV_SINGLE_PHASE ? KV_OK : status;
}

/* Where a two-phase flash leaves its answer, and an estimate for its retry. */
struct TwoPhaseResult {
  double *beta, *x, *y;
};

/*
 * The wrapper of the two-phase flashes. core(hint) runs the flash with the record as it then stands; hint says
 * that the results hold the water-based estimate of the retry.
 */
template <class Core>
StatusCode two_phase_wrapper(double P, const double* z, MixtureRecord& mixture, flash::HostRoutines& host,
                             std::int32_t options, const TwoPhaseResult& result, Core core) {
  const FlagsKeeper keeper(mixture);
  const std::int32_t iw = locate_water(mixture, z);
  const auto run = [&](bool hint) { return hide_single_phase(run_core(host, [&] { return core(hint); })); };
  const StatusCode status = run(false);
  if (!free_water(mixture) || !worth_a_retry(host, status)) return told(host, status);
  if (P > water_critical_pressure(mixture, iw)) {
    mixture.flags = 0;
    return told(host, run(false));
  }
  const double w = z[iw - 1];
  if ((options & 1) == 0 || w == 0.0) return told(host, status);
  // All the water in the liquid, all the rest in the vapour (nothing, for a feed of water). Of a feed that does
  // not sum to one that is no estimate, and the flash takes it as none.
  *result.beta = 1.0 - w;
  for (std::int32_t i = 0; i < mixture.count; ++i) {
    result.x[i] = 0.0;
    result.y[i] = w != 1.0 ? z[i] / (1.0 - w) : 0.0;
  }
  result.x[iw - 1] = 1.0;
  result.y[iw - 1] = 0.0;
  return told(host, run(true));
}

}  // namespace kestrune::exports

#endif
