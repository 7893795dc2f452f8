#pragma once

#include <string>
#include <utility>

#include "base/runtime_error.hpp"
#include "startup/error_recorder.hpp"

namespace startup {

// What a procedure's error handler knows of a failure. `line` is the procedure's own line counter: it numbers
// its steps 10, 20, 30, ... so that a report names the same place in every build.
struct Failure {
  int number = 0;
  std::string description;
  int line = 0;

  std::string Line() const { return std::to_string(line); }
  // "Error 53 (File not found)", the start of nearly every report.
  std::string Opening() const { return "Error " + std::to_string(number) + " (" + description + ")"; }
};

// What is being handled right now, as one of the run-time's errors; to be called inside a catch block.
base::RuntimeError CurrentError();
// The same, with the line where it happened.
Failure CurrentFailure(int line);

// The boundary of a named procedure: runs body(int& line); whatever it throws is worded by words(const
// Failure&) and recorded by the ErrorRecorder or in a FailureList. True when nothing was thrown.
template <class Recorder, class Body, class Words>
bool Guarded(Recorder& recorder, Body&& body, Words&& words) {
  int line = 0;
  try {
    std::forward<Body>(body)(line);
    return true;
  } catch (...) {
    recorder.LogError(words(CurrentFailure(line)));
    return false;
  }
}

}  // namespace startup
