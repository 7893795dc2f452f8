#include "update/tree_listing.hpp"

#include <utility>

namespace update {

TreeListing::TreeListing(std::string folder)
    : thread_([this, folder = std::move(folder)](std::stop_token stop) {
        try {
          found_ = platform::ListTree(folder, stop);
        } catch (...) {
          failure_ = std::current_exception();
        }
      }) {}

std::vector<platform::FoundFile> TreeListing::Take(std::stop_token stop) {
  const std::stop_callback ended(stop, [this] { thread_.request_stop(); });
  thread_.join();
  if (failure_) std::rethrow_exception(failure_);
  return std::move(found_);
}

}  // namespace update
