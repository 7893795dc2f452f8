#include "update/update_list.hpp"

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"

namespace update {

UpdateList::UpdateList(platform::ProfileFiles& profiles, std::string file, const std::string& text)
    : profiles_(profiles), file_(std::move(file)) {
  platform::WriteWhole(file_, platform::ToAnsi(base::Replaced(text, " ", "\r\n")) + "\r\n");
}

UpdateList::~UpdateList() { platform::TryRemoveFile(file_); }

std::optional<std::int16_t> UpdateList::Newest(const std::string& category) const {
  const std::string text = profiles_.GetVar(file_, "INIT", category);
  if (!base::IsNumeric(text)) return std::nullopt;
  return base::ToInt16(base::Val(text));
}

}  // namespace update
