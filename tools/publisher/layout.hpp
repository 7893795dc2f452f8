#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace publisher {

inline constexpr std::array<std::string_view, 3> kWebScripts = {"info.php", "noticiasbase.php", "ipdate.php"};
inline constexpr std::array<std::string_view, 2> kMirrorPaths = {"/update/kvn2011/",
                                                                 "/files/update/kvn2011/"};

// Where everything lies inside one publication.
class Layout {
 public:
  explicit Layout(std::string root);

  // A publication that is already there; Failure when the folder is none.
  static Layout Existing(const std::string& root);

  const std::string& Root() const { return root_; }
  std::string Online() const { return root_ + "/Online.txt"; }
  std::string Client() const { return root_ + "/Kelvarin.zip"; }
  std::string Patches() const { return root_ + "/OldAct"; }
  std::string UpdateList() const { return Patches() + "/Update.ini"; }
  std::string Patch(std::string_view category, int number) const;
  std::string GameFiles() const { return root_ + "/NewAct2"; }
  std::string Index() const { return IndexIn(GameFiles()); }
  std::string Packed(std::string_view inBin) const { return PackedIn(GameFiles(), inBin); }
  std::string WebScript(std::string_view name) const { return root_ + "/web/include/" + std::string(name); }

  // The same inside a game-files folder that is being prepared.
  static std::string IndexIn(const std::string& gameFiles) { return gameFiles + "/Info.kvn"; }
  static std::string PackedIn(const std::string& gameFiles, std::string_view inBin);

  // A path inside the publication as it is below the root; the path itself when it lies elsewhere.
  std::string RelativeOf(const std::string& path) const;

  // The file that answers a path asked of a mirror (percent-decoded, without its query); none when nothing of
  // a publication is meant. The result always lies inside the publication.
  std::optional<std::string> FileFor(std::string_view urlPath) const;

 private:
  std::string root_;
};

}  // namespace publisher
