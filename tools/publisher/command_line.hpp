#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "publisher/console.hpp"

namespace publisher {

struct ServeOptions {
  std::string host = "127.0.0.1";
  int port = 8250;         // 0: any free one
  std::uint64_t rate = 0;  // bytes per second and connection, 0: as fast as it goes
  bool log = false;        // one line per request
};

struct CommandLine;

struct Command {
  const char* name;
  std::vector<const char*> operands;
  bool serves;  // takes the options of ServeOptions
  const char* summary;
  const char* help;
  bool (*run)(const CommandLine& line, Console& console);  // true: nothing was wrong
};

struct CommandLine {
  enum class Wish { Run, Help, Version };
  Wish wish = Wish::Run;
  const Command* command = nullptr;   // none: help or version of the whole tool
  std::vector<std::string> operands;  // as many as the command names
  ServeOptions serve;
};

// The words do not make a command; the text says why.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

CommandLine ParseCommandLine(std::span<const Command> commands, std::span<const std::string> words);

std::string UsageOf(const Command& command);  // one line, with the tool's name
std::string HelpText(std::span<const Command> commands, const Command* command);

}  // namespace publisher
