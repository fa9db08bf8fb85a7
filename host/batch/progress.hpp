// The bar on a terminal: share, rows, rate, time left. Nothing where standard error is no terminal.
#ifndef KESTRUNE_HOST_BATCH_PROGRESS_HPP
#define KESTRUNE_HOST_BATCH_PROGRESS_HPP

#include <chrono>
#include <cstdint>
#include <ostream>

namespace kestrune::host::batch {

class Progress {
 public:
  explicit Progress(std::ostream& err, bool wanted);
  ~Progress() { clear(); }

  // resumed: rows that stood in the output already and count for no rate.
  void start(double share, std::uint64_t resumed);
  void show(double share, std::uint64_t rows);
  void clear();

 private:
  using Clock = std::chrono::steady_clock;
  std::ostream& err_;
  bool wanted_, shown_ = false;
  Clock::time_point started_ = Clock::now(), last_{};
  double first_share_ = 0.0;
  std::uint64_t resumed_ = 0;
};

// "3:07", "2 d 03:00:12"
std::string time_in_words(double seconds);

}  // namespace kestrune::host::batch

#endif
