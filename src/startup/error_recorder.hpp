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

  // A message box without a line in the log.
  void Tell(const std::string& text);

  // What LogError and Tell are given while one of these lives is shown when it goes: one alone as ever, more
  // as one box, with every one of them in the log. They do not nest.
  class Gathering {
   public:
    explicit Gathering(ErrorRecorder& recorder) : recorder_(recorder) { recorder_.gathering_ = this; }
    ~Gathering();
    Gathering(const Gathering&) = delete;

   private:
    friend class ErrorRecorder;
    struct Entry {
      std::string text;
      bool isError = false;
    };
    ErrorRecorder& recorder_;
    std::vector<Entry> entries_;
  };

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
  Gathering* gathering_ = nullptr;
  bool showing_ = false;  // LogError has a box open or announced
};

}  // namespace startup
