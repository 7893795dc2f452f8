#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace util {

// Builds a long text out of many pieces in a buffer that grows by 50000 characters beyond what an append
// needs, so that most appends copy nothing but their own text.
class clsFastString {
 public:
  // `logError` is told, in the launcher's uniform words, when Value fails.
  explicit clsFastString(std::function<void(const std::string&)> logError) : logError_(std::move(logError)) {}

  // Raises 6 (Overflow) when the text would be longer than 2^31 - 1 characters; the text stays as it was.
  void Append(std::string_view sText);

  std::string Value() const;     // the text built so far; empty when there is no memory for it
  void Clear() { Length_ = 0; }  // keeps the grown buffer
  std::int32_t Length() const { return Length_; }
  std::int32_t Capacity() const { return static_cast<std::int32_t>(Buffer_.size()); }

 private:
  std::function<void(const std::string&)> logError_;
  std::int32_t Length_ = 0;
  std::string Buffer_;  // blanks beyond Length_
};

}  // namespace util
