#include "platform/win32/shell_link.hpp"

#include <windows.h>
// after windows.h, which it builds on
#include <shlobj.h>

#include <array>

#include "base/runtime_error.hpp"
#include "base/unique_handle.hpp"
#include "platform/files.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

template <class Interface>
struct ComTraits : base::NullIsNone<Interface*> {
  static void Close(Interface* object) { object->Release(); }
};
using unique_link = base::UniqueHandle<ComTraits<IShellLinkW>>;
using unique_persist = base::UniqueHandle<ComTraits<IPersistFile>>;

constexpr std::size_t kLongestPath = 32768;

void Require(HRESULT result) {
  if (FAILED(result)) throw base::RuntimeError(base::ErrorNumber::PathFileAccessError);
}

unique_link NewLink() {
  unique_link link;
  Require(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                           reinterpret_cast<void**>(link.receive())));
  return link;
}

unique_persist FileOf(const unique_link& link) {
  unique_persist file;
  Require(link.get()->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(file.receive())));
  return file;
}

}  // namespace

void MakeShellLink(const std::string& path, const std::string& program, const std::string& description) {
  const unique_link link = NewLink();
  Require(link.get()->SetPath(Wide(program).c_str()));
  Require(link.get()->SetWorkingDirectory(Wide(FolderOf(program)).c_str()));
  Require(link.get()->SetDescription(Wide(description).c_str()));
  Require(FileOf(link).get()->Save(Wide(path).c_str(), TRUE));
}

std::string TargetOfShellLink(const std::string& path) {
  try {
    const unique_link link = NewLink();
    Require(FileOf(link).get()->Load(Wide(path).c_str(), STGM_READ));
    std::wstring target(kLongestPath, L'\0');
    Require(link.get()->GetPath(target.data(), static_cast<int>(target.size()), nullptr, SLGP_RAWPATH));
    return Narrow(target.c_str());
  } catch (const base::RuntimeError&) {
    return {};
  }
}

}  // namespace platform
