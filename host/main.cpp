#include <iostream>
#include <string>
#include <vector>

#include "commands/session.hpp"

int main(int argc, char** argv) {
  return kestrune::host::run(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
}
