#include "platform/player_install.hpp"

#include <algorithm>
#include <set>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"

namespace platform {
namespace {

constexpr const char* kList = "Instalado.txt";  // a name a line, UTF-8, parts separated by "/"
constexpr std::uint64_t kLargestList = 1024 * 1024;
constexpr const char* kSettings = "Deployment.ini";
constexpr const char* kPictures = "RECURSOS/GRAFICOS";

std::string Below(const std::string& folder, std::string_view name) {
  return folder + kSeparator + NativePath(name);
}

std::set<std::string> ListedIn(const std::string& folder) {
  std::set<std::string> names;
  const std::string list = Below(folder, kList);
  const std::string text = IsFile(list) ? ReadWhole(list, kLargestList) : std::string{};
  for (std::string_view line : base::Split(text, '\n')) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (base::WhyUnsafe(line).empty()) names.insert(base::WithSlashes(line));
  }
  return names;
}

// What lies beside the program, by its name in the folder where it is installed.
std::set<std::string> Found(const std::string& source) {
  std::set<std::string> names;
  if (IsFile(Below(source, kSettings))) names.insert(kSettings);
  const std::string pictures = Below(source, kPictures);
  if (!IsFolder(pictures)) return names;
  for (const FoundFile& file : ListTree(pictures)) {
    names.insert(std::string(kPictures) + "/" + base::WithSlashes(file.path));
  }
  return names;
}

void WriteList(const std::string& folder, const std::set<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += name + kLineEnd;
  WriteWhole(Below(folder, kList), text);
}

// The folders on the way to a name, the deepest first.
void TryRemoveFoldersOf(const std::string& folder, std::string_view name) {
  for (std::size_t end = name.rfind('/'); end != std::string_view::npos; end = name.rfind('/')) {
    name = name.substr(0, end);
    if (!TryRemoveEmptyFolder(Below(folder, name))) return;
  }
}

}  // namespace

void InstallInto(const std::string& program, const std::string& folder) {
  MakeFolders(folder);
  const std::set<std::string> names = Found(FolderOf(program));
  std::set<std::string> all = ListedIn(folder);
  all.insert(names.begin(), names.end());
  all.insert(kInstalledProgram);
  WriteList(folder, all);  // first, so that nothing is ever there that it does not name
  for (const std::string& name : names) {
    MakeFolders(FolderOf(Below(folder, name)));
    CloneFile(Below(FolderOf(program), name), Below(folder, name));
  }
  CloneFile(program, Below(folder, kInstalledProgram));
}

bool IsInstalledIn(const std::string& folder) { return IsFile(Below(folder, kList)); }

bool RemoveInstalled(const std::string& folder) {
  bool complete = true;
  for (const std::string& name : ListedIn(folder)) {
    const std::string path = Below(folder, name);
    complete &= name == kInstalledProgram ? RemoveProgram(path) : TryRemoveFile(path);
    TryRemoveFoldersOf(folder, name);
  }
  if (complete) TryRemoveFile(Below(folder, kList));
  TryRemoveEmptyFolder(folder);
  return complete;
}

}  // namespace platform
