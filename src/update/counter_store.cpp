#include "update/counter_store.hpp"

#include <algorithm>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"
#include "update/launcher_state.hpp"

namespace update {
namespace {

constexpr std::uint64_t kLargestCounter = 4096;  // a counter is a line; anything larger is something else

}  // namespace

std::string CounterStore::FileOf(const std::string& category) const {
  return services_.folders.InitDir + CounterFileName(category);
}

std::string CounterStore::Report(const char* procedure, const std::string& line,
                                 const std::string& description) const {
  return "Error en la linea N" + line + " del procedimiento " + procedure + ", descripción: " + description +
         ". reporta esto mediante el soporte WEB en " + services_.deployment.support;
}

std::int16_t CounterStore::Read(const std::string& category) {
  std::int16_t number = 0;
  startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        const std::string file = FileOf(category);
        if (!platform::IsFile(file)) return;
        line = 20;
        const std::string text = platform::ReadWhole(file, kLargestCounter);
        const std::string_view first = std::string_view(text).substr(0, text.find_first_of("\r\n"));
        line = 30;
        if (base::IsNumeric(first)) number = std::max<std::int16_t>(0, base::ToInt16(base::Val(first)));
      },
      [&](const startup::Failure& failure) { return Report("8", failure.Line(), failure.description); });
  return number;
}

void CounterStore::Store(const std::string& category, std::int16_t number) {
  platform::WriteWhole(FileOf(category), CounterText(number));
}

bool CounterStore::Write(const std::string& category, std::int16_t number) {
  return startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        const std::string file = FileOf(category), text = CounterText(number);
        if (platform::IsFile(file) && platform::ReadWhole(file, kLargestCounter) == text) return;
        line = 20;
        Store(category, number);
      },
      [&](const startup::Failure& failure) { return Report("9", failure.Line(), failure.description); });
}

}  // namespace update
