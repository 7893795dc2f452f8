#pragma once

#include <stdexcept>
#include <string>

#include "base/runtime_error.hpp"

namespace publisher {

// Why a command could not do its work, worded for the operator.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Runs `work` and names `path` in whatever the system refuses on the way.
template <class Work>
auto Naming(const std::string& path, Work work) {
  try {
    return work();
  } catch (const base::RuntimeError& error) {
    throw Failure(path + ": " + error.Description());
  }
}

}  // namespace publisher
