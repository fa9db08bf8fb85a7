// Routines of a host: what they return and write, how often they are called and with which flags, and the rules
// of the wrapper as a routine sees them.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "common/flashes.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr StatusCode kHostStatus = 77;
using Vector = std::vector<double>;

// What the routines below did and are to do; tests run one at a time.
struct Host {
  int entry = KV_ROUTINE_FUGACITY;  // the one that misbehaves, from a call of its own to another
  int fail_until = 0, fail_from = 1 << 30;
  StatusCode status = kHostStatus;
  bool spoils = false;  // its first number is this one, beside status 0
  double spoilt = NAN;
  double grid = 0.0;            // ln phi are rounded to it
  bool no_composition = false;  // no composition derivatives, although asked for
  int calls = 0;                // of the entry that misbehaves
  std::vector<std::uint8_t> flags{};
  const MixtureRecord* record = nullptr;  // where one is set, the routines see it and no copy
} host;

// After a routine has forwarded: its status, or what it is to do instead. first: the first number it writes.
StatusCode misbehave(int entry, StatusCode status, double* first) {
  if (entry != host.entry) return status;
  ++host.calls;
  if (host.calls > host.fail_until && host.calls < host.fail_from) return status;
  if (host.spoils) *first = host.spoilt;
  return host.spoils ? StatusCode{KV_OK} : host.status;
}

template <class... Rest>
double* first_output(double* first, Rest...) {
  return first;
}
template <class Skipped, class... Rest>
double* first_output(Skipped, Rest... rest) {
  return first_output(rest...);
}

// A routine of the host for an entry, which hands every argument on to the library's own.
template <int entry, auto own>
struct Forward;
template <int entry, class... Arguments, StatusCode(KV_CALL* own)(Arguments...)>
struct Forward<entry, own> {
  static StatusCode KV_CALL call(Arguments... arguments) {
    return misbehave(entry, own(arguments...), first_output(arguments...));
  }
};

StatusCode KV_CALL host_fugacity(double T, double P, const double* x, MixtureRecord* mixture,
                                 std::int32_t phase, std::int32_t option, std::int32_t mask, double* ln_phi,
                                 double* dT, double* dP, double* dn) {
  host.flags.push_back(mixture->flags);
  if (host.record != nullptr) {
    EXPECT_EQ(mixture, host.record);
  }
  EXPECT_EQ(option, 2);
  EXPECT_EQ(mask & ~7, 0);
  if (host.no_composition) mask &= ~KV_DERIV_N;
  auto* const routine = phase == KV_PHASE_GAS ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78;
  const StatusCode status = routine(T, P, x, mixture, option, mask, ln_phi, dT, dP, dn);
  for (int i = 0; host.grid > 0.0 && i < mixture->count; ++i)
    ln_phi[i] = host.grid * std::round(ln_phi[i] / host.grid);
  return misbehave(KV_ROUTINE_FUGACITY, status, ln_phi);
}

struct Entry {
  int number;
  void *own, *forwarded;
};
#define HOST_ENTRY(number, name) \
  { number, reinterpret_cast<void*>(&name), reinterpret_cast<void*>(&Forward<number, &name>::call) }
const Entry kEntries[] = {{KV_ROUTINE_FUGACITY, nullptr, reinterpret_cast<void*>(&host_fugacity)},
                          HOST_ENTRY(KV_ROUTINE_LIQUID_ORDER, LiquidDensity_PPR78),
                          HOST_ENTRY(KV_ROUTINE_GAS_ENTHALPY, GasMolarEnthalpy_PPR78),
                          HOST_ENTRY(KV_ROUTINE_GAS_ENTROPY, GasMolarEntropy_PPR78),
                          HOST_ENTRY(KV_ROUTINE_LIQUID_ENTHALPY, LiquidMolarEnthalpy_PPR78),
                          HOST_ENTRY(KV_ROUTINE_LIQUID_ENTROPY, LiquidMolarEntropy_PPR78),
                          HOST_ENTRY(KV_ROUTINE_LL_FLASH, FlashLLatTP),
                          HOST_ENTRY(KV_ROUTINE_LV_FLASH, FlashLVatTP)};
