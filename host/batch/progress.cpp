#include "batch/progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "batch/platform.hpp"

namespace kestrune::host::batch {

namespace {

constexpr auto kEvery = std::chrono::milliseconds(250);
constexpr std::size_t kWidth = 30;  // characters of the bar

double seconds(std::chrono::steady_clock::duration time) {
  return std::chrono::duration<double>(time).count();
}

}  // namespace

std::string time_in_words(double total) {
  const auto whole = std::int64_t{std::llround(std::min(total, 1e9))};
  const std::int64_t days = whole / 86400, hours = whole / 3600 % 24, minutes = whole / 60 % 60;
  if (days > 0) return fmt::format("{} d {:02}:{:02}:{:02}", days, hours, minutes, whole % 60);
  if (hours > 0) return fmt::format("{}:{:02}:{:02}", hours, minutes, whole % 60);
  return fmt::format("{}:{:02}", minutes, whole % 60);
}

Progress::Progress(std::ostream& err, bool wanted) : err_(err), wanted_(wanted && is_terminal(stderr)) {}

void Progress::start(double share, std::uint64_t resumed) {
  started_ = Clock::now();
  first_share_ = share;
  resumed_ = resumed;
}

void Progress::show(double share, std::uint64_t rows) {
  const auto now = Clock::now();
  if (!wanted_ || now - last_ < kEvery || rows <= resumed_) return;
  last_ = now;
  shown_ = true;
  const double run = std::max(seconds(now - started_), 1e-3), done = std::max(share - first_share_, 1e-9);
  const auto full = static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) * kWidth);
  err_ << fmt::format("\r[{}{}] {:3.0f} %  {} rows, {:.0f}/s, {} left ", std::string(full, '#'),
                      std::string(kWidth - full, '.'), 100.0 * share, rows,
                      static_cast<double>(rows - resumed_) / run, time_in_words(run * (1.0 - share) / done))
       << std::flush;
}

void Progress::clear() {
  if (shown_) err_ << '\r' << std::string(79, ' ') << '\r' << std::flush;
  shown_ = false;
}

}  // namespace kestrune::host::batch
