#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/host.hpp"
#include "startup/folders.hpp"
#include "startup/lifetime.hpp"

namespace startup {

// Errores.log in the folder above the launcher, or among the user's own data where that folder cannot be
// written (full path).
std::string LogFile(const Folders& folders);

// The one place where failures become known: shown to the player and appended to the log file. Never fails
// itself.
class ErrorRecorder {
 public:
  ErrorRecorder(platform::Host& host, const Folders& folders, Lifetime& lifetime)
      : host_(host), folders_(folders), lifetime_(lifetime) {}

  // `askToClose` adds the question whether the launcher is to be closed, whose Yes ends the process at once.
  void LogError(const std::string& text, bool askToClose = false);

  // One message box, and one entry of the log with all these lines; none: only the box.
  void LogTogether(const std::string& shown, const std::vector<std::string>& lines);

  // Appends a line to the log without showing anything: what an operator wants to find there. A line that
  // repeats the one before it is not written again, nor is what LogError is just showing.
  void Note(const std::string& text);

 private:
  void WriteLine(const std::string& text) { WriteLines({text}); }
  void WriteLines(const std::vector<std::string>& texts);

  platform::Host& host_;
  const Folders& folders_;
  Lifetime& lifetime_;
  std::string log_;  // its path, once something was written
  std::string LastErrorText;
  std::int32_t RepeatCount = 0;
  std::string lastNote_;
  bool showing_ = false;  // LogError has a box open or announced
};

// What goes wrong in one piece of work, told when the list goes: one failure alone as ever, more as one box,
// with every one of them in the log.
class FailureList {
 public:
  explicit FailureList(ErrorRecorder& recorder) : recorder_(recorder) {}
  ~FailureList();
  FailureList(const FailureList&) = delete;

  void LogError(const std::string& text) { failures_.push_back({text, true}); }
  void Show(const std::string& text) { failures_.push_back({text, false}); }  // alone it is not logged

 private:
  struct Failure {
    std::string text;
    bool isError = false;
  };
  ErrorRecorder& recorder_;
  std::vector<Failure> failures_;
};

}  // namespace startup