#undef HOST_ENTRY

// A record with one of the entries, or with all of them (0).
ModelRoutines record_of(int entry, void* Entry::*address = &Entry::forwarded) {
  ModelRoutines r{};
  for (const Entry& e : kEntries)
    if (entry == 0 || e.number == entry) r.entry[e.number - 1] = e.*address;
  return r;
}
const ModelRoutines kRoutines = record_of(KV_ROUTINE_FUGACITY);

// ---- every flash, as a row of numbers ----

struct Row {
  StatusCode status = -1;
  Vector values;
  bool operator==(const Row&) const = default;
};

// Places in the table of the flashes: those at vapour fractions, of three phases at T and P, of two liquids.
constexpr int kThreeAtTP = 5, kTwoLiquids = 10;
bool at_fraction(int flash) {
  return flash == 3 || flash == 4 || flash == 8 || flash == 9;
}

struct Asked {
  double T, P, H, S, W;
  Vector z;
};

Row ask(int flash, Mixture& m, const Asked& s, const ModelRoutines* r) {
  const flashes::Flash& f = flashes::kFlashes[flash];
  const char by = f.name[std::string(f.name).size() - 2];  // the H of HP
  const double given = by == 'H' ? s.H : by == 'S' ? s.S : s.W;
  const int options = f.three || flash == kTwoLiquids ? 0 : 1;
  const flashes::Answer a = flashes::ask(f, {s.z.data(), &m.record, r, options, s.T, s.P, given, true});
  Row row{a.status, {a.T, a.P, a.beta, a.V, a.value[0], a.value[1], a.value[2]}};
  for (int k = 0; k < 3; ++k)
    row.values.insert(row.values.end(), a.array[k].begin(), a.array[k].begin() + static_cast<int>(s.z.size()));
  return row;
}

// Methane, butane and water: two liquids and a vapour.
const std::vector<std::string> kThreePhases{"methane", "n_butane", "water"};
Asked three_phases(Mixture& m) {
  Asked s{300, 20, 0, 0, 0.3, {0.4, 0.4, 0.2}};
  const FlashResult f = flash(m, s.T, s.P, s.z);
  const auto total = [&](auto liquid, auto gas) {
    double l = 0, g = 0;
    EXPECT_EQ(liquid(s.T, s.P, f.x.data(), &m.record, &l), KV_OK);
    EXPECT_EQ(gas(s.T, s.P, f.y.data(), &m.record, &g), KV_OK);
    return (1 - f.beta) * l + f.beta * g;
  };
  s.H = total(LiquidMolarEnthalpy_PPR78, GasMolarEnthalpy_PPR78);
  s.S = total(LiquidMolarEntropy_PPR78, GasMolarEntropy_PPR78);
  return s;
}

void expect_near(const Row& a, const Row& b, double tolerance) {
  ASSERT_EQ(a.status, b.status);
  ASSERT_EQ(a.values.size(), b.values.size());
  for (std::size_t i = 0; i < a.values.size(); ++i)
    EXPECT_NEAR(a.values[i], b.values[i], tolerance * std::max(1.0, std::fabs(b.values[i]))) << i;
}

// The library knows its exports by their addresses. In a program that imports them an address may be that of a
// jump to the export, which is a routine that passes calls on.
#ifdef _WIN32
constexpr double kOwnTolerance = 1e-9;
#else
constexpr double kOwnTolerance = 0.0;
#endif

TEST(HostRoutines, OwnRoutinesGiveTheAnswersOfTheNullRecord) {
  Mixture m = mixture_of(kThreePhases);
  m.use();
  m.record.solubility_a = 11.2;
  m.record.solubility_b = 6290.0;
  const Asked three = three_phases(m);
  Asked liquids = three;
  liquids.P = 150;
  const ModelRoutines own = record_of(0, &Entry::own), empty{};
  for (const std::uint8_t flag : {0, 1})
    for (const Asked& s : {three, liquids})
      for (int k = 0; k < 11; ++k) {
        if (s.P > 100 && at_fraction(k)) continue;  // no vapour there
        if (k == kTwoLiquids && flag != 0) continue;
        SCOPED_TRACE(testing::Message()
                     << flashes::kFlashes[k].name << " flag " << int{flag} << ' ' << s.P << " atm");
        m.record.flags = flag;
        const Row expected = ask(k, m, s, nullptr);
        EXPECT_TRUE(ask(k, m, s, &empty) == expected);
        expect_near(ask(k, m, s, &own), expected, kOwnTolerance);
        for (const int entry : {0, 1, 2, 8, 10, 11, 12, 13, 14}) {
          SCOPED_TRACE(entry);
          host = {};
          host.record = &m.record;
          const ModelRoutines forwarded = record_of(entry);
          expect_near(ask(k, m, s, &forwarded), expected, 1e-9);
        }
      }
}

