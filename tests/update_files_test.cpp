// The formats that a mirror sends: packed files, the index; and the launcher's own small files.
#include <gtest/gtest.h>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "support/archives.hpp"
#include "support/test_services.hpp"
#include "update/counter_store.hpp"
#include "update/digest_record.hpp"
#include "update/modCompression.hpp"
#include "update/packed_file.hpp"
#include "update/patch_installation.hpp"
#include "util/clsFastString.hpp"
#include "util/clsHashing.hpp"

namespace {

using support::MakePacked;

std::string Noise(std::size_t size) {
  std::string bytes(size, '\0');
  std::uint32_t state = 1;
  for (char& c : bytes) c = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  return bytes;
}

// What becomes of an old destination "viejo"; the number of the error raised, 0 for none.
struct Expanded {
  int error;
  std::string content;
};

Expanded Expand(const std::string& packed) {
  const support::TempFolder folder;
  folder.Put("f.kvn", packed);
  folder.Put("f", "viejo");
  int error = 0;
  try {
    update::ExpandPackedFile(folder / "f.kvn", folder / "f", {});
  } catch (const base::RuntimeError& raised) {
    error = raised.Number();
  }
  return {error, folder.Get("f")};
}

TEST(PackedFile, ExpandsAndRefuses) {
  constexpr int kBad = static_cast<int>(base::ErrorNumber::InvalidFileFormat);
  const std::string bytes = Noise(700'000), good = MakePacked(bytes);
  std::string flipped = good;
  flipped[flipped.size() / 2] = static_cast<char>(flipped[flipped.size() / 2] ^ 1);
  std::string badChecksum = good;
  badChecksum.back() = static_cast<char>(badChecksum.back() ^ 1);
  const struct {
    const char* what;
    std::string packed;
    int error;
    std::string content;
  } cases[] = {
      {"whole", good, 0, bytes},
      {"highly packed", MakePacked(std::string(3'000'000, 'a')), 0, std::string(3'000'000, 'a')},
      {"size below the true one", MakePacked(bytes, 1000), 0, bytes.substr(0, 1000)},
      {"size above the true one", MakePacked(bytes, 800'000), 0, bytes},
      {"flipped", flipped, kBad, "viejo"},
      {"checksum", badChecksum, kBad, "viejo"},
      {"cut", good.substr(0, good.size() - 10), kBad, "viejo"},
      {"page", "<!DOCTYPE html>", kBad, "viejo"},
      {"size beyond any ratio", MakePacked("abc", 0x7FFFFFFF), kBad, "viejo"},
      {"size 0", MakePacked("abc", 0), kBad, "viejo"},
      {"negative size", MakePacked("abc", -4), kBad, "viejo"},
      {"three bytes", "abc", kBad, "viejo"},
  };
  for (const auto& entry : cases) {
    const Expanded expanded = Expand(entry.packed);
    EXPECT_EQ(expanded.error, entry.error) << entry.what;
    EXPECT_TRUE(expanded.content == entry.content) << entry.what;
  }
}

TEST(PackedFile, OtherContentThanAskedForReplacesNothing) {
  const support::TempFolder folder;
  folder.Put("a.kvn", MakePacked("nuevo"));
  folder.Put("a", "viejo");
  const std::string source = folder / "a.kvn", target = folder / "a";
  EXPECT_FALSE(update::ExpandPackedFile(source, target, {}, {.md5 = support::Md5Of("otro")}));
  EXPECT_EQ(folder.Get("a"), "viejo");
  EXPECT_FALSE(update::PackedFileHolds(source, support::Md5Of("otro"), {}));
  EXPECT_TRUE(update::PackedFileHolds(source, support::Md5Of("nuevo"), {}));
  EXPECT_TRUE(update::ExpandPackedFile(source, target, {}, {.md5 = support::Md5Of("nuevo")}));
  EXPECT_EQ(folder.Get("a"), "nuevo");
}

TEST(PackedFile, TellsThePlayerWhatFailed) {
  support::TestServices with("game");
  const support::TempFolder& folder = with.folder;
  update::modCompression compression(with.services);
  folder.Put("game/small.kvn", std::string("\0\0\0\0x", 5));
  folder.Put("game/cut.kvn", MakePacked(Noise(5000)).substr(0, 3000));
  const std::string small = folder / "game/small.kvn", cut = folder / "game/cut.kvn",
                    to = folder / "game/sub/to";

  EXPECT_FALSE(compression.Descomprimir(small, to));
  EXPECT_FALSE(compression.Descomprimir(cut, to));
  EXPECT_FALSE(folder.Has("game/sub/to"));
  ASSERT_EQ(with.host.dialogs.shown.size(), 2u);
  EXPECT_EQ(with.host.dialogs.shown[0].text, "Error al descomprimir " + small + ". El archivo pesaba 0 kb.");
  EXPECT_EQ(with.host.dialogs.shown[1].text,
            "Error: Error 321 (Invalid file format) in procedure Decompress_Data of Módulo modCompression");
}

TEST(PatchInstallation, TakesTheSuffixOutEverywhereButNeverClimbs) {
  const std::pair<const char*, const char*> cases[] = {
      {"a.dll.kvn", "a.dll"}, {"x.kvn/y.dll.kvn", "x/y.dll"},
      {"plain", "plain"},     {"...kvn/evil.dll.kvn", ""},  // what remains would be ".."
      {"CON.kvn", ""},        {".kvn", ""},
  };
  for (const auto& [from, to] : cases) EXPECT_EQ(update::InstalledName(from), to) << from;
}

TEST(CounterStore, ReadsOnlyNumbersOfPatches) {
  support::TestServices with("game"), without("none");
  const support::TempFolder& folder = with.folder;
  with.deployment.support = "http://soporte/";
  update::CounterStore counters(with.services);
  EXPECT_EQ(counters.Read("Mapas"), 0);
  const std::pair<const char*, int> cases[] = {{"12\r\n", 12}, {"12", 12}, {"", 0},
                                               {"x", 0},       {"-3", 0},  {"7 \n9", 7}};
  for (const auto& [text, number] : cases) {
    folder.Put("game/RECURSOS/INIT/AUMapas.ini", text);
    EXPECT_EQ(counters.Read("Mapas"), number) << text;
  }
  EXPECT_TRUE(with.host.dialogs.shown.empty());
  folder.Put("game/RECURSOS/INIT/AUMapas.ini", "99999");
  EXPECT_EQ(counters.Read("Mapas"), 0);
  ASSERT_EQ(with.host.dialogs.shown.size(), 1u);
  EXPECT_EQ(
      with.host.dialogs.shown[0].text,
      "Error: Error en la linea N30 del procedimiento 8, descripción: Overflow. reporta esto mediante el "
      "soporte "
      "WEB en http://soporte/");
  EXPECT_TRUE(counters.Write("Mapas", 13));
  EXPECT_EQ(folder.Get("game/RECURSOS/INIT/AUMapas.ini"), "13\r\n");
  EXPECT_FALSE(update::CounterStore(without.services).Write("AU", 1));
}

TEST(DigestRecord, VouchesOnlyForWhatIsUnchanged) {
  const support::TempFolder folder;
  const std::string file = folder / "MD5Update.ini";
  const auto digest = *util::Md5Digest::FromHex("0123456789abcdef0123456789abcdef"),
             other = util::Md5Digest{};
  const platform::FileStamp stamp{10, 20};
  const auto noError = [](const std::string& text) { ADD_FAILURE() << text; };
  update::DigestRecord record(file, "uno");
  record.Remember("Sub/ñandú x.dat", stamp, digest);
  record.Remember("b", {1, 2}, other);
  record.Remember("b", {1, 2}, digest);  // an index may name a file twice
  record.Save(noError);
  const std::string saved = folder.Get("MD5Update.ini");

  record.Load();
  EXPECT_EQ(record.Find("Sub/ñandú x.dat", stamp), digest);
  EXPECT_EQ(record.Find("Sub/ñandú x.dat", {10, 21}), std::nullopt);
  EXPECT_EQ(record.Find("Sub/ñandú x.dat", {11, 20}), std::nullopt);
  EXPECT_EQ(record.Find("c", stamp), std::nullopt);
  EXPECT_EQ(record.Find("b", {1, 2}), digest);

  record.Remember("a", stamp, other);
  record.Remember("b", {1, 3}, other);
  record.Forget("Sub/ñandú x.dat");
  record.Save(noError);
  record.Load();
  EXPECT_EQ(record.Find("a", stamp), other);
  EXPECT_EQ(record.Find("b", {1, 3}), other);
  EXPECT_EQ(record.Find("Sub/ñandú x.dat", stamp), std::nullopt);
  record.Remember("Sub/ñandú x.dat", stamp, digest);
  record.Save(noError);
  record.Load();
  EXPECT_EQ(record.Find("Sub/ñandú x.dat", stamp), digest);

  for (const std::string& torn : {std::string(" \r\n"), std::string(), saved.substr(0, saved.size() - 5),
                                  saved.substr(0, saved.size() / 2), saved + "x", "[INIT]\r\n" + saved,
                                  saved.substr(0, 70) + '\0' + saved.substr(71)}) {
    folder.Put("MD5Update.ini", torn);
    record.Load();
    EXPECT_EQ(record.Find("b", {1, 2}), std::nullopt) << torn;
  }
}

TEST(DigestRecord, CountsOnlyUnderItsOwnSeal) {
  const support::TempFolder folder;
  const std::string file = folder / "MD5Update.ini";
  const auto noError = [](const std::string& text) { ADD_FAILURE() << text; };
  update::DigestRecord record(file, "uno");
  record.Remember("a", {1, 2}, util::Md5Digest{});
  record.Save(noError);
  for (const char* seal : {"uno", "otro", "un", "uno; ", ""}) {
    update::DigestRecord read(file, seal);
    read.Load();
    EXPECT_EQ(read.Empty(), std::string_view(seal) != "uno") << seal;
  }
  update::DigestRecord unsealed(folder / "sin sello.ini");
  unsealed.Remember("a", {1, 2}, util::Md5Digest{});
  unsealed.Save(noError);
  EXPECT_FALSE(folder.Has("sin sello.ini"));
}

TEST(Digests, AreTheStandardOnes) {
  const util::clsHashing hashing;
  const support::TempFolder folder;
  folder.Put("ñ.bin", std::string(1'000'000, 'a'));
  EXPECT_EQ(hashing.MD5String(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(hashing.MD5String("ñ"), "edb907361219fb8d50279eabab0b83b1");  // of the one narrow byte F1
  EXPECT_EQ(hashing.MD5File(folder / "ñ.bin"), "7707d6ae4e027c70eea2a935c2296f21");
  EXPECT_EQ(hashing.SHA1(""), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
  EXPECT_EQ(hashing.SHA1("abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_THROW(hashing.MD5File(folder / "none"), base::RuntimeError);
}

TEST(FastString, GrowsBySteps) {
  util::clsFastString text([](const std::string&) {});
  text.Append("");
  EXPECT_EQ(text.Capacity(), 0);
  text.Append("abc");
  EXPECT_EQ(text.Capacity(), 50'003);
  text.Append(std::string(50'000, 'x'));  // fills the buffer exactly
  EXPECT_EQ(text.Capacity(), 50'003);
  text.Append("y");
  EXPECT_EQ(text.Capacity(), 100'004);
  EXPECT_EQ(text.Value(), "abc" + std::string(50'000, 'x') + "y");
  text.Clear();
  EXPECT_EQ(text.Value(), "");
  EXPECT_EQ(text.Capacity(), 100'004);
}

}  // namespace
