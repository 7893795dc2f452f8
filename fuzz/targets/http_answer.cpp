#include <ctime>

#include "base/text.hpp"
#include "fuzz/support/given_answer.hpp"
#include "fuzz/support/promises.hpp"
#include "platform/encoding.hpp"
#include "web/answer_cache.hpp"
#include "web/body_text.hpp"
#include "web/http_date.hpp"

namespace {

constexpr std::uint64_t kNow = 3'600'000, kDayMs = 24 * 3600 * 1000;
constexpr const char* kUrl = "http://127.0.0.1/";

void JudgeDate(const std::string& text) {
  const auto seconds = web::FromHttpDate(text);
  if (!seconds || text.substr(23, 2) == "60") return;  // a leap second is the next minute's first
  const std::time_t time = *seconds;
  std::tm parts{};
  char written[64];
  gmtime_r(&time, &parts);
  std::strftime(written, sizeof written, "%d %b %Y %H:%M:%S GMT", &parts);
  fuzz::Require(parts.tm_year + 1900 < 1000 || text.substr(5) == written, "a date is the day that it names");
}

}  // namespace

// Two answers to the same question, a byte 1 between them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = fuzz::Text(data, size);
  web::AnswerCache cache;
  std::uint64_t now = kNow;
  for (int n = 1; n <= 2; ++n) {
    const fuzz::GivenAnswer given(base::Field(input, n, '\1'));
    for (const auto& [name, value] : given.head.headers) JudgeDate(value);
    const std::string text = web::BodyText(given.head.Header("content-type"), given.body);
    fuzz::Require(platform::CheckedUtf8(text).has_value(), "a body is UTF-8 once it was read");
    const std::string before = cache.Fresh(kUrl, now).value_or("");
    const std::string taken = cache.Take(kUrl, given.head, text, now);
    fuzz::Require(given.head.status == 304 || taken == text, "an answer is what came");
    fuzz::Require(given.head.status != 304 || before.empty() || taken == before,
                  "what is kept is given again");
    if (const auto fresh = cache.Fresh(kUrl, now)) fuzz::Require(*fresh == taken, "what is fresh came last");
    fuzz::Require(!cache.Fresh(kUrl, now + kDayMs), "nothing is fresh for longer than a day");
    for (const auto& [name, value] : cache.Conditions(kUrl))
      fuzz::Require(value.find_first_of("\r\n") == value.npos, "a condition is one line");
    now += 1000;
  }
  return 0;
}
