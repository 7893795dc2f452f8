#include "publisher/command_line.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

namespace publisher {
namespace {

constexpr std::uint64_t kHighestPort = 65535;

std::uint64_t Number(const std::string& option, const std::string& text, std::uint64_t least,
                     std::uint64_t most) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || number < least || number > most) {
    throw UsageError(option + ": \"" + text + "\" is no number it takes");
  }
  return number;
}

struct Option {
  const char* name;
  const char* value;  // what it is called in the usage; none: the option takes no value
  void (*set)(Options& options, const std::string& name, const std::string& text);
};

constexpr Option kOptions[] = {
    {"--dry-run", nullptr, [](Options& options, auto&, auto&) { options.dryRun = true; }},
    {"--force", nullptr, [](Options& options, auto&, auto&) { options.force = true; }},
    {"--json", nullptr, [](Options& options, auto&, auto&) { options.json = true; }},
    {"--no-client", nullptr, [](Options& options, auto&, auto&) { options.client = false; }},
    {"--key", "KEY.pem", [](Options& options, auto&, auto& text) { options.signing.keyFile = text; }},
    {"--expires", "YYYY-MM-DD", [](Options& options, auto&, auto& text) { options.signing.expires = text; }},
    {"--next-key", "PUBLICKEY", [](Options& options, auto&, auto& text) { options.signing.nextKey = text; }},
    {"--public-key", "PUBLICKEY", [](Options& options, auto&, auto& text) { options.publicKey = text; }},
    {"--host", "ADDRESS", [](Options& options, auto&, auto& text) { options.serve.host = text; }},
    {"--port", "N",
     [](Options& options, auto& name, auto& text) {
       options.serve.port = static_cast<int>(Number(name, text, 0, kHighestPort));
     }},
    {"--rate", "BYTES/S",
     [](Options& options, auto& name, auto& text) {
       options.serve.rate = Number(name, text, 1, std::numeric_limits<std::uint32_t>::max());
     }},
    {"--log", nullptr, [](Options& options, auto&, auto&) { options.serve.log = true; }},
};

const Option* FindOption(std::string_view name) {
  const auto found = std::find_if(std::begin(kOptions), std::end(kOptions),
                                  [&](const Option& option) { return option.name == name; });
  return found == std::end(kOptions) ? nullptr : &*found;
}

// Reads the words one by one.
class Parser {
 public:
  Parser(std::span<const Command> commands, std::span<const std::string> words)
      : commands_(commands), words_(words) {}

  CommandLine Parse() {
    for (; at_ < words_.size(); ++at_) {
      const std::string& word = words_[at_];
      if (!onlyOperands_ && word.size() > 1 && word.starts_with('-')) {
        TakeOption(word);
      } else if (line_.command == nullptr) {
        line_.command = Find(word);
      } else {
        line_.operands.push_back(word);
      }
    }
    Check();
    return line_;
  }

 private:
  const Command* Find(const std::string& name) const {
    const auto found = std::find_if(commands_.begin(), commands_.end(),
                                    [&](const Command& command) { return command.name == name; });
    if (found == commands_.end()) throw UsageError("there is no command \"" + name + "\"");
    return &*found;
  }

  void TakeOption(const std::string& word) {
    if (word == "--") {
      onlyOperands_ = true;
    } else if (word == "--help" || word == "-h") {
      line_.wish = CommandLine::Wish::Help;
    } else if (word == "--version") {
      line_.wish = CommandLine::Wish::Version;
    } else {
      TakeCommandsOption(word);
    }
  }

  void TakeCommandsOption(const std::string& word) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const Option* option = FindOption(name);
    if (option == nullptr || !IsTaken(name)) throw UsageError("there is no option \"" + name + "\" here");
    if (option->value == nullptr) {
      if (equals != std::string::npos) throw UsageError(name + " takes no value");
      return option->set(line_.options, name, {});
    }
    if (equals == std::string::npos && ++at_ == words_.size()) throw UsageError(name + " wants a value");
    const std::string text = equals == std::string::npos ? words_[at_] : word.substr(equals + 1);
    if (text.empty()) throw UsageError(name + " wants a value");
    option->set(line_.options, name, text);
  }

  bool IsTaken(std::string_view name) const {
    if (line_.command == nullptr) return false;
    const auto& taken = line_.command->options;
    return std::find(taken.begin(), taken.end(), name) != taken.end();
  }

  void Check() const {
    if (line_.wish != CommandLine::Wish::Run) return;
    if (line_.command == nullptr) throw UsageError("a command is missing");
    const std::size_t wanted = line_.command->operands.size();
    if (line_.operands.size() < wanted) {
      throw UsageError(std::string(line_.command->operands[line_.operands.size()]) + " is missing");
    }
    if (line_.operands.size() > wanted) {
      throw UsageError("\"" + line_.operands[wanted] + "\" is one word too many");
    }
    for (std::size_t i = 0; i < wanted; ++i) {
      if (line_.operands[i].empty()) throw UsageError(std::string(line_.command->operands[i]) + " is empty");
    }
  }

  std::span<const Command> commands_;
  std::span<const std::string> words_;
  std::size_t at_ = 0;
  bool onlyOperands_ = false;
  CommandLine line_;
};

}  // namespace

CommandLine ParseCommandLine(std::span<const Command> commands, std::span<const std::string> words) {
  return Parser(commands, words).Parse();
}

std::string UsageOf(const Command& command) {
  std::string text = std::string("publisher ") + command.name;
  for (const char* operand : command.operands) text.append(" ").append(operand);
  for (const char* name : command.options) {
    const Option* option = FindOption(name);
    text.append(" [").append(name);
    if (option->value != nullptr) text.append(" ").append(option->value);
    text.append("]");
  }
  return text;
}

std::string HelpText(std::span<const Command> commands, const Command* command) {
  if (command != nullptr) return "Usage: " + UsageOf(*command) + "\n\n" + command->help + "\n";
  std::string text =
      "Usage: publisher COMMAND ...\n\n"
      "Makes, checks and serves a publication: the folder of files that launchers fetch.\n\nCommands:\n";
  for (const Command& each : commands) {
    text.append("  ").append(UsageOf(each)).append("\n      ").append(each.summary).append("\n");
  }
  return text +
         "\n\"publisher COMMAND --help\" tells more; \"publisher --version\" prints the version.\n"
         "Exit status: 0 all is well, 1 something failed or a problem was found, 2 wrong usage.\n";
}

}  // namespace publisher
