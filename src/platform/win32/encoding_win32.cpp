#include "platform/encoding.hpp"

#include <windows.h>

#include "platform/win32/wide.hpp"

namespace platform {
namespace {

constexpr wchar_t kNoCharacter = L'\xFFFD';

// A surrogate pair is one character; no ANSI code page has it.
std::wstring WithoutSurrogates(const std::wstring& text) {
  std::wstring plain;
  plain.reserve(text.size());
  for (const wchar_t c : text) {
    if (IS_LOW_SURROGATE(c)) continue;
    plain += IS_HIGH_SURROGATE(c) ? kNoCharacter : c;
  }
  return plain;
}

}  // namespace

std::string ToAnsi(std::string_view utf8) {
  if (utf8.empty()) return {};
  if (GetACP() == CP_UTF8) return Narrow(Wide(utf8));
  const std::wstring wide = WithoutSurrogates(Wide(utf8));
  const int size = static_cast<int>(wide.size());
  constexpr DWORD kFlags = WC_NO_BEST_FIT_CHARS;
  std::string bytes(WideCharToMultiByte(CP_ACP, kFlags, wide.data(), size, nullptr, 0, "?", nullptr), '\0');
  WideCharToMultiByte(CP_ACP, kFlags, wide.data(), size, bytes.data(), static_cast<int>(bytes.size()), "?",
                      nullptr);
  return bytes;
}

std::string FromAnsi(std::string_view bytes) { return Narrow(FromCodePage(CP_ACP, bytes)); }

}  // namespace platform
