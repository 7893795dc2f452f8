#pragma once

#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "web/download_state.hpp"
#include "web/expected.hpp"
#include "web/fetch_ahead.hpp"
#include "web/pace.hpp"
#include "web/progress.hpp"
#include "web/text_fetch.hpp"
#include "web/text_options.hpp"

namespace web {

// The transfer primitives. Each is a blocking call for its caller while events go on being handled.
class smodXmlHttp {
 public:
  smodXmlHttp(const startup::Services& services, controls::MainWindow& frmMain, DownloadState& state,
              const Hosts& hosts, const Pace& pace = {})
      : services_(services),
        frmMain_(frmMain),
        state_(state),
        hosts_(hosts),
        pace_(pace),
        ahead_(services.host.http, services.folders.Scratch("ahead")) {}

  // The body of an answer as text (at most 16 MiB), whatever the status; when there was no answer at all,
  // lblName says so. The body of a 200 is also left in the scratch file Tmp.tmp.
  TextAnswer GetHttpText(const std::string& url, const TextOptions& options = {});

  // Saves the body to `localPath`, which must not exist, whatever the status, and sets
  // DownloadState.Finished; shows its progress in the main window. On failure Finished is false and there is
  // no file. The body of a 200 is also left in the scratch file tmp.tmp. DownloadState.CancelRequested ends
  // it. A disk without room for the announced length takes no byte of it. Where anything is expected, only
  // what is exactly that is saved, and no page; the report says when something else came. `part`, a path in a
  // folder of its own, holds what an interrupted transfer left, and the next one goes on there. A file that
  // FetchNext began is taken over.
  TransferReport DownloadUrlToFile(const std::string& url, const std::string& localPath,
                                   const Expected& expected = {}, const std::string& part = {}) {
    return DownloadUrlToFile({.url = url, .path = localPath, .expected = expected, .part = part});
  }
  // `meanwhile` is called again and again, on this thread, while the transfer goes on.
  TransferReport DownloadUrlToFile(FileRequest request, const std::function<void()>& meanwhile = {});

  // Begins to fetch what will be asked for next, see FetchAhead; ForgetNext ends that.
  void FetchNext(std::vector<FileRequest> next, const FetchAhead::Limits& limits);
  void ForgetNext() { ahead_.Stop(); }
  std::shared_ptr<FetchAhead::Item> Next() const { return ahead_.First(); }  // of them; null: none is left

  WholeUpdate whole;  // that the next downloads belong to

  // Saves the body of a successful answer to a file, an older one of that name being replaced: true when the
  // whole file arrived.
  bool DownloadFile(const std::string& Url, const std::string& LocalFilename);

 private:
  void RunTransfer(const std::function<void(std::stop_token)>& work, const std::function<void()>& onRound,
                   TransferReport& report);
  void ShowUnreachable();

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  DownloadState& state_;
  const Hosts& hosts_;
  const Pace pace_;
  FetchAhead ahead_;
};

// Checks on addresses that a web host answered.
bool IsTextToken(std::string_view text);
bool IsInRange(std::string_view text, int kind);  // 0: 0 to 255; 1: 16-bit; 2: 32-bit
bool IsDottedAddress(std::string_view text);
bool IsColonList(std::string_view text);

}  // namespace web
