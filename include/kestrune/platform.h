/*
 * Calling convention and import macros of the Kestrune libraries.
 *
 * 32-bit Windows: every entry is __stdcall (the callee removes the arguments) and is exported under its
 * undecorated name, so that GetProcAddress("FlashLVatTP") works from any language.
 * 64-bit Windows and Linux: the platform's C convention, the same names; wherever a 32-bit word of the
 * argument list holds an address, the native builds take a pointer.
 *
 * C99-clean: nothing here needs C++.
 */
#ifndef KESTRUNE_PLATFORM_H
#define KESTRUNE_PLATFORM_H

#include <stdint.h>

#if defined(_WIN32) && !defined(_WIN64)
#define KV_CALL __stdcall
#else
#define KV_CALL
#endif

/*
 * KV_BUILDING is defined while a library itself is compiled. A host that links the import library gets
 * dllimport; a host that resolves the names at run time takes the types from the declarations
 * (decltype(&FlashLVatTP) in C++, __typeof__(&FlashLVatTP) in C).
 */
#if defined(KV_BUILDING)
#if defined(_WIN32)
#define KV_API __declspec(dllexport)
#else
#define KV_API __attribute__((visibility("default")))
#endif
#elif defined(_WIN32)
#define KV_API __declspec(dllimport)
#else
#define KV_API
#endif

#ifdef __cplusplus
#define KV_EXTERN_C_BEGIN extern "C" {
#define KV_EXTERN_C_END }
#else
#define KV_EXTERN_C_BEGIN
#define KV_EXTERN_C_END
#endif

#endif
