#include <windows.h>

#include "platform/keep_awake.hpp"

namespace platform {
namespace {

thread_local int living = 0;  // the system keeps one state for each thread

}  // namespace

KeepAwake::KeepAwake() {
  if (living++ == 0) SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED);
}

KeepAwake::~KeepAwake() {
  if (--living == 0) SetThreadExecutionState(ES_CONTINUOUS);
}

}  // namespace platform
