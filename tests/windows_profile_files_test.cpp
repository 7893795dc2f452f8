#include <windows.h>

#include <gtest/gtest.h>

#include <random>

#include "platform/ini_text.hpp"
#include "platform/machine.hpp"
#include "platform/win32/wide.hpp"
#include "support/temp_folder.hpp"

// The launcher's own reading and writing of profile files beside the calls of the system.
namespace platform {
namespace {

class SystemProfileFilesTest : public testing::Test {
 protected:
  // A name of its own for each file, since the system remembers a file for a while.
  std::string Fresh(const std::string& bytes) {
    const std::string name = std::to_string(++count_) + ".ini";
    folder.Put(name, bytes);
    return name;
  }
  std::string FromSystem(const std::string& name) {
    wchar_t value[200];
    GetPrivateProfileStringW(L"INIT", L"Key", L"(none)", value, 200, Wide(folder / name).c_str());
    return Narrow(value);
  }

  // Some lines in any order.
  template <std::size_t N>
  std::string AnyOf(const char* const (&lines)[N]) {
    std::string text;
    for (unsigned i = random_() % 12; i > 0; --i) text += lines[random_() % N];
    return text;
  }

  support::TempFolder folder;
  std::unique_ptr<ProfileFiles> profiles = MakeProfileFiles();

 private:
  std::mt19937 random_{20261121};
  int count_ = 0;
};

TEST_F(SystemProfileFilesTest, TextsAreReadAsTheSystemReadsThem) {
  const char* const lines[] = {
      "[INIT]\r\n", " [init] x\r\n",   "[OTRA]\n",    "[INIT\r\n",    "Key=1\r\n",  "key = a b \n",
      "Key\r\n",    "Key=' q '\n",     "Key=\"x\n",   ";Key=2\r\n",   "\r\n",       "\t\n",
      "=5\r\n",     "Keys=3\r\n",      "[]\n",        "Key==\r\n",    "K\xF1=4\n",  "[x]Key=6\n",
      "Key=]\r\n",  "[INIT]Key=7\r\n", "Key=a;b\r\n", "Key=\xD1\r\n", " Key =\r\n", "Key=\"'a'\"\n"};
  int present = 0;
  for (int i = 0; i < 300; ++i) {
    const std::string text = AnyOf(lines), name = Fresh(text);
    const std::string own = IniValue(text, "INIT", "Key").value_or("(none)");
    present += own != "(none)";
    ASSERT_EQ(Narrow(FromCodePage(CP_ACP, own)), FromSystem(name)) << text;
  }
  EXPECT_GT(present, 30);
}

// Where the system's own writing keeps its hands off the rest: CR LF everywhere and no blank lines.
TEST_F(SystemProfileFilesTest, FilesAreWrittenAsTheSystemWritesThem) {
  const char* const lines[] = {"[INIT]\r\n",   "[init]\r\n",         "[OTRA]\r\n",
                               "KEY=1\r\n",    "A=\"2\"\r\n",        "; Key=3\r\n",
                               "Keys=a=b\r\n", "M\xFAsica=\x80\r\n", "Key=\r\n"};
  const char* const values[] = {"9", "", "a = b", "\" q \"", "ñ"};
  for (int i = 0; i < 150; ++i) {
    const std::string text = AnyOf(lines), own = Fresh(text), system = Fresh(text), value = values[i % 5];
    profiles->WriteVar(folder / own, "INIT", "Key", value);
    WritePrivateProfileStringW(L"INIT", L"Key", Wide(value).c_str(), Wide(folder / system).c_str());
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, Wide(folder / system).c_str());
    ASSERT_EQ(folder.Get(own), folder.Get(system)) << text << value;
    ASSERT_EQ(FromSystem(own), FromSystem(system)) << text << value;
  }
}

TEST_F(SystemProfileFilesTest, AFileInUtf16StaysOne) {
  const auto wide = [](const wchar_t* text) {
    return "\xFF\xFE" + std::string(reinterpret_cast<const char*>(text), wcslen(text) * sizeof(wchar_t));
  };
  const std::string name = Fresh(wide(L"; \x4E2D\r\n\n[INIT]\r\nKey=\x3A9\r\n"));
  const std::string keys[] = {"Key", "New"};
  EXPECT_EQ(profiles->GetVars(folder / name, "INIT", keys), (std::vector<std::string>{"Ω", ""}));
  profiles->WriteVar(folder / name, "INIT", "New", "Ж");
  EXPECT_EQ(folder.Get(name), wide(L"; \x4E2D\r\n\n[INIT]\r\nKey=\x3A9\r\nNew=\x416\r\n"));
  EXPECT_EQ(profiles->GetVar(folder / name, "INIT", "New"), "Ж");
}

}  // namespace
}  // namespace platform
