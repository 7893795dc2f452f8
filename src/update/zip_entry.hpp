#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "update/zip_archive.hpp"

// How the records of a ZIP archive lie in its bytes, and which of them are taken.
namespace update {

inline constexpr std::uint32_t kCentralSignature = 0x02014b50, kLocalSignature = 0x04034b50;
inline constexpr std::size_t kCentralSize = 46, kLocalSize = 30;
inline constexpr std::uint16_t kStored = 0, kDeflated = 8;
inline constexpr std::uint16_t kSizesBehindData = 1 << 3;  // a flag

inline std::uint16_t Word(const std::byte* at) {
  return static_cast<std::uint16_t>(std::to_integer<unsigned>(at[0]) | std::to_integer<unsigned>(at[1]) << 8);
}
inline std::uint32_t DoubleWord(const std::byte* at) {
  return static_cast<std::uint32_t>(Word(at)) | static_cast<std::uint32_t>(Word(at + 2)) << 16;
}

[[noreturn]] void RefuseArchive(const std::string& why);
[[noreturn]] void RefuseEntry(const std::string& name, const std::string& why);

// The entry that the directory record at the front of `bytes` describes, judged by what it says of itself;
// `length` is how many bytes the record takes.
ZipArchive::Entry ParseEntry(std::span<const std::byte> bytes, std::size_t& length);

}  // namespace update
