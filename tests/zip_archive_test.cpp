// Archives as a mirror may send them: good ones, damaged ones, and ones that were made to do harm.
#include <gtest/gtest.h>
#include <zlib.h>

#include "base/runtime_error.hpp"
#include "support/archives.hpp"
#include "support/temp_folder.hpp"
#include "update/zip_archive.hpp"

namespace {

using support::MakeZip;
using support::ZipItem;

constexpr std::uint16_t kUtf8 = 1 << 11, kSizesBehind = 1 << 3;

std::string Noise(std::size_t size) {
  std::string bytes(size, '\0');
  std::uint32_t state = 1;
  for (char& c : bytes) c = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  return bytes;
}

// The extra field with the Unicode name `unicode` that was made for the plain name `plain`.
std::string UnicodePath(const std::string& unicode, const std::string& plain) {
  const auto crc = static_cast<std::uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(plain.data()), static_cast<uInt>(plain.size())));
  std::string field = "\x75\x70";
  field += {static_cast<char>(5 + unicode.size()), '\0', '\x01'};
  for (int shift = 0; shift < 32; shift += 8) field += static_cast<char>(crc >> shift);
  return field + unicode;
}

// The description of what is wrong with an archive; empty when it is proved.
std::string Verdict(const support::TempFolder& folder, const std::string& bytes) {
  folder.Put("a.zip", bytes);
  try {
    update::ZipArchive(folder / "a.zip").Prove();
    return {};
  } catch (const base::RuntimeError& error) {
    EXPECT_TRUE(error.Is(base::ErrorNumber::InvalidFileFormat)) << error.Description();
    return error.Description();
  }
}

