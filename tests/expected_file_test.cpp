#include <gtest/gtest.h>

#include "platform/digest.hpp"
#include "support/web_world.hpp"
#include "util/sha256.hpp"
#include "web/bytes_fetch.hpp"

namespace {

using support::Answer;
using web::Expected;

struct ExpectedFileTest : testing::Test {
  web::TransferReport Fetch(const Answer& answer, const Expected& expected) {
    return Fetch(world.transfers, answer, expected);
  }
  web::TransferReport Fetch(web::smodXmlHttp& transfers, const Answer& answer, const Expected& expected) {
    platform::TryRemoveFile(world.folder / "game/target");
    platform::TryRemoveFile(world.folders.Scratch("tmp.tmp"));
    server.On("/file", answer);
    return transfers.DownloadUrlToFile(server.Url("/file"), world.folder / "game/target", expected);
  }
  std::size_t FileCount() { return platform::ListTree(world.folder.Path()).size(); }

  support::FaultyServer server{"127.0.0.5"};
  support::WebWorld world;
  const web::Pace impatient{.leastBytesPerSecond = 1'000'000'000, .leastLimitMs = 300};
};

TEST_F(ExpectedFileTest, OnlyWhatIsExpectedIsKept) {
  const std::string good(200'000, 'g'), other(200'000, 'o');
  const Expected both{good.size(), util::Sha256(good)}, size{good.size()}, digest{{}, util::Sha256(good)};
  const struct {
    const char* name;
    Answer answer;
    Expected expected;
    bool kept, otherContent;
  } cases[] = {
      {"good", support::Text(good), both, true, false},
      {"good without a length", {.body = good, .framing = Answer::Framing::Chunked}, both, true, false},
      {"size alone", support::Text(other), size, true, false},
      {"digest alone", support::Text(good), digest, true, false},
      {"other content", support::Text(other), both, false, true},
      {"other digest", support::Text(other), digest, false, true},
      {"one byte more", {.body = good + "!", .framing = Answer::Framing::Chunked}, both, false, true},
      {"one byte less", {.body = good.substr(1), .framing = Answer::Framing::UntilClose}, both, false, true},
      {"announced longer", support::Text(good + "!"), both, false, true},
      {"nothing", support::Text(""), both, false, true},
      {"something for nothing", support::Text("x"), {0, util::Sha256("")}, false, true},
      {"nothing for nothing", support::Text(""), {0, util::Sha256("")}, true, false},
      {"cut", support::CutShort(good, 1'000), both, false, false},
      {"page", support::Page(404, good.substr(0, 99)), both, false, false},
      {"endless page", support::Page(404, std::string(1 << 20, 'p')), both, false, false},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    const web::TransferReport report = Fetch(test.answer, test.expected);
    EXPECT_EQ(report.Good(), test.kept) << report.Details();
    EXPECT_EQ(world.state.Finished, test.kept);
    EXPECT_EQ(report.otherContent, test.otherContent) << report.Details();
    EXPECT_EQ(FileCount(), test.kept ? 2u : 0u) << "the file and its scratch copy";
    if (test.otherContent) {
      EXPECT_EQ(report.Reason(), "su contenido no es el firmado");
    }
  }
}

TEST_F(ExpectedFileTest, EndlessDataEndsAtTheFirstByteTooMany) {
  const Answer endless{.body = std::string(64 << 20, 'x'), .framing = Answer::Framing::Chunked};
  const web::TransferReport report = Fetch(endless, {1'000'000});
  EXPECT_TRUE(report.otherContent);
  EXPECT_LE(report.bytes, 1'000'000u);
  EXPECT_EQ(FileCount(), 0u);
}

// A trickle that is never quite still, so that no stall limit sees it.
TEST_F(ExpectedFileTest, WhatComesTooSlowlyIsGivenUp) {
  const std::string body(100'000, 'x');
  const Answer trickle{.body = body, .paceBytes = 10, .paceMs = 5};
  web::smodXmlHttp transfers(world.services, world.frmMain, world.state, world.hosts, impatient);
  const web::TransferReport report = Fetch(transfers, trickle, {body.size()});
  EXPECT_EQ(report.outcome.error, platform::HttpError::Stalled) << report.Details();
  EXPECT_LT(report.bytes, body.size() / 2);
  EXPECT_EQ(FileCount(), 0u);
}

TEST_F(ExpectedFileTest, WhatIsTakenIntoMemoryIsBoundedInSizeAndTime) {
  const std::string body(100'000, 'x');
  const struct {
    const char* name;
    Answer answer;
    std::size_t most;
    platform::HttpError error;
  } cases[] = {
      {"whole", support::Text(body), body.size(), platform::HttpError::None},
      {"one byte too many", support::Text(body), body.size() - 1, platform::HttpError::Refused},
      {"trickle", {.body = body, .paceBytes = 10, .paceMs = 5}, body.size(), platform::HttpError::Stalled},
      {"cut", support::CutShort(body, 5), body.size(), platform::HttpError::CutShort},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    server.On("/file", test.answer);
    const bool slow = test.error == platform::HttpError::Stalled;
    const web::Bytes got =
        web::FetchBytes(world.services, server.Url("/file"), test.most, slow ? impatient : web::Pace());
    EXPECT_EQ(got.report.outcome.error, test.error);
    EXPECT_TRUE(got.bytes == (test.error == platform::HttpError::None ? body : ""));
  }
}

TEST(Pace, TheLimitGrowsWithTheSize) {
  const std::uint64_t kMegabyte = 1 << 20;
  const struct {
    Expected expected;
    std::uint32_t limitMs;
  } cases[] = {
      {{}, 0},
      {{{}, util::Sha256("")}, 0},
      {{0}, 60'000},
      {{kMegabyte}, 60'000},
      {{30 * kMegabyte}, 1'024'000},
      {{UINT64_MAX}, UINT32_MAX},
  };
  for (const auto& test : cases)
    EXPECT_EQ(web::Pace().LimitMs(test.expected), test.limitMs) << test.expected.size.value_or(1);
}

}  // namespace
