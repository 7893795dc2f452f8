#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <random>

#include "support/archives.hpp"
#include "util/md5_kernel.hpp"
#include "util/md5_lanes.hpp"

namespace {

// Texts that are digested side by side; each call of Read hands out at most `piece` bytes.
class Texts : public util::Md5Messages {
 public:
  Texts(std::vector<std::string> texts, std::size_t piece) : texts_(std::move(texts)), piece_(piece) {}

  bool Next(std::size_t lane) override {
    if (begun_ == texts_.size()) return false;
    EXPECT_FALSE(inLane_.contains(lane)) << "a lane takes one text at a time";
    inLane_[lane] = {begun_++, 0};
    return true;
  }
  std::size_t Read(std::size_t lane, std::span<std::byte> into) override {
    auto& [text, at] = inLane_.at(lane);
    const std::size_t count = std::min({piece_, into.size(), texts_[text].size() - at});
    std::copy_n(std::as_bytes(std::span(texts_[text])).begin() + static_cast<std::ptrdiff_t>(at), count,
                into.begin());
    at += count;
    if (stopAfter > 0 && (stopAfter -= std::min(stopAfter, count)) == 0) stop.request_stop();
    return count;
  }
  void Finish(std::size_t lane, const util::Md5Digest& digest) override {
    EXPECT_TRUE(digests.emplace(inLane_.at(lane).first, digest.Hex()).second);
    inLane_.erase(lane);
  }

  std::map<std::size_t, std::string> digests;
  std::stop_source stop;
  std::size_t stopAfter = 0;  // bytes; 0: never

 private:
  const std::vector<std::string> texts_;
  const std::size_t piece_;
  std::size_t begun_ = 0;
  std::map<std::size_t, std::pair<std::size_t, std::size_t>> inLane_;
};

constexpr std::size_t kLanes[] = {1, 2, 4, 5, 8, 9, 16};

TEST(Md5Lanes, GiveTheDigestsOfTheStandard) {
  const std::pair<std::string, const char*> vectors[] = {
      // RFC 1321, A.5
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
  };
  std::vector<std::string> texts;
  for (const auto& [text, digest] : vectors) texts.push_back(text);
  for (const std::size_t lanes : kLanes) {
    Texts messages(texts, 1000);
    util::DigestSideBySide(messages, lanes, {});
    ASSERT_EQ(messages.digests.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(messages.digests[i], vectors[i].second) << lanes;
  }
}

TEST(Md5Lanes, AgreeWithTheSystemsOwnOnAnyMixOfLengths) {
  std::mt19937 random(1321);
  // Around the ends of blocks and of the pieces that are read at a time; a few long ones among many short
  // ones.
  std::vector<std::string> texts;
  for (std::size_t length = 0; length <= 200; ++length) texts.emplace_back(length, '\0');
  for (const std::size_t length :
       {32767u, 32768u, 32769u, 65536u - 9, 65536u - 8, 65536u, 700'001u, 1'300'000u})
    texts.emplace_back(length, '\0');
  for (std::string& text : texts) {
    for (char& c : text) c = static_cast<char>(random());
  }
  for (const std::size_t lanes : kLanes) {
    std::shuffle(texts.begin(), texts.end(), random);
    for (const std::size_t piece : {std::size_t{1} << 20, std::size_t{1 + random() % 5000}}) {
      Texts messages(texts, piece);
      util::DigestSideBySide(messages, lanes, {});
      ASSERT_EQ(messages.digests.size(), texts.size());
      for (std::size_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(messages.digests[i], support::Md5Of(texts[i]))
            << texts[i].size() << " bytes, " << lanes << " lanes, pieces of " << piece;
      }
    }
  }
}

// The one lane is held against the system's above; here it is what the others are held against, those too
// that this processor has something quicker for.
TEST(Md5Lanes, EveryKernelOfTheProcessorTakesTheSameSteps) {
  constexpr std::size_t kBlocks = 5;
  std::mt19937 random(64);
  std::vector<std::uint32_t> words(util::kMostLanes * kBlocks * util::kMd5Block / 4);
  std::generate(words.begin(), words.end(), std::ref(random));
  const std::byte* data[util::kMostLanes];
  for (std::size_t i = 0; i < util::kMostLanes; ++i)
    data[i] = std::as_bytes(std::span(words)).data() + i * kBlocks * util::kMd5Block;
  for (const util::Md5Kernel& kernel : util::Md5Kernels()) {
    util::Md5States states;
    for (auto& ofLanes : states) std::generate(std::begin(ofLanes), std::end(ofLanes), std::ref(random));
    util::Md5States before;
    std::memcpy(before, states, sizeof states);
    kernel.run(states, data, kBlocks);
    for (std::size_t lane = 0; lane < kernel.lanes; ++lane) {
      util::Md5States alone{};
      for (int word = 0; word < 4; ++word) alone[word][0] = before[word][lane];
      util::Md5Kernels().front().run(alone, data + lane, kBlocks);
      for (int word = 0; word < 4; ++word)
        ASSERT_EQ(states[word][lane], alone[word][0]) << kernel.lanes << " lanes, lane " << lane;
    }
  }
}

TEST(Md5Lanes, StopAtOnce) {
  Texts messages(std::vector<std::string>(40, std::string(400'000, 'x')), 1 << 20);
  messages.stopAfter = 1'000'000;
  util::DigestSideBySide(messages, 16, messages.stop.get_token());
  EXPECT_LT(messages.digests.size(), 20u);
}

}  // namespace
