// Calls of all kinds with the statuses and outputs that a host is promised: tables of one call per row.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "common/flashes.hpp"
#include "common/scratch_folder.hpp"

using namespace kestrune;
using namespace kestrune::tests;
using namespace kestrune::tests::flashes;

namespace {

constexpr double kNaN = NAN, kInf = std::numeric_limits<double>::infinity();
// A fugacity routine that counts its calls and ends the flash.
StatusCode refused_with = 0;
std::vector<int> seen_flags;
StatusCode KV_CALL refuse(double, double, const double*, MixtureRecord* mixture, int32_t, int32_t, int32_t,
                          double*, double*, double*, double*) {
  seen_flags.push_back(mixture->flags);
  return refused_with;
}

class Calls : public testing::Test {
 protected:
  Mixture gas = mixture_of({"methane", "propane", "n_hexane"});
  Mixture wet = mixture_of({"methane", "n_hexane", "water"});
  const std::vector<double> z{0.6, 0.3, 0.1};
  ModelRoutines host{};

  void SetUp() override {
    wet.record.flags = 0x81;
    wet.record.solubility_a = 11.2;
    wet.record.solubility_b = 6290;
    host.entry[KV_ROUTINE_FUGACITY - 1] = reinterpret_cast<void*>(&refuse);
  }
  static double highest_pressure_of_water() { return 217.7; }
};

// What follows from a feed comes before what is wrong with the conditions: no sum of one, no water.
TEST_F(Calls, AFeedWithAResultOfItsOwn) {
  wet.use();
  const struct {
    std::vector<double> z;
    int count;
    double T;
    StatusCode three, dew;
  } rows[] = {{{0, 0, 0}, 3, 300, KV_FEED_SUM, KV_FEED_SUM},
              {{0.6, -0.3, 0.1}, 3, kNaN, KV_FEED_SUM, KV_FEED_SUM},
              {{0.6, 0.3, 0.2}, 3, -1, KV_FEED_SUM, KV_FEED_SUM},
              {{kInf, 0.3, 0.1}, 3, 300, KV_FEED_SUM, KV_FEED_SUM},
              {{0.6, 0.3, 0.1}, 0, 300, KV_FEED_SUM, KV_FEED_SUM},
              {{0.6, 0.3, 0.1}, -4, 0, KV_FEED_SUM, KV_FEED_SUM},
              {{0.6, 0.3, 0.1}, 10001, 300, KV_COMPONENT_COUNT, KV_COMPONENT_COUNT},
              {{0.6, 0.3, 0.1}, 3, 0, KV_TEMPERATURE, KV_TEMPERATURE},
              {{1.2, -0.3, 0.1}, 3, 300, KV_COMPOSITION, KV_COMPOSITION},
              {{0.6, kNaN, 0.1}, 3, 300, KV_COMPOSITION, KV_COMPOSITION}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.z) + " " + std::to_string(row.count) + " " + std::to_string(row.T));
    wet.record.count = row.count;
    Answer untouched;
    untouched.status = row.three;
    EXPECT_TRUE(ask(flash_named("FlashLLVatTP"), {row.z.data(), &wet.record, nullptr, 1, row.T}) == untouched);
    double P = kMark, T = kMark;
    EXPECT_EQ(WaterDewPressure(row.T, row.z.data(), 1, 0, 0, &wet.record, 0, &P), row.dew);
    EXPECT_EQ(P, kMark);
    const bool of_P = row.dew == KV_TEMPERATURE;  // the condition of a dew temperature is a pressure
    EXPECT_EQ(WaterDewTemperature(row.T, row.z.data(), 1, 0, 0, &wet.record, 0, &T),
              of_P ? StatusCode{KV_PRESSURE} : row.dew);
    EXPECT_EQ(T, kMark);
    wet.record.count = 3;
  }
  double P = kMark;
  EXPECT_EQ(WaterDewPressure(kNaN, z.data(), 1, 0, 0, &gas.record, 0, &P), KV_NO_WATER);
  EXPECT_EQ(P, kMark);
}

