#pragma once

#include <functional>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "web/Inet1.hpp"
#include "web/download_state.hpp"

namespace update {

// Handles the state-changed event of the internet transfer control: writes the answer's chunks to
// DownloadState.TargetPath and shows size and speed. The control has always had it; no request is started
// through it today.
class ChunkedTransfer {
 public:
  ChunkedTransfer(const startup::Services& services, controls::MainWindow& frmMain, web::Inet1& inet,
                  web::DownloadState& state, std::function<void()> closeLauncher);

  void Inet1_StateChanged(int stateNumber);

 private:
  void ReceiveBody();
  void Sample(double total);
  void ShowVelocity(double total);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  web::Inet1& inet_;
  web::DownloadState& state_;
  std::function<void()> closeLauncher_;
  float speed_ = 0;  // kb/s
  std::uint32_t sampleTime_ = 0;
  double sampleValue_ = 0;
};

}  // namespace update
