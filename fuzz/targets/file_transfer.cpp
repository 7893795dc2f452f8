#include <optional>
#include <span>
#include <stdexcept>

#include "base/text.hpp"
#include "fuzz/support/given_answer.hpp"
#include "fuzz/support/promises.hpp"
#include "platform/digest.hpp"
#include "platform/files.hpp"
#include "support/temp_folder.hpp"
#include "web/file_fetch.hpp"

namespace {

constexpr std::size_t kPiece = 13;  // bytes that arrive at a time

// Answers every request with what was given; "x-cut" among its headers: the connection is lost at its end.
class GivenHttp : public platform::HttpClient {
 public:
  explicit GivenHttp(std::string_view answer) : answer_(answer) {}

  platform::HttpOutcome Get(const platform::HttpRequest& request, platform::HttpSink& sink,
                            std::stop_token) override {
    sent = {};
    resumes = !request.headers.empty() && answer_.head.status == 206;
    const int status = answer_.head.status;
    good = status >= 200 && status < 300;
    sink.Begin(answer_.head);
    for (std::string_view rest = answer_.body; !rest.empty();
         rest.remove_prefix(std::min(kPiece, rest.size()))) {
      const std::string_view piece = rest.substr(0, kPiece);
      if (!sink.Write(std::as_bytes(std::span(piece)))) return {platform::HttpError::Refused, status};
      sent += piece;
    }
    const bool cut = answer_.head.contentLength.value_or(sent.size()) != sent.size() ||
                     !answer_.head.Header("x-cut").empty();
    return {cut ? platform::HttpError::CutShort : platform::HttpError::None, status};
  }

  std::string sent;      // and taken, of the last answer
  bool good = false;     // and no page, which is read and dropped
  bool resumes = false;  // it was an answer to a request for the rest

 private:
  const fuzz::GivenAnswer answer_;
};

web::Expected ExpectedOf(std::string_view line) {
  web::Expected expected;
  const std::string size(base::Field(line, 1, ' '));
  if (!size.empty() && size.size() < 9 && size.find_first_not_of("0123456789") == size.npos)
    expected.size = std::stoul(size);
  const std::string_view content = base::Field(line, 2, ' ');
  if (content.empty()) return expected;
  platform::Digest digest(platform::DigestKind::Sha256);
  digest.Update(std::as_bytes(std::span(content)));
  expected.sha256 = digest.Hex();
  return expected;
}

void Transfer(const support::TempFolder& folder, std::string_view input) {
  const bool inParts = fuzz::TakeLine(input) != "whole";
  const web::Expected expected = ExpectedOf(fuzz::TakeLine(input));
  const std::string before = folder.Get("part/a");
  const std::string target = folder / "a.zip";
  GivenHttp http(input);
  web::Received received;
  const auto fetched = web::FetchFile(http,
                                      {.url = "http://127.0.0.1/a.zip",
                                       .path = target,
                                       .expected = expected,
                                       .part = inParts ? folder / "part/a" : ""},
                                      received, {});
  const std::string content = folder.Get("a.zip");
  fuzz::Require(fetched.kept == platform::IsFile(target), "a file that is kept is there, and no other is");
  const std::size_t taken = (http.resumes ? before.size() : 0) + http.sent.size();
  fuzz::Require(!expected.size || !http.good || http.sent.empty() || taken <= *expected.size,
                "a transfer ends at the first byte too many");
  if (fetched.kept) {
    fuzz::Require(content == (http.resumes ? before : std::string{}) + http.sent,
                  "a file is what came, behind what had come");
    fuzz::Require(!expected.size || content.size() == *expected.size,
                  "a file has the size that it must have");
    fuzz::Require(fetched.report.outcome.Complete(), "a file that is kept came whole");
    platform::RemoveFile(target);
  }
  for (const platform::FoundFile& found : platform::ListTree(folder.Path()))
    fuzz::Require(found.path == "part/a" || found.path == "part/a.txt", "nothing else is left");
}

}  // namespace

// Transfers of one file after the other, a byte 1 between them: "parts" or "whole", the size and the content
// that it must have, and the answer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const support::TempFolder folder;
  for (const std::string_view transfer : base::Split(fuzz::Text(data, size), '\1'))
    Transfer(folder, transfer);
  return 0;
}
