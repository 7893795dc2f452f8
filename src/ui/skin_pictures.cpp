#include "ui/skin_pictures.hpp"

#include <utility>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"

namespace ui {

std::string SkinPictures::Optional(const std::string& file) const {
  return platform::IsFile(folder_ + file) ? folder_ + file : std::string{};
}

std::string SkinPictures::Required(const std::string& file, int line) {
  std::string found = Optional(file);
  if (found.empty() && !missing_) {
    const base::RuntimeError error(base::ErrorNumber::FileNotFound);
    missing_ = startup::Failure{error.Number(), error.Description(), line};
  }
  return found;
}

void SkinPictures::Load(clsGraphicalButton& button, controls::ImageControl& image, const Button& look,
                        LastPressedHolder& window, int line) {
  const auto path = [&](const char* state) { return folder_ + look.stem + state + ".jpg"; };
  try {
    button.Initialize(image, path("_n"), path("_a"), path("_c"), window, path(look.disabled),
                      look.startDisabled, false, !look.handPointer.empty(), look.handPointer);
  } catch (const base::RuntimeError&) {
    if (!missing_) missing_ = startup::CurrentFailure(line);
  }
}

void SkinPictures::ReportMissing(startup::ErrorRecorder& recorder, const Words& words) {
  if (const auto missing = std::exchange(missing_, std::nullopt)) recorder.LogError(words(*missing));
}

}  // namespace ui
