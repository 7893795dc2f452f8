#pragma once

#include <cstdint>
#include <string>

#include "publisher/release_plan.hpp"

namespace publisher {

// What became of a plan.
struct ReleaseOutcome {
  bool dryRun = false;
  bool client = false;     // Kelvarin.zip is made anew, or would be
  bool signature = false;  // Signed.txt is

  bool Anything(const ReleasePlan& plan) const {
    return !plan.Patches().empty() || plan.Bin().Stale() || client || signature;
  }
};

// The summary of a release for people; sizes of archives are those in the publication.
void PrintSummary(const Layout& layout, const std::string& gameFolder, const ReleasePlan& plan,
                  const ReleaseOutcome& outcome, std::ostream& out);

// The same for programs: one line of JSON.
std::string SummaryAsJson(const Layout& layout, const ReleasePlan& plan, const ReleaseOutcome& outcome);

}  // namespace publisher
