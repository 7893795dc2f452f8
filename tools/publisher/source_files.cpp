#include "publisher/source_files.hpp"

#include <algorithm>
#include <filesystem>
#include <map>

#include "base/relative_name.hpp"
#include "base/text.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "publisher/failure.hpp"
#include "update/launcher_state.hpp"

namespace publisher {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> BadNames(const std::vector<SourceFile>& files, std::string_view prefix) {
  std::vector<std::string> bad;
  std::map<std::string, std::string> seen;
  for (const SourceFile& file : files) {
    if (const std::string why = WhyUnpublishable(std::string(prefix) + file.name); !why.empty()) {
      bad.push_back(file.path + ": " + why);
    } else if (const auto [first, fresh] = seen.emplace(base::UpperLatin(file.name), file.path); !fresh) {
      bad.push_back(file.path + ": its name differs from " + first->second + " by case alone");
    }
  }
  return bad;
}

// Adds what lies in `folder` itself to `files` and `folders`. The standard's own recursive walk would not say
// which folder it could not read.
void ListFolder(const fs::path& root, const fs::path& folder, std::ostream& warnings,
                std::vector<SourceFile>& files, std::vector<fs::path>& folders) try {
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const fs::file_type kind = entry.symlink_status().type();
    if (kind == fs::file_type::regular) {
      const std::string name = entry.path().lexically_relative(root).native();
      const fs::perms run = fs::perms::owner_exec & entry.status().permissions();
      files.push_back({entry.path().native(), name, entry.file_size(), run != fs::perms::none});
    } else if (kind == fs::file_type::directory) {
      folders.push_back(entry.path());
    } else {
      warnings << "warning: " << entry.path().native() << ": left out, since it is no plain file\n";
    }
  }
} catch (const fs::filesystem_error& error) {
  throw Failure((error.path1().empty() ? folder : error.path1()).native() + ": " + error.code().message());
}

std::vector<SourceFile> Walk(const std::string& folder, std::ostream& warnings) {
  std::vector<SourceFile> files;
  std::vector<fs::path> folders = {folder};
  for (std::size_t i = 0; i < folders.size(); ++i) {
    const fs::path next = folders[i];
    ListFolder(folder, next, warnings, files, folders);
  }
  std::sort(files.begin(), files.end(),
            [](const SourceFile& a, const SourceFile& b) { return a.name < b.name; });
  return files;
}

void LeaveOutLauncherState(std::vector<SourceFile>& files, std::string_view prefix, std::ostream& warnings) {
  std::erase_if(files, [&](const SourceFile& file) {
    if (!update::IsLauncherState(std::string(prefix) + file.name)) return false;
    warnings << "warning: " << file.path << ": left out, since each launcher keeps its own there\n";
    return true;
  });
}

bool Holds(const fs::path& folder, const fs::path& inner) try {
  const fs::path relative = fs::canonical(inner).lexically_relative(fs::canonical(folder));
  return !relative.empty() && *relative.begin() != "..";
} catch (const fs::filesystem_error& error) {
  throw Failure(error.path1().native() + ": " + error.code().message());
}

}  // namespace

std::string WhyUnpublishable(std::string_view name) {
  if (base::Contains(name, "\\")) return "its name holds a \"\\\"";
  if (platform::FromAnsi(platform::ToAnsi(name)) != name) {
    return "its name has characters that Windows-1252 lacks";
  }
  const std::string why = base::WhyUnsafe(name);
  return why.empty() ? std::string{} : "launchers refuse the name: " + why;
}

std::vector<SourceFile> ReadSource(const std::string& folder, std::string_view prefix, const Layout& layout,
                                   std::ostream& warnings) {
  if (!platform::IsFolder(folder)) throw Failure(folder + ": no such folder");
  if (Holds(folder, layout.Root())) {
    throw Failure(folder + ": it holds the publication itself");
  }
  std::string start = fs::path(folder).lexically_normal().native();
  while (start.size() > 1 && start.ends_with('/')) start.pop_back();
  std::vector<SourceFile> files = Walk(start, warnings);
  LeaveOutLauncherState(files, prefix, warnings);
  if (const std::vector<std::string> bad = BadNames(files, prefix); !bad.empty()) {
    std::string message = "nothing was published, since these cannot be:";
    for (const std::string& line : bad) message += "\n  " + line;
    throw Failure(message);
  }
  if (files.empty()) throw Failure(folder + ": there is no file to publish");
  return files;
}

std::uint64_t TotalSize(const std::vector<SourceFile>& files) {
  std::uint64_t total = 0;
  for (const SourceFile& file : files) total += file.size;
  return total;
}

std::uint64_t SizeOf(const std::string& path) {
  const auto stamp = platform::StampOf(path);
  return stamp ? stamp->size : 0;
}

}  // namespace publisher
