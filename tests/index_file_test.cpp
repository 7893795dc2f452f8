#include "update/index_file.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/runtime_error.hpp"
#include "support/archives.hpp"
#include "support/counted_memory.hpp"
#include "support/temp_folder.hpp"

namespace {

using support::IndexItem;
using support::MakeIndex;

const std::string kDigest = "0123456789ABCDEF0123456789abcdef";

TEST(IndexFile, ReadsRecordsAndJudgesTheirNames) {
  const support::TempFolder folder;
  const std::vector<IndexItem> refused = {{kDigest, "\\Bin\\..\\launcher.exe"},
                                          {kDigest, "\\RECURSOS\\x"},
                                          {kDigest, "Bin\\x"},
                                          {kDigest, "\\Bin\\NUL.txt"},
                                          {kDigest, "\\Bin\\a:stream"},
                                          {kDigest, "\\Bin\\x. "},
                                          {kDigest, "\\Bin\\"},
                                          {kDigest, "\\Binario"},
                                          {kDigest, ""}};
  std::vector<IndexItem> items = {{kDigest, "\\Bin\\a.dll"},
                                  {std::string(32, 'z'), "\\bin\\Sub\\\xF1.d\r\nat"},
                                  {"NOT FOUND" + std::string(23, ' '), "\\Bin\\b"}};
  items.insert(items.end(), refused.begin(), refused.end());
  folder.Put("i", MakeIndex(items));
  update::IndexFile index;
  index.Read(folder / "i");
  ASSERT_EQ(index.Count(), items.size());
  EXPECT_TRUE(index.ReadWholly());
  EXPECT_EQ(index[0].inBin, "a.dll");
  EXPECT_EQ(index[0].Path(), "\\Bin\\a.dll");
  EXPECT_EQ(index[0].digest.Hex(), "0123456789abcdef0123456789abcdef");
  EXPECT_EQ(index[1].inBin, "Sub/ñ.dat");
  EXPECT_EQ(index[1].Path(), "\\Bin\\Sub\\ñ.dat");
  EXPECT_TRUE(index[1].hasDigest);
  EXPECT_EQ(index[1].digest, util::Md5Digest{});
  EXPECT_FALSE(index[2].hasDigest);
  EXPECT_EQ(index.RefusedCount(), refused.size());
  ASSERT_EQ(index.Refusals().size(), refused.size());
  for (std::size_t i = 0; i < refused.size(); ++i) {
    EXPECT_EQ(index[3 + i].inBin, "") << refused[i].path;
    EXPECT_EQ(index.Refusals()[i].record, 3 + i);
    EXPECT_EQ(index.Refusals()[i].path, refused[i].path);
    EXPECT_NE(index.Refusals()[i].why, "") << refused[i].path;
  }
}

TEST(IndexFile, RaisesWhenItIsCutOrLies) {
  const support::TempFolder folder;
  const std::string good =
      MakeIndex({{std::string(32, 'a'), "\\Bin\\a"}, {std::string(32, 'b'), "\\Bin\\b"}});
  const struct {
    const char* what;
    std::string bytes;
    std::size_t read;
  } cases[] = {
      {"empty", "", 0},
      {"cut in a record", good.substr(0, good.size() - 1), 1},
      {"count too large", MakeIndex({{std::string(32, 'a'), "\\Bin\\a"}}, 0x7FFFFFFF), 0},
      {"negative count", MakeIndex({{std::string(32, 'a'), "\\Bin\\a"}}, 0xFFFFFFFF), 0},
      {"page", "<!DOCTYPE html><html><body>no hay nada que ver por este lado</body></html>", 0},
  };
  for (const auto& entry : cases) {
    folder.Put("i", entry.bytes);
    update::IndexFile index;
    EXPECT_THROW(index.Read(folder / "i"), base::RuntimeError) << entry.what;
    EXPECT_EQ(index.Count(), entry.read) << entry.what;
    EXPECT_FALSE(index.ReadWholly());
  }
}

std::string Repeated(std::size_t times, const std::string& path) {
  return MakeIndex(std::vector<IndexItem>(times, {kDigest, path}));
}

// What an index makes the launcher hold is bounded by the bytes that the mirror has to send expanded,
// whatever they say.
TEST(IndexFile, NoIndexTakesMemoryOutOfProportion) {
  constexpr std::size_t kFixed = 400 * 1024;  // buffers, the refusals that are kept
  const std::string longest(65'535, '\x80'), common = "\\Bin\\Graficos\\fondo de la ciudad 12.png";
  const struct {
    const char* what;
    std::string bytes;
    std::size_t records, refused;
    double share;  // of the size of the index
  } cases[] = {
      {"common", Repeated(20'000, common), 20'000, 0, 0.9},
      {"no path at all", Repeated(30'000, ""), 30'000, 30'000, 0.75},
      {"each record refused", Repeated(30'000, "\\Bin\\NUL"), 30'000, 30'000, 0.6},
      {"the longest paths", Repeated(100, longest), 100, 100, 1.5},
      {"characters that grow", Repeated(20'000, "\\Bin\\" + std::string(78, '\x80')), 20'000, 0, 5},
  };
  const support::TempFolder folder;
  for (const auto& entry : cases) {
    folder.Put("i", entry.bytes);
    update::IndexFile index;
    const support::CountedMemory memory;
    try {
      index.Read(folder / "i");
    } catch (const base::RuntimeError&) {
      EXPECT_EQ(entry.records, 0u) << entry.what;
    }
    EXPECT_LE(memory.Most(), entry.share * static_cast<double>(entry.bytes.size()) + kFixed) << entry.what;
    EXPECT_EQ(index.Count(), entry.records) << entry.what;
    EXPECT_EQ(index.RefusedCount(), entry.refused) << entry.what;
    EXPECT_LE(index.Refusals().size(), update::IndexFile::kKeptRefusals) << entry.what;
  }
}

TEST(IndexFile, MoreRecordsThanAGameHasAreNotRead) {
  const support::TempFolder folder;
  constexpr std::uint32_t kCount = update::IndexFile::kMostRecords + 1;
  folder.Put("i", MakeIndex({}, kCount));
  std::filesystem::resize_file(folder / "i", 4 + std::uintmax_t{34} * kCount);
  update::IndexFile index;
  const support::CountedMemory memory;
  EXPECT_THROW(index.Read(folder / "i"), base::RuntimeError);
  EXPECT_EQ(index.Count(), 0u);
  EXPECT_LE(memory.Most(), 64u * 1024);
}

TEST(IndexFile, WhatLiesBehindTheRecordsTakesNoMemory) {
  const support::TempFolder folder;
  folder.Put("i", MakeIndex({{std::string(32, 'a'), "\\Bin\\a"}}));
  std::filesystem::resize_file(folder / "i", 256u << 20);
  update::IndexFile index;
  const support::CountedMemory memory;
  index.Read(folder / "i");
  EXPECT_EQ(index.Count(), 1u);
  EXPECT_LE(memory.Most(), 128u * 1024);
}

}  // namespace
