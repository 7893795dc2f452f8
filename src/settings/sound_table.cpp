#include "settings/sound_table.hpp"

#include <vector>

#include "base/numeric.hpp"
#include "platform/files.hpp"

namespace settings {
namespace {

constexpr const char* kSection = "INIT";

std::string KeyOf(int number) { return "WAV" + std::to_string(number); }

bool InTable(int number) { return number >= 1 && number <= kSoundCount; }

std::size_t IndexOf(int number) { return static_cast<std::size_t>(number - 1); }

}  // namespace

SoundTable::SoundTable(platform::ProfileFiles& profiles, const startup::Folders& folders)
    : profiles_(profiles), file_(folders.InitDir + "WavSilenced.ini") {}

void SoundTable::Load() {
  silenced_.fill(false);
  if (!platform::IsFile(file_)) return;
  std::vector<std::string> keys;
  for (int number = 1; number <= kSoundCount; ++number) keys.push_back(KeyOf(number));
  const std::vector<std::string> values = profiles_.GetVars(file_, kSection, keys);
  for (std::size_t i = 0; i < silenced_.size(); ++i) silenced_[i] = base::Val(values[i]) != 0;
}

bool SoundTable::Silenced(int number) const { return InTable(number) && silenced_[IndexOf(number)]; }

void SoundTable::Silence(int number, bool silenced) {
  profiles_.WriteVar(file_, kSection, KeyOf(number), silenced ? "1" : "0");
  if (InTable(number)) silenced_[IndexOf(number)] = silenced;
}

}  // namespace settings
