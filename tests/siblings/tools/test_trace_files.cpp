// Names, units and life of the trace files.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "kestrune/kvtoolslite.h"

namespace {

namespace fs = std::filesystem;

std::string padded(const std::string& name) {
  std::string result = name;
  result.resize(260, ' ');
  return result;
}

std::string read(const fs::path& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::int32_t set_files(const std::vector<std::string>& names, const std::vector<std::int32_t>& units) {
  std::string all;
  for (const std::string& name : names) all += padded(name);
  const auto count = static_cast<std::int32_t>(names.size());
  std::int32_t status = -1;
  SetOutputFiles(&count, all.data(), units.data(), &status);
  return status;
}

std::int32_t close_files() {
  std::int32_t status = -1;
  CloseOutputFiles(&status);
  return status;
}

void KV_CALL square_root(const int32_t*, const double* x, double* f, int32_t*, void*) {
  f[0] = x[0] * x[0] - 2.0;
}

std::int32_t newton(const std::array<std::int32_t, 7>& units, std::int32_t itemax = 50) {
  const std::int32_t n = 1;
  double x = 1.0, f = 0.0;
  const double tolerance = 1e-12;
  std::int32_t iterations = 0, status = -1;
  CNEWTON(&n, &x, &f, square_root, nullptr, &tolerance, &itemax, units.data(), &iterations, &status);
  return status;
}

class TraceFiles : public testing::Test {
 protected:
  void SetUp() override {
    folder = fs::temp_directory_path() /
             ("trace files " + std::to_string(std::hash<std::thread::id>{}(std::this_thread::get_id())));
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
  void TearDown() override {
    close_files();
    fs::remove_all(folder);
  }
  std::string path(const std::string& name) const { return (folder / name).string(); }
  fs::path folder;
};

TEST_F(TraceFiles, EachKindGoesToItsUnit) {
  const std::vector<std::string> kinds{"ERR", "DIA", "OUT", "FI", "JAC", "SOL", "XI"};
  std::vector<std::string> names;
  for (const std::string& kind : kinds) names.push_back(path(kind));
  ASSERT_EQ(set_files(names, {11, 12, 13, 14, 15, 16, 17}), 0);
  EXPECT_EQ(newton({11, 12, 13, 14, 15, 16, 17}), 0);
  EXPECT_EQ(close_files(), 0);
  EXPECT_EQ(read(names[0]), "") << "no errors";
  EXPECT_NE(read(names[1]).find("iteration 1"), std::string::npos);
  EXPECT_NE(read(names[2]).find("1 unknowns"), std::string::npos);
  EXPECT_EQ(read(names[3]).substr(0, 5), "f -1\n") << "x^2 - 2 at the start";
  EXPECT_EQ(read(names[4]).substr(0, 9), "Jacobian\n");
  EXPECT_NE(read(names[5]).find("1.414213562373"), std::string::npos);
  EXPECT_EQ(read(names[6]).substr(0, 4), "x 1\n");

  ASSERT_EQ(set_files({names[0]}, {11}), 0);
  EXPECT_EQ(newton({11, 0, 0, 0, 0, 0, 0}, 1), 1);
  EXPECT_EQ(close_files(), 0);
  EXPECT_NE(read(names[0]).find("iteration limit"), std::string::npos);
}

TEST_F(TraceFiles, UnitsWithoutFilesAndFilesWithoutUnits) {
  EXPECT_EQ(newton({21, 22, 23, 24, 25, 26, 27}), 0) << "nothing is open";
  ASSERT_EQ(set_files({path("a"), path("b")}, {0, 5}), 0);
  EXPECT_FALSE(fs::exists(path("a"))) << "unit 0 means none";
  EXPECT_EQ(newton({0, 0, 0, 0, 0, 0, 0}), 0);
  EXPECT_EQ(close_files(), 0);
  EXPECT_EQ(read(path("b")), "");
}

TEST_F(TraceFiles, BroydenWritesWithSwitchAndUnitOnly) {
  const std::int32_t n = 1, itemax = 50, unit = 31;
  const double tolerance = 1e-12;
  for (const std::int32_t on : {0, 1}) {
    ASSERT_EQ(set_files({path("imp")}, {unit}), 0);
    double x = 1.0, f = 0.0;
    std::int32_t iterations = 0, status = -1;
    GANEW(&n, &x, &f, square_root, nullptr, &tolerance, &itemax, &on, &unit, &iterations, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(close_files(), 0);
    EXPECT_EQ(read(path("imp")).empty(), on == 0);
  }
}

TEST_F(TraceFiles, UnopenablePathOpensNothing) {
  ASSERT_EQ(set_files({path("kept")}, {1}), 0);
  EXPECT_EQ(set_files({path("good"), path("no such folder/file")}, {2, 3}), 1);
  EXPECT_EQ(set_files({""}, {4}), 1);
  EXPECT_EQ(newton({0, 0, 0, 2, 0, 0, 1}), 0);
  EXPECT_EQ(close_files(), 0);
  EXPECT_EQ(read(path("good")), "");
  EXPECT_NE(read(path("kept")), "") << "the earlier file stays connected";
  const std::int32_t negative = -1, unit = 1;
  std::int32_t status = -1;
  SetOutputFiles(&negative, padded("x").data(), &unit, &status);
  EXPECT_EQ(status, 2);
}

TEST_F(TraceFiles, ReconnectedUnitAndDoubleClose) {
  ASSERT_EQ(set_files({path("first")}, {7}), 0);
  ASSERT_EQ(set_files({path("second")}, {7}), 0);
  EXPECT_EQ(newton({0, 0, 0, 0, 0, 7, 0}), 0);
  EXPECT_EQ(close_files(), 0);
  EXPECT_EQ(close_files(), 0);
  CloseOutputFiles(nullptr);
  EXPECT_EQ(read(path("first")), "");
  EXPECT_NE(read(path("second")), "");
  EXPECT_EQ(std::remove(path("first").c_str()), 0) << "a closed file can be deleted";
}

TEST_F(TraceFiles, NameOfFullLengthNeedsNoBlank) {
  std::string name = path("");
  const std::size_t room = 260 - name.size();
  if (room > 250) GTEST_SKIP() << "the file systems' limit of one name";
  name += std::string(room, 'n');
  const std::int32_t status = set_files({name}, {1});
  close_files();
#if !defined(_WIN32)  // there the limit is 259 characters
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(fs::exists(name));
#else
  EXPECT_LE(status, 1);
#endif
}

TEST_F(TraceFiles, SolversOnSeveralThreads) {
  ASSERT_EQ(set_files({path("shared")}, {9}), 0);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int k = 0; k < 50; ++k) newton({9, 9, 9, 9, 9, 9, 9});
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(close_files(), 0);
  std::istringstream lines(read(path("shared")));
  std::size_t solutions = 0;
  for (std::string line; std::getline(lines, line);) solutions += line.rfind("solution 1.414213562373", 0) == 0;
  EXPECT_EQ(solutions, 200u) << "whole lines";
}

}  // namespace