TEST(ZipArchive, ProvesGoodArchives) {
  const support::TempFolder folder;
  const std::string big = Noise(300'000) + std::string(1'000'000, 'x');
  EXPECT_EQ(Verdict(folder, MakeZip({{"RECURSOS/", ""}, {"RECURSOS/a.map", "hola"}, {"vacío.txt", ""}})), "");
  EXPECT_EQ(Verdict(folder, MakeZip({{"grande", big}, {"guardado", big, true}})), "");
  EXPECT_EQ(Verdict(folder, MakeZip({{"a/", ""}, {"A/", ""}, {"a/b", "1"}, {"a.b", "2"}, {"a b", "3"}})), "");
  EXPECT_EQ(
      Verdict(folder,
              MakeZip({{.name = "x", .bytes = "abc", .flags = kUtf8 | kSizesBehind, .localSizeError = -3}})),
      "")
      << "written by a packer that streams";
  EXPECT_EQ(Verdict(folder, MakeZip({})), "");
}

TEST(ZipArchive, RefusesWhatMustNotBeUnpacked) {
  const support::TempFolder folder;
  const std::string good = MakeZip({{"a", Noise(5000)}, {"b", "b"}});
  const struct {
    std::string bytes, why;
  } cases[] = {
      {"<!DOCTYPE html><h1>404</h1>", "It is no ZIP archive"},
      {"", "It is no ZIP archive"},
      {good.substr(0, good.size() / 2), "It is no ZIP archive"},
      {MakeZip({{"a/..\\..\\evil.dll", "x"}}), "climbs"},
      {MakeZip({{"\\\\host\\share\\evil", "x"}}), "absolute"},
      {MakeZip({{"C:evil", "x"}}), "drive or stream"},
      {MakeZip({{"COM1.dat", "x"}}), "device"},
      {MakeZip({{.name = "ok", .bytes = "x", .extra = UnicodePath("../evil", "ok")}}), "climbs"},
      {MakeZip({{.name = "ma\xF1", .bytes = "x", .flags = kUtf8}}), "no text"},
      {MakeZip({{.name = "a\xC0\xAE", .bytes = "x", .flags = kUtf8}}), "no text"},
      {MakeZip({{.name = "ok", .bytes = "x", .extra = UnicodePath("a\xFF", "ok")}}), "no text"},
      {MakeZip({{"Año/x", "x"}, {"b", "b"}, {"aÑo/X", "y"}}), "twice"},
      {MakeZip({{"a/b", "x"}, {"a-c", "x"}, {"A", "x"}}), "a file and a folder"},
      {MakeZip({{"link", "/etc", true, kUtf8, 0, 0120777}}), "is a link"},
      {MakeZip({{"secret", "x", false, kUtf8 | 1}}), "is encrypted"},
      {MakeZip({{"odd", "x", false, kUtf8, 9}}), "method is unknown"},
      {MakeZip({{"bad", Noise(9000), false, kUtf8, 8, 0100644, 1}}), "\"bad\": it is damaged"},
      {MakeZip({{"bad", Noise(9000), true, kUtf8, 8, 0100644, 1}}), "\"bad\": it is damaged"},
      {MakeZip({{.name = "long", .bytes = Noise(9000), .claimedSizeError = -5}}), "\"long\": it is damaged"},
      {MakeZip({{.name = "bomb", .bytes = Noise(9000), .claimedSizeError = 9'300'000}}), "contradict"},
      {MakeZip({{.name = "stored", .bytes = "abc", .stored = true, .claimedSizeError = 1}}), "contradict"},
      {MakeZip({{.name = "one", .bytes = "x", .localName = "two"}}), "differs from the directory"},
      {MakeZip({{.name = "size", .bytes = "abc", .localSizeError = 1}}), "differs from the directory"},
      {MakeZip({{.name = "flag", .bytes = "abc", .localFlags = kUtf8}}), "differs from the directory"},
      {MakeZip({{.name = "size", .bytes = "abc", .flags = kUtf8 | kSizesBehind, .localSizeError = 1}}),
       "differs from the directory"},
  };
  for (const auto& entry : cases) {
    const std::string verdict = Verdict(folder, entry.bytes);
    EXPECT_NE(verdict.find(entry.why), std::string::npos) << entry.why << " / " << verdict;
  }
}

TEST(ZipArchive, RefusesOverlappingEntries) {
  const support::TempFolder folder;
  const std::string two = MakeZip({{"a", Noise(500)}, {"b", Noise(500)}});
  std::string bomb = two;
  const std::size_t second = bomb.rfind("PK\x01\x02");
  bomb.replace(second + 42, 4, std::string(4, '\0'));  // the second entry points at the first one's bytes
  EXPECT_EQ(Verdict(folder, bomb), "Entries of the archive overlap");
  std::string late = two;
  late[28] = '\x40';  // an extra field before the first one's data, which moves them into the second
  EXPECT_EQ(Verdict(folder, late), "Entries of the archive overlap");
}

TEST(ZipArchive, NamesAreReadInTheEncodingThatTheArchiveSays) {
  const support::TempFolder folder;
  folder.Put(
      "a.zip",
      MakeZip(
          {{.name = "M\xFAsica/1", .bytes = "1", .flags = 0},
           {"Música\\2", "2"},
           {.name = "M?sica-3", .bytes = "3", .flags = 0, .extra = UnicodePath("Му́зыка-3", "M?sica-3")},
           {.name = "viejo-4", .bytes = "4", .flags = 0, .extra = UnicodePath("otro", "nombre anterior")}}));
  const update::ZipArchive archive(folder / "a.zip");
  std::vector<std::string> names;
  for (const auto& entry : archive.Entries()) names.push_back(entry.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Música/1", "Música/2", "Му́зыка-3", "viejo-4"}));
}

// A second directory that hides in the comment is never looked at, whichever way an archive is read.
TEST(ZipArchive, OnlyTheLastEndRecordCounts) {
  const support::TempFolder folder;
  std::string archive = MakeZip({{"bueno", "1"}});
  const std::string hidden = MakeZip({{"malo", "2"}}) + "x";
  archive[archive.size() - 2] = static_cast<char>(hidden.size());
  folder.Put("a.zip", archive + hidden);
  const update::ZipArchive read(folder / "a.zip");
  ASSERT_EQ(read.Entries().size(), 1u);
  EXPECT_EQ(read.Entries()[0].name, "bueno");
}

TEST(ZipArchive, AStopIsObeyedInsideAnEntry) {
  const support::TempFolder folder;
  folder.Put("a.zip", MakeZip({{"deflated", std::string(8'000'000, 'x')},
                               {"stored", std::string(8'000'000, 'x'), true}}));
  const update::ZipArchive archive(folder / "a.zip");
  update::Inflater inflater;
  for (const auto& entry : archive.Entries()) {
    std::stop_source stop;
    std::size_t taken = 0;
    const auto take = [&](std::span<const std::byte> bytes) {
      taken += bytes.size();
      stop.request_stop();
    };
    EXPECT_FALSE(archive.Expand(entry, inflater, take, stop.get_token())) << entry.name;
    EXPECT_LE(taken, 1u << 20) << entry.name;
  }
}

}  // namespace
