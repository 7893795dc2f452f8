#include "platform/unzip.hpp"

#include <windll/decs.h>
#include <windows.h>

#include <clocale>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>

namespace platform {
namespace {

namespace fs = std::filesystem;

// The library keeps its jump buffer and a memory handle in variables of the process, so one call runs at a
// time.
std::mutex libraryInUse;

int WINAPI UNFuncionParaProcesarMensajes(LPSTR, unsigned long size) { return static_cast<int>(size); }

int WINAPI UNFuncionParaProcesarPassword(LPSTR, int, LPCSTR, LPCSTR) { return IZ_PW_CANCELALL; }

int WINAPI ReplaceAlways(LPSTR, unsigned) { return IDM_REPLACE_ALL; }

// The library sets the character type locale of the whole process and leaves it so.
class KeepLocale {
 public:
  KeepLocale() = default;
  KeepLocale(const KeepLocale&) = delete;
  KeepLocale& operator=(const KeepLocale&) = delete;
  ~KeepLocale() { std::setlocale(LC_CTYPE, before_.c_str()); }

 private:
  std::string before_ = std::setlocale(LC_CTYPE, nullptr);
};

class CurrentFolder {
 public:
  explicit CurrentFolder(const fs::path& folder) : before_(fs::current_path(error_)) {
    if (!error_) fs::current_path(folder, error_);
  }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;
  ~CurrentFolder() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
  }
  bool Entered() const { return !error_; }

 private:
  std::error_code error_;
  fs::path before_;
};

std::optional<fs::path> AbsolutePath(const std::string& utf8) {
  const int size = static_cast<int>(utf8.size());
  std::wstring wide(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), size, nullptr, 0), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), static_cast<int>(wide.size()));
  std::error_code error;
  const fs::path path = fs::absolute(wide, error).lexically_normal();
  if (wide.empty() || error) return std::nullopt;
  return path;
}

// The path as the library reads it: ANSI code page, "/" as separator (it looks for wildcards after the last
// one). Nothing when a character is not in the code page.
std::optional<std::string> AnsiPath(const fs::path& path) {
  const std::wstring wide = path.generic_wstring();
  const int size = static_cast<int>(wide.size());
  BOOL replaced = FALSE;
  const auto convert = [&](char* target, int room) {
    return WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), size, target, room, nullptr,
                               &replaced);
  };
  std::string text(convert(nullptr, 0), '\0');
  convert(text.data(), static_cast<int>(text.size()));
  if (replaced || text.empty()) return std::nullopt;
  return text;
}

// The library takes the archive's name for a pattern; "[" is the only pattern character a Windows name can
// have.
std::string LiteralName(std::string archive) {
  for (size_t at = archive.rfind('/') + 1; (at = archive.find('[', at)) != std::string::npos; at += 3) {
    archive.replace(at, 1, "[[]");
  }
  return archive;
}

int CallLibrary(std::string archive, std::string folder) {
  archive = LiteralName(std::move(archive));
  DCL options{};
  options.StructVersID = UZ_DCL_STRUCTVER;
  options.fQuiet = 2;
  options.ndflag = 1;
  options.noflag = 1;
  options.C_flag = 1;
  options.lpszZipFN = archive.data();
  options.lpszExtractDir = folder.empty() ? nullptr : folder.data();

  USERFUNCTIONS callbacks{};
  callbacks.print = UNFuncionParaProcesarMensajes;
  callbacks.password = UNFuncionParaProcesarPassword;
  callbacks.replace = ReplaceAlways;

  const KeepLocale keepLocale;
  return Wiz_SingleEntryUnzip(0, nullptr, 0, nullptr, &options, &callbacks);
}

// For a folder that the ANSI code page cannot name: from inside it, the entries need no path, and the
// archive, which lies in the same tree, is reached by a relative one.
int ExtractFromInside(const fs::path& archive, const fs::path& folder) {
  std::error_code error;
  fs::create_directory(folder, error);
  const CurrentFolder inside(folder);
  const auto direct = AnsiPath(archive);
  const auto relative = AnsiPath(archive.lexically_relative(folder));
  if (!inside.Entered() || (!direct && !relative)) return kUnzipPathUnusable;
  return CallLibrary(direct ? *direct : *relative, {});
}

// The library would try the name with ".zip" added, and calls a missing name with "[" in it a success.
bool IsThere(const std::optional<fs::path>& archive) {
  std::error_code error;
  return archive && fs::is_regular_file(*archive, error);
}

}  // namespace

int UnzipArchive(const std::string& archive, const std::string& folder) {
  const auto archivePath = AbsolutePath(archive);
  const auto folderPath = AbsolutePath(folder);
  if (!IsThere(archivePath)) return kUnzipNoArchive;
  if (!folderPath) return kUnzipPathUnusable;

  const std::lock_guard lock(libraryInUse);
  const auto archiveText = AnsiPath(*archivePath);
  const auto folderText = AnsiPath(*folderPath);
  if (!archiveText || !folderText) return ExtractFromInside(*archivePath, *folderPath);
  return CallLibrary(*archiveText, *folderText);
}

}  // namespace platform
