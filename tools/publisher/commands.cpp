#include "publisher/commands.hpp"

#include <exception>

#include "publisher/failure.hpp"

namespace publisher {
namespace {

enum ExitStatus { kGood = 0, kProblem = 1, kWrongUsage = 2 };

const Command kCommands[] = {
    {"init",
     {"PUBLICATION"},
     false,
     "makes an empty publication",
     "Makes the folder PUBLICATION with everything that a launcher asks for, yet without any game in it:\n"
     "the answer to the probe, an update list with no patches, an empty index and sample answers of the web\n"
     "scripts under web/include, which are yours to edit. What is already there stays as it is.",
     Init},
    {"patch",
     {"PUBLICATION", "CATEGORY", "FOLDER"},
     false,
     "publishes a folder as the next numbered patch",
     "Packs every file below FOLDER, whose paths count from the game folder, as the next patch of CATEGORY\n"
     "and then advances the update list. CATEGORY is one of Init, Mapas, Graficos, Midis, Wavs, AU, Extras.",
     Patch},
    {"index",
     {"PUBLICATION", "GAMEFOLDER"},
     false,
     "publishes the game's Bin folder, file by file",
     "Packs every file below GAMEFOLDER/Bin and writes the index by which launchers prove and heal theirs.\n"
     "Files that are published already are not packed again. Launchers see the old state or the new one.\n"
     "An empty file cannot be packed: launchers keep theirs, but a patch has to bring it.",
     Index},
    {"client",
     {"PUBLICATION", "GAMEFOLDER"},
     false,
     "packs the whole game as Kelvarin.zip",
     "Packs every file below GAMEFOLDER as the full client archive Kelvarin.zip.",
     Client},
    {"check",
     {"PUBLICATION"},
     false,
     "proves that all a launcher asks for is there and good",
     "Reads everything that a launcher may ask for, unpacks it and compares it with what was promised.\n"
     "Every problem is printed, and every file that no launcher asks for as a warning.",
     Check},
    {"serve",
     {"PUBLICATION"},
     true,
     "serves it on this machine's loopback, for trials",
     "Serves PUBLICATION below /update/kvn2011/ and /files/update/kvn2011/ and the answers of the web "
     "scripts\n"
     "below /web/include/ and /files/web/include/ until it is interrupted.\n\n"
     "  --host ADDRESS   the loopback address to listen at (127.0.0.1)\n"
     "  --port N         the port (8250); 0 takes any free one\n"
     "  --rate BYTES/S   the most that one connection gets\n"
     "  --log            prints every request",
     Serve},
};

int Carry(const CommandLine& line, Console& console) {
  switch (line.wish) {
    case CommandLine::Wish::Help:
      console.out << HelpText(kCommands, line.command);
      return kGood;
    case CommandLine::Wish::Version:
      console.out << "publisher " LAUNCHER_VERSION "\n";
      return kGood;
    case CommandLine::Wish::Run:
      break;
  }
  return line.command->run(line, console) ? kGood : kProblem;
}

}  // namespace

int Run(std::span<const std::string> words, Console& console) {
  try {
    return Carry(ParseCommandLine(kCommands, words), console);
  } catch (const UsageError& error) {
    console.err << "publisher: " << error.what() << "\nTry \"publisher --help\".\n";
    return kWrongUsage;
  } catch (const std::exception& error) {
    console.err << "publisher: " << error.what() << "\n";
    return kProblem;
  }
}

}  // namespace publisher
