#include <array>
#include <ctime>

#include "platform/files.hpp"
#include "publisher/commands.hpp"
#include "publisher/failure.hpp"
#include "publisher/index_writer.hpp"
#include "publisher/layout.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/update_list.hpp"

namespace publisher {
namespace {

constexpr std::string_view kServers = "1@Principal@ONLINE@0@0@0@@0|2@Pruebas@OFFLINE@0@0@0@Mantenimiento@0";
constexpr std::string_view kNews = "1|0|Bienvenido|Aqui se anuncian las novedades del juego.@";

// Of a publication's first day and of nobody, as any web server can give it: launchers take it in this form.
std::string DateAndAddress() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  std::array<char, 16> date{};
  std::strftime(date.data(), date.size(), "%d/%m/%Y", &parts);
  return std::string(date.data()) + "-0.0.0.0";
}

void PutNew(const std::string& path, std::string_view text) {
  if (!platform::IsFile(path)) Naming(path, [&] { platform::WriteWhole(path, text); });
}

void MakeFolders(const std::string& path) {
  Naming(path, [&] { platform::MakeFolders(path); });
}

}  // namespace

bool Init(const CommandLine& line, Console& console) {
  const Layout layout(line.operands[0]);
  if (platform::IsFolder(layout.Root()) && !platform::IsFolder(layout.Patches()) &&
      !platform::ListTree(layout.Root()).empty()) {
    throw Failure(layout.Root() + ": the folder is not empty and no publication");
  }
  MakeFolders(layout.Patches());
  const PublicationLock lock(layout, PublicationLock::Kind::Writing);
  MakeFolders(layout.GameFiles() + "/Bin");
  MakeFolders(platform::FolderOf(layout.WebScript("")));
  PutNew(layout.UpdateList(), EmptyUpdateList());
  PutNew(layout.WebScript("info.php"), kServers);
  PutNew(layout.WebScript("noticiasbase.php"), kNews);
  PutNew(layout.WebScript("ipdate.php"), DateAndAddress());
  if (!platform::IsFile(layout.Index())) PackText(IndexBytes({}), layout.Index());
  // Last, since it is what tells launchers that the rest is there.
  PutNew(layout.Online(), "1");
  console.out << layout.Root() << ": ready\n";
  return true;
}

}  // namespace publisher
