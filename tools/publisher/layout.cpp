#include "publisher/layout.hpp"

#include "base/relative_name.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "publisher/failure.hpp"

namespace publisher {
namespace {

// "." and ".." taken out and doubled separators joined; none when the path climbs above its start.
std::optional<std::string> Resolved(std::string_view urlPath) {
  std::vector<std::string_view> parts;
  for (const std::string_view part : base::Split(urlPath, '/')) {
    if (part.empty() || part == ".") continue;
    if (part != "..") {
      parts.push_back(part);
    } else if (parts.empty()) {
      return std::nullopt;
    } else {
      parts.pop_back();
    }
  }
  std::string result;
  for (const std::string_view part : parts) result.append("/").append(part);
  return result;
}

bool HasHiddenPart(std::string_view name) { return name.starts_with('.') || base::Contains(name, "/."); }

}  // namespace

std::string names::Patch(std::string_view category, int number) {
  const std::string name(category);
  return std::string(kPatches) + "/" + name + "/" + name + std::to_string(number) + ".zip";
}

std::string names::Packed(std::string_view inBin) {
  return std::string(kGameFiles) + "/Bin/" + std::string(inBin) + ".kvn";
}

Layout::Layout(std::string root) : root_(std::move(root)) {
  while (root_.size() > 1 && root_.ends_with('/')) root_.pop_back();
}

Layout Layout::Existing(const std::string& root) {
  Layout layout(root);
  if (!platform::IsFolder(layout.root_)) throw Failure(root + ": no such folder");
  if (!platform::IsFolder(layout.Patches())) {
    throw Failure(root + ": not a publication (\"publisher init\" makes one)");
  }
  return layout;
}

std::vector<std::string> Layout::Files() const {
  std::vector<std::string> files;
  for (platform::FoundFile& found : Naming(root_, [&] { return platform::ListTree(root_); })) {
    if (!HasHiddenPart(found.path)) files.push_back(std::move(found.path));
  }
  return files;
}

std::optional<std::string> Layout::NameFor(std::string_view urlPath) {
  const std::optional<std::string> path = Resolved(urlPath);
  if (!path || base::Contains(*path, "\\")) return std::nullopt;
  const auto below = [&](std::string_view prefix, std::string_view folder) -> std::optional<std::string> {
    if (!path->starts_with(prefix)) return std::nullopt;
    const std::string name = std::string(folder) + path->substr(prefix.size());
    if (!base::WhyUnsafe(name).empty() || HasHiddenPart(name)) return std::nullopt;
    return name;
  };
  for (const std::string_view mirror : kMirrorPaths) {
    if (auto name = below(mirror, "")) return name;
  }
  if (auto name = below("/web/", "web/")) return name;
  return below("/files/web/", "web/");
}

}  // namespace publisher
