#pragma once

#include <functional>
#include <string>

#include "platform/dialogs.hpp"
#include "startup/run_flags.hpp"

namespace startup {

// Message boxes for both run modes: in update-only mode nobody is there to answer, so a box is only announced
// and a question answered with its last button.
class UnattendedDialogs : public platform::Dialogs {
 public:
  UnattendedDialogs(platform::Dialogs& dialogs, const RunFlags& flags) : dialogs_(dialogs), flags_(flags) {}

  platform::DialogAnswer Show(const std::string& text, platform::DialogButtons buttons,
                              const std::string& title) override;
  // Told of every box that nobody can answer, so that it can be looked up afterwards.
  std::function<void(const std::string& text)> announced;

  void CloseAll() override { dialogs_.CloseAll(); }
  void Announce(const std::string& text, const std::string& title) override {
    dialogs_.Announce(text, title);
  }

 private:
  platform::Dialogs& dialogs_;
  const RunFlags& flags_;
};

}  // namespace startup
