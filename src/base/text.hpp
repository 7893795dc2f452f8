#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace base {

// ASCII case only: names, keys and states of the formats are compared byte by byte otherwise.
std::string Upper(std::string_view text);
std::string Lower(std::string_view text);
// As Upper, and the accented letters of Latin-1 too; for file names as Windows compares them (UTF-8).
std::string UpperLatin(std::string_view text);
bool EqualIgnoringCase(std::string_view a, std::string_view b);

std::string_view Trim(std::string_view text);  // blanks on both sides
bool Contains(std::string_view text, std::string_view piece);
std::string Replaced(std::string_view text, std::string_view from, std::string_view to);

// The pieces between separators; always at least one piece, empty ones are kept.
std::vector<std::string_view> Split(std::string_view text, char separator);

// The n-th piece (1-based) of `text` split at `separator`; empty when there are fewer.
std::string_view Field(std::string_view text, int n, char separator);

}  // namespace base
