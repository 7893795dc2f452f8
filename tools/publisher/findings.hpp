#pragma once

#include <exception>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "publisher/console.hpp"

namespace publisher {

// What a check has found so far. Safe to add to from several threads.
class Findings {
 public:
  void Problem(const std::string& text);
  void Warning(const std::string& text);

  // Runs `work` and turns whatever it throws into a problem of `name`. In its words, `name` takes the place
  // of the local copy that was read.
  template <class Work>
  void Judge(const std::string& name, const std::string& localCopy, Work work) {
    try {
      work();
    } catch (const std::exception& error) {
      Problem(name + ": " + WithoutName(WithoutName(error.what(), name), localCopy));
    }
  }

  // In an order that does not depend on how the threads ran.
  std::vector<std::string> Problems() const { return {problems_.begin(), problems_.end()}; }
  std::vector<std::string> Warnings() const { return {warnings_.begin(), warnings_.end()}; }
  void Print(Console& console) const;

 private:
  static std::string WithoutName(const std::string& text, const std::string& name);

  std::mutex mutex_;
  std::set<std::string> problems_, warnings_;
};

}  // namespace publisher
