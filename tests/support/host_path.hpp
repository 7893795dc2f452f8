#pragma once

#include <string>

namespace support {

// The name by which programs of the system that the tests run on know a file: under Wine a path of that
// system; empty where there is none.
std::string HostPath(const std::string& path);

// Starts a program of that system, such as "/bin/sh", and waits for nothing. False where it cannot be
// started.
bool StartOnHost(const std::string& program, const std::string& arguments);

}  // namespace support
