// Finding, loading and binding the two sibling libraries. Nothing is loaded before it is needed.
#ifndef KESTRUNE_FRAME_SIBLINGS_HPP
#define KESTRUNE_FRAME_SIBLINGS_HPP

#include <cstddef>
#include <cstdint>

#include "frame/state.hpp"

namespace kestrune::frame {

// Code of the exception that ends a call whose sibling library or entry is missing.
inline constexpr std::uint32_t kProviderException = 0xEFFFFFFFu;

/*
 * Loads a sibling library by its file name; null when it cannot be loaded. In this order:
 *   1. the folder of SetLibraryFolder, if it was set and holds the file;
 *   2. Windows: the common-files folder of the registry + "\Tavrin\Kestrune\", if it holds the file;
 *      Linux: the folder of this library, if it holds the file;
 *   3. the bare name, for the system's own search;
 *   4. Windows: the folder of this library, for a host that lies in another one (a plug-in, Excel, Python).
 * A file of 1 or 2 that is there but cannot be loaded is not replaced by a later one.
 */
void* LoadSiblingLibrary(const char* name) noexcept;

/*
 * Sets the folder that is searched first: text[length] without its trailing blanks, plus a separator.
 * Libraries that are loaded already stay. False, and nothing is changed, when it does not fit.
 */
bool SetLibraryFolder(const char* text, std::size_t length) noexcept;

/*
 * Address of an entry; the library is loaded and the entry resolved on first use, later calls read the
 * slot only. A library or entry that is missing is shown to the user and ends in kProviderException:
 * the return value is never null.
 */
void* BindProviderEntry(const char* library, const char* entry, LibraryCell& handle,
                        ProviderEntry& slot) noexcept;

// Frees the tools library and forgets its entries; the next use binds again. Nothing when it is not loaded.
void ReleaseProviders() noexcept;

}  // namespace kestrune::frame

#endif
