#include "platform/win32/wide.hpp"

#include <windows.h>

#include <algorithm>

namespace platform {
namespace {

// Folders must stay 12 characters below MAX_PATH, so that a short file name fits into them.
constexpr std::size_t kLongestPlainPath = MAX_PATH - 13;

std::wstring FullPath(const std::wstring& path) {
  std::wstring full(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0) return path;
    const bool fits = length < full.size();
    full.resize(length);
    if (fits) return full;
  }
}

}  // namespace

std::wstring FromCodePage(unsigned codePage, std::string_view bytes) {
  if (bytes.empty()) return {};
  const int size = static_cast<int>(bytes.size());
  std::wstring wide(MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0), L'\0');
  MultiByteToWideChar(codePage, 0, bytes.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::wstring Wide(std::string_view utf8) { return FromCodePage(CP_UTF8, utf8); }

std::string Narrow(std::wstring_view utf16) {
  if (utf16.empty()) return {};
  const int size = static_cast<int>(utf16.size());
  std::string utf8(WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, utf8.data(), static_cast<int>(utf8.size()), nullptr,
                      nullptr);
  return utf8;
}

std::wstring SystemPath(std::string_view path) {
  std::wstring wide = Wide(path);
  std::replace(wide.begin(), wide.end(), L'/', L'\\');
  // A NUL would quietly name another file; with "|" in its place the system refuses the name.
  std::replace(wide.begin(), wide.end(), L'\0', L'|');
  if (wide.empty() || wide.starts_with(L"\\\\?\\")) return wide;
  std::wstring full = FullPath(wide);
  if (full.size() <= kLongestPlainPath || full.starts_with(L"\\\\.\\")) return wide;
  if (full.starts_with(L"\\\\")) return L"\\\\?\\UNC" + full.substr(1);
  return L"\\\\?\\" + full;
}

}  // namespace platform
