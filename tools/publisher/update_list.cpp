#include "publisher/update_list.hpp"

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "platform/ini_text.hpp"
#include "publisher/failure.hpp"
#include "update/counter_store.hpp"

namespace publisher {
namespace {

constexpr std::string_view kSection = "INIT";
constexpr std::uint64_t kLargestList = 16u << 20;

std::string AsRead(const std::string& list) { return base::Replaced(list, " ", "\r\n"); }

// `text`: a list as launchers read it.
int CountIn(const std::string& text, const std::string& category) {
  const std::string value = platform::IniValue(text, kSection, category).value_or("");
  const double number = base::Val(value);
  if (!base::IsNumeric(value) || number != static_cast<int>(number) || number < 0 || number > kHighestPatch) {
    throw Failure("it gives no number of patches for " + category +
                  (value.empty() ? "" : " but \"" + value + "\""));
  }
  return static_cast<int>(number);
}

std::string ReadList(const Layout& layout) {
  const std::string file = layout.UpdateList();
  return Naming(file, [&] { return platform::ReadWhole(file, kLargestList); });
}

// Names the list in whatever is wrong with it.
template <class Work>
auto NamingList(const Layout& layout, Work work) {
  try {
    return work();
  } catch (const Failure& failure) {
    throw Failure(layout.UpdateList() + ": " + failure.what());
  }
}

}  // namespace

std::string EmptyUpdateList() {
  std::string text = "[" + std::string(kSection) + "]\r\n";
  for (const char* category : update::kCategories) text.append(category).append("=0\r\n");
  return text;
}

std::vector<int> PatchCountsIn(const std::string& list) {
  const std::string text = AsRead(list);
  std::vector<int> counts;
  for (const char* category : update::kCategories) counts.push_back(CountIn(text, category));
  return counts;
}

std::vector<int> NewestPatches(const Layout& layout) {
  const std::string list = ReadList(layout);
  return NamingList(layout, [&] { return PatchCountsIn(list); });
}

int NewestPatch(const Layout& layout, const std::string& category) {
  const std::string list = ReadList(layout);
  return NamingList(layout, [&] { return CountIn(AsRead(list), category); });
}

void RequireCountable(const Layout& layout, const std::string& category, int number) {
  if (number <= kHighestPatch) return;
  throw Failure(layout.UpdateList() + ": launchers count no further than 32767 patches of " + category);
}

int NextPatch(const Layout& layout, const PublicationRecord& record, const std::string& category) {
  const int next = NewestPatch(layout, category) + 1;
  RequireCountable(layout, category, next);
  if (const int recorded = record.Newest(category); recorded >= next) {
    throw Failure(layout.UpdateList() + ": " + category + " went back to " + std::to_string(next - 1) +
                  ", but players may have had " + std::to_string(recorded) + "; set it to " +
                  std::to_string(recorded) + " again");
  }
  return next;
}

void SetNewestPatch(const Layout& layout, const std::string& category, int number) {
  std::string list = ReadList(layout);
  // A list on one line is taken apart, since each number needs a line of its own to be replaced.
  if (list.find('\n') == std::string::npos) list = AsRead(list);
  platform::SetIniValue(list, kSection, category, std::to_string(number));
  NamingList(layout, [&] {
    if (CountIn(AsRead(list), category) != number)
      throw Failure("the number of " + category + " is not replaced");
  });
  Naming(layout.UpdateList(), [&] { platform::WriteWhole(layout.UpdateList(), list); });
}

}  // namespace publisher
