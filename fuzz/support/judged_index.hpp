#pragma once

#include <string>

namespace fuzz {

// Reads the file as an index and judges what was taken of it: names, and the memory that they take.
void JudgeIndex(const std::string& path);

}  // namespace fuzz
