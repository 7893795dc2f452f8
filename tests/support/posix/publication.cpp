#include "support/posix/publication.hpp"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "publisher/commands.hpp"

namespace support {

TestPublication::TestPublication() { EXPECT_EQ(Init(), 0) << err; }

int TestPublication::Run(const std::vector<std::string>& words) {
  std::ostringstream said, complained;
  publisher::Console console{said, complained};
  const int status = publisher::Run(words, console);
  out = said.str();
  err = complained.str();
  return status;
}

std::string Noise(std::size_t size, unsigned seed) {
  std::minstd_rand random(seed);
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(random() >> 8);
  return bytes;
}

}  // namespace support
