#include "publisher/source_files.hpp"

#include <algorithm>
#include <filesystem>
#include <map>

#include "base/relative_name.hpp"
#include "base/text.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "publisher/failure.hpp"

namespace publisher {
namespace {

namespace fs = std::filesystem;

// Windows takes two names for one when they differ by case alone, accented letters included.
std::string CaseFolded(std::string_view name) {
  std::string folded = platform::ToAnsi(name);
  for (char& c : folded) {
    const auto code = static_cast<unsigned char>(c);
    const bool capital = (code >= 'A' && code <= 'Z') || (code >= 0xC0 && code <= 0xDE && code != 0xD7);
    if (capital) c = static_cast<char>(code + 0x20);
  }
  return folded;
}

std::vector<std::string> BadNames(const std::vector<SourceFile>& files, std::string_view prefix) {
  std::vector<std::string> bad;
  std::map<std::string, std::string> seen;
  for (const SourceFile& file : files) {
    if (const std::string why = WhyUnpublishable(std::string(prefix) + file.name); !why.empty()) {
      bad.push_back(file.path + ": " + why);
    } else if (const auto [first, fresh] = seen.emplace(CaseFolded(file.name), file.path); !fresh) {
      bad.push_back(file.path + ": its name differs from " + first->second + " by case alone");
    }
  }
  return bad;
}

std::vector<SourceFile> Walk(const std::string& folder, std::ostream& warnings) {
  std::vector<SourceFile> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    const fs::file_type kind = entry.symlink_status().type();
    if (kind == fs::file_type::regular) {
      const std::string name = entry.path().lexically_relative(folder).native();
      const fs::perms run = fs::perms::owner_exec & entry.status().permissions();
      files.push_back({entry.path().native(), name, entry.file_size(), run != fs::perms::none});
    } else if (kind != fs::file_type::directory) {
      warnings << "warning: " << entry.path().native() << ": left out, since it is no plain file\n";
    }
  }
  std::sort(files.begin(), files.end(),
            [](const SourceFile& a, const SourceFile& b) { return a.name < b.name; });
  return files;
}

bool Holds(const fs::path& folder, const fs::path& inner) {
  const fs::path relative = inner.lexically_relative(folder);
  return !relative.empty() && *relative.begin() != "..";
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

std::vector<SourceFile> ReadSource(const std::string& folder, std::string_view prefix,
                                   const std::string& publication, std::ostream& warnings) {
  if (!platform::IsFolder(folder)) throw Failure(folder + ": no such folder");
  std::vector<SourceFile> files;
  try {
    if (Holds(fs::canonical(folder), fs::canonical(publication))) {
      throw Failure(folder + ": it holds the publication itself");
    }
    files = Walk(fs::path(folder).lexically_normal().native(), warnings);
  } catch (const fs::filesystem_error& error) {
    throw Failure(error.path1().native() + ": " + error.code().message());
  }
  if (const std::vector<std::string> bad = BadNames(files, prefix); !bad.empty()) {
    std::string message = "nothing was published, since these cannot be:";
    for (const std::string& line : bad) message += "\n  " + line;
    throw Failure(message);
  }
  return files;
}

std::uint64_t TotalSize(const std::vector<SourceFile>& files) {
  std::uint64_t total = 0;
  for (const SourceFile& file : files) total += file.size;
  return total;
}

}  // namespace publisher
