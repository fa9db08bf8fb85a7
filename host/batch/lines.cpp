#include "batch/lines.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "error.hpp"
#include "text.hpp"

#ifdef _WIN32
#define KESTRUNE_SEEK _fseeki64
#else
#define KESTRUNE_SEEK fseeko
#endif

namespace kestrune::host::batch {

namespace {

constexpr std::string_view kMark = "\xef\xbb\xbf";  // byte order mark of UTF-8

std::int64_t time_of(const std::string& path) {
  std::error_code none;
  return std::filesystem::last_write_time(path, none).time_since_epoch().count();
}

}  // namespace

bool is_empty_line(std::string_view line) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = line.find_first_not_of(blanks);
  if (first == std::string_view::npos) return true;
  // "#N/A" is a cell.
  return line[first] == '#' &&
         (first + 1 == line.size() || blanks.find(line[first + 1]) != std::string_view::npos);
}

Lines Lines::of_file(const std::string& path) {
  Lines lines;
  lines.name_ = path;
  std::error_code none;
  if (path == "-")
    throw InputError("a batch reads its tables from files, not from standard input: name a file");
  if (std::filesystem::is_directory(path, none))
    throw InputError(fmt::format("{} is a folder, not a table", path));
  const bool plain = !std::filesystem::exists(path, none) || std::filesystem::is_regular_file(path, none);
  if (!plain)
    throw InputError(fmt::format("{} is no plain file: a batch reads its tables more than once", path));
  errno = 0;
  lines.file_.reset(std::fopen(path.c_str(), "rb"));
  if (!lines.file_) throw InputError(fmt::format("cannot read {}: {}", path, std::strerror(errno)));
  lines.size_ = std::filesystem::file_size(path, none);
  if (none) throw InputError(fmt::format("cannot read {}: {}", path, none.message()));
  lines.time_ = time_of(path);
  std::setvbuf(lines.file_.get(), nullptr, _IONBF, 0);
  lines.buffer_.resize(kLongestLine);
  return lines;
}

Lines Lines::of_text(const std::string& name, std::string text) {
  Lines lines;
  lines.name_ = name;
  lines.size_ = text.size();
  lines.buffer_.assign(text.begin(), text.end());
  lines.end_ = text.size();
  return lines;
}

bool Lines::has_changed() const {
  std::error_code none;
  return file_ && (std::filesystem::file_size(name_, none) != size_ || time_of(name_) != time_);
}

// Moves what is left to the front of the buffer and reads more; false where there is no more room, and at the end of the
// file, which is where it was when the file was opened: one that grows is not read twice in two lengths.
bool Lines::fill() {
  if (!file_ || in_buffer()) return false;
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  const std::uint64_t behind = position_ + end_;
  const std::size_t room = static_cast<std::size_t>(
      std::min<std::uint64_t>(buffer_.size() - end_, behind < size_ ? size_ - behind : 0));
  const std::size_t read = std::fread(buffer_.data() + end_, 1, room, file_.get());
  if (read == 0 && std::ferror(file_.get()) != 0)
    throw InputError(fmt::format("{} could not be read to its end: {}", name_, std::strerror(errno)));
  end_ += read;
  return read > 0;
}

// The rest of a line of which the buffer held the beginning.
void Lines::skip_line() {
  do {
    const auto* begin = buffer_.data() + begin_;
    const auto* end = static_cast<const char*>(std::memchr(begin, '\n', end_ - begin_));
    const std::size_t length = end != nullptr ? static_cast<std::size_t>(end - begin) + 1 : end_ - begin_;
    begin_ += length;
    position_ += length;
    if (end != nullptr) return;
  } while (fill());
}

std::size_t Lines::append(std::string& to, std::size_t lines, std::size_t bytes) {
  const std::size_t before = to.size();
  std::size_t count = 0;
  while (count < lines && to.size() - before < bytes) {
    const char* line = buffer_.data() + begin_;
    const void* end = std::memchr(line, '\n', end_ - begin_);
    if (end == nullptr && fill()) continue;
    if (end == nullptr && begin_ == end_) break;
    const std::size_t length =
        end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - line) + 1 : end_ - begin_;
    to.append(line, length);
    if (end == nullptr) to += '\n';
    begin_ += length;
    position_ += length;
    if (end == nullptr && file_) skip_line();
    ++line_;
    ++count;
  }
  return count;
}

std::string Lines::heading() {
  for (std::string line; append(line, 1) == 1; line.clear()) {
    const bool first = line_ == 2;
    if (first && line.rfind(kMark, 0) == 0) line.erase(0, kMark.size());
    const std::string_view start = std::string_view(line).substr(0, 2);
    if (first && (start == "\xff\xfe" || start == "\xfe\xff"))
      throw InputError(fmt::format(
          "{} is UTF-16 (\"Unicode text\"): save it as CSV UTF-8, or iconv -f UTF-16 -t UTF-8", name_));
    if (line.find('\0') != std::string::npos)
      throw InputError(fmt::format(
          "{} has bytes that are 0: no text in UTF-8 or an older form of 8 bits. Save it as CSV", name_));
    if (line.size() > kLongestLine)
      throw InputError(
          fmt::format("{}: line {} is longer than {} bytes: no heading", name_, line_ - 1, kLongestLine));
    if (first && lower(line.substr(0, 4)) == "sep=" && line.find_first_not_of("\r\n", 5) == std::string::npos) {
      separator_ = line[4];
      continue;
    }
    if (is_empty_line(line)) continue;
    first_position_ = position_;
    first_line_ = line_;
    // A tab at its ends is an empty cell.
    const std::size_t begin = line.find_first_not_of(" \r\n"), end = line.find_last_not_of(" \r\n");
    return line.substr(begin, end - begin + 1);
  }
  throw InputError(fmt::format("{} is empty: its first line names the columns", name_));
}

void Lines::rewind() {
  if (!file_ || in_buffer()) {
    begin_ = static_cast<std::size_t>(first_position_);
  } else {
    if (KESTRUNE_SEEK(file_.get(), static_cast<std::int64_t>(first_position_), SEEK_SET) != 0)
      throw InputError(fmt::format("{} cannot be read again: {}", name_, std::strerror(errno)));
    std::clearerr(file_.get());
    begin_ = end_ = 0;
  }
  position_ = first_position_;
  line_ = first_line_;
}

}  // namespace kestrune::host::batch
