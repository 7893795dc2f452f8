#pragma once

#include <windows.h>

#include <cstdint>

namespace platform {

// Milliseconds that this machine has been awake; the time that it slept is left out, so that a limit is not
// reached by closing the lid.
inline std::uint64_t AwakeMs() {
  ULONGLONG hundredNanoseconds = 0;
  QueryUnbiasedInterruptTime(&hundredNanoseconds);
  return hundredNanoseconds / 10'000;
}

}  // namespace platform
