// Arguments that cannot be worked with, for every export: a status of the 9000 block, no crash, and outputs
// that hold what they should.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>

#include "export_table.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

class Refusals : public testing::Test {
 protected:
  Mixture m = mixture_of({"methane", "propane", "n_hexane"});
  std::vector<double> z{0.6, 0.3, 0.1};
  const std::vector<Export> table = export_table();

  void SetUp() override {
    m.use();
    m.record.flags = 0x81;
  }

  // Outputs after a refused call.
  void expect_outputs(const Export& e, const Arguments& a) {
    if (e.outputs == Refused::untouched) {
      EXPECT_TRUE(a.untouched());
      return;
    }
    const bool derivatives = std::string(e.name).find("_Derivatives_") != std::string::npos;
    bool readable = m.record.table != nullptr && m.record.count >= 1 && m.record.count <= KV_MAX_COMPONENTS;
    for (const Slot& s : a.slots) readable = readable && (s.kind != 'm' || s.address != nullptr);
    const auto n = static_cast<std::size_t>(readable ? m.n : 0);
    std::size_t output = 0;
    for (const Slot& s : a.slots) {
      if (s.kind != 'o') continue;
      ++output;
      const auto* values = static_cast<const double*>(s.address);
      if (values == nullptr) continue;
      // Zeros: one, the whole capacity, or one for each component where their count could be read.
      std::size_t zeros = e.outputs == Refused::envelope && output <= 3 ? kInteger : 1;
      if (derivatives && output == 4) zeros = n;
      if (e.outputs == Refused::per_component) zeros = output == 4 ? n * n : n;
      for (std::size_t i = 0; i < kOutputSize; ++i)
        EXPECT_EQ(values[i], i < zeros ? 0.0 : tests::kMark) << output << ' ' << i;
    }
    for (const auto& count : a.integers) EXPECT_EQ(count[1], kIntegerMark);
  }

  // Calls with what the arguments and the record now hold.
  void expect_refused(const Export& e, const Arguments& a, StatusCode expected) {
    EXPECT_EQ(e.call(a.slots), expected);
    EXPECT_EQ(m.record.flags, 0x81);
    expect_outputs(e, a);
  }
};

// The two that are not in the table take no mixture.
TEST_F(Refusals, TableIsComplete) {
  std::set<std::string> listed{"ConvertPPR78GroupData", "MolecularWeight"}, exported;
  for (const Export& e : table) listed.insert(e.name);
#define EXPORT(name, bytes) exported.insert(#name);
#include "headers/exports.inc"
#undef EXPORT
  EXPECT_EQ(listed, exported);
}

TEST_F(Refusals, NullInEveryPosition) {
  for (const Export& e : table)
    for (std::size_t k = 0; k < e.kinds.size(); ++k) {
      if (e.kinds[k] == 'd' || e.kinds[k] == 'i' || e.kinds[k] == 'r') continue;
      SCOPED_TRACE(testing::Message() << e.name << " argument " << k + 1);
      Arguments a(e, m, z);
      a.slots[k].address = nullptr;
      expect_refused(e, a, KV_NULL_ARGUMENT);
    }
}

TEST_F(Refusals, ConditionsAndSpecifications) {
  const double nan = NAN, inf = std::numeric_limits<double>::infinity();
  for (const Export& e : table) {
    std::size_t number = 0;
    for (std::size_t k = 0; k < e.kinds.size(); ++k) {
      if (e.kinds[k] != 'd') continue;
      const char role = e.roles[number++];
      if (role == '-') continue;
      for (const double bad : {nan, inf, -inf, 0.0, -1.0}) {
        if (role == 's' && std::isfinite(bad)) continue;
        if ((role == 'o' || role == 'w') && bad == 0.0) continue;
        SCOPED_TRACE(testing::Message() << e.name << " argument " << k + 1 << " = " << bad);
        Arguments a(e, m, z);
        a.slots[k].number = bad;
        const StatusCode check = role == 'T' ? KV_TEMPERATURE : role == 'P' ? KV_PRESSURE : KV_SPECIFICATION;
        expect_refused(e, a, e.feed == Feed::watered ? StatusCode{KV_NO_WATER} : check);
      }
    }
  }
}

