#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace publisher {

inline constexpr std::array<std::string_view, 2> kMirrorPaths = {"/update/kvn2011/",
                                                                 "/files/update/kvn2011/"};

// Where everything lies inside a publication, "/" between the parts.
namespace names {
inline constexpr const char* kOnline = "Online.txt";
inline constexpr const char* kClient = "Kelvarin.zip";
inline constexpr const char* kPatches = "OldAct";
inline constexpr const char* kUpdateList = "OldAct/Update.ini";
inline constexpr const char* kGameFiles = "NewAct2";
inline constexpr const char* kIndex = "NewAct2/Info.kvn";
inline constexpr const char* kSigned = "Signed.txt";
inline constexpr const char* kServers = "web/include/info.php";
inline constexpr const char* kNews = "web/include/noticiasbase.php";
inline constexpr const char* kAddress = "web/include/ipdate.php";
inline constexpr const char* kOwnFolder = ".publisher";  // the operator's side, which nobody is to fetch
std::string Patch(std::string_view category, int number);
std::string Packed(std::string_view inBin);
}  // namespace names

// One publication's folder.
class Layout {
 public:
  explicit Layout(std::string root);

  // A publication that is already there; Failure when the folder is none.
  static Layout Existing(const std::string& root);

  const std::string& Root() const { return root_; }
  std::string At(std::string_view name) const { return root_ + "/" + std::string(name); }
  std::string Online() const { return At(names::kOnline); }
  std::string Client() const { return At(names::kClient); }
  std::string Patches() const { return At(names::kPatches); }
  std::string UpdateList() const { return At(names::kUpdateList); }
  std::string Patch(std::string_view category, int number) const {
    return At(names::Patch(category, number));
  }
  std::string GameFiles() const { return At(names::kGameFiles); }
  std::string Index() const { return At(names::kIndex); }
  std::string Packed(std::string_view inBin) const { return At(names::Packed(inBin)); }
  std::string Own(std::string_view name) const { return At(names::kOwnFolder) + "/" + std::string(name); }

  // Every file that may be fetched, below the root, sorted: all but those in a name with a leading dot.
  std::vector<std::string> Files() const;

  // The name of what answers a path asked of a mirror (percent-decoded, without its query); none when nothing
  // of a publication is meant.
  static std::optional<std::string> NameFor(std::string_view urlPath);

 private:
  std::string root_;
};

}  // namespace publisher
