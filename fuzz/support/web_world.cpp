#include "fuzz/support/web_world.hpp"

#include <span>

#include "platform/files.hpp"

namespace fuzz {

platform::HttpOutcome CannedHttp::Get(const platform::HttpRequest& request, platform::HttpSink& sink,
                                      std::stop_token) {
  const std::string url = request.url.substr(0, request.url.find('?'));
  std::string_view body = "1";
  for (const auto& [end, given] : bodies) {
    if (url.ends_with(end)) body = given;
  }
  sink.Begin({200, body.size(), {}});
  const bool taken = sink.Write(std::as_bytes(std::span(body)));
  return {taken ? platform::HttpError::None : platform::HttpError::Refused, 200};
}

support::TestServices& WebWorld::Shared() {
  static support::TestServices services("game");
  return services;
}

WebWorld::WebWorld() {
  constexpr const char* kMirror = "http://127.0.0.1:1/update/kvn2011/";
  base_.host.dialogs.shown.clear();
  base_.deployment.mirrors[0] = kMirror;
  base_.deployment.usable[0] = true;
  platform::MakeFolders(base_.folders.Scratch(""));
  hosts.CurrentUpdateURL = hosts.WebBaseURL = kMirror;
}

}  // namespace fuzz
