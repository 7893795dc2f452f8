#include "platform/encoding.hpp"

#include <windows.h>

#include <algorithm>

#include "platform/win32/wide.hpp"

namespace platform {
namespace {

constexpr wchar_t kNoCharacter = L'\xFFFD';
constexpr unsigned kGb18030 = 54936;

// A surrogate pair is one character; no code page but the Unicode ones has it.
std::wstring WithoutSurrogates(const std::wstring& text) {
  std::wstring plain;
  plain.reserve(text.size());
  for (const wchar_t c : text) {
    if (IS_LOW_SURROGATE(c)) continue;
    plain += IS_HIGH_SURROGATE(c) ? kNoCharacter : c;
  }
  return plain;
}

// Empty where a byte is no character.
std::wstring Checked(UINT codePage, std::string_view bytes) {
  const int size = static_cast<int>(bytes.size());
  std::wstring wide(MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0),
                    L'\0');
  MultiByteToWideChar(codePage, 0, bytes.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

bool IsUpperControl(wchar_t c) { return c >= 0x80 && c < 0xA0; }

}  // namespace

std::string ToCodePage(unsigned codePage, std::string_view utf8) {
  if (utf8.empty()) return {};
  // These two take every character, and neither flags nor one for what is missing.
  const bool lacksNothing = codePage == CP_UTF8 || codePage == kGb18030;
  const std::wstring wide = lacksNothing ? Wide(utf8) : WithoutSurrogates(Wide(utf8));
  const int size = static_cast<int>(wide.size());
  // Never a character that only looks alike: a full-width "/" would become a separator.
  const DWORD flags = lacksNothing ? 0 : WC_NO_BEST_FIT_CHARS;
  const char* const missing = lacksNothing ? nullptr : "?";
  std::string bytes(WideCharToMultiByte(codePage, flags, wide.data(), size, nullptr, 0, missing, nullptr),
                    '\0');
  WideCharToMultiByte(codePage, flags, wide.data(), size, bytes.data(), static_cast<int>(bytes.size()),
                      missing, nullptr);
  return bytes;
}

std::string ToAnsi(std::string_view utf8) { return ToCodePage(GetACP(), utf8); }

std::string FromAnsi(std::string_view bytes) { return Narrow(FromCodePage(CP_ACP, bytes)); }

std::optional<std::string> CheckedFromAnsi(std::string_view bytes) {
  const std::wstring wide = Checked(CP_ACP, bytes);
  if (wide.empty() != bytes.empty() || std::any_of(wide.begin(), wide.end(), IsUpperControl))
    return std::nullopt;
  return Narrow(wide);
}

std::optional<std::string> CheckedUtf8(std::string_view bytes) {
  if (Checked(CP_UTF8, bytes).empty() != bytes.empty()) return std::nullopt;
  return std::string(bytes);
}

}  // namespace platform
