#include "platform/profile_files.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "support/temp_folder.hpp"

// One table for every platform: what it expects is what the Windows calls do.
namespace platform {
namespace {

class ProfileFilesTest : public testing::Test {
 protected:
  support::TempFolder folder;
  std::unique_ptr<ProfileFiles> profiles = MakeProfileFiles();
};

struct ReadCase {
  const char* what;
  const char* file;
  const char* expected;  // null: not there
};

TEST_F(ProfileFilesTest, ReadsOneKey) {
  const ReadCase cases[] = {
      {"no final line end", "[INIT]\r\nKey=1", "1"},
      {"case of section and key", "[init]\r\nkEY=1\r\n", "1"},
      {"first key wins", "[INIT]\r\nKey=1\r\nKey=2\r\n", "1"},
      {"first section wins", "[INIT]\r\nKey=1\r\n[INIT]\r\nKey=2\r\n", "1"},
      {"ends with its section", "[INIT]\r\nA=1\r\n[X]\r\nKey=1\r\n", nullptr},
      {"blanks around everything", "  [INIT]  \r\n\t Key \t= a b \t\r\n", "a b"},
      {"double quotes", "[INIT]\r\nKey=\" a \"\r\n", " a "},
      {"only one pair of quotes", "[INIT]\r\nKey=\"\"a\"\"\r\n", "\"a\""},
      {"semicolon in the value", "[INIT]\r\nKey=a;b\r\n", "a;b"},
      {"comment line", "[INIT]\r\n;Key=1\r\nKey=2\r\n", "2"},
      {"no equals sign", "[INIT]\r\nKey\r\n", nullptr},
      {"text behind the header", "[INIT] old\r\nKey=1\r\n", "1"},
      {"header that is not closed", "[INIT\r\nKey=1\r\n", nullptr},
      {"accent in code page 1252", "[INIT]\r\nKey=a\xF1o \x80\r\n", "año €"},
      {"no text at all", "\r\n\r\n\t\r\n=\r\n[]\r\n[\r\n", nullptr},
  };
  int number = 0;
  for (const ReadCase& one : cases) {
    // A name of its own for each, since the system may remember a file for a while.
    const std::string name = "read" + std::to_string(++number) + ".ini";
    folder.Put(name, one.file);
    EXPECT_EQ(profiles->GetVar(folder / name, "INIT", "Key"), one.expected ? one.expected : "") << one.what;
    const std::string keys[] = {"none", "Key"};
    const auto found = profiles->Find(folder / name, "INIT", keys);
    EXPECT_EQ(found.at(0), std::nullopt) << one.what;
    EXPECT_EQ(found.at(1), one.expected ? std::optional<std::string>(one.expected) : std::nullopt)
        << one.what;
  }
  EXPECT_EQ(profiles->GetVar(folder / "none.ini", "INIT", "Key"), "");
  const std::string key = "Key";
  EXPECT_EQ(profiles->Find(folder / "none.ini", "INIT", {&key, 1}).at(0), std::nullopt);
}

TEST_F(ProfileFilesTest, LongValuesAreCutToTheBuffer) {
  folder.Put("long.ini",
             "[INIT]\r\nKey=" + std::string(2998, 'a') + "\xF1z\r\nFits=" + std::string(2999, 'b'));
  EXPECT_EQ(profiles->GetVar(folder / "long.ini", "INIT", "Key"), std::string(2998, 'a') + "ñ");
  EXPECT_EQ(profiles->GetVar(folder / "long.ini", "INIT", "Fits"), std::string(2999, 'b'));
  const std::string keys[] = {"Fits", "Key"};
  EXPECT_EQ(profiles->GetVars(folder / "long.ini", "INIT", keys),
            (std::vector<std::string>{std::string(2999, 'b'), std::string(2998, 'a') + "ñ"}));
}

struct WriteCase {
  const char* what;
  const char* before;  // null: no file
  const char* value;
  const char* after;
};

TEST_F(ProfileFilesTest, WritesOneKey) {
  const WriteCase cases[] = {
      {"no file", nullptr, "1", "[INIT]\r\nKey=1\r\n"},
      {"replaced where it stands", "[INIT]\r\nA=1\r\nKey=1\r\nB=2\r\n", "9",
       "[INIT]\r\nA=1\r\nKey=9\r\nB=2\r\n"},
      {"the file's own spelling", "[init]\r\nKEY=1\r\n", "9", "[init]\r\nKEY=9\r\n"},
      {"end of its section", "[INIT]\r\nA=1\r\n[X]\r\nB=2\r\n", "9",
       "[INIT]\r\nA=1\r\nKey=9\r\n[X]\r\nB=2\r\n"},
      {"new section", "[X]\r\nB=2\r\n", "9", "[X]\r\nB=2\r\n[INIT]\r\nKey=9\r\n"},
      {"no final line end", "[INIT]\r\nA=1", "9", "[INIT]\r\nA=1\r\nKey=9\r\n"},
      {"comments stay", "; a\r\n[INIT]\r\n; Key=0\r\nA=1\r\n; b\r\n", "9",
       "; a\r\n[INIT]\r\n; Key=0\r\nA=1\r\n; b\r\nKey=9\r\n"},
      {"foreign bytes stay", "[INIT]\r\nA=\xF1\x81\"x\"\r\nKey=1\r\n", "ñ €",
       "[INIT]\r\nA=\xF1\x81\"x\"\r\nKey=\xF1 \x80\r\n"},
      {"value of nothing", "[INIT]\r\nKey=1\r\n", "", "[INIT]\r\nKey=\r\n"},
      {"quotes are kept", "[INIT]\r\nKey=1\r\n", "\" q \"", "[INIT]\r\nKey=\" q \"\r\n"},
      {"key without a value", "[INIT]\r\nKey\r\nA=1\r\n", "9", "[INIT]\r\nKey=9\r\nA=1\r\n"},
  };
  int number = 0;
  for (const WriteCase& one : cases) {
    const std::string name = "write" + std::to_string(++number) + ".ini";
    if (one.before) folder.Put(name, one.before);
    profiles->WriteVar(folder / name, "INIT", "Key", one.value);
    EXPECT_EQ(folder.Get(name), one.after) << one.what;
  }
}

TEST_F(ProfileFilesTest, WritesManyKeysInOrderAndReadsThemBack) {
  const ProfileFiles::Entry entries[] = {{"B", "1"}, {"A", "dos palabras"}, {"B", "3"}, {"C", "a=b"}};
  profiles->WriteVars(folder / "many.ini", "INIT", entries);
  EXPECT_EQ(folder.Get("many.ini"), "[INIT]\r\nB=3\r\nA=dos palabras\r\nC=a=b\r\n");
  EXPECT_EQ(profiles->GetVar(folder / "many.ini", "INIT", "a"), "dos palabras");
}

TEST_F(ProfileFilesTest, NoByteMovesThatIsNotWritten) {
  folder.Put("own.ini", "\n[INIT]\n  Old = 1 \nA=1\r\n\r\n\t\n[X]\nB = 2\n\n");
  profiles->WriteVar(folder / "own.ini", "INIT", "New", "5");
  profiles->WriteVar(folder / "own.ini", "x", "b", "3");
  EXPECT_EQ(folder.Get("own.ini"), "\n[INIT]\n  Old = 1 \nA=1\r\nNew=5\r\n\r\n\t\n[X]\nB=3\n\n");
  EXPECT_EQ(profiles->GetVar(folder / "own.ini", "INIT", "New"), "5") << "nothing of before is remembered";
}

TEST_F(ProfileFilesTest, AReadOnlyFileStaysAndNothingIsLeftBeside) {
  using std::filesystem::perms;
  folder.Put("a.ini", "[INIT]\r\nKey=1\r\n");
  std::filesystem::permissions(folder / "a.ini",
                               perms::owner_write | perms::group_write | perms::others_write,
                               std::filesystem::perm_options::remove);
  profiles->WriteVar(folder / "a.ini", "INIT", "Key", "2");
  EXPECT_EQ(folder.Get("a.ini"), "[INIT]\r\nKey=1\r\n");
  EXPECT_EQ(ListTree(folder.Path()).size(), 1u);
}

}  // namespace
}  // namespace platform
