/*
 * For a program that has the three libraries linked into it, where there is no dynamic loading (WebAssembly): it says where
 * their entries are. The libraries and the host ask here instead of the system's loader.
 */
#ifndef KESTRUNE_LINKED_H
#define KESTRUNE_LINKED_H

#include "kestrune/platform.h"

KV_EXTERN_C_BEGIN

/* "KVGasThermo", "KVCmpdPureLite" or "KVToolsLite"; null for any other name. */
void* kv_linked_library(const char* name);
/* Address of an entry; null when the library has none of that name. */
void* kv_linked_entry(void* library, const char* entry);

KV_EXTERN_C_END

#endif
