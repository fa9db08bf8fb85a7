#include "batch/platform.hpp"

#include <cerrno>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace kestrune::host::batch {

#ifdef _WIN32

bool is_terminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

bool is_same_terminal(std::FILE* a, std::FILE* b) {
  return is_terminal(a) && is_terminal(b);
}

void keep_line_ends(std::FILE* stream) {
  std::fflush(stream);
  _setmode(_fileno(stream), _O_BINARY);
}

std::FILE* open_to_change(const std::string& path, bool make, bool& made) {
  constexpr int how = _O_RDWR | _O_BINARY | _O_NOINHERIT, mode = _S_IREAD | _S_IWRITE;
  int handle = make ? _open(path.c_str(), how | _O_CREAT | _O_EXCL, mode) : -1;
  made = handle >= 0;
  if (!made && (!make || errno == EEXIST)) handle = _open(path.c_str(), how);
  std::FILE* file = handle >= 0 ? _fdopen(handle, "r+b") : nullptr;
  if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
  return file;
}

Lock lock(std::FILE* file) {
  // Windows keeps others from reading what is locked: a byte where no file has one.
  OVERLAPPED place{};
  place.OffsetHigh = 0x40000000;
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
  if (LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != 0)
    return Lock::taken;
  const DWORD why = GetLastError();
  return why == ERROR_LOCK_VIOLATION || why == ERROR_IO_PENDING ? Lock::in_use : Lock::impossible;
}

bool go_to(std::FILE* file, std::uint64_t place) {
  return _fseeki64(file, static_cast<std::int64_t>(place), SEEK_SET) == 0;
}

bool cut_off(std::FILE* file, std::uint64_t size) {
  return std::fflush(file) == 0 && _chsize_s(_fileno(file), static_cast<std::int64_t>(size)) == 0 &&
         go_to(file, size);
}

std::uint64_t size_of(std::FILE* file) {
  const std::int64_t size = _filelengthi64(_fileno(file));
  return size > 0 ? static_cast<std::uint64_t>(size) : 0;
}

bool sync_to_disk(std::FILE* file) {
  return _commit(_fileno(file)) == 0;
}

#else

bool is_terminal(std::FILE* stream) {
  return isatty(fileno(stream)) != 0;
}

bool is_same_terminal(std::FILE* a, std::FILE* b) {
  struct stat of_a {
  }, of_b{};
  return is_terminal(a) && is_terminal(b) && fstat(fileno(a), &of_a) == 0 && fstat(fileno(b), &of_b) == 0 &&
         of_a.st_rdev == of_b.st_rdev;
}

void keep_line_ends(std::FILE*) {}

std::FILE* open_to_change(const std::string& path, bool make, bool& made) {
  constexpr mode_t mode = 0666;
  int descriptor = make ? open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode) : -1;
  made = descriptor >= 0;
  if (!made && (!make || errno == EEXIST)) descriptor = open(path.c_str(), O_RDWR | O_CLOEXEC);
  std::FILE* file = descriptor >= 0 ? fdopen(descriptor, "r+b") : nullptr;
  if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
  return file;
}

Lock lock(std::FILE* file) {
  // fcntl and not flock: it reaches the server of a network file system.
  struct flock all {};
  all.l_type = F_WRLCK;
  all.l_whence = SEEK_SET;
  if (fcntl(fileno(file), F_SETLK, &all) != 0)
    return errno == EAGAIN || errno == EACCES ? Lock::in_use : Lock::impossible;
  struct stat found {};  // a run that had made the file may have taken it away again
  return fstat(fileno(file), &found) == 0 && found.st_nlink == 0 ? Lock::in_use : Lock::taken;
}

bool go_to(std::FILE* file, std::uint64_t place) {
  return fseeko(file, static_cast<off_t>(place), SEEK_SET) == 0;
}

bool cut_off(std::FILE* file, std::uint64_t size) {
  return std::fflush(file) == 0 && ftruncate(fileno(file), static_cast<off_t>(size)) == 0 && go_to(file, size);
}

std::uint64_t size_of(std::FILE* file) {
  struct stat found {};
  return fstat(fileno(file), &found) == 0 ? static_cast<std::uint64_t>(found.st_size) : 0;
}

bool sync_to_disk(std::FILE* file) {
  return fsync(fileno(file)) == 0 || errno == EINVAL;  // a device has nothing to sync
}

#endif

}  // namespace kestrune::host::batch
