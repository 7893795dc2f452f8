#include <windows.h>
// after windows.h, which it builds on
#include <shellapi.h>

#include "base/text.hpp"
#include "base/url.hpp"
#include "platform/machine.hpp"
#include "platform/win32/com_apartment.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

bool Open(const std::string& target, const std::string& workingFolder, int showCommand) {
  const ComApartment com;
  const std::wstring file = Wide(target), folder = Wide(workingFolder);
  SHELLEXECUTEINFOW open{};
  open.cbSize = sizeof open;
  open.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
  open.lpVerb = L"open";
  open.lpFile = file.c_str();
  open.lpDirectory = folder.empty() ? nullptr : folder.c_str();
  open.nShow = showCommand;
  return ShellExecuteExW(&open) != 0;
}

class SystemShell : public Shell {
 public:
  bool OpenPage(const std::string& url, const std::string& workingFolder) override {
    if (base::ResolvedUrl(url).empty()) return false;
    // A quote or blank would end the address in the browser's command line.
    const std::string safe = base::Replaced(base::Replaced(url, "\"", "%22"), " ", "%20");
    return Open(safe, workingFolder, SW_SHOWNORMAL);
  }

  bool OpenFile(const std::string& file, const std::string& workingFolder) override {
    if (file.empty() || base::Contains(file, "://")) return false;
    return Open(file, workingFolder, SW_HIDE);
  }
};

}  // namespace

std::unique_ptr<Shell> MakeShell(TellOutside) { return std::make_unique<SystemShell>(); }

}  // namespace platform