bool goes_on(StatusCode status) {
  return status <= 50 || status == 201 || status == 202 || status == KV_PURE_RANGE;
}

// From the first call, the last and one between: warnings leave the answer as it is, all else ends the flash at
// once and reaches the host as it stands. What orders liquids has no say: where it fails, the library's own
// densities order them.
TEST(HostRoutines, StatusesReachTheHostFromEveryFlash) {
  Mixture m = mixture_of(kThreePhases);
  m.use();
  const Asked s = three_phases(m);
  int used[KV_ROUTINE_COUNT + 1] = {};
  for (const int entry : {8, 10, 11, 12, 13, 14})
    for (int k = 0; k < 11; ++k) {
      const ModelRoutines r = record_of(entry);
      host = {.entry = entry};
      const Row good = ask(k, m, s, &r);
      const int all = host.calls;
      used[entry] += all > 0;
      for (const StatusCode status :
           {-1, 1, 7, 50, 51, 95, 112, 130, 131, 201, 202, 203, 300, 1003, 9001, 9999})
        for (const int from : {1, all / 2, all}) {
          if (from < 1 || all == 0) continue;
          SCOPED_TRACE(testing::Message() << flashes::kFlashes[k].name << " entry " << entry << " status "
                                          << status << " from call " << from << " of " << all);
          host = {.entry = entry, .fail_from = from, .status = status};
          const Row row = ask(k, m, s, &r);
          if (goes_on(status) || entry == KV_ROUTINE_LIQUID_ORDER) {
            EXPECT_TRUE(row == good);
          } else {
            EXPECT_EQ(row.status, status);
            EXPECT_EQ(host.calls, from);
          }
        }
      for (const double wrong : {double{NAN}, double{INFINITY}}) {
        if (all == 0) continue;
        host = {.entry = entry, .fail_from = (all + 1) / 2, .spoils = true, .spoilt = wrong};
        const Row row = ask(k, m, s, &r);
        EXPECT_TRUE(entry == KV_ROUTINE_LIQUID_ORDER ? row == good : row.status == KV_NOT_FINITE)
            << flashes::kFlashes[k].name << ' ' << entry << ' ' << row.status;
      }
    }
  EXPECT_EQ(used[8], 11);
  EXPECT_GE(used[10], 4);
  for (const int entry : {11, 12, 13, 14}) EXPECT_EQ(used[entry], 2);
}

// Flashes of the host are starts: whatever they say, the answer is the library's; what cannot be a start is
// none, and so is a split of the liquid that has failed.
TEST(HostRoutines, FlashesOfTheHostAreStarts) {
  Mixture m = mixture_of(kThreePhases);
  m.use();
  m.record.solubility_a = 11.2;
  m.record.solubility_b = 6290.0;
  const Asked s = three_phases(m);
  for (const std::uint8_t flag : {0, 1})
    for (const int entry : {KV_ROUTINE_LL_FLASH, KV_ROUTINE_LV_FLASH}) {
      m.record.flags = flag;
      if (flag != 0 && entry == KV_ROUTINE_LL_FLASH) continue;  // not called
      const ModelRoutines r = record_of(entry);
      const Row good = ask(kThreeAtTP, m, s, nullptr);
      for (const StatusCode status : {-1, 1, 50, 51, 95, 112, 130, 202, 300, 9001}) {
        SCOPED_TRACE(testing::Message() << "entry " << entry << " status " << status);
        host = {.entry = entry, .fail_from = 1, .status = status};
        const Row row = ask(kThreeAtTP, m, s, &r);
        EXPECT_EQ(host.calls, 1);
        if (entry == KV_ROUTINE_LV_FLASH || goes_on(status) || status == 95)
          expect_near(row, good, 1e-9);
        else
          EXPECT_EQ(row.status, KV_NO_START);
      }
      // One phase for two, and more of a phase than there is.
      for (const double part : {0.0, 1.0}) {
        host = {.entry = entry, .fail_from = 1, .spoils = true, .spoilt = part};
        expect_near(ask(kThreeAtTP, m, s, &r), good, 1e-9);
      }
      for (const double part : {double{NAN}, -0.1, 1.1, double{INFINITY}}) {
        host = {.entry = entry, .fail_from = 1, .spoils = true, .spoilt = part};
        EXPECT_EQ(ask(kThreeAtTP, m, s, &r).status, KV_NO_START) << part;
      }
    }
}

