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

constexpr std::size_t kBuffer = std::size_t{1} << 20;  // bytes; the longest line
constexpr std::string_view kMark = "\xef\xbb\xbf";     // byte order mark of UTF-8

}  // namespace

bool is_empty_line(std::string_view line) {
  for (const char c : line) {
    if (c == '#') return true;
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') return false;
  }
  return true;
}

Lines Lines::of_file(const std::string& path) {
  Lines lines;
  lines.name_ = path;
  std::error_code none;
  if (path == "-")
    throw InputError("a batch reads its tables from files, not from standard input: name a file");
  if (std::filesystem::is_directory(path, none))
    throw InputError(fmt::format("{} is a folder, not a table", path));
  errno = 0;
  lines.file_.reset(std::fopen(path.c_str(), "rb"));
  if (!lines.file_) throw InputError(fmt::format("cannot read {}: {}", path, std::strerror(errno)));
  lines.size_ = std::filesystem::file_size(path, none);
  if (none) throw InputError(fmt::format("{} is no plain file: a batch reads its tables more than once", path));
  std::setvbuf(lines.file_.get(), nullptr, _IONBF, 0);
  lines.buffer_.resize(kBuffer);
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

// Moves what is left to the front of the buffer and reads more; false at the end of the file.
bool Lines::fill() {
  if (!file_ || in_buffer()) return false;
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  if (end_ == buffer_.size())
    throw InputError(fmt::format("{}: line {} is longer than {} bytes: no table of one state a line", name_,
                                 line_, buffer_.size()));
  const std::size_t read = std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, file_.get());
  if (read == 0 && std::ferror(file_.get()) != 0)
    throw InputError(fmt::format("{} could not be read to its end: {}", name_, std::strerror(errno)));
  end_ += read;
  return read > 0;
}

std::size_t Lines::append(std::string& to, std::size_t lines) {
  std::size_t count = 0;
  while (count < lines) {
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
    ++line_;
    ++count;
  }
  return count;
}

std::string Lines::heading() {
  for (std::string line; append(line, 1) == 1; line.clear()) {
    if (line_ == 2 && line.rfind(kMark, 0) == 0) line.erase(0, kMark.size());
    if (line.find('\0') != std::string::npos)
      throw InputError(
          fmt::format("{} is no text in UTF-8 (or an older one of 8 bits): save it as CSV", name_));
    if (is_empty_line(line)) continue;
    first_position_ = position_;
    first_line_ = line_;
    return std::string(trimmed(line));
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