TEST_F(Refusals, CompositionsCountsAndTables) {
  const double nan = NAN, inf = std::numeric_limits<double>::infinity();
  const std::vector<std::vector<double>> compositions{
      {0.5, nan, 0.1}, {0.5, -1e-3, 0.5}, {0, 0, 0}, {inf, 0.1, 0.1}};
  for (const Export& e : table) {
    SCOPED_TRACE(e.name);
    const bool summed = e.feed == Feed::summed || e.feed == Feed::watered;
    for (std::vector<double> bad : compositions) {
      const bool number = !std::isnan(bad[1]);
      const StatusCode check = e.feed == Feed::watered ? KV_NO_WATER : KV_COMPOSITION;
      if (e.feed != Feed::any) expect_refused(e, Arguments(e, m, bad), summed && number ? KV_FEED_SUM : check);
    }
    for (const std::int32_t count : {0, -1, 10001}) {
      m.record.count = count;
      const bool empty = summed && count < 1;
      if (e.feed != Feed::any) expect_refused(e, Arguments(e, m, z), empty ? KV_FEED_SUM : KV_COMPONENT_COUNT);
    }
    m.record.count = 3;
    m.record.table = nullptr;
    expect_refused(e, Arguments(e, m, z), KV_NULL_ARGUMENT);
    m.record.table = m.table.data();
  }
}

TEST_F(Refusals, UsableArgumentsAreWorkedWith) {
  for (const Export& e : table) {
    SCOPED_TRACE(e.name);
    Arguments a(e, m, z);
    const StatusCode status = e.call(a.slots);
    EXPECT_EQ(status, e.good);
    EXPECT_EQ(m.record.flags, 0x81);
  }
}

TEST_F(Refusals, ComponentAndGroupData) {
  for (const Export& e : table) {
    if (!e.model) continue;
    SCOPED_TRACE(e.name);
    for (const int column : {KV_COL_TC, KV_COL_PC, KV_COL_OMEGA})
      for (const double bad :
           {static_cast<double>(NAN), static_cast<double>(INFINITY), column == KV_COL_OMEGA ? 1e9 : 0.0}) {
        const double good = std::exchange(m.at(1, column), bad);
        EXPECT_EQ(e.call(Arguments(e, m, z).slots), KV_COMPONENT_DATA) << column << ' ' << bad;
        m.at(1, column) = good;
      }
    Mixture other = mixture_of({"methane", "propane"});
    other.use();
    EXPECT_EQ(e.call(Arguments(e, m, z).slots), KV_GROUP_DATA);
    m.use();
    // Arguments that cannot be converted leave no group data behind.
    for (int slot = 0; slot < 8; ++slot) {
      double* storage[6];
      std::copy(m.storage, m.storage + 6, storage);
      if (slot < 5) storage[slot + 1] = nullptr;
      ConvertPPR78GroupData(m.n, m.groups, slot == 5 ? nullptr : m.counts.data(),
                            slot == 6 ? nullptr : m.A.data(), slot == 7 ? nullptr : m.B.data(), storage);
      EXPECT_EQ(e.call(Arguments(e, m, z).slots), KV_GROUP_DATA) << slot;
      m.use();
    }
    ConvertPPR78GroupData(m.n, m.groups, m.counts.data(), m.A.data(), m.B.data(), nullptr);
    EXPECT_EQ(e.call(Arguments(e, m, z).slots), KV_GROUP_DATA);
    for (const std::int32_t count : {0, -3, 10001}) {
      ConvertPPR78GroupData(count, m.groups, m.counts.data(), m.A.data(), m.B.data(), m.storage);
      EXPECT_EQ(e.call(Arguments(e, m, z).slots), KV_GROUP_DATA) << count;
    }
    m.use();
    EXPECT_EQ(e.call(Arguments(e, m, z).slots), KV_OK);
  }
}

}  // namespace
