#include "base/relative_name.hpp"

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(RelativeName, TellsGoodNamesFromEvilOnes) {
  const char* good[] = {"a.txt",         "Bin\\KVN-DX8.exe", "Bin/Sub/x.dll", "\\a",
                        "//a\\\\b",      "Mapas/1.map",      "año/ñandú.dat", "COM.txt",
                        "COM10.dat",     "console.txt",      "nulls",         "lpt",
                        "a..b",          ".hidden",          "a b/c d.bmp",   "trailing/",
                        "auxiliary.cfg", "PROGRA~1.EXE",     "a;b&c%d'e!.x",  "com0x.txt"};
  for (const char* name : good) EXPECT_EQ(WhyUnsafe(name), "") << name;

  const char* evil[] = {"",         "/",        "\\\\",         "..",          "../a",          "a/../../b",
                        "a\\..\\b", "...",      "a/./b",        ".",           "C:\\a",         "a:b",
                        "a::$DATA", "CON",      "con.txt",      "Bin/nul",     "x/AUX.c",       "prn .txt",
                        "COM1",     "com9.dat", "LPT0",         "COM\xC2\xB9", "lpt\xC2\xB3.x", "CONIN$",
                        "clock$.x", "a ",       " a",           "a/ b",        "a./b",          "a.",
                        "a\tb",     "a\nb",     "a<b",          "a>b",         "a\"b",          "a|b",
                        "a?b",      "a*b",      "\\\\?\\C:\\x", "NUL.tar.gz",  ".. /x"};
  for (const char* name : evil) EXPECT_NE(WhyUnsafe(name), "") << name;

  for (const char control : {'\0', '\x7F'}) EXPECT_NE(WhyUnsafe(std::string("a") + control + "b"), "");
  EXPECT_EQ(WhyUnsafe(std::string(240, 'a')), "");
  EXPECT_NE(WhyUnsafe(std::string(241, 'a')), "");
}

TEST(RelativeName, SeparatorsBecomeSingleSlashes) {
  EXPECT_EQ(WithSlashes("\\a\\\\b/c/"), "a/b/c");
  EXPECT_EQ(WithSlashes("plain"), "plain");
  EXPECT_EQ(WithSlashes("//"), "");
}

}  // namespace
}  // namespace base
