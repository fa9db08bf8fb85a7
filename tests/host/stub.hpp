// The calculation library with other statuses: every export calls the real one, and some return what a test says.
#ifndef KESTRUNE_TESTS_HOST_STUB_HPP
#define KESTRUNE_TESTS_HOST_STUB_HPP

#include <map>
#include <string>

#include "library.hpp"

namespace host_test {

inline kestrune::host::Exports real_exports;
inline std::map<std::string, StatusCode> stub_statuses;

template <auto member, class Function>
struct Stub {  // of an export without a status: the real one
  static void set(kestrune::host::Exports&, const char*) {}
};

template <auto member, class... Words>
struct Stub<member, StatusCode(KV_CALL*)(Words...)> {
  static inline const char* name = "";
  static StatusCode KV_CALL call(Words... words) {
    const StatusCode status = (real_exports.*member)(words...);
    const auto found = stub_statuses.find(name);
    return found == stub_statuses.end() ? status : found->second;
  }
  static void set(kestrune::host::Exports& exports, const char* export_name) {
    name = export_name;
    exports.*member = call;
  }
};

// The real exports, some with another status.
inline kestrune::host::Exports stub_exports(std::map<std::string, StatusCode> statuses) {
  using kestrune::host::Exports;
  real_exports = kestrune::host::load_library(kestrune::host::default_library_path());
  stub_statuses = std::move(statuses);
  Exports result = real_exports;
#define KESTRUNE_STUB(name) Stub<&Exports::name, decltype(Exports::name)>::set(result, #name);
  KESTRUNE_HOST_EXPORTS(KESTRUNE_STUB)
#undef KESTRUNE_STUB
  return result;
}

}  // namespace host_test

#endif
