// CAS texts against the hyphenated numbers of the component list, and at the edges of the table.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "common/csv.hpp"
#include "frame/cas.hpp"
#include "kestrune/records.h"

namespace {

using namespace kestrune::frame;

std::vector<double> table_of(const std::vector<double>& numbers) {
  std::vector<double> table(KV_TABLE_COLUMNS * numbers.size(), 0.0);
  std::copy(numbers.begin(), numbers.end(),
            table.begin() + static_cast<std::ptrdiff_t>((KV_COL_CAS - 1) * numbers.size()));
  return table;
}

std::string text_of(double number) {
  char text[12];
  FormatCasText(1, table_of({number}).data(), 1, text);
  return {text, 12};
}

const std::string kNone = "-           ";

TEST(Cas, TextOfANumber) {
  EXPECT_EQ(text_of(7732185.0), "7732-18-5   ");
  EXPECT_EQ(text_of(124389.0), "124-38-9    ");
  EXPECT_EQ(text_of(50000.0), "50-00-0     ");
  EXPECT_EQ(text_of(7732185.9), "7732-18-5   ");
  EXPECT_EQ(text_of(2147483647.0), "2147483-64-7");
  EXPECT_EQ(text_of(0.0), "0-00-0      ");
  for (const double bad : {2147483648.0, 1e300, -1.0, std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(text_of(bad), kNone) << bad;
}

TEST(Cas, ListOfComponents) {
  int rows = 0;
  for (const auto& row : kestrune::tests::rows("components.csv", KESTRUNE_DATA)) {
    const std::string text = text_of(kestrune::tests::number(row, "cas_number"));
    EXPECT_TRUE(is_cas(text.data(), row.at("cas").c_str())) << row.at("id");
    ++rows;
  }
  EXPECT_GT(rows, 30);
}

TEST(Cas, ComponentOutsideTheTable) {
  const std::vector<double> table = table_of({124389.0, 7732185.0});
  char text[12];
  for (const int32_t i : {0, 3, -1, std::numeric_limits<int32_t>::max()}) {
    FormatCasText(i, table.data(), 2, text);
    EXPECT_EQ(std::string(text, 12), kNone) << i;
  }
  FormatCasText(2, table.data(), 2, text);
  EXPECT_TRUE(is_cas(text, WaterCas));
  FormatCasText(1, nullptr, 0, text);
  EXPECT_EQ(std::string(text, 12), kNone);
}

TEST(Cas, ComparisonTakesTheWholeText) {
  EXPECT_TRUE(is_cas("7732-18-5   ", WaterCas));
  EXPECT_FALSE(is_cas("7732-18-6   ", WaterCas));
  EXPECT_FALSE(is_cas("7732-18-55  ", WaterCas));
  EXPECT_FALSE(is_cas("7732-18-    ", WaterCas));
  EXPECT_FALSE(is_cas(kNone.c_str(), WaterCas));
  EXPECT_FALSE(is_cas("2147483-64-7", "2147483-64-70"));
}

TEST(Cas, FirstAndLastOfSeveral) {
  const std::vector<double> table = table_of({74828.0, 7732185.0, 124389.0, 7732185.0, 7732186.0});
  EXPECT_EQ(find_cas(5, table.data(), WaterCas), 2);
  EXPECT_EQ(find_cas(5, table.data(), WaterCas, CasPick::last), 4);
  EXPECT_EQ(find_cas(5, table.data(), kHeliumCas), 0);
  EXPECT_EQ(find_cas(0, nullptr, WaterCas), 0);
}

}  // namespace
