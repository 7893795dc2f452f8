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

// How a publication is to be signed.
struct Signing {
  std::string keyFile;  // empty: not at all
  std::string expires;  // "YYYY-MM-DD", the last day on which it counts (UTC); empty: 90 days from now
  std::string nextKey;  // Base64 of the public key that will follow; empty: none will
};

struct Options {
  bool dryRun = false;  // say what would be done, and leave all as it is
  bool force = false;
  bool json = false;
  bool client = true;  // pack the full client too
  Signing signing;
  std::string publicKey;  // Base64, to verify a signature with
  ServeOptions serve;
};

struct CommandLine;

struct Command {
  const char* name;
  std::vector<const char*> operands;
  std::vector<const char*> options;  // by their names, "--..."
  const char* summary;
  const char* help;
  bool (*run)(const CommandLine& line, Console& console);  // true: nothing was wrong
};

struct CommandLine {
  enum class Wish { Run, Help, Version };
  Wish wish = Wish::Run;
  const Command* command = nullptr;   // none: help or version of the whole tool
  std::vector<std::string> operands;  // as many as the command names, none of them empty
  Options options;
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
