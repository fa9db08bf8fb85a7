// Tables of any length, line by line: a file, or a text in memory, read in order through a buffer of fixed size.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::host::batch {

// Whether a line holds nothing: blanks, or a comment behind "#".
bool is_empty_line(std::string_view line);

class Lines {
 public:
  // Opens a file; InputError when it cannot be read, is a folder, or no text.
  static Lines of_file(const std::string& path);
  static Lines of_text(const std::string& name, std::string text);

  const std::string& name() const { return name_; }
  std::uint64_t size() const { return size_; }  // bytes

  // The first line that holds something, without its end: the heading. From here on rewind() goes back to the line below
  // it. InputError when there is none.
  std::string heading();
  void rewind();

  // Appends up to this many lines with their ends; the last line of a file gets one. Returns how many there were.
  // InputError for a line that is longer than the buffer, 1 MiB.
  std::size_t append(std::string& to, std::size_t lines);

  std::int64_t next_line() const { return line_; }      // number from 1 of the line that comes next
  std::uint64_t position() const { return position_; }  // bytes before it

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  bool in_buffer() const { return size_ <= buffer_.size() && end_ == size_; }  // all of the file
  bool fill();

  std::string name_;
  std::unique_ptr<std::FILE, Close> file_;  // none for a text
  std::vector<char> buffer_;
  std::size_t begin_ = 0, end_ = 0;  // what is left of the buffer
  std::uint64_t size_ = 0, position_ = 0, first_position_ = 0;
  std::int64_t line_ = 1, first_line_ = 1;
};

}  // namespace kestrune::host::batch
