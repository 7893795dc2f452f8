#include "startup/folders.hpp"

#include "platform/files.hpp"

namespace startup {

Folders::Folders(const std::string& appPath)
    : AppPath(appPath),
      BinDir(appPath + platform::NativePath("\\Bin")),
      MapsDir(appPath + platform::NativePath("\\RECURSOS\\MAPAS1\\")),
      InitDir(appPath + platform::NativePath("\\RECURSOS\\INIT\\")),
      GraphicsDir(appPath + platform::NativePath("\\RECURSOS\\GRAFICOS\\")),
      ResourcesDir(appPath + platform::NativePath("\\RECURSOS")),
      ResourcesUpdateDir(appPath + platform::NativePath("\\RECURSOS\\UPDATE")),
      ParentDir(appPath + platform::NativePath("\\..\\")),
      FetchDir(appPath) {}

std::string Folders::Scratch(const std::string& name) const {
  return InitDir + platform::NativePath("\\UPDATE\\") + name;
}

}  // namespace startup
