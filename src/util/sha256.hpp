#pragma once

#include <string>
#include <string_view>

namespace util {

std::string Sha256(std::string_view bytes);  // 64 lower-case hexadecimal digits

}  // namespace util
