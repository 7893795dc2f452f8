#include "web/http_date.hpp"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <iterator>

namespace web {
namespace {

constexpr std::string_view kShape = "www, dd mmm yyyy hh:mm:ss GMT";
constexpr std::string_view kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The digits at a place, all of them; -1 when one is none.
int Number(std::string_view text, std::size_t at, std::size_t length) {
  unsigned number = 0;  // of which from_chars takes no sign
  const char* const end = text.data() + at + length;
  const auto [stopped, error] = std::from_chars(text.data() + at, end, number);
  return stopped == end && error == std::errc{} ? static_cast<int>(number) : -1;
}

// Whether blanks, commas and colons stand where a date has them.
bool IsPunctuated(std::string_view text) {
  return std::equal(text.begin(), text.end(), kShape.begin(), kShape.end(), [](char given, char shown) {
    return given == shown || (shown != ' ' && shown != ',' && shown != ':');
  });
}

}  // namespace

std::optional<std::int64_t> FromHttpDate(std::string_view text) {
  if (!IsPunctuated(text) || !text.ends_with("GMT")) return std::nullopt;
  const auto month = std::find(std::begin(kMonths), std::end(kMonths), text.substr(8, 3));
  const int day = Number(text, 5, 2), year = Number(text, 12, 4);
  const int hours = Number(text, 17, 2), minutes = Number(text, 20, 2), seconds = Number(text, 23, 2);
  if (month == std::end(kMonths) || day < 0 || year < 0 || hours < 0 || hours > 23 || minutes < 0 ||
      minutes > 59 || seconds < 0 || seconds > 60)
    return std::nullopt;
  const std::chrono::year_month_day date{
      std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month - std::begin(kMonths)) + 1),
      std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok()) return std::nullopt;
  const std::chrono::sys_seconds midnight = std::chrono::sys_days(date);
  return midnight.time_since_epoch().count() + hours * 3600 + minutes * 60 + seconds;
}

}  // namespace web
