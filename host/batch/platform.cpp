#include "batch/platform.hpp"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#include <cerrno>
#endif

namespace kestrune::host::batch {

#ifdef _WIN32

bool is_terminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

bool sync_to_disk(std::FILE* file) {
  return _commit(_fileno(file)) == 0;
}

#else

bool is_terminal(std::FILE* stream) {
  return isatty(fileno(stream)) != 0;
}

bool sync_to_disk(std::FILE* file) {
  return fsync(fileno(file)) == 0 || errno == EINVAL;  // a device has nothing to sync
}

#endif

}  // namespace kestrune::host::batch
