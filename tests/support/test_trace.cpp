// The trace writer: which unit goes where, and when the records are on it.
#include <gtest/gtest.h>

#include <cstdlib>

#include "common/scratch_folder.hpp"
#include "support/trace.hpp"

using kestrune::support::TraceWriter;
using kestrune::tests::lines_of;
using kestrune::tests::ScratchFolder;

namespace {

TEST(TraceWriter, StandardUnits) {
  const ScratchFolder folder;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  { TraceWriter(true, 6).text("to the output"); }
  { TraceWriter(true, 0).text("to the errors"); }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), " to the output\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), " to the errors\n");
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST(TraceWriter, NumberedUnitsAreAppendedFilesOfTheCurrentFolder) {
  const ScratchFolder folder;
  { const TraceWriter unused(true, 9); }
  { TraceWriter(false, 9).text("not asked for"); }
  { TraceWriter(true, -3).text("no such unit"); }
  EXPECT_TRUE(std::filesystem::is_empty("."));
  const char* heads[] = {"NO", "XL", "YV", "ZF"};
  for (int call = 1; call <= 2; ++call) {
    TraceWriter trace(true, 21);
    trace.integer("ITEMAX :", call);
    trace.real("CRIT   :", 1.5e-12);
    trace.heads(heads, 4);
    const double values[] = {0.25, -1e-300, 1e15};
    trace.row(3, values, 3);
  }
  // The writers are gone: all of it is in the file.
  const auto lines = lines_of("fort.21");
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_EQ(lines[0].rfind(" ITEMAX :", 0), 0u);
  EXPECT_EQ(std::atoi(lines[0].c_str() + 9), 1);
  EXPECT_EQ(std::atoi(lines[4].c_str() + 9), 2);
  EXPECT_EQ(lines[5].rfind(" CRIT   :", 0), 0u);
  EXPECT_DOUBLE_EQ(std::atof(lines[5].c_str() + 9), 1.5e-12);
  int number = 0;
  double a = 0, b = 0, c = 0;
  ASSERT_EQ(std::sscanf(lines[3].c_str(), "%d %lf %lf %lf", &number, &a, &b, &c), 4);
  EXPECT_EQ(number, 3);
  EXPECT_DOUBLE_EQ(a, 0.25);
  EXPECT_DOUBLE_EQ(b, -1e-300);
  EXPECT_DOUBLE_EQ(c, 1e15);
  EXPECT_LT(lines[2].find("XL"), lines[2].find("YV"));
}

TEST(TraceWriter, AUnitThatCannotBeOpenedIsSilent) {
  const ScratchFolder folder;
  std::filesystem::create_directory("fort.7");
  TraceWriter trace(true, 7);
  trace.text("nowhere");
  EXPECT_FALSE(static_cast<bool>(trace));
}

}  // namespace
