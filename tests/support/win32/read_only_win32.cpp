#include "support/read_only.hpp"

#include <windows.h>

#include "platform/files.hpp"
#include "support/host_path.hpp"
#include "support/temp_folder.hpp"

namespace support {
namespace {

constexpr int kGenerousMs = 10'000, kStepMs = 20;

const TempFolder& Signals() {
  static const TempFolder folder;
  return folder;
}

void Await(const char* signal, const TempFolder& folder) {
  for (int waited = 0; waited < kGenerousMs && !folder.Has(signal); waited += kStepMs) Sleep(kStepMs);
}

}  // namespace

// Wine's own files know no access rights, so the file system below it keeps the folder as it is. A script
// does that which sees to it that the folder can be removed again even when this program does not come back.
ReadOnly::ReadOnly(const std::string& folder) : folder_(folder) {
  const std::string kept = HostPath(folder), signals = HostPath(Signals().Path());
  if (kept.empty()) return;
  Signals().Put("keep.sh",
                "#!/bin/sh\nchattr -R +i \"$1\"\n: >\"$2/kept\"\ni=0\n"
                "while [ -e \"$2/kept\" ] && [ $i -lt 1200 ]; do sleep 0.1; i=$((i + 1)); done\n"
                "chattr -R -i \"$1\"\n: >\"$2/free\"\n");
  platform::TryRemoveFile(Signals() / "free");
  if (StartOnHost("/bin/sh", "\"" + signals + "/keep.sh\" \"" + kept + "\" \"" + signals + "\"")) {
    Await("kept", Signals());
  }
}

ReadOnly::~ReadOnly() {
  if (!Signals().Has("kept")) return;
  platform::TryRemoveFile(Signals() / "kept");
  Await("free", Signals());
}

bool ReadOnly::Holds() const { return !platform::CanWriteTo(folder_); }

}  // namespace support