TEST_F(Calls, HydrateLineHasOneCheckOfItsOwn) {
  const std::vector<double> good{0.8, 0.1, 0.1}, none{0, 0, 0}, negative{-0.9, 0.1, 0.1};
  double T[2], P[2];
  const auto line = [&](const double* feed, int kind, double M, int n, MixtureRecord* r, bool outputs) {
    T[0] = P[0] = P[1] = kMark;
    return HydrateLine(feed, kind, M, 20.0, n, r, 0, outputs ? T : nullptr, outputs ? P : nullptr);
  };
  EXPECT_EQ(line(nullptr, 5, 0.0, 2, nullptr, false), KV_INHIBITOR_MASS);
  EXPECT_EQ(line(nullptr, 5, kNaN, 0, nullptr, false), KV_INHIBITOR_MASS);
  for (const int n : {0, -3, std::numeric_limits<int>::min()})
    EXPECT_EQ(line(good.data(), 0, 0.0, n, &gas.record, false), KV_OK);
  for (const double* feed : {none.data(), negative.data()}) {
    EXPECT_EQ(line(feed, 1, 0.0, 2, &gas.record, true), KV_OK);
    EXPECT_LT(T[0], 253.15);
    EXPECT_FALSE(std::isfinite(P[1]));
  }
  EXPECT_EQ(line(nullptr, 0, 0.0, 2, &gas.record, true), KV_NULL_ARGUMENT);
  gas.record.count = 0;
  EXPECT_EQ(line(nullptr, 0, 0.0, 2, &gas.record, true), KV_OK);
  EXPECT_FALSE(std::isfinite(P[1]));
  gas.record.count = 3;
}

TEST_F(Calls, MolecularWeightAlwaysReturnsZero) {
  const std::vector<double> many(10001, 1e-4), x{0.5, 0.25, 0.25}, M{16.0, 44.0, kNaN};
  const struct {
    int nc;
    const double *x, *M;
    double out;
  } rows[] = {{2, x.data(), M.data(), 19.0}, {1, x.data(), M.data(), 8.0},
              {0, nullptr, nullptr, 0.0},    {-5, nullptr, nullptr, 0.0},
              {2, nullptr, M.data(), 0.0},   {2, x.data(), nullptr, 0.0},
              {3, x.data(), M.data(), 0.0},  {10001, many.data(), many.data(), 10001 * 1e-8}};
  for (const auto& row : rows) {
    double out = kMark;
    EXPECT_EQ(MolecularWeight(row.nc, row.x, row.M, &out), KV_OK);
    EXPECT_NEAR(out, row.out, 1e-15);
  }
  EXPECT_EQ(MolecularWeight(2, x.data(), M.data(), nullptr), KV_OK);
}

