#include "publisher/release_report.hpp"

#include "publisher/json.hpp"
#include "publisher/signer.hpp"

namespace publisher {
namespace {

std::vector<std::string> NamesOf(const std::vector<SourceFile>& files) {
  std::vector<std::string> names;
  for (const SourceFile& file : files) names.push_back(file.name);
  return names;
}

JsonObject AsJson(const Changes& changes, const char* removed) {
  JsonObject object;
  object.Add("added", JsonStrings(changes.added)).Add("changed", JsonStrings(changes.changed));
  return object.Add(removed, JsonStrings(changes.removed));
}

// A dry run has no archive to measure.
std::string Packed(const std::string& archive, std::uint64_t plain, bool dryRun) {
  return dryRun ? std::to_string(plain) + " bytes before packing"
                : std::to_string(SizeOf(archive)) + " bytes";
}

}  // namespace

void PrintSummary(const Layout& layout, const std::string& gameFolder, const ReleasePlan& plan,
                  const ReleaseOutcome& outcome, std::ostream& out) {
  Changes byPatch = plan.Outside();
  byPatch.removed.clear();
  PrintChanges(byPatch, "", outcome.dryRun, out);
  PrintChanges(plan.Bin().ForPlayers(), "Bin/", outcome.dryRun, out);
  for (const std::string& name : plan.Outside().removed) {
    out << "= " << name << " is not in " << gameFolder << " but stays with players who have it\n";
  }
  for (const PlannedPatch& patch : plan.Patches()) {
    const std::string archive = layout.Patch(patch.category, patch.number);
    out << archive << ": " << patch.files.size() << " files, "
        << Packed(archive, TotalSize(patch.files), outcome.dryRun) << "\n";
  }
  if (plan.Bin().Stale()) {
    out << layout.Index() << ": " << plan.Bin().Files().size() << " files, "
        << Counted(plan.Bin().ForPlayers()) << "\n";
  }
  if (outcome.client) {
    out << layout.Client() << ": " << plan.Game().size() << " files, "
        << Packed(layout.Client(), TotalSize(plan.Game()), outcome.dryRun) << "\n";
  }
  if (outcome.signature && !outcome.dryRun) out << WordsOf(layout, *ReadSigned(layout)) << "\n";
  const bool nothing = !outcome.Anything(plan);
  out << layout.Root() << ": "
      << (nothing          ? "it installs this game already"
          : outcome.dryRun ? "nothing was done"
                           : "released")
      << "\n";
}

std::string SummaryAsJson(const Layout& layout, const ReleasePlan& plan, const ReleaseOutcome& outcome) {
  std::vector<std::string> patches;
  for (const PlannedPatch& patch : plan.Patches()) {
    const std::string name = names::Patch(patch.category, patch.number);
    JsonObject object;
    object.AddText("category", patch.category).AddNumber("number", static_cast<std::uint64_t>(patch.number));
    object.AddText("archive", name).Add("files", JsonStrings(NamesOf(patch.files)));
    if (!outcome.dryRun) object.AddNumber("bytes", SizeOf(layout.At(name)));
    patches.push_back(object.Text());
  }
  JsonObject summary;
  summary.AddText("publication", layout.Root()).AddBool("dryRun", outcome.dryRun);
  summary.Add("patches", JsonArray(patches));
  summary.Add("bin", AsJson(plan.Bin().ForPlayers(), "removed").Text());
  summary.Add("outsideBin", AsJson(plan.Outside(), "staying").Text());
  return summary.AddBool("client", outcome.client).AddBool("signed", outcome.signature).Text();
}

}  // namespace publisher
