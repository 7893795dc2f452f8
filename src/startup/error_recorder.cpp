#include "startup/error_recorder.hpp"

#include <exception>

#include "base/text.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "platform/user_folders.hpp"

namespace startup {
namespace {

constexpr std::int32_t kMostRepeats = 1500;
constexpr std::uint64_t kLargestLog = 3000;
constexpr std::uint32_t kPauseMs = 100;

// Each step of the recorder stands alone: one that fails is skipped.
template <class Step>
void Attempt(Step step) {
  try {
    step();
  } catch (const std::exception&) {
  }
}

}  // namespace

std::string LogFile(const Folders& folders) {
  const std::string usual = folders.AppPath + platform::NativePath("\\..\\Errores.log");
  if (platform::CanWriteTo(folders.ParentDir)) return usual;
  const std::string own = platform::LocalDataFolder();
  if (own.empty()) return usual;
  Attempt([&] { platform::MakeFolders(own); });
  return own + platform::NativePath("\\Errores.log");
}

FailureList::~FailureList() {
  if (failures_.empty()) return;
  const auto& [first, isError] = failures_.front();
  if (failures_.size() > 1) {
    std::vector<std::string> lines;
    for (const Failure& failure : failures_) lines.push_back(failure.text);
    recorder_.LogTogether((isError ? "Error: " : "") + first + "\r\n\r\nY " +
                              std::to_string(lines.size() - 1) +
                              " más como este. Están todos en Errores.log.",
                          lines);
  } else if (isError) {
    recorder_.LogError(first);
  } else {
    recorder_.LogTogether(first, {});
  }
}

void ErrorRecorder::LogTogether(const std::string& shown, const std::vector<std::string>& lines) {
  host_.dialogs.Show(shown);
  if (!lines.empty()) WriteLines(lines);
}

void ErrorRecorder::LogError(const std::string& text, bool askToClose) {
  showing_ = true;
  host_.dialogs.Show("Error: " + text);
  showing_ = false;
  if (text == LastErrorText && !text.empty() && RepeatCount < kMostRepeats) {
    ++RepeatCount;
    return;
  }
  LastErrorText = text;
  RepeatCount = 0;
  host_.clock.Sleep(kPauseMs);
  WriteLine(text);
  if (!askToClose) return;
  const auto answer = host_.dialogs.Show(
      text + "\r\n\r\n¿Desea cerrar el Launcher? Si presiona 'NO' podrá intentar jugar de todas maneras.",
      platform::DialogButtons::YesNo, "¡Error en el Launcher de Kelvarin!");
  if (answer != platform::DialogAnswer::Yes) return;
  lifetime_.End(1);
  host_.processes.EndAtOnce(1);
}

void ErrorRecorder::Note(const std::string& text) {
  if (showing_ || text == lastNote_) return;
  lastNote_ = text;
  WriteLine(text);
}

void ErrorRecorder::WriteLines(const std::vector<std::string>& texts) {
  if (log_.empty()) log_ = LogFile(folders_);
  Attempt([&] {
    const auto stamp = platform::StampOf(log_);
    if (stamp && stamp->size > kLargestLog) platform::RemoveFile(log_);
  });
  Attempt([&] {
    std::string lines;
    for (const std::string& text : texts) {
      const std::string plain = base::Replaced(base::Replaced(text, "{", "-"), "}", "-");
      const std::string line = host_.clock.DateText() + " " + host_.clock.TimeText() + " " + plain;
      lines += platform::ToAnsi(line) + platform::kLineEnd;
    }
    platform::AppendTo(log_, lines);
  });
}

}  // namespace startup
