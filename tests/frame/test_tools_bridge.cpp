// Trace files around the two solvers, seen from the side of the tools library.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "fakes/fake_record.hpp"
#include "frame/tools_bridge.hpp"
#include "loader_spy.hpp"

namespace {

using namespace kestrune::frame;
namespace fs = std::filesystem;

int32_t seen_counter;

void KV_CALL residual(const int32_t*, const double* x, double* f, int32_t* flag, void* user) {
  seen_counter = state().traces.counter;
  f[0] = x[0] - 1.0;
  *flag = *static_cast<int32_t*>(user);
}

class Traces : public testing::Test {
 protected:
  void SetUp() override {
    fresh_start();
    char name[] = "/tmp/kestrune-traces-XXXXXX";
    folder = mkdtemp(name);
    before = fs::current_path();
    fs::current_path(folder);
    setenv("TMPDIR", folder.c_str(), 1);
    tools::bind(ToolsEntry::BRACUB);
    fake = reinterpret_cast<FakeTools* (*)()>(dlsym(state().tools_library, "fake_tools"))();
    *fake = {};
    fake->write_files = true;
    seen_counter = -1;
  }
  void TearDown() override {
    unsetenv("TMPDIR");
    fs::current_path(before);
    fs::remove_all(folder);
    reset_state();
  }
  int32_t newton(const int32_t (&units)[7]) {
    int32_t status = -1, user = 5, iterations = 0;
    double x[1] = {2.0}, f[1];
    tools::CNEWTON(&one, x, f, &residual, &user, &tolerance, &one, units, &iterations, &status);
    EXPECT_EQ(f[0], 1.0);
    return status;
  }
  int32_t ganew(int32_t& trace_switch, int32_t unit) {
    int32_t status = -1, user = 0, iterations = 0;
    double x[1] = {2.0}, f[1];
    tools::GANEW(&one, x, f, &residual, &user, &tolerance, &one, &trace_switch, &unit, &iterations, &status);
    return status;
  }
  std::string base(int i) const { return fs::path(fake->names[i]).filename().string(); }
  bool folder_is_empty() const { return fs::is_empty(folder); }

  std::string folder;
  fs::path before;
  FakeTools* fake = nullptr;
  const int32_t one = 1;
  const double tolerance = 1e-9;
};

TEST_F(Traces, OneTemporaryFileForEachUnitAskedFor) {
  EXPECT_EQ(newton({11, 12, 13, 14, 15, 16, 17}), 5);
  ASSERT_EQ(fake->count, 7);
  const char* const prefixes[] = {"ERR", "DIA", "OUT", "FI", "JAC", "SOL", "XI"};
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(base(i).rfind(prefixes[i], 0), 0u) << base(i);
    EXPECT_EQ(fs::path(fake->names[i]).parent_path(), folder);
    EXPECT_EQ(fake->units[i], 11 + i);
    EXPECT_TRUE(fake->existed[i]);
  }
  EXPECT_EQ(seen_counter, 7);
  EXPECT_EQ(state().traces.counter, 0);
  EXPECT_EQ(fake->close_calls, 1);
  EXPECT_TRUE(folder_is_empty());

  newton({0, 12, 0, 0, 0, 0, 17});
  ASSERT_EQ(fake->count, 2);
  EXPECT_EQ(base(0).rfind("DIA", 0), 0u);
  EXPECT_EQ(base(1).rfind("XI", 0), 0u);
  EXPECT_EQ(fake->units[1], 17);
  EXPECT_TRUE(folder_is_empty());
}

TEST_F(Traces, FixedNamesInTheCurrentFolderWithoutTemporaryFolder) {
  const char* const names[] = {"KVTools.CNEWTON.IOERR.log", "KVTools.CNEWTON.IODIAG.log",
                               "KVTools.CNEWTON.IOUT1.log", "KVTools.CNEWTON.IOFUNC.log",
                               "KVTools.CNEWTON.IOJAC.log", "KVTools.CNEWTON.IOSOL.log",
                               "KVTools.CNEWTON.IOX.log"};
  // One that does not exist, and one whose name is longer than the buffer.
  for (const std::string& unusable : {folder + "/missing", std::string(300, 'x')}) {
    setenv("TMPDIR", unusable.c_str(), 1);
    newton({1, 1, 1, 1, 1, 1, 1});
    ASSERT_EQ(fake->count, 7);
    for (int i = 0; i < 7; ++i) EXPECT_STREQ(fake->names[i], names[i]);
    EXPECT_TRUE(folder_is_empty());
    int32_t trace_switch = 1;
    ganew(trace_switch, 9);
    EXPECT_STREQ(fake->names[0], "KVTools.GANEW.IMP.log");
    EXPECT_TRUE(folder_is_empty());
  }
}

TEST_F(Traces, GanewTracesOnlyWithSwitchAndUnit) {
  int32_t trace_switch = 3;
  EXPECT_EQ(ganew(trace_switch, 9), 0);
  EXPECT_EQ(trace_switch, 3);
  ASSERT_EQ(fake->count, 1);
  EXPECT_EQ(base(0).rfind("IMP", 0), 0u);
  EXPECT_EQ(fake->units[0], 9);
  EXPECT_EQ(fake->set_calls, 1);

  EXPECT_EQ(ganew(trace_switch, 0), 0);
  EXPECT_EQ(trace_switch, 0);
  EXPECT_EQ(fake->trace_switch, 0);
  EXPECT_EQ(ganew(trace_switch, 9), 0);
  EXPECT_EQ(fake->set_calls, 1);
  EXPECT_EQ(fake->close_calls, 1);
  EXPECT_EQ(seen_counter, 0);
  EXPECT_TRUE(folder_is_empty());
}

void KV_CALL nested(const int32_t* n, const double* x, double* f, int32_t* flag, void* user) {
  auto& self = *static_cast<int*>(user);
  if (++self < 40) {
    int32_t trace_switch = 1, unit = 7, iterations = 0, status = 0;
    double y[1] = {x[0]};
    const double tolerance = 1.0;
    tools::GANEW(n, y, f, &nested, user, &tolerance, n, &trace_switch, &unit, &iterations, &status);
  }
  seen_counter = std::max(seen_counter, state().traces.counter);
  *flag = 0;
}

TEST_F(Traces, NestedCallsShareTheStackAndStopAtItsEnd) {
  int32_t trace_switch = 1, unit = 7, iterations = 0, status = -1;
  double x[1] = {1.0}, f[1];
  int depth = 0;
  tools::GANEW(&one, x, f, &nested, &depth, &tolerance, &one, &trace_switch, &unit, &iterations, &status);
  EXPECT_EQ(fake->solver_calls, 40);
  EXPECT_EQ(seen_counter, kTraceStackDepth);
  EXPECT_EQ(state().traces.counter, 0);
  EXPECT_TRUE(folder_is_empty());
}

}  // namespace
