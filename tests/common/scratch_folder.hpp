// An empty current folder for tests that write files, removed afterwards; and the lines of such a file.
#ifndef KESTRUNE_TESTS_SCRATCH_FOLDER_HPP
#define KESTRUNE_TESTS_SCRATCH_FOLDER_HPP

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace kestrune::tests {

class ScratchFolder {
 public:
  ScratchFolder() : before_(std::filesystem::current_path()) {
    std::random_device random;
    do {
      folder_ = std::filesystem::temp_directory_path() / ("kestrune_test_" + std::to_string(random()));
    } while (!std::filesystem::create_directory(folder_));
    std::filesystem::current_path(folder_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
    std::filesystem::remove_all(folder_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

 private:
  std::filesystem::path before_, folder_;
};

// Lines without their ends; empty when there is no such file.
inline std::vector<std::string> lines_of(const std::string& name) {
  std::ifstream file(name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

}  // namespace kestrune::tests

#endif
