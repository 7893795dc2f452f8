#include <filesystem>
#include <optional>
#include <vector>

#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/push_plan.hpp"
#include "publisher/source_files.hpp"
#include "publisher/update_list.hpp"
#include "update/counter_store.hpp"

namespace publisher {
namespace {

namespace fs = std::filesystem;

constexpr const char* kArrivals = "push";
constexpr std::size_t kPiece = 1u << 20;

bool IsInside(const std::string& inner, const std::string& outer) {
  const fs::path relative = fs::weakly_canonical(inner).lexically_relative(fs::weakly_canonical(outer));
  return !relative.empty() && *relative.begin() != "..";
}

void RequireTarget(const Layout& from, const Layout& to) {
  if (IsInside(to.Root(), from.Root()) || IsInside(from.Root(), to.Root())) {
    throw Failure(to.Root() + ": it lies in the publication, or the publication in it");
  }
  if (platform::IsFolder(to.Root()) && !platform::IsFolder(to.Patches()) && !to.Files().empty()) {
    throw Failure(to.Root() + ": the folder is not empty and no publication");
  }
}

void RequireNoStepBack(const Layout& from, const Layout& to) {
  if (!platform::IsFile(to.UpdateList())) return;
  for (const char* category : update::kCategories) {
    const int here = NewestPatch(from, category), there = NewestPatch(to, category);
    if (here >= there) continue;
    throw Failure(to.UpdateList() + ": it has " + std::to_string(there) + " patches of " + category + ", " +
                  from.UpdateList() + " only " + std::to_string(here) + " (--force takes the list back)");
  }
}

void CopyTime(const std::string& from, const std::string& to) {
  std::error_code failed;
  fs::last_write_time(to, fs::last_write_time(from, failed), failed);
  if (failed) throw Failure(to + ": " + failed.message());
}

// The bytes and the time of `from`, whole or not at all.
void Copy(const std::string& from, const std::string& to, Progress& progress) {
  platform::InputFile source = Naming(from, [&] { return platform::InputFile(from); });
  Naming(to, [&] {
    platform::MakeFolders(platform::FolderOf(to));
    platform::OutputFile target(to);
    std::vector<std::byte> piece(kPiece);
    while (const std::size_t count = Naming(from, [&] { return source.Read(piece); })) {
      target.Write(std::span<const std::byte>(piece).first(count));
      progress.Add(count);
    }
    target.Commit(platform::OutputFile::Lasting::No);  // all are flushed at once
  });
  CopyTime(from, to);
}

// First everything arrives in a folder beside the files that are served, so that a run which is cut off goes
// on with the first file that had not arrived; then each gets its name, in an order in which nothing names
// what is not there yet.
void Carry(const PushPlan& plan, const Layout& from, const Layout& to, Console& console) {
  const Layout arrivals(to.Own(kArrivals));
  std::uint64_t total = 0;
  for (const std::string& name : plan.copy) total += SizeOf(from.At(name));
  {
    Progress progress(console, "copying", total);
    for (const std::string& name : plan.copy) {
      if (SameStamp(from.At(name), arrivals.At(name))) {
        progress.Add(SizeOf(from.At(name)));
      } else {
        Copy(from.At(name), arrivals.At(name), progress);
      }
    }
  }
  if (!plan.copy.empty()) Naming(arrivals.Root(), [&] { platform::FlushTree(arrivals.Root()); });
  for (const std::string& name : plan.copy) {
    const std::string target = to.At(name);
    Naming(target, [&] {
      platform::MakeFolders(platform::FolderOf(target));
      platform::ReplaceFileWith(arrivals.At(name), target);
    });
  }
  for (const std::string& name : plan.date) CopyTime(from.At(name), to.At(name));
  for (const std::string& name : plan.remove) {
    Naming(to.At(name), [&] { platform::RemoveFile(to.At(name)); });
  }
  Naming(arrivals.Root(), [&] { platform::RemoveTree(arrivals.Root()); });
}

}  // namespace

bool Push(const CommandLine& line, Console& console) {
  const Layout from = Layout::Existing(line.operands[0]);
  const Layout to(line.operands[1]);
  const PublicationLock reading(from, PublicationLock::Kind::Reading);
  RequireTarget(from, to);
  if (!line.options.force) RequireNoStepBack(from, to);
  if (!line.options.dryRun) Naming(to.Root(), [&] { platform::MakeFolders(to.Root()); });
  std::optional<PublicationLock> writing;
  if (!line.options.dryRun) writing.emplace(to, PublicationLock::Kind::Writing);
  const PushPlan plan = PushPlan::For(from, to);
  for (const std::string& name : plan.copy) console.out << "> " << name << "\n";
  for (const std::string& name : plan.remove) console.out << "- " << name << "\n";
  if (!line.options.dryRun) Carry(plan, from, to, console);
  console.out << to.Root() << ": " << plan.copy.size() << " files "
              << (line.options.dryRun ? "to copy, " : "copied, ") << plan.remove.size()
              << (line.options.dryRun ? " to remove\n" : " removed\n");
  return true;
}

}  // namespace publisher
