#include "publisher/commands.hpp"

#include <exception>

#include "publisher/failure.hpp"

namespace publisher {
namespace {

enum ExitStatus { kGood = 0, kProblem = 1, kWrongUsage = 2 };

const Command kCommands[] = {
    {"init",
     {"PUBLICATION"},
     {"--dry-run"},
     "makes an empty publication",
     "Makes the folder PUBLICATION with everything that a launcher asks for, yet without any game in it:\n"
     "the answer to the probe, an update list with no patches, an empty index and sample answers of the web\n"
     "scripts under web/include, which are yours to edit. What is already there stays as it is.",
     Init},
    {"patch",
     {"PUBLICATION", "CATEGORY", "FOLDER"},
     {"--dry-run"},
     "publishes a folder as the next numbered patch",
     "Packs every file below FOLDER, whose paths count from the game folder, as the next patch of CATEGORY\n"
     "and then advances the update list. CATEGORY is one of Init, Mapas, Graficos, Midis, Wavs, AU, Extras.",
     Patch},
    {"index",
     {"PUBLICATION", "GAMEFOLDER"},
     {"--dry-run", "--force"},
     "publishes the game's Bin folder, file by file",
     "Packs every file below GAMEFOLDER/Bin and writes the index by which launchers prove and heal theirs.\n"
     "Files that are published already are not packed again. Launchers see the old state or the new one.\n"
     "An empty file cannot be packed: launchers keep theirs, but a patch has to bring it.\n"
     "Prints what launchers will see added (+), changed (~) and removed (-). Nothing is published when the\n"
     "client program KVN-DX8.exe is missing or more than half of the published files would disappear.\n\n"
     "  --dry-run        only prints\n"
     "  --force          publishes it all the same",
     Index},
    {"client",
     {"PUBLICATION", "GAMEFOLDER"},
     {"--dry-run"},
     "packs the whole game as Kelvarin.zip",
     "Packs every file below GAMEFOLDER as the full client archive Kelvarin.zip, with the counters of the\n"
     "update list, so that a player who unpacks it downloads nothing again.",
     Client},
    {"release",
     {"PUBLICATION", "GAMEFOLDER"},
     {"--dry-run", "--force", "--json", "--no-client", "--key", "--expires", "--next-key"},
     "publishes a new version of the game",
     "Compares GAMEFOLDER with what PUBLICATION installs and publishes the difference: numbered patches of "
     "the\n"
     "right categories for what lies outside Bin, Bin and its index, the full client. All of it is made and\n"
     "checked first and then replaced file by file, the update list last, so that no player gets half a "
     "release.\n"
     "Which category a folder belongs to: RECURSOS/INIT Init, MAPAS... Mapas, GRAFICOS, MIDIS, WAVS, AU; "
     "else\n"
     "Extras. PUBLICATION/.publisher/categories.txt says otherwise with lines like \"RECURSOS/UI = "
     "Graficos\".\n"
     "Prints what is added (+), changed (~) and removed (-), and what stays with players (=), since outside "
     "Bin\n"
     "launchers take nothing away.\n\n"
     "  --dry-run        only prints\n"
     "  --force          also without the client program, or when more than half of Bin would disappear\n"
     "  --json           prints the summary as one line of JSON\n"
     "  --no-client      leaves Kelvarin.zip as it is\n"
     "  --key KEY.pem    signs it, as \"publisher sign\" does with --expires and --next-key",
     Release},
    {"keygen",
     {"KEY.pem"},
     {"--dry-run"},
     "makes a key for signing publications",
     "Writes a new private key (ECDSA P-256) to KEY.pem, readable to you alone, and prints the line for "
     "section\n"
     "[TRUST] of Deployment.ini. A file that is there is never replaced.",
     Keygen},
    {"sign",
     {"PUBLICATION", "KEY.pem"},
     {"--dry-run", "--expires", "--next-key"},
     "signs everything that launchers fetch",
     "Writes Signed.txt: size and digest of every file that launchers fetch, signed with the private key. "
     "Launchers\n"
     "whose Deployment.ini names the public key take nothing else.\n\n"
     "  --expires YYYY-MM-DD   the last day on which it counts (in 90 days)\n"
     "  --next-key PUBLICKEY   the key that launchers are to trust from now on as well, to change keys",
     Sign},
    {"push",
     {"PUBLICATION", "FOLDER"},
     {"--dry-run", "--force"},
     "copies what changed to a second folder",
     "Makes FOLDER, perhaps one on another machine, a copy of PUBLICATION, times included. What changed "
     "arrives\n"
     "in FOLDER/.publisher first; a run that was cut off goes on from there. Then each file gets its name:\n"
     "archives, packed files and all else, index, update list, Signed.txt; last, packed files that no index\n"
     "names any more are removed. Online.txt is copied only where there is none, so that each mirror can be\n"
     "switched off by itself.\n\n"
     "  --dry-run        only prints\n"
     "  --force          also when the update list of FOLDER would go back",
     Push},
    {"check",
     {"PUBLICATION|URL|DEPLOYMENT.INI"},
     {"--public-key"},
     "proves that all a launcher asks for is there and good",
     "Reads everything that a launcher may ask for, unpacks it and compares it with what was promised. "
     "Every\n"
     "problem is printed; warnings are what works but costs something.\n\n"
     "  PUBLICATION      also finds archives that were replaced after they had been published, an update "
     "list\n"
     "                   that went back, and files that no launcher asks for\n"
     "  URL              a mirror, over HTTP: what the file says and how the server sends it\n"
     "  DEPLOYMENT.INI   every mirror that it names, by the key that it names, and each against the others\n"
     "  --public-key PUBLICKEY   who must have signed it; without, only what is signed is compared",
     Check},
    {"serve",
     {"PUBLICATION"},
     {"--host", "--port", "--rate", "--log"},
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
  } catch (const Failure& error) {
    console.err << "publisher: " << error.what() << "\n";
  } catch (const std::exception& error) {
    console.err << "publisher: " << words[0] << " " << (words.size() > 1 ? words[1] : "") << ": "
                << error.what() << "\n";
  }
  return kProblem;
}

}  // namespace publisher
