#pragma once

#include "platform/host.hpp"
#include "startup/deployment.hpp"
#include "startup/error_recorder.hpp"
#include "startup/folders.hpp"
#include "startup/lifetime.hpp"
#include "startup/run_flags.hpp"

namespace startup {

// What nearly every part of a running launcher works with, handed over as one. Everything named here outlives
// whoever is given it, and so does the record itself.
struct Services {
  platform::Host& host;
  const Folders& folders;
  const Deployment& deployment;
  const RunFlags& flags;
  ErrorRecorder& recorder;
  Lifetime& lifetime;
};

}  // namespace startup
