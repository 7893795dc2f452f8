#include <unistd.h>

#include <iostream>

#include "publisher/commands.hpp"

int main(int count, char** words) {
  publisher::Console console{std::cout, std::cerr, isatty(STDERR_FILENO) == 1};
  return publisher::Run(std::vector<std::string>(words + 1, words + count), console);
}
