#include "publisher/answers.hpp"

#include <algorithm>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "web/smodXmlHttp.hpp"

namespace publisher {
namespace {

constexpr std::size_t kServerFields = 8, kNewsFields = 4;

struct NumberRange {
  int kind;  // of web::IsInRange
  const char* words;
};
constexpr NumberRange kByte{0, "0 to 255"}, kInt16{1, "-32768 to 32767"},
    kInt32{2, "-2147483648 to 2147483647"};

struct NumberField {
  int number;  // from 1
  const char* name;
  NumberRange range;
};
constexpr NumberField kServerNumbers[] = {
    {1, "the number", kByte}, {5, "unused", kInt32}, {6, "the players", kInt16}, {8, "unused", kInt32}};

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// An empty number is 0 to launchers.
std::string WhyBadNumber(std::string_view text, const NumberField& field) {
  if (text.empty() || web::IsInRange(text, field.range.kind)) return {};
  return "field " + std::to_string(field.number) + " (" + field.name + ") is " + Quoted(text) +
         ", where launchers take a number of " + field.range.words;
}

std::string WhyBadServer(std::string_view record) {
  const std::size_t fields = base::Split(record, '@').size();
  if (fields < kServerFields) {
    return "it has " + std::to_string(fields) + " fields, where launchers want eight with \"@\" between them";
  }
  for (const NumberField& field : kServerNumbers) {
    if (std::string why = WhyBadNumber(base::Field(record, field.number, '@'), field); !why.empty())
      return why;
  }
  return {};
}

}  // namespace

std::string WhyBadProbe(const std::string& body) {
  const std::string upper = base::Upper(body);
  if (base::NumberText(base::Val(body)) != "1")
    return "it is not the number 1, which says that the mirror is in use";
  for (const char* word : {"DOCTYPE", "ERROR"}) {
    if (base::Contains(upper, word))
      return "launchers refuse it for the word " + Quoted(base::Lower(word)) + " in it";
  }
  return {};
}

std::string WhyBadServers(const std::string& body) {
  if (!base::Contains(body, "|"))
    return "launchers want records of eight fields (\"@\") with \"|\" between them";
  auto records = base::Split(body, '|');
  if (records.back().find_first_not_of(" \r\n") == std::string_view::npos) records.pop_back();
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (const std::string why = WhyBadServer(records[i]); !why.empty()) {
      return "record " + std::to_string(i + 1) + ": " + why;
    }
  }
  return {};
}

std::string WhyBadNews(const std::string& body) {
  const std::string_view news = base::Field(body, 1, '@');
  if (news.size() == body.size() || base::Split(news, '|').size() < kNewsFields) {
    return "launchers want number|...|title|text@";
  }
  if (base::Split(news, '|').size() > kNewsFields) return "its text holds a \"|\", where launchers cut it";
  return WhyBadNumber(base::Field(news, 1, '|'), {1, "the number", kInt32});
}

std::string WhyBadAddress(const std::string& body) {
  const auto fields = base::Split(base::Trim(body), '-');
  const auto date = base::Split(fields[0], '/');
  if (date.size() != 3 || !std::all_of(date.begin(), date.end(), base::IsNumeric)) {
    return "launchers want day/month/year-address, but " + Quoted(fields[0]) + " is no date";
  }
  if (fields.size() < 2 || !web::IsDottedAddress(fields[1])) {
    return "launchers want day/month/year-address, with an address like 203.0.113.5 behind the \"-\"";
  }
  return {};
}

}  // namespace publisher
