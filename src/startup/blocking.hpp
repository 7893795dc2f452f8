#pragma once

#include <functional>
#include <stop_token>

#include "startup/services.hpp"

namespace startup {

// Runs `work` on another thread while the interface thread goes on handling events; returns when it has
// ended. The program's end, or `stop` from a handler meanwhile, is passed on to the token that `work` gets.
// `onRound`, if given, runs on the interface thread after each round of events, the last time after `work`
// has ended. An exception of `work` is rethrown here.
void RunBlocking(const Services& services, const std::function<void(std::stop_token)>& work,
                 const std::function<void()>& onRound = {}, std::stop_token stop = {});

}  // namespace startup
