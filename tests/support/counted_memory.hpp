#pragma once

#include <cstddef>

namespace support {

// How much memory the program held at most since this was made, beyond what it held then; of what `new`
// gives, on all threads.
class CountedMemory {
 public:
  CountedMemory();
  std::size_t Most() const;

 private:
  std::size_t before_;
};

}  // namespace support