// Coefficients that are known to 1e-5 only, or that come without composition derivatives: the answers are as
// good as CRIT asks for.
TEST(HostRoutines, RoundedCoefficientsAndNoDerivatives) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  int two = 0, slow = 0;
  for (const double T : {150.0, 180.0, 200.0, 230.0, 250.0, 270.0, 300.0, 340.0})
    for (const double P : {0.5, 5.0, 20.0, 45.0, 70.0, 100.0, 300.0}) {
      SCOPED_TRACE(testing::Message() << T << " K " << P << " atm");
      m.record.CRIT = KV_DEFAULT_CRIT;
      host = {};
      const FlashResult own = flash(m, T, P, kRichGasFeed);
      const FlashResult through = flash(m, T, P, kRichGasFeed, 1, &kRoutines);
      expect_same(through, own, 1e-9);
      two += own.two_phases();
      host = {.no_composition = true};
      const FlashResult plain = flash(m, T, P, kRichGasFeed, 1, &kRoutines);
      // Beside a critical point substitutions alone do not arrive.
      if (plain.status != KV_NOT_CONVERGED) {
        EXPECT_EQ(plain.status, KV_OK);
        EXPECT_NEAR(plain.beta, own.beta, 1e-6);
      }
      slow += plain.status != KV_OK;
      EXPECT_LT(host.flags.size(), 3000u);
      m.record.CRIT = 1e-6;
      host = {.grid = 1e-5};
      const FlashResult rounded = flash(m, T, P, kRichGasFeed, 1, &kRoutines);
      EXPECT_EQ(rounded.status, KV_OK);
      EXPECT_NEAR(rounded.beta, own.beta, 1e-3);
      double beta = 0.0, V[2] = {};
      std::vector<double> a(10), b(10), y(10), kll(10), klv(10);
      for (const bool of_host : {false, true})
        EXPECT_EQ(FlashLLVatTP(T, P, kRichGasFeed.data(), &m.record, of_host ? &kRoutines : nullptr, 1, &beta,
                               &V[of_host], a.data(), b.data(), y.data(), kll.data(), klv.data()),
                  KV_OK);
      EXPECT_NEAR(V[true], V[false], 1e-3);
    }
  EXPECT_GE(two, 20);
  EXPECT_LE(slow, 1);
  // So roughly that CRIT is met now and then only: what met it is the answer.
  for (double T = 180.0; T < 300.0; T += 5.0)
    for (const double P : {2.0, 20.0, 40.0, 60.0, 80.0}) {
      host = {};
      const FlashResult own = flash(m, T, P, kRichGasFeed);
      host = {.grid = 7e-4};
      if (own.two_phases()) {
        EXPECT_EQ(flash(m, T, P, kRichGasFeed, 1, &kRoutines).status, KV_OK) << T << ' ' << P;
      }
    }
}