// A status of a host's routine above water's critical pressure: the wrappers try again without free water, the
// flashes at vapour fraction are their cores. The status comes back as it stands; no argument check is retried.
TEST_F(Calls, WhoTriesAgainAfterWhat) {
  wet.use();
  const double P = 1.1 * highest_pressure_of_water();
  for (const Flash& f : kFlashes) {
    if (std::string(f.name) == "FlashLLatTP") continue;  // no retry is part of it, and water needs no routine
    for (const StatusCode status : {95, 112, 130, 777, 1001, 9001, 9002, 9012, 9999}) {
      SCOPED_TRACE(testing::Message() << f.name << ' ' << status);
      refused_with = status;
      for (const double pressure : {P, 20.0}) {
        seen_flags.clear();
        const bool of_P = std::string(f.name).ends_with("WT");
        const Answer r = ask(f, {z.data(), &wet.record, &host, 0, 300.0, pressure});
        EXPECT_EQ(r.status, status);
        EXPECT_EQ(wet.record.flags, 0x81);
        ASSERT_FALSE(seen_flags.empty());
        EXPECT_EQ(seen_flags.front(), 0x81);
        const bool again = f.wrapped && pressure == P && !of_P;
        EXPECT_EQ(seen_flags.size(), again ? 2u : 1u);
        EXPECT_EQ(seen_flags.back(), again ? 0 : 0x81);
      }
    }
  }
  // Below it the two-phase flashes start again from the water in the feed as it is given, as a cold start.
  const ScratchFolder folder;
  wet.record.trace_flag = 1;
  wet.record.trace_unit = 47;
  const std::vector<double> twice{1.2, 0.6, 0.2};
  for (const char* name : {"FlashLVatTP", "FlashLVatHP", "FlashLVatSP"})
    for (const double scale : {1.0, 2.0}) {
      SCOPED_TRACE(testing::Message() << name << ' ' << scale);
      seen_flags.clear();
      const Answer r = ask(flash_named(name), {scale == 1.0 ? z.data() : twice.data(), &wet.record, &host});
      EXPECT_EQ(r.status, 9999);
      EXPECT_EQ(seen_flags, (std::vector<int>{0x81, 0x81}));
      EXPECT_DOUBLE_EQ(r.beta, 1.0 - 0.1 * scale);
      EXPECT_EQ(std::vector<double>(r.array[0].begin(), r.array[0].begin() + 3),
                (std::vector<double>{0, 0, 1}));
      EXPECT_DOUBLE_EQ(r.array[1][1], 0.3 * scale / (1.0 - 0.1 * scale));
    }
  // Inside H,P and S,P stand flashes at T and P, which have an index of their own.
  int headers = 0;
  bool own = true;
  for (const std::string& line : lines_of("fort.47")) {
    if (line.find("FLASH ") != std::string::npos) own = headers < 4 || line.find("T,P") == std::string::npos;
    if (!own || line.find("INDICE INITIALISATION :") == std::string::npos) continue;
    ++headers;
    EXPECT_EQ(std::stoi(line.substr(line.find(':') + 1)), 1) << line;
  }
  EXPECT_EQ(headers, 12);
}

// Without a CAS number of water the wrapped flashes give the dry answer; at vapour fraction the family rules.
TEST_F(Calls, WaterByFamilyAlone) {
  wet.use();
  Mixture family = mixture_of({"methane", "n_hexane", "water"});
  family.record = wet.record;
  family.record.table = family.table.data();
  family.at(2, KV_COL_CAS) = 0.0;
  for (const char* name : {"FlashLVatTP", "FlashLLVatTP", "FlashLLatTP", "FlashLVatWP", "FlashLVatWT"}) {
    SCOPED_TRACE(name);
    const Flash& f = flash_named(name);
    const Answer with = ask(f, {z.data(), &wet.record}), alone = ask(f, {z.data(), &family.record});
    wet.record.flags = 0;
    const Answer dry = ask(f, {z.data(), &wet.record});
    wet.record.flags = 0x81;
    EXPECT_FALSE(with == dry);
    EXPECT_TRUE(alone == (f.wrapped ? dry : with));
  }
}

// A feed in moles is flashed as the feed that it is in fractions, a main component of more than one mole among them; only
// two liquids take that for pure, by the number as it stands.
TEST_F(Calls, FeedsInMoles) {
  Mixture two = mixture_of({"methane", "n_heptane"});
  two.use();
  two.record.sum_tolerance = 10.0;  // of three phases the sum is looked at
  for (const Flash& f : kFlashes) {
    SCOPED_TRACE(f.name);
    const bool as_given = std::string(f.name) == "FlashLLatTP";
    const std::vector<double> fractions{0.85, 0.15};
    const Answer one = ask(f, {fractions.data(), &two.record, nullptr, 1, 180.0, 40.0});
    for (const double moles : {0.5, 2.0, 4.0}) {
      const std::vector<double> feed{0.85 * moles, 0.15 * moles};
      const bool same = ask(f, {feed.data(), &two.record, nullptr, 1, 180.0, 40.0}) == one;
      EXPECT_EQ(same, !as_given || feed[0] < 1.0) << moles;
    }
  }
}

