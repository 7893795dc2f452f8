#include "support/win32/junction.hpp"

#include <windows.h>
// after windows.h, which it builds on
#include <winioctl.h>

#include <vector>

#include "platform/files.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"
#include "support/host_path.hpp"

namespace support {
namespace {

// The documented layout of a mount point's reparse data, which the SDK keeps for drivers.
struct MountPointHeader {
  DWORD tag = IO_REPARSE_TAG_MOUNT_POINT;
  WORD dataLength = 0;
  WORD reserved = 0;
  WORD targetOffset = 0, targetLength = 0, printOffset = 0, printLength = 0;
};

bool MakeMountPoint(const std::string& link, const std::wstring& target) {
  const platform::unique_file folder(
      CreateFileW(platform::Wide(link).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                  FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  const std::wstring name = L"\\??\\" + target;
  const auto bytes = static_cast<WORD>(name.size() * sizeof(wchar_t));
  MountPointHeader header;
  header.targetLength = bytes;
  header.printOffset = static_cast<WORD>(bytes + sizeof(wchar_t));
  header.dataLength = static_cast<WORD>(8 + bytes + 2 * sizeof(wchar_t));
  std::vector<std::byte> data(8 + header.dataLength);
  memcpy(data.data(), &header, sizeof header);
  memcpy(data.data() + sizeof header, name.data(), bytes);
  DWORD returned = 0;
  return folder && DeviceIoControl(folder.get(), FSCTL_SET_REPARSE_POINT, data.data(),
                                   static_cast<DWORD>(data.size()), nullptr, 0, &returned, nullptr);
}

bool LeadsElsewhere(const std::string& link) {
  const DWORD attributes = GetFileAttributesW(platform::Wide(link).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

bool RunHostLink(const std::string& link, const std::string& target) {
  const std::string to = HostPath(target), in = HostPath(platform::FolderOf(link));
  if (to.empty()) return false;
  if (!StartOnHost("/bin/ln", "-s \"" + to + "\" \"" + in + "/" + platform::FileNameOf(link) + "\"")) {
    return false;
  }
  for (int i = 0; i < 1000 && !LeadsElsewhere(link); ++i) Sleep(10);
  return LeadsElsewhere(link);
}

}  // namespace

bool MakeJunction(const std::string& link, const std::string& target) {
  platform::MakeFolder(link);
  if (MakeMountPoint(link, platform::Wide(target))) return true;
  platform::RemoveTree(link);
  return RunHostLink(link, target);
}

}  // namespace support
