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
Entry gas_entries[] = {
#include "KVGasThermo.inc"
    {nullptr, nullptr}};
Entry pure_entries[] = {
#include "KVCmpdPureLite.inc"
    {nullptr, nullptr}};
Entry tools_entries[] = {
#include "KVToolsLite.inc"
    {nullptr, nullptr}};
#undef KV_LINKED

struct Library {
  const char* name;
  Entry* entries;
};
Library libraries[] = {
    {"KVGasThermo", gas_entries}, {"KVCmpdPureLite", pure_entries}, {"KVToolsLite", tools_entries}};

}  // namespace

extern "C" void* kv_linked_library(const char* name) {
  for (Library& library : libraries)
    if (std::strcmp(library.name, name) == 0) return &library;
  return nullptr;
}

extern "C" void* kv_linked_entry(void* library, const char* name) {
  for (const Entry* e = static_cast<Library*>(library)->entries; e->name != nullptr; ++e)
    if (std::strcmp(e->name, name) == 0) return e->address;
  return nullptr;
}