// Whatever the status, a vapour beside the mark beta = 1 reaches the host with beta 0 and its liquid in B.
TEST_F(Calls, TheMarkedLiquidIsMovedWhateverTheStatus) {
  gas.use();
  const std::vector<double> unequal{0.6, 0.3, 0.2};
  for (const char* name : {"FlashLLVatTP", "FlashLLVatHP", "FlashLLVatSP"})
    for (const StatusCode status : {112, 777, 111}) {
      SCOPED_TRACE(testing::Message() << name << ' ' << status);
      refused_with = status;
      Answer r;
      r.beta = 1.0;
      r.V = 0.8;
      for (std::size_t i = 0; i < 3; ++i) r.array[0][i] = r.array[2][i] = z[i];
      flash_named(name).call({status == 111 ? unequal.data() : z.data(), &gas.record, &host}, r);
      EXPECT_EQ(r.status, status);
      EXPECT_EQ(r.beta, 0.0);
      EXPECT_EQ(r.V, 0.8);
      EXPECT_EQ(r.array[0][0], kMark);
      EXPECT_EQ(r.array[1][0], 0.6);
    }
}

// A gas as its property exports see it: one component more or less known.
TEST_F(Calls, PropertiesOfAHalfKnownGas) {
  Mixture m = mixture_of({"methane", "ethylene_glycol"});
  m.use();
  const auto all = [&](double T, std::vector<double> x) {
    std::vector<std::pair<StatusCode, double>> out;
    double v[4] = {kMark, kMark, kMark, kMark};
    out.emplace_back(GasMolarEnthalpy_PPR78(T, 1, x.data(), &m.record, v), 0.0);
    out.back().second = v[0];
    out.emplace_back(GasMolarEntropy_PPR78(T, 1, x.data(), &m.record, v), 0.0);
    out.back().second = v[0];
    out.emplace_back(GasSpecificHeat_PPR78(T, 1, x.data(), &m.record, v, v + 1, v + 2, v + 3), 0.0);
    out.back().second = v[0];
    out.emplace_back(GasDynamicViscosity_PPR78(T, 1, x.data(), &m.record, v), 0.0);
    out.back().second = v[0];
    out.emplace_back(GasThermalConductivity_PPR78(T, 1, x.data(), &m.record, v), 0.0);
    out.back().second = v[0];
    return out;
  };
  const struct {
    const char* what;
    double cas, T;
    std::vector<double> x;
    StatusCode status;
  } rows[] = {{"every correlation holds", 107211, 600, {0.9, 0.1}, KV_OK},
              {"below all of them", 107211, 60, {0.9, 0.1}, KV_PURE_RANGE},
              {"above all of them", 107211, 2500, {0.9, 0.1}, KV_PURE_RANGE},
              {"not known", 99999999, 600, {0.9, 0.1}, KV_PURE_UNKNOWN},
              {"not known and absent", 99999999, 600, {1.0, 0.0}, KV_OK}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    m.at(1, KV_COL_CAS) = row.cas;
    for (const auto& [status, value] : all(row.T, row.x)) {
      EXPECT_EQ(status, row.status);
      EXPECT_TRUE(std::isfinite(value));
      EXPECT_EQ(value != 0.0, row.status != KV_PURE_UNKNOWN);
    }
  }
}

