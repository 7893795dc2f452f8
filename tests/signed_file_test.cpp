// What a signed publication's file may look like, and whose signature counts; the vectors were made by
// openssl.
#include "update/signed_file.hpp"

#include <gtest/gtest.h>

#include "base/base64.hpp"
#include "platform/digest.hpp"
#include "platform/signature.hpp"

namespace {

constexpr const char* kKey =
    "MFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAEz3NI+/QMOqbQwfNhuMYRs6ZoA4/SOViVO/TsW6vDxfHHlkft2Ms+2OYX/cnKy/"
    "9eNNMTRio5wk1NME3w"
    "mgqsbQ==";
constexpr const char* kOtherKey =
    "MFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAE1BkoSAaIBsiqYVIJMjoKX+XvQxsz7WmhkW7aomIjZC4ibyWMn/"
    "XscSpeal3JiQoNZhwbagtQJV4v4lMP"
    "7vsFLw==";
constexpr const char* kP384Key =
    "MHYwEAYHKoZIzj0CAQYFK4EEACIDYgAESagAZjeToUuOrXPWL1MTI6jzEzCgQV53PDYwJCc57ShAvBvJlNtMBkUkWtrhGMeXic7dM3oz"
    "GAo87Jnyh/tk"
    "dATtMMSkuVOWpVwBnowL14NeyWBGrfwhOMRZCdla5Akl";
// Of "message", by the first key: one number of 33 bytes in DER, and one of 31.
constexpr const char* kSignature =
    "MEUCIEcPGcPtryL28TS8T8eClInoQWTgPYCfSVpuWOszAe2DAiEAvibzYYJLuV0BKuFpjfTsB6OvjYUSL916kLTeAl1ms7w=";
constexpr const char* kShortSignature =
    "MEMCHymtd8Z+3oohQ9XY2gMZ433JjiCG4MX0cQF++INkeZwCIA4hj7JGJfK+QfiesZXL28YdqIgJsHX2rrNw4Ag4+96F";

std::string Bytes(const char* base64) { return base::FromBase64(base64).value(); }

std::string Changed(std::string bytes, std::size_t at, int by) {
  bytes[at] = static_cast<char>(bytes[at] + by);
  return bytes;
}

TEST(Base64, OnlyTheOneWayToWriteBytesIsRead) {
  const struct {
    const char *bytes, *text;
  } cases[] = {{"", ""},        {"f", "Zg=="},          {"fo", "Zm8="},
               {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"}, {"\xFB\xFF", "+/8="}};
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(base::Base64(bytes), text);
    EXPECT_EQ(base::FromBase64(text), bytes);
  }
  for (const char* bad :
       {"Zg", "Zg=", "Zh==", "Z===", "====", "Zg==Zm8=", "Zm 9v", "Zm9v\n", "Zm9-", "Zm=v"}) {
    EXPECT_EQ(base::FromBase64(bad), std::nullopt) << bad;
  }
}

TEST(Signature, CountsOnlyForItsKeyAndItsMessage) {
  const std::string key = Bytes(kKey), good = Bytes(kSignature);
  EXPECT_TRUE(platform::IsSignedBy(key, "message", good));
  EXPECT_TRUE(platform::IsSignedBy(key, "message", Bytes(kShortSignature)));
  EXPECT_FALSE(platform::IsSignedBy(Bytes(kOtherKey), "message", good));
  EXPECT_FALSE(platform::IsSignedBy(key, "messagf", good));
  EXPECT_FALSE(platform::IsSignedBy(key, "", good));
  for (std::size_t i = 0; i < good.size(); ++i) {
    EXPECT_FALSE(platform::IsSignedBy(key, "message", Changed(good, i, 1))) << i;
    EXPECT_FALSE(platform::IsSignedBy(key, "message", good.substr(0, i))) << i;
  }
  EXPECT_FALSE(platform::IsSignedBy(key, "message", good + '\0'));
  // The same two numbers with a zero in front of one: no DER.
  const std::string shorter = Bytes(kShortSignature);
  const std::string padded = Changed(shorter, 1, 1).substr(0, 3) + '\x20' + '\0' + shorter.substr(4);
  EXPECT_FALSE(platform::IsSignedBy(key, "message", padded));
  const std::string zeros("\x30\x06\x02\x01\x00\x02\x01\x00", 8);
  EXPECT_FALSE(platform::IsSignedBy(key, "message", zeros));
}

TEST(Signature, AKeyIsAPointOfThatCurveOrNone) {
  const std::string key = Bytes(kKey);
  EXPECT_TRUE(platform::IsPublicKey(key));
  EXPECT_FALSE(platform::IsPublicKey(""));
  EXPECT_FALSE(platform::IsPublicKey(Bytes(kP384Key)));
  EXPECT_FALSE(platform::IsPublicKey(key + "x"));
  EXPECT_FALSE(platform::IsPublicKey(key.substr(1)));
  // A point beside the curve: some systems notice when the key is used, none takes a signature for good.
  const std::string beside = Changed(key, key.size() - 1, 1);
  EXPECT_FALSE(platform::IsPublicKey(beside) &&
               platform::IsSignedBy(beside, "message", Bytes(kShortSignature)));
  EXPECT_FALSE(platform::IsPublicKey(Changed(key, 26, -2)));  // said to be compressed
  EXPECT_FALSE(platform::IsPublicKey(key.substr(0, 27) + std::string(64, '\0')));
}

update::SignedFile Example() {
  update::SignedFile file;
  file.version = 1795195445;
  file.signedAt = 1795280400;
  file.expires = 1803081599;
  file.nextKey = kOtherKey;
  file.counts = {1, 12, 0, 0, 0, 32767, 3};
  file.files["Kelvarin.zip"] = {std::string(64, 'a'), 4'000'000'000};
  file.files["NewAct2/Bin/ñ con blancos.dll.kvn"] = {std::string(64, '0'), 0};
  file.files["NewAct2/Info.kvn"] = {std::string(64, 'f'), 12};
  return file;
}

const std::string kBody = std::string("Kelvarin 1\nversion 1795195445\nsigned 2026-11-21T17:00:00Z\n") +
                          "expires 2027-02-19T23:59:59Z\nnext-key " + kOtherKey +
                          "\nInit 1\nMapas 12\nGraficos 0\nMidis 0\nWavs 0\nAU 32767\nExtras 3\n" +
                          std::string(64, 'a') + " 4000000000 Kelvarin.zip\n" + std::string(64, '0') +
                          " 0 NewAct2/Bin/ñ con blancos.dll.kvn\n" + std::string(64, 'f') +
                          " 12 NewAct2/Info.kvn\n";

TEST(SignedFile, SaysWhatWasSigned) {
  EXPECT_EQ(update::SignedBody(Example()), kBody);
  const auto read = update::ParseSignedBody(kBody);
  ASSERT_TRUE(read);
  EXPECT_EQ(update::SignedBody(*read), kBody);
  EXPECT_EQ(read->counts, Example().counts);
  EXPECT_EQ(read->files, Example().files);
  EXPECT_EQ(read->expires, 1803081599);
  const std::string text = std::string(kSignature) + "\nrest\n\nof it";
  const auto split = update::SplitSigned(text);
  ASSERT_TRUE(split);
  EXPECT_EQ(split->signature, Bytes(kSignature));
  EXPECT_EQ(split->body, "rest\n\nof it");
}

TEST(SignedFile, WhatIsWrittenInAnyOtherWayIsNotRead) {
  const struct {
    std::string from, to;
  } cases[] = {
      {"Kelvarin 1\n", "Kelvarin 2\n"},
      {"Kelvarin 1\n", "Kelvarin 1\r\n"},
      {"Kelvarin 1\n", ""},
      {"version 1795195445", "version 0"},
      {"version 1795195445", "version 01795195445"},
      {"version 1795195445", "version -1"},
      {"version 1795195445", "version 18446744073709551616"},
      {"2026-11-21T17:00:00Z", "2026-11-31T17:00:00Z"},
      {"2026-11-21T17:00:00Z", "2026-11-21 17:00:00Z"},
      {"2026-11-21T17:00:00Z", "2026-11-21T17:00:0-1Z"},
      {"2026-11-21T17:00:00Z", "1969-12-31T23:59:59Z"},
      {"2026-11-21T17:00:00Z", "2026-11-21T17:00:00Zulu"},
      {std::string("next-key ") + kOtherKey, "next-key "},
      {std::string("next-key ") + kOtherKey, "next-key Zh=="},
      {"Init 1\n", ""},
      {"Init 1\nMapas 12\n", "Mapas 12\nInit 1\n"},
      {"AU 32767", "AU 32768"},
      {"Extras 3\n", "Extras 3\n\n"},
      {" 12 NewAct2/Info.kvn\n", " 12 NewAct2/Info.kvn"},
      {" 12 NewAct2/Info.kvn", " 12 "},
      {" 12 NewAct2/Info.kvn", " 12  NewAct2/Info.kvn"},
      {" 12 NewAct2/Info.kvn", " 012 NewAct2/Info.kvn"},
      {" 12 NewAct2/Info.kvn", " 12 NewAct2//Info.kvn"},
      {" 12 NewAct2/Info.kvn", " 12 /NewAct2/Info.kvn"},
      {" 12 NewAct2/Info.kvn", " 12 NewAct2\\Info.kvn"},
      {" 12 NewAct2/Info.kvn", " 12 ../Info.kvn"},
      {" 12 NewAct2/Info.kvn", " 12 Kelvarin.zip"},                       // not sorted
      {" 12 NewAct2/Info.kvn", " 12 NewAct2/Bin/ñ con blancos.dll.kvn"},  // twice
      {std::string(64, 'f'), std::string(64, 'F')},
      {std::string(64, 'f'), std::string(65, 'f')},
      {std::string(64, 'f'), std::string(63, 'f') + "g"},
  };
  for (const auto& [from, to] : cases) {
    std::string body = kBody;
    const std::size_t at = body.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    EXPECT_FALSE(update::ParseSignedBody(body.replace(at, from.size(), to))) << from << " -> " << to;
  }
  // Cut at any place it is no file, unless whole lines of its end are missing: the signature is for those.
  const std::size_t lists = kBody.find(std::string(64, 'a'));
  for (std::size_t length = 0; length < kBody.size(); ++length) {
    const bool whole = length >= lists && kBody[length - 1] == '\n';
    EXPECT_EQ(update::ParseSignedBody(kBody.substr(0, length)).has_value(), whole) << length;
  }
  const std::string signature = std::string(kSignature) + "\n";
  for (const std::string& text : {std::string(), signature.substr(0, signature.size() - 1), " " + signature,
                                  "\n" + signature, std::string(kSignature) + "\r\n"}) {
    EXPECT_FALSE(update::SplitSigned(text)) << text;
  }
}

TEST(SignedFile, TimesAreThoseOfTheCalendar) {
  const struct {
    std::int64_t seconds;
    const char* text;
  } cases[] = {{0, "1970-01-01T00:00:00Z"},
               {951'868'799, "2000-02-29T23:59:59Z"},
               {4'102'444'800, "2100-01-01T00:00:00Z"},
               {253'402'300'799, "9999-12-31T23:59:59Z"}};
  for (const auto& [seconds, text] : cases) {
    EXPECT_EQ(update::UtcText(seconds), text);
    EXPECT_EQ(update::FromUtcText(text), seconds);
  }
}

}  // namespace
