#include "fuzz/support/given_answer.hpp"

#include <charconv>

namespace fuzz {
namespace {

template <class Number>
bool Read(std::string_view text, Number& number) {
  return std::from_chars(text.data(), text.data() + text.size(), number).ptr == text.data() + text.size() &&
         !text.empty();
}

}  // namespace

std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

GivenAnswer::GivenAnswer(std::string_view input) {
  if (!Read(TakeLine(input), head.status)) head.status = 200;
  while (!input.empty()) {
    const std::string_view line = TakeLine(input);
    if (line.empty()) break;
    const std::size_t colon = std::min(line.find(": "), line.size());
    head.headers.emplace_back(line.substr(0, colon), line.substr(std::min(colon + 2, line.size())));
  }
  std::uint64_t length = 0;
  if (Read(head.Header("content-length"), length)) head.contentLength = length;
  body = input;
}

}  // namespace fuzz