// Without a molar mass, or with a speed of sound that is imaginary (a composition whose sum is far from one),
// the outputs that do not need it are there.
TEST_F(Calls, OnlyWhatNeedsTheMolarMassFailsWithoutIt) {
  gas.use();
  const auto heat = [&](std::vector<double> x) {
    std::vector<double> v(5, kMark);
    v[4] = GasSpecificHeat_PPR78(300, 20, x.data(), &gas.record, &v[0], &v[1], &v[2], &v[3]);
    return v;
  };
  const auto normal = [&] {
    std::vector<double> v(5, kMark);
    v[4] = GasN(300, 20, z.data(), &gas.record, &v[0], &v[1], &v[2], &v[3]);
    return v;
  };
  const std::vector<double> heat_known = heat(z), normal_known = normal();
  const std::vector<double> imaginary = heat({0.06, 0.03, 0.01});
  EXPECT_EQ(imaginary[4], KV_NOT_FINITE);
  EXPECT_GT(imaginary[0], 0.0);
  EXPECT_LT(imaginary[1], 0.0);
  EXPECT_EQ(imaginary[2], 0.0);
  EXPECT_NE(imaginary[3], 0.0);
  for (const double M : {0.0, -1.0, kNaN, kInf}) {
    const double known = std::exchange(gas.at(1, KV_COL_MOLAR_MASS), M);
    const std::vector<double> h = heat(z), n = normal();
    EXPECT_EQ(h, (std::vector<double>{heat_known[0], heat_known[1], 0.0, heat_known[3], KV_COMPONENT_DATA}));
    EXPECT_EQ(n,
              (std::vector<double>{normal_known[0], normal_known[1], 0.0, normal_known[3], KV_COMPONENT_DATA}));
    double rho[4] = {kMark, kMark, kMark, kMark};
    EXPECT_EQ(GasDensity_PPR78(300, 20, z.data(), &gas.record, rho, rho + 1, rho + 2, rho + 3),
              KV_COMPONENT_DATA);
    for (const double value : rho) EXPECT_EQ(value, 0.0);
    gas.at(1, KV_COL_MOLAR_MASS) = known;
  }
}

// Conditions at which the equation of state ends: a status, and zeros in everything that was asked for.
TEST_F(Calls, NoNumberBesideAFailure) {
  gas.use();
  for (const auto routine : {GasPhi_Derivatives_PPR78, LiquidPhi_Derivatives_PPR78})
    for (const auto& [T, P] :
         {std::pair{300.0, 1e300}, {300.0, 1e150}, {1e-300, 1.0}, {1e300, 1e-300}, {kNaN, 1.0}}) {
      std::vector<double> out(18, kMark);
      double* const o = out.data();
      EXPECT_NE(routine(T, P, z.data(), &gas.record, 2, 7, o, o + 3, o + 6, o + 9), KV_OK);
      EXPECT_EQ(out, std::vector<double>(18, 0.0)) << T << ' ' << P;
      std::fill(out.begin(), out.end(), kMark);
      EXPECT_NE(routine(T, P, z.data(), &gas.record, 2, 0, o, nullptr, nullptr, nullptr), KV_OK);
      EXPECT_EQ(out[2], 0.0);
      EXPECT_EQ(out[3], kMark);
    }
}

// Water and ammonia mix from the first molecule of each.
TEST_F(Calls, WaterWithAmmonia) {
  Mixture m = mixture_of({"water", "ammonia"});
  m.use();
  const auto H = [&](double w, int flags, StatusCode expected) {
    const double x[] = {w, 1.0 - w};
    double value = kMark;
    m.record.flags = static_cast<std::uint8_t>(flags);
    EXPECT_EQ(GasMolarEnthalpy_PPR78(400, 1, x, &m.record, &value), expected);
    return value;
  };
  for (const double w : {1e-3, 0.5, 1.0 - 1e-3})
    EXPECT_GT(std::fabs(H(w, 0, KV_OK) - H(w, 1, KV_OK)), 0.1) << w;
  m.at(1, KV_COL_MOLAR_MASS) = 0.0;
  for (const double w : {5e-324, 1e-300, 0.5}) EXPECT_EQ(H(w, 0, KV_COMPONENT_DATA), 0.0);
  H(0.0, 0, KV_OK);
  H(0.5, 1, KV_OK);
}

class SettingsBlock : public Calls {
 protected:
  static void clear(MixtureRecord& r) { std::memset(reinterpret_cast<char*>(&r) + 61, 0, 64); }
  std::vector<Answer> all(MixtureRecord& r, const std::vector<double>& feed) {
    std::vector<Answer> answers;
    for (const Flash& f : kFlashes) answers.push_back(ask(f, {feed.data(), &r, nullptr, 1, 250.0, 20.0}));
    return answers;
  }
};

