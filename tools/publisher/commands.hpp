#pragma once

#include <ostream>
#include <span>
#include <string>

#include "publisher/command_line.hpp"

namespace publisher {

// One function per command, each in a file of its name. False: a problem was found and told. Failure or
// base::RuntimeError: it could not be done, and the publication is as it was.
bool Init(const CommandLine& line, Console& console);
bool Patch(const CommandLine& line, Console& console);
bool Index(const CommandLine& line, Console& console);
bool Client(const CommandLine& line, Console& console);
bool Release(const CommandLine& line, Console& console);
bool Keygen(const CommandLine& line, Console& console);
bool Sign(const CommandLine& line, Console& console);
bool Push(const CommandLine& line, Console& console);
bool Check(const CommandLine& line, Console& console);
bool Serve(const CommandLine& line, Console& console);

// The whole tool; the result is its exit status.
int Run(std::span<const std::string> words, Console& console);

}  // namespace publisher
