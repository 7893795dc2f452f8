#include "base/numeric.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "base/runtime_error.hpp"

namespace base {
namespace {

struct Reading {
  const char* text;
  double value;
  bool numeric;
};

TEST(Numeric, ReadsTheLeadingNumber) {
  constexpr double kHuge = std::numeric_limits<double>::infinity();
  const Reading readings[] = {
      {"", 0, false},       {" ", 0, false},        {"12", 12, true},       {" 12 ", 12, true},
      {"-3", -3, true},     {"+4", 4, true},        {"+-4", 0, false},      {"-", 0, false},
      {".", 0, false},      {".5", 0.5, true},      {"-.5", -0.5, true},    {"5.", 5, true},
      {"0.0", 0, true},     {"1e3", 1000, true},    {"1E-2x", 0.01, false}, {"1e", 1, false},
      {"12abc", 12, false}, {"abc12", 0, false},    {"inf", 0, false},      {"nan", 0, false},
      {"-inf", 0, false},   {"0x10", 0, false},     {"1,5", 1, false},      {"1.2.3", 1.2, false},
      {"\t7\r\n", 7, true}, {"1e400", kHuge, true}, {"1e-400", 0, true}};
  for (const Reading& reading : readings) {
    EXPECT_EQ(Val(reading.text), reading.value) << reading.text;
    EXPECT_EQ(IsNumeric(reading.text), reading.numeric) << reading.text;
  }
  const std::string longNumber = "0." + std::string(400, '0') + "1";
  EXPECT_EQ(Val(longNumber), 0);
}

template <class Convert>
std::optional<std::int64_t> Converted(Convert convert, double value) {
  try {
    return convert(value);
  } catch (const RuntimeError& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::Overflow));
    return std::nullopt;
  }
}

TEST(Numeric, RoundsHalfToEvenAndChecksTheRange) {
  const double nan = std::nan("");
  EXPECT_EQ(Converted(ToByte, 254.5), 254);
  EXPECT_EQ(Converted(ToByte, 255.5), std::nullopt);
  EXPECT_EQ(Converted(ToByte, -0.5), 0);
  EXPECT_EQ(Converted(ToByte, -0.6), std::nullopt);
  EXPECT_EQ(Converted(ToInt16, 32767.5), std::nullopt);
  EXPECT_EQ(Converted(ToInt16, -32768.5), -32768);
  EXPECT_EQ(Converted(ToInt16, 2.5), 2);
  EXPECT_EQ(Converted(ToInt16, -2.5), -2);
  EXPECT_EQ(Converted(ToInt32, 2147483648.0), std::nullopt);
  EXPECT_EQ(Converted(ToInt32, nan), std::nullopt);
  EXPECT_EQ(Converted(ToInt32, -HUGE_VAL), std::nullopt);
}

}  // namespace
}  // namespace base
