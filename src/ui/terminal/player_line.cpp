#include "ui/terminal/player_line.hpp"

#include <charconv>

#include "base/text.hpp"

namespace ui {
namespace {

std::optional<PlayerLine> ReadTrayMessage(std::string_view value) {
  PlayerLine read{PlayerAct::Tray, {}, {}, {}, 0};
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), read.number);
  if (error != std::errc{} || end != value.data() + value.size()) return std::nullopt;
  return read;
}

}  // namespace

std::optional<PlayerLine> ReadPlayerLine(std::string_view line) {
  PlayerLine read;
  std::string_view target = line;
  if (const std::size_t equals = line.find('='); equals != std::string_view::npos) {
    target = base::Trim(line.substr(0, equals));
    read.act = PlayerAct::Enter;
    read.value = line.substr(equals + 1);
    if (target == "tray") return ReadTrayMessage(base::Trim(read.value));
  } else {
    target = base::Trim(target);
    if (target.ends_with('~')) {
      read.act = PlayerAct::Point;
      target.remove_suffix(1);
    }
  }
  const std::size_t dot = target.find('.');
  read.window = target.substr(0, dot);
  if (dot != std::string_view::npos) read.control = target.substr(dot + 1);
  if (read.window.empty()) return std::nullopt;
  const bool bareWindow = dot == std::string_view::npos && read.act == PlayerAct::Point;
  if (read.control.empty() && !bareWindow) return std::nullopt;
  if (read.act == PlayerAct::Click && read.control == "Esc") read.act = PlayerAct::Escape;
  if (read.act == PlayerAct::Click && read.control == "close") read.act = PlayerAct::Close;
  return read;
}

std::optional<platform::DialogAnswer> ReadAnswer(std::string_view line, platform::DialogButtons buttons) {
  line = base::Trim(line);
  if (base::EqualIgnoringCase(line, "Yes")) return platform::DialogAnswer::Yes;
  if (base::EqualIgnoringCase(line, "No")) return platform::DialogAnswer::No;
  if (base::EqualIgnoringCase(line, "Cancel") && buttons == platform::DialogButtons::YesNoCancel) {
    return platform::DialogAnswer::Cancel;
  }
  return std::nullopt;
}

}  // namespace ui