TEST_F(SettingsBlock, AClearedBlockTakesTheDefaultsAndAnyOtherStands) {
  gas.use();
  const Flash& tp = flash_named("FlashLVatTP");
  const Ask a{z.data(), &gas.record, nullptr, 1, 300.0, 20.0};
  const Answer good = ask(tp, a);
  ASSERT_EQ(good.status, KV_OK);
  ASSERT_TRUE(good.beta > 0.0 && good.beta < 1.0);
  const std::vector<Answer> with_defaults = all(gas.record, z);
  const MixtureRecord defaults = gas.record;
  clear(gas.record);
  EXPECT_TRUE(all(gas.record, z) == with_defaults);

  gas.record = defaults;
  gas.record.pure_tolerance = 0.7;  // not a setting of this flash
  EXPECT_TRUE(ask(tp, a) == good);

  // The sum is tested exactly where the tolerance is 0, and within the default where it is no number.
  const Flash& three = flash_named("FlashLLVatTP");
  const std::vector<double> exact{0.5, 0.25, 0.25}, close{0.5, 0.25, 0.25 + 1e-15};
  const struct {
    double tolerance;
    const std::vector<double>& z;
    StatusCode status;
  } rows[] = {{0.0, exact, KV_OK},
              {0.0, close, KV_FEED_SUM},
              {kNaN, close, KV_OK},
              {kNaN, {0.5, 0.25, 0.2501}, KV_FEED_SUM},
              {kInf, {0.5, 0.25, 0.2501}, KV_FEED_SUM},
              {1e-3, {0.5, 0.25, 0.2501}, KV_OK},
              {-1.0, exact, KV_FEED_SUM}};
  for (const auto& row : rows) {
    gas.record = defaults;
    gas.record.sum_tolerance = row.tolerance;
    EXPECT_EQ(ask(three, {row.z.data(), &gas.record}).status, row.status) << row.tolerance;
  }

  // CLIM = 0 never changes the method, however slow.
  const ScratchFolder folder;
  gas.record = defaults;
  gas.record.trace_flag = 1;
  int unit = 51;
  for (const bool never : {false, true}) {
    gas.record.trace_unit = unit;
    gas.record.CLIM = never ? 0.0 : KV_DEFAULT_CLIM;
    ask(tp, {z.data(), &gas.record, nullptr, 1, 330.0, 95.0});
    bool changed = false;
    for (const std::string& line : lines_of("fort." + std::to_string(unit++)))
      changed = changed || line.find("QUASI-LINEARISATION") != std::string::npos;
    EXPECT_NE(changed, never);
  }
}

// No block of settings hangs or crashes a call; an answer with status 0 is finite.
TEST_F(SettingsBlock, AnyBlockEnds) {
  wet.use();
  const MixtureRecord defaults = wet.record;
  const double numbers[] = {0.0, -1.0, kNaN, kInf, -kInf, 1e300, 1e-300};
  const int integers[] = {0, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
  const auto try_all = [&] {
    for (const Answer& r : all(wet.record, z))
      EXPECT_TRUE(r.status != KV_OK || (std::isfinite(r.T) && std::isfinite(r.array[0][0])));
    double P = 10.0;
    WaterDewPressure(320.0, z.data(), 1, 0, 0, &wet.record, 0, &P);
    wet.record = defaults;
  };
  for (const double v : numbers) {
    wet.record.CRIT = v;
    try_all();
    wet.record.CLIM = v;
    try_all();
    wet.record.EPS = v;
    try_all();
    wet.record.relaxation = v;
    try_all();
    wet.record.pure_tolerance = v;
    try_all();
    wet.record.sum_tolerance = v;
    try_all();
    wet.record.CRIT = wet.record.CLIM = wet.record.EPS = wet.record.relaxation = v;
    wet.record.ITEMAX = std::numeric_limits<int>::max();
    try_all();
  }
  for (const int v : integers) {
    wet.record.ITEMAX = v;
    try_all();
    wet.record.NEW = v;
    try_all();
  }
}

}  // namespace
