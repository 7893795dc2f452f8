#include "publisher/update_list.hpp"

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "publisher/failure.hpp"
#include "update/counter_store.hpp"

namespace publisher {
namespace {

const std::string kSection = "INIT";

}  // namespace

std::string EmptyUpdateList() {
  std::string text = "[" + kSection + "]\r\n";
  for (const char* category : update::kCategories) text.append(category).append("=0\r\n");
  return text;
}

int NewestPatch(const Layout& layout, const std::string& category) {
  const std::string file = layout.UpdateList();
  const std::string text = platform::MakeProfileFiles()->GetVar(file, kSection, category);
  const double number = base::Val(text);
  if (!base::IsNumeric(text) || number != static_cast<int>(number) || number < 0 || number > kHighestPatch) {
    throw Failure(file + ": \"" + text + "\" of " + category + " is no number of patches");
  }
  return static_cast<int>(number);
}

void SetNewestPatch(const Layout& layout, const std::string& category, int number) {
  const std::string text = std::to_string(number);
  platform::MakeProfileFiles()->WriteVar(layout.UpdateList(), kSection, category, text);
  if (NewestPatch(layout, category) != number) throw Failure(layout.UpdateList() + ": it cannot be written");
}

}  // namespace publisher
