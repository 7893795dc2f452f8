#include "base/runtime_error.hpp"
#include "platform/machine.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

std::wstring KeyPath(const std::string& application, const std::string& section) {
  return L"Software\\VB and VBA Program Settings\\" + Wide(application) + L"\\" + Wide(section);
}

class RegistrySettings : public SettingsStore {
 public:
  std::string Get(const std::string& application, const std::string& section,
                  const std::string& key) override {
    const std::wstring path = KeyPath(application, section), name = Wide(key);
    std::wstring value(256, L'\0');
    for (;;) {
      DWORD bytes = static_cast<DWORD>(value.size() * sizeof(wchar_t));
      const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), RRF_RT_REG_SZ,
                                          nullptr, value.data(), &bytes);
      if (status == ERROR_MORE_DATA) {
        value.resize(value.size() * 2);
        continue;
      }
      // The call ends the text with a NUL, be the stored one without.
      return status == ERROR_SUCCESS ? Narrow(value.c_str()) : std::string{};
    }
  }

  void Set(const std::string& application, const std::string& section, const std::string& key,
           const std::string& value) override {
    const std::wstring text = Wide(value);
    unique_registry_key folder;
    LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, KeyPath(application, section).c_str(), 0, nullptr, 0,
                                     KEY_SET_VALUE, nullptr, folder.receive(), nullptr);
    if (status == ERROR_SUCCESS) {
      const auto* bytes = reinterpret_cast<const BYTE*>(text.c_str());
      status = RegSetValueExW(folder.get(), Wide(key).c_str(), 0, REG_SZ, bytes,
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    if (status != ERROR_SUCCESS) throw base::RuntimeError(base::ErrorNumber::InvalidProcedureCall);
  }
};

}  // namespace

std::unique_ptr<SettingsStore> MakeSettingsStore() { return std::make_unique<RegistrySettings>(); }

}  // namespace platform
