#include "update/launcher_state.hpp"

#include <algorithm>

#include "base/relative_name.hpp"
#include "base/text.hpp"
#include "update/counter_store.hpp"

namespace update {
namespace {

constexpr std::string_view kFiles[] = {"BIN/MD5UPDATE.INI", "BIN/CLIENT.VBP", "BIN/CODIGOS",
                                       "RECURSOS/UPDATE", "RECURSOS/INIT/UPDATE"};

bool IsOrIsBelow(std::string_view name, std::string_view whole) {
  return name.starts_with(whole) && (name.size() == whole.size() || name[whole.size()] == '/');
}

}  // namespace

std::string CounterFileName(const std::string& category) { return "AU" + category + ".ini"; }

std::string CounterPath(const std::string& category) { return "RECURSOS/INIT/" + CounterFileName(category); }

std::string CounterText(int number) { return std::to_string(number) + "\r\n"; }

bool IsLauncherState(std::string_view name) {
  const std::string upper = base::Upper(base::WithSlashes(name));
  return std::any_of(std::begin(kFiles), std::end(kFiles),
                     [&](std::string_view file) { return IsOrIsBelow(upper, file); }) ||
         std::any_of(kCategories.begin(), kCategories.end(),
                     [&](const char* category) { return upper == base::Upper(CounterPath(category)); });
}

}  // namespace update
