#include "platform/network_watch.hpp"

namespace platform {

struct NetworkWatch::Watcher {};

NetworkWatch::NetworkWatch(std::function<void()>) {}
NetworkWatch::~NetworkWatch() = default;

}  // namespace platform
