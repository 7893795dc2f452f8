#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "startup/services.hpp"

namespace update {

// The update categories in their fixed order.
inline constexpr std::array<const char*, 7> kCategories = {"Init", "Mapas", "Graficos", "Midis",
                                                           "Wavs", "AU",    "Extras"};

// How many patches of each category are installed: one line of plain text per category in AU<category>.ini.
class CounterStore {
 public:
  explicit CounterStore(const startup::Services& services) : services_(services) {}

  // 0 when there is none or it is no number of patches.
  std::int16_t Read(const std::string& category);

  // False, and reported, when it could not be written; the old number stays then. A patch brings its number
  // along (AddedFile), so nothing is written after one.
  bool Write(const std::string& category, std::int16_t number);

  // As Write, but raises what the file system does and leaves the report to the caller.
  void Store(const std::string& category, std::int16_t number);

 private:
  std::string FileOf(const std::string& category) const;
  std::string Report(const char* procedure, const std::string& line, const std::string& description) const;

  const startup::Services& services_;
};

}  // namespace update
