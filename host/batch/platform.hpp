// What the systems have under different names.
#ifndef KESTRUNE_HOST_BATCH_PLATFORM_HPP
#define KESTRUNE_HOST_BATCH_PLATFORM_HPP

#include <cstdint>
#include <cstdio>
#include <string>

namespace kestrune::host::batch {

bool is_terminal(std::FILE* stream);
// Whether two terminals are the same one, as far as the system tells.
bool is_same_terminal(std::FILE* a, std::FILE* b);
// What is written to the stream keeps its ends of lines.
void keep_line_ends(std::FILE* stream);

// Opens a file to be read and written, unbuffered, without changing it. Where there is none it is made, if make says so,
// and made is true. Null with errno where that fails.
std::FILE* open_to_change(const std::string& path, bool make, bool& made);

// A lock of this process, which ends with it; other programs may read the file all the same.
enum class Lock { taken, in_use, impossible };
Lock lock(std::FILE* file);

// From the beginning of a file; false where the system refuses, with errno.
bool go_to(std::FILE* file, std::uint64_t place);
// What stands behind so many bytes is gone, and the next write goes there.
bool cut_off(std::FILE* file, std::uint64_t size);
std::uint64_t size_of(std::FILE* file);

// Waits until what was written is on the disk; false where the system says that it is not.
bool sync_to_disk(std::FILE* file);

}  // namespace kestrune::host::batch

#endif
