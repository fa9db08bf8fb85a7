// Properties of one phase, fugacity coefficients and water contents of many states.
#include "properties.hpp"

#include <algorithm>
#include <limits>

#include "cold_flash.hpp"
#include "equilibrium_parts.hpp"
#include "session.hpp"
#include "units.hpp"

using namespace kestrune;
using arrays::guarded;
using arrays::index;
using host::kAtmInPa;

static_assert(static_cast<std::size_t>(KA_PROPERTY_COUNT) == host::kPropertyCount);

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

void check_phase(std::int32_t phase) {
  if (phase != KV_PHASE_GAS && phase != KV_PHASE_LIQUID && phase != KA_LIGHT)
    throw host::InputError("a phase is 1, gas, 2, liquid, or 3, the lighter one of a flash");
}

// Of an absent phase nothing is asked.
bool absent(double T, double P, const double* x) {
  return std::isnan(T) || std::isnan(P) || std::isnan(x[0]);
}

// One thread's phases.
class OnePhase {
 public:
  OnePhase(const host::Exports& library, const host::Mixture& mixture, std::int32_t phase)
      : asker_(library, mixture), phase_(phase) {}

  bool is_gas(double T, double P, const double* x) {
    return phase_ == KA_LIGHT ? asker_.lighter_is_gas(T, P, x) : phase_ == KV_PHASE_GAS;
  }

  host::PropertyValues properties(double T, double P, const double* x, unsigned wanted) {
    return asker_.properties(is_gas(T, P, x), T, P, x, wanted);
  }

 private:
  host::PhaseAsker asker_;
  std::int32_t phase_;
};

}  // namespace

extern "C" int32_t ka_properties(KaMixture* mixture, int32_t phase, int64_t count, const double* T,
                                 const double* P, const double* x, int32_t wanted, int32_t threads,
                                 double* values, int32_t* status, char* text, int32_t size) {
  return guarded(text, size, [&] {
    check_phase(phase);
    const host::Mixture& m = mixture->mixture;
    const host::Exports& library = arrays::library();
    const std::size_t nc = m.z.size();
    const arrays::Turn turn(mixture->mixture);
    arrays::for_each_state(count, threads, [&] {
      return [&, one = OnePhase(library, m, phase)](std::int64_t i) mutable {
        const double* of = arrays::row(x, nc, i, m);
        host::PropertyValues found;
        if (!absent(T[i], P[i], of)) found = one.properties(T[i], P[i], of, static_cast<unsigned>(wanted));
        for (std::size_t p = 0; p < KA_PROPERTY_COUNT; ++p)
          if (((wanted >> p) & 1) != 0) values[p * index(count) + index(i)] = found.values[p];
        status[i] = found.first_failure();
      };
    });
    return 0;
  });
}

extern "C" int32_t ka_ln_phi(KaMixture* mixture, int32_t phase, int64_t count, const double* T, const double* P,
                             const double* x, int32_t threads, double* ln_phi, int32_t* status, char* text,
                             int32_t size) {
  return guarded(text, size, [&] {
    check_phase(phase);
    const host::Mixture& m = mixture->mixture;
    const host::Exports& library = arrays::library();
    const std::size_t nc = m.z.size();
    const arrays::Turn turn(mixture->mixture);
    arrays::for_each_state(count, threads, [&] {
      return [&, record = m.record, one = OnePhase(library, m, phase)](std::int64_t i) mutable {
        const double* of = arrays::row(x, nc, i, m);
        double* out = ln_phi + index(i) * nc;
        status[i] = KV_OK;
        const bool skip = absent(T[i], P[i], of);
        if (!skip) {
          const auto fugacity = one.is_gas(T[i], P[i], of) ? library.GasPhi_Derivatives_PPR78
                                                           : library.LiquidPhi_Derivatives_PPR78;
          status[i] = fugacity(T[i], P[i] / kAtmInPa, of, &record, 2, 0, out, nullptr, nullptr, nullptr);
        }
        if (skip || !host::has_value(status[i])) std::fill_n(out, nc, kNone);
      };
    });
    return 0;
  });
}

extern "C" int32_t ka_aqueous(KaMixture* mixture, int64_t count, const double* x, int8_t* aqueous, char* text,
                              int32_t size) {
  return guarded(text, size, [&] {
    const std::size_t nc = mixture->mixture.z.size();
    for (std::int64_t i = 0; i < count; ++i) {
      const double* of = x + index(i) * nc;
      aqueous[i] = host::is_aqueous(mixture->mixture, std::vector<double>(of, of + nc)) ? 1 : 0;
    }
    return 0;
  });
}

extern "C" int32_t ka_saturation(KaMixture* mixture, int32_t method, int64_t count, const double* T,
                                 const double* P, const double* z, int32_t threads, double* fraction,
                                 double* content, int32_t* status, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const host::Mixture& m = mixture->mixture;
    const host::Exports& library = arrays::library();
    const arrays::Turn turn(mixture->mixture);
    arrays::for_each_state(count, threads, [&] {
      return [&, record = m.record](std::int64_t i) mutable {
        status[i] = library.Humidity(T[i], P[i] / kAtmInPa, method, arrays::row(z, m.z.size(), i, m), &record,
                                     fraction + i, content + i);
        content[i] *= 1e-6;
        if (!host::has_value(status[i])) fraction[i] = content[i] = kNone;
      };
    });
    return 0;
  });
}

extern "C" int32_t ka_water_dew(KaMixture* mixture, int32_t method, int32_t at_pressure, int64_t count,
                                const double* given, const double* z, int32_t threads, double* found,
                                int32_t* status, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const host::Mixture& m = mixture->mixture;
    const host::Exports& library = arrays::library();
    const arrays::Turn turn(mixture->mixture);
    arrays::for_each_state(count, threads, [&] {
      return [&, record = m.record](std::int64_t i) mutable {
        const double* of = arrays::row(z, m.z.size(), i, m);
        double value = at_pressure != 0 ? 0.0 : host::dew_start(of[host::water_of(m)]);
        status[i] = at_pressure != 0
                        ? library.WaterDewTemperature(given[i] / kAtmInPa, of, method, 0, 0, &record, 0, &value)
                        : library.WaterDewPressure(given[i], of, method, 0, 0, &record, 0, &value);
        found[i] = !host::has_value(status[i]) ? kNone : at_pressure != 0 ? value : value * kAtmInPa;
      };
    });
    return 0;
  });
}
