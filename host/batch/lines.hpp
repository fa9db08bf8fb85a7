// Tables of any length, line by line: a file, or a text in memory, read in order through a buffer of fixed size.
#ifndef KESTRUNE_HOST_BATCH_LINES_HPP
#define KESTRUNE_HOST_BATCH_LINES_HPP

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::host::batch {

// Whether a line holds nothing: blanks, or a comment behind "#" and a blank.
bool is_empty_line(std::string_view line);

// Of a longer line this much is handed on: more than any row of a state has.
inline constexpr std::size_t kLongestLine = std::size_t{1} << 20;  // bytes

class Lines {
 public:
  // Opens a file; InputError when it cannot be read, is a folder, or no text.
  static Lines of_file(const std::string& path);
  static Lines of_text(const std::string& name, std::string text);

  const std::string& name() const { return name_; }
  std::uint64_t size() const { return size_; }  // bytes

  // The first line that holds something, without its end: the heading. From here on rewind() goes back to the line below
  // it. InputError when there is none, or when it is no text of 8 bits.
  std::string heading();
  void rewind();
  // The separator that a line "sep=;" above the heading names, as spreadsheets write it; 0 without one.
  char separator() const { return separator_; }

  // Appends up to this many lines with their ends, none behind one that fills the bytes; the last line of a file gets
  // an end. Of what is longer than kLongestLine the beginning. Returns how many there were.
  std::size_t append(std::string& to, std::size_t lines, std::size_t bytes = SIZE_MAX);

  // Whether the file is another one than it was when it was opened, by its size and its time.
  bool has_changed() const;

  std::int64_t next_line() const { return line_; }      // number from 1 of the line that comes next
  std::uint64_t position() const { return position_; }  // bytes before it

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  bool in_buffer() const { return size_ <= buffer_.size() && end_ == size_; }  // all of the file
  bool fill();
  void skip_line();

  std::string name_;
  std::unique_ptr<std::FILE, Close> file_;  // none for a text
  std::vector<char> buffer_;
  std::size_t begin_ = 0, end_ = 0;  // what is left of the buffer
  std::uint64_t size_ = 0, position_ = 0, first_position_ = 0;
  std::int64_t line_ = 1, first_line_ = 1, time_ = 0;
  char separator_ = 0;
};

}  // namespace kestrune::host::batch

#endif
