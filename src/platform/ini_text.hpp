#pragma once

#include <optional>
#include <string>
#include <string_view>

// The text of a profile file as the Windows calls GetPrivateProfileString and WritePrivateProfileString
// understand it, byte by byte in whatever encoding the file has.
namespace platform {

// The value of the first `key` in the first `section`, blanks around it and one pair of matching quotes taken
// off; none when there is no such key or its line has no "=".
std::optional<std::string> IniValue(std::string_view text, std::string_view section, std::string_view key);

// Sets the value: on the line of the first such key, else on a new line behind the last line of the section
// that is not blank, else in a new section at the end. New lines end in CR LF, all other bytes stay.
void SetIniValue(std::string& text, std::string_view section, std::string_view key, std::string_view value);

}  // namespace platform
