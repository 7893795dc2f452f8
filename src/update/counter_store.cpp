#include "update/counter_store.hpp"

#include <algorithm>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"

namespace update {
namespace {

constexpr std::uint64_t kLargestCounter = 4096;  // a counter is a line; anything larger is something else

std::string TextOf(std::int16_t number) { return std::to_string(number) + "\r\n"; }

}  // namespace

std::string CounterStore::FileOf(const std::string& category) const {
  return services_.folders.InitDir + "AU" + category + ".ini";
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
  platform::WriteWhole(FileOf(category), TextOf(number));
}

bool CounterStore::Write(const std::string& category, std::int16_t number) {
  return startup::Guarded(
      services_.recorder,
      [&](int& line) {
        line = 10;
        const std::string file = FileOf(category);
        if (platform::IsFile(file) && platform::ReadWhole(file, kLargestCounter) == TextOf(number)) return;
        line = 20;
        Store(category, number);
      },
      [&](const startup::Failure& failure) { return Report("9", failure.Line(), failure.description); });
}

}  // namespace update
