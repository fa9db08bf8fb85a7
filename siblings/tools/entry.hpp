// Declaration of the exported entries of KVToolsLite.
#pragma once

#include "kestrune/kvtoolslite.h"

// Hosts on 32-bit Windows call with a stack that is aligned to four bytes only, while SSE spills need
// sixteen: every entry realigns its own frame.
#if defined(__i386__)
#define KV_ENTRY extern "C" KV_API __attribute__((force_align_arg_pointer))
#else
#define KV_ENTRY extern "C" KV_API
#endif
