#include "util/clsFastString.hpp"

#include <algorithm>
#include <exception>

#include "base/numeric.hpp"
#include "base/runtime_error.hpp"

namespace util {
namespace {

constexpr double kHeadroom = 50'000;

}  // namespace

void clsFastString::Append(std::string_view sText) {
  const double newLength = static_cast<double>(Length_) + static_cast<double>(sText.size());
  const std::int32_t length = base::ToInt32(newLength);
  if (length > Capacity())
    Buffer_.resize(static_cast<std::size_t>(base::ToInt32(newLength + kHeadroom)), ' ');
  std::copy(sText.begin(), sText.end(), Buffer_.begin() + Length_);
  Length_ = length;
}

std::string clsFastString::Value() const {
  try {
    return Buffer_.substr(0, static_cast<std::size_t>(Length_));
  } catch (const std::exception&) {
    const base::RuntimeError error(base::ErrorNumber::OutOfMemory);
    logError_("Error " + std::to_string(error.Number()) + " (" + error.Description() +
              ") procedimiento Value Módulo de clase FastString línea: 10");
    return {};
  }
}

}  // namespace util
