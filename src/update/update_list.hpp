#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/profile_files.hpp"
#include "update/counter_store.hpp"

namespace update {

using PatchCounts = std::array<std::int16_t, kCategories.size()>;

// The published update list as it is kept while a check runs; deleted when this goes away.
class UpdateList {
 public:
  // Stores the downloaded text with every blank turned into a line end, since it may come as one line.
  UpdateList(platform::ProfileFiles& profiles, std::string file, const std::string& text);
  ~UpdateList();
  UpdateList(const UpdateList&) = delete;

  // The newest patch of a category; none when it is no number. Raises 6 when it is beyond 16 bits.
  std::optional<std::int16_t> Newest(const std::string& category) const;

 private:
  platform::ProfileFiles& profiles_;
  std::string file_;
};

}  // namespace update
