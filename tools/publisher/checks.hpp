#pragma once

#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "publisher/console.hpp"
#include "publisher/layout.hpp"

namespace publisher {

// What a check has found so far. Safe to add to from several threads.
class Findings {
 public:
  explicit Findings(const Layout& layout) : layout_(layout) {}

  // Notes that launchers ask for `path`; false, and a problem, when it is not there.
  bool Expect(const std::string& path);
  void Problem(const std::string& text);
  void Warning(const std::string& text);
  void WarnOfStrayFiles();  // what is in the publication and was not expected

  // Runs `work` and turns whatever it throws into a problem of `path`.
  template <class Work>
  void Judge(const std::string& path, Work work) {
    try {
      work();
    } catch (const std::exception& error) {
      const std::string what = error.what();
      Problem(what.starts_with(path) ? what : path + ": " + what);
    }
  }

  // In an order that does not depend on how the threads ran.
  std::vector<std::string> Problems() const { return {problems_.begin(), problems_.end()}; }
  std::vector<std::string> Warnings() const { return {warnings_.begin(), warnings_.end()}; }
  std::size_t Expected() const { return expected_.size(); }

 private:
  const Layout& layout_;
  std::mutex mutex_;
  std::set<std::string> expected_, problems_, warnings_;
};

void CheckAnswers(const Layout& layout, Findings& findings);  // the probe and the web scripts
void CheckPatches(const Layout& layout, Findings& findings, Console& console);
void CheckIndex(const Layout& layout, Findings& findings, Console& console);
void CheckClient(const Layout& layout, Findings& findings);

}  // namespace publisher
