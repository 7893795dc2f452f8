#include "platform/keep_awake.hpp"

namespace platform {

KeepAwake::KeepAwake() = default;
KeepAwake::~KeepAwake() = default;

}  // namespace platform