// A second phase of nitrogen alone, between its boiling point and where it has no liquid root any more: the gas.
TEST(HostRoutines, APhaseOfOneComponentIsOfTheKindOfLowerGibbsEnergy) {
  Mixture m = mixture_of({"124_trimethylbenzene", "n_octane", "nitrogen", "cis_2_butene"});
  m.use();
  const Vector feed{4.5e-16, 0.567, 0.433, 4.5e-16};
  for (double T = 66.0; T < 76.0; T += 0.5) {
    SCOPED_TRACE(T);
    host = {};
    expect_same(flash(m, T, 0.3, feed, 1, &kRoutines), flash(m, T, 0.3, feed), 1e-9);
  }
}

// A routine that no search can work with, and settings that would let it run on for days.
TEST(HostRoutines, WorkHasALimit) {
  Mixture m = mixture_of(kThreePhases);
  m.use();
  Asked s = three_phases(m);
  m.record.ITEMAX = INT32_MAX;
  m.record.CRIT = 0.0;
  m.record.CLIM = 0.0;
  for (const double grid : {0.0, 1e-6, 0.3, 5.0})
    for (const bool sense : {true, false}) {
      if (!sense) s = {310, 2000, -1e5, -300, 0.99, {0.4, 0.4, 0.2}};
      for (int flash = 0; flash < 11; ++flash) {
        host = {};
        host.grid = grid;
        SCOPED_TRACE(testing::Message()
                     << flashes::kFlashes[flash].name << " rounded to " << grid << (sense ? "" : ", absurd"));
        ask(flash, m, s, &kRoutines);
        EXPECT_LE(host.calls, 400'000);
      }
    }
}

TEST(HostRoutine, ItsStatusReachesTheHostFromWhereverItComes) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  host = {};
  flash(m, 250, 40, kRichGasFeed, 1, &kRoutines);
  const int all = host.calls;
  ASSERT_GT(all, 5);
  for (int k = 1; k <= all; ++k) {
    host = {};
    host.fail_from = k;
    EXPECT_EQ(flash(m, 250, 40, kRichGasFeed, 1, &kRoutines).status, kHostStatus) << k;
    EXPECT_EQ(host.calls, k);
  }
}

// Rules of the wrapper: the lean gas with water, or without.
struct Wrapped {
  Mixture m;
  std::vector<double> z;
  explicit Wrapped(bool water, double water_amount = 0.05) {
    std::vector<std::string> ids = kLeanGas;
    z = kLeanGasFeed;
    if (water) {
      ids.insert(ids.begin() + 2, "water");
      z.insert(z.begin() + 2, water_amount);
    }
    double sum = 0;
    for (const double v : z) sum += v;
    for (double& v : z) v /= sum;
    m = mixture_of(ids);
    m.record.table = m.table.data();
    m.use();
    m.record.flags = kFlags;
    m.record.solubility_a = 9.0;
    m.record.solubility_b = 5000.0;
    host = {};
  }
  static constexpr std::uint8_t kFlags = 0xA4 | FreeWaterFlag;
};

FlashResult marked(std::size_t n) {
  return {0, 0.123, std::vector<double>(n, 0.5), std::vector<double>(n, 0.25), std::vector<double>(n, 7.0)};
}

void expect_untouched(const FlashResult& r) {
  EXPECT_EQ(r.beta, 0.123);
  for (const double v : r.x) EXPECT_EQ(v, 0.5);
  for (const double v : r.y) EXPECT_EQ(v, 0.25);
}

TEST(Wrapper, FlagWithoutWaterIsAsGoodAsClear) {
  Wrapped w(false);
  const FlashResult with = flash(w.m, 200, 40, w.z);
  EXPECT_EQ(w.m.record.flags, Wrapped::kFlags);
  w.m.record.flags = 0;
  EXPECT_TRUE(flash(w.m, 200, 40, w.z) == with);
  w.m.record.flags = Wrapped::kFlags;
  host.fail_from = 1;
  const FlashResult failed = flash(w.m, 200, 40, w.z, 1, &kRoutines, marked(7));
  EXPECT_EQ(failed.status, kHostStatus);
  EXPECT_EQ(host.flags, std::vector<std::uint8_t>{0});  // once, cleared
  EXPECT_EQ(w.m.record.flags, Wrapped::kFlags);
  expect_untouched(failed);
}

