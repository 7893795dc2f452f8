#include "base/base64.hpp"
#include "platform/files.hpp"
#include "publisher/checks.hpp"
#include "publisher/client_archive.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/folder_swap.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/release_report.hpp"
#include "publisher/signer.hpp"
#include "publisher/signing_key.hpp"
#include "publisher/update_list.hpp"

namespace publisher {
namespace {

// The publication as it will be, in a folder of its own: what stays shares its bytes with the old one.
// Nothing of the old one changes before all of the new one has been made and checked.
class NextPublication {
 public:
  NextPublication(const Layout& layout, const ReleasePlan& plan, bool client, const Signing& signing,
                  Console& console)
      : layout_(layout),
        plan_(plan),
        client_(client),
        signs_(!signing.keyFile.empty()),
        console_(console),
        work_(layout.Own("next")),
        next_(work_.Path()) {
    ShareWhatStays();
    WritePatches();
    if (plan_.Bin().Stale()) plan_.Bin().WriteInto(next_, console_);
    if (client_) WriteClient(plan_.Game(), CountersOf(plan_.CountsAfter()), next_.Client(), console_);
    if (signs_) WriteSignature(signing);
    RequireGood();
  }

  // What is asked for last is replaced first, so that a player who sees anything new finds all that it names:
  // the update list comes last.
  void TakeOver() {
    for (const PlannedPatch& patch : plan_.Patches()) MoveOver(names::Patch(patch.category, patch.number));
    if (client_) MoveOver(names::kClient);
    if (plan_.Bin().Stale()) SwapFolder(next_.GameFiles(), layout_.GameFiles());
    if (!plan_.Patches().empty()) MoveOver(names::kUpdateList);
    if (signs_) MoveOver(names::kSigned);
    PublicationRecord(layout_).TakeInListed();
  }

 private:
  bool IsReplaced(const std::string& name) const {
    return (plan_.Bin().Stale() && name.starts_with(std::string(names::kGameFiles) + "/")) ||
           (client_ && name == names::kClient) || (signs_ && name == names::kSigned);
  }

  void ShareWhatStays() {
    for (const std::string& name : layout_.Files()) {
      if (IsReplaced(name)) continue;
      const std::string copy = next_.At(name);
      Naming(copy, [&] {
        platform::MakeFolders(platform::FolderOf(copy));
        platform::ShareFile(layout_.At(name), copy);
      });
    }
    Naming(next_.GameFiles(), [&] { platform::MakeFolders(next_.GameFiles() + "/Bin"); });
  }

  void WritePatches() {
    for (const PlannedPatch& patch : plan_.Patches()) {
      const std::string archive = next_.Patch(patch.category, patch.number);
      Naming(archive, [&] { platform::MakeFolders(platform::FolderOf(archive)); });
      Progress progress(console_, "packing " + platform::FileNameOf(archive), TotalSize(patch.files));
      WriteArchive(patch.files, archive, progress);
      SetNewestPatch(next_, patch.category, patch.number);
    }
  }

  void WriteSignature(const Signing& signing) {
    const Signature signature = MakeSignature(next_, layout_, signing, console_);
    const std::string path = next_.At(names::kSigned);
    Naming(path, [&] { platform::WriteWhole(path, signature.text); });
    publicKey_ = base::Base64(SigningKey(signing.keyFile).PublicKey());
  }

  void RequireGood() {
    Findings findings;
    FolderFiles files(next_);
    Examination(files, publicKey_, findings, console_).CheckContent();
    if (findings.Problems().empty()) return;
    std::string message =
        layout_.Root() + ": nothing was released, since the publication would not pass its check:";
    for (const std::string& problem : findings.Problems()) message += "\n  " + problem;
    throw Failure(message);
  }

  void MoveOver(const std::string& name) {
    const std::string target = layout_.At(name);
    Naming(target, [&] {
      platform::MakeFolders(platform::FolderOf(target));
      platform::ReplaceFileWith(next_.At(name), target);
    });
  }

  const Layout& layout_;
  const ReleasePlan& plan_;
  const bool client_, signs_;
  Console& console_;
  const WorkFolder work_;
  const Layout next_;
  std::string publicKey_;
};

// A signed publication that is released without its key would be refused by every launcher.
void RequireKey(const Layout& layout, const Signing& signing) {
  const std::string path = layout.At(names::kSigned);
  if (!signing.keyFile.empty() || !platform::IsFile(path)) return;
  throw Failure(path +
                ": it would no longer vouch for what is there; name the key that signed it (--key KEY.pem)");
}

}  // namespace

bool Release(const CommandLine& line, Console& console) {
  const std::string& folder = line.operands[1];
  const Layout layout = Layout::Existing(line.operands[0]);
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  const ReleasePlan plan(layout, folder, console);
  if (const std::string why = plan.WhyDoubtful(); !why.empty() && !line.options.force) {
    throw Failure(why + "; nothing was released (--force does it all the same)");
  }
  RequireKey(layout, line.options.signing);
  ReleaseOutcome outcome{.dryRun = line.options.dryRun};
  outcome.client =
      line.options.client && !HoldsExactly(layout.Client(), plan.Game(), CountersOf(plan.CountsAfter()));
  outcome.signature = !line.options.signing.keyFile.empty();
  if (!outcome.dryRun && outcome.Anything(plan)) {
    NextPublication(layout, plan, outcome.client, line.options.signing, console).TakeOver();
  }
  if (line.options.json) {
    console.out << SummaryAsJson(layout, plan, outcome) << "\n";
  } else {
    PrintSummary(layout, folder, plan, outcome, console.out);
  }
  return true;
}

}  // namespace publisher
