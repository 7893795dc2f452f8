#include "publisher/layout.hpp"

#include <vector>

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

}  // namespace

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

std::string Layout::Patch(std::string_view category, int number) const {
  const std::string name(category);
  return Patches() + "/" + name + "/" + name + std::to_string(number) + ".zip";
}

std::string Layout::PackedIn(const std::string& gameFiles, std::string_view inBin) {
  return gameFiles + "/Bin/" + std::string(inBin) + ".kvn";
}

std::string Layout::RelativeOf(const std::string& path) const {
  const bool inside = path.size() > root_.size() && path.starts_with(root_) && path[root_.size()] == '/';
  return inside ? path.substr(root_.size() + 1) : path;
}

std::optional<std::string> Layout::FileFor(std::string_view urlPath) const {
  const std::optional<std::string> path = Resolved(urlPath);
  if (!path || base::Contains(*path, "\\")) return std::nullopt;
  const auto below = [&](std::string_view prefix, std::string_view folder) -> std::optional<std::string> {
    if (!path->starts_with(prefix)) return std::nullopt;
    const std::string name = std::string(folder) + path->substr(prefix.size());
    // Names with a leading dot are nobody's to ask for.
    if (!base::WhyUnsafe(name).empty() || base::Contains("/" + name, "/.")) return std::nullopt;
    return root_ + "/" + name;
  };
  for (const std::string_view mirror : kMirrorPaths) {
    if (auto file = below(mirror, "")) return file;
  }
  if (auto file = below("/web/", "web/")) return file;
  return below("/files/web/", "web/");
}

}  // namespace publisher