TEST(Wrapper, WaterIsRecognisedByItsNumber) {
  Wrapped w(true);
  w.m.at(2, KV_COL_CAS) = 7732186;
  host.fail_from = 1;
  flash(w.m, 300, 50, w.z, 1, &kRoutines, marked(8));
  EXPECT_EQ(host.flags, std::vector<std::uint8_t>{0});
}

TEST(Wrapper, ColdStartIsRetriedFromTheWaterEstimate) {
  Wrapped w(true);
  const FlashResult good = flash(w.m, 300, 50, w.z);
  ASSERT_TRUE(good.two_phases());
  // The retry fails as well, whatever the status says elsewhere: its estimate is what is left.
  for (const StatusCode status : {kHostStatus, 95, 112, 9001}) {
    host = {.fail_from = 1, .status = status};
    const FlashResult failed = flash(w.m, 300, 50, w.z, 1, &kRoutines, marked(8));
    EXPECT_EQ(failed.status, status);
    EXPECT_EQ(host.flags, (std::vector<std::uint8_t>{Wrapped::kFlags, Wrapped::kFlags}));
    EXPECT_DOUBLE_EQ(failed.beta, 1 - w.z[2]);
    for (std::size_t i = 0; i < 8; ++i) {
      EXPECT_EQ(failed.x[i], i == 2 ? 1.0 : 0.0);
      EXPECT_DOUBLE_EQ(failed.y[i], i == 2 ? 0.0 : w.z[i] / (1 - w.z[2]));
    }
  }
  // The retry succeeds.
  host = {};
  host.fail_until = 1;
  expect_same(flash(w.m, 300, 50, w.z, 1, &kRoutines, marked(8)), good, 1e-8);
  EXPECT_EQ(w.m.record.flags, Wrapped::kFlags);
}

TEST(Wrapper, WarmStartsAndDryFeedsAreNotRetried) {
  Wrapped w(true);
  host.fail_from = 1;
  const FlashResult warm = flash(w.m, 300, 50, w.z, 0, &kRoutines, marked(8));
  EXPECT_EQ(warm.status, kHostStatus);
  EXPECT_EQ(host.calls, 1);
  expect_untouched(warm);
  Wrapped dry(true, 0.0);
  host.fail_from = 1;
  const FlashResult cold = flash(dry.m, 300, 50, dry.z, 1, &kRoutines, marked(8));
  EXPECT_EQ(cold.status, kHostStatus);
  EXPECT_EQ(host.calls, 1);
  expect_untouched(cold);
  EXPECT_EQ(dry.m.record.flags, Wrapped::kFlags);
}

TEST(Wrapper, AboveTheCriticalPressureOfWaterTheRetryIsWithoutFreeWater) {
  Wrapped w(true);
  const double Pc = w.m.at(2, KV_COL_PC);
  for (const int options : {0, 1}) {
    for (const double P : {Pc, std::nextafter(Pc, 1e9)}) {
      host = {};
      host.fail_from = 1;
      const FlashResult r = flash(w.m, 400, P, w.z, options, &kRoutines, marked(8));
      EXPECT_EQ(r.status, kHostStatus);
      if (P > Pc) {
        EXPECT_EQ(host.flags, (std::vector<std::uint8_t>{Wrapped::kFlags, 0}));
        expect_untouched(r);
      } else {
        EXPECT_EQ(host.flags, std::vector<std::uint8_t>(options ? 2u : 1u, Wrapped::kFlags));
      }
    }
    host = {};
    host.fail_until = 1;
    const FlashResult retried = flash(w.m, 400, 300, w.z, options, &kRoutines, marked(8));
    w.m.record.flags = 0;
    expect_same(retried, flash(w.m, 400, 300, w.z), 1e-8);
    w.m.record.flags = Wrapped::kFlags;
  }
}

TEST(Wrapper, PureWaterLeavesNumbersBehind) {
  Wrapped w(true);
  std::vector<double> z(8, 0.0);
  z[2] = 1.0;
  host.fail_from = 1;
  const FlashResult r = flash(w.m, 300, 50, z, 1, &kRoutines, marked(8));
  EXPECT_EQ(r.status, kHostStatus);
  for (const double v : r.y) EXPECT_TRUE(std::isfinite(v)) << v;
}

}  // namespace
