// What the systems have under different names.
#pragma once

#include <cstdio>

namespace kestrune::host::batch {

bool is_terminal(std::FILE* stream);
// Waits until what was written is on the disk; false where the system says that it is not.
bool sync_to_disk(std::FILE* file);

}  // namespace kestrune::host::batch
