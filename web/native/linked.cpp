// The entries of the three libraries, which are linked into this module, by the names of their definition files.
#include "kestrune/linked.h"

#include <cstring>

#include "kestrune/kvcmpdpurelite.h"
#include "kestrune/kvgasthermo.h"
#include "kestrune/kvtoolslite.h"

namespace {

struct Entry {
  const char* name;
  void* address;
};

#define KV_LINKED(name) {#name, reinterpret_cast<void*>(&name)},
const Entry gas_entries[] = {
#include "KVGasThermo.inc"
    {nullptr, nullptr}};
const Entry pure_entries[] = {
#include "KVCmpdPureLite.inc"
    {nullptr, nullptr}};
const Entry tools_entries[] = {
#include "KVToolsLite.inc"
    {nullptr, nullptr}};
#undef KV_LINKED

struct Library {
  const char* name;
  const Entry* entries;
};
const Library libraries[] = {
    {"KVGasThermo", gas_entries}, {"KVCmpdPureLite", pure_entries}, {"KVToolsLite", tools_entries}};

}  // namespace

extern "C" void* kv_linked_library(const char* name) {
  for (const Library& library : libraries)
    if (std::strcmp(library.name, name) == 0) return const_cast<Library*>(&library);
  return nullptr;
}

extern "C" void* kv_linked_entry(void* library, const char* name) {
  for (const Entry* e = static_cast<const Library*>(library)->entries; e->name != nullptr; ++e)
    if (std::strcmp(e->name, name) == 0) return e->address;
  return nullptr;
}
