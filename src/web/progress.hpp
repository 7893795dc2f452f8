#pragma once

#include <cstdint>

#include "controls/main_window.hpp"
#include "platform/clock.hpp"
#include "web/file_sink.hpp"

namespace web {

// How far an update of several files is. Bytes are those of the files themselves, as far as they are known.
struct WholeUpdate {
  int number = 0, count = 0;    // of the file under way, from 1; 0: no such update is going on
  std::uint64_t bytes = 0;      // of the files before it
  std::uint64_t total = 0;      // of all of them; 0: nobody knows
  std::uint64_t startedAt = 0;  // in milliseconds of the clock
};

// Tells the player how far a download is, how fast it goes and how far the update is that it belongs to.
class Progress {
 public:
  // What is passed in lives longer.
  Progress(platform::Clock& clock, controls::MainWindow& frmMain, const Received& received,
           const WholeUpdate& whole);

  void Show();
  void ShowEnd();

 private:
  void Sample(std::uint64_t bytes);
  void Raise(std::uint64_t bytes, std::uint64_t total);
  void ShowWhole();

  platform::Clock& clock_;
  controls::MainWindow& frmMain_;
  const Received& received_;
  const WholeUpdate& whole_;
  std::uint64_t sampleTime_;
  std::uint64_t sampleBytes_ = 0;
  double speed_ = 0;
  bool sampled_ = false;
};

}  // namespace web
