// The one error of the host: input that cannot be worked with. The program shows it and ends with code 2.
#ifndef KESTRUNE_HOST_ERROR_HPP
#define KESTRUNE_HOST_ERROR_HPP

#include <stdexcept>
#include <string>

namespace kestrune::host {

// what() says what is wrong and what would be right.
struct InputError : std::runtime_error {
  explicit InputError(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace kestrune::host

#endif
