#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <thread>

#include "platform/win32/handles.hpp"
#include "platform/win32/winhttp_session.hpp"
#include "support/body_sink.hpp"
#include "support/faulty_server.hpp"

namespace platform {
namespace {

constexpr wchar_t kConnections[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Connections";
constexpr wchar_t kSettings[] = L"DefaultConnectionSettings";

// The player's proxy settings, as the system's own window writes them; Wine's prefix is thrown away, so they
// are simply removed again.
class ProxySettings {
 public:
  struct Values {
    std::string proxy, exceptions, script;
  };

  explicit ProxySettings(const Values& values) {
    constexpr DWORD kVersion = 70, kDirect = 1, kProxy = 2, kScript = 4;
    const DWORD kinds = kDirect | (values.proxy.empty() ? 0 : kProxy) | (values.script.empty() ? 0 : kScript);
    for (const DWORD number : {kVersion, DWORD{1}, kinds}) Add(number);
    for (const std::string& text : {values.proxy, values.exceptions, values.script}) {
      Add(static_cast<DWORD>(text.size()));
      bytes_ += text;
    }
    RegCreateKeyExW(HKEY_CURRENT_USER, kConnections, 0, nullptr, 0, KEY_SET_VALUE, nullptr, key_.receive(),
                    nullptr);
    RegSetValueExW(key_.get(), kSettings, 0, REG_BINARY, reinterpret_cast<const BYTE*>(bytes_.data()),
                   static_cast<DWORD>(bytes_.size()));
  }
  ~ProxySettings() { RegDeleteValueW(key_.get(), kSettings); }
  ProxySettings(const ProxySettings&) = delete;

 private:
  void Add(DWORD number) { bytes_.append(reinterpret_cast<const char*>(&number), sizeof number); }

  std::string bytes_;
  unique_registry_key key_;
};

// The client as it is on a system whose WinHTTP does not know the player's proxy.
struct WindowsProxyTest : testing::Test {
  void SetUp() override {
    if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) {
      GTEST_SKIP() << "would change the settings of a real user";
    }
    mirror.On("/file", support::Text("directly"));
    proxy.Otherwise([this](const support::SeenRequest& request) {
      return request.target == mirror.Url("/file") ? support::Text("through") : support::Page(404, "");
    });
  }
  std::string Host() const { return proxy.Url("").substr(std::string("http://").size()); }
  HttpOutcome Get(std::stop_token stop = {}) {
    sink.body.clear();
    return MakeHttpClient(WinHttpAge::BeforeWindows81)->Get({.url = mirror.Url("/file")}, sink, stop);
  }

  support::FaultyServer mirror{"127.0.0.9"}, proxy{"127.0.0.5"};
  support::BodySink sink;
};

TEST_F(WindowsProxyTest, TheProxyOfThePlayersSettingsIsUsedApartFromItsExceptions) {
  const struct {
    ProxySettings::Values values;
    const char* body;
  } cases[] = {
      {{"", "", ""}, "directly"},
      {{Host(), "", ""}, "through"},
      {{"ftp=127.0.0.1:1;http=" + Host(), "", ""}, "through"},
      {{Host(), "127.0.0.9", ""}, "directly"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.values.proxy + " but " + test.values.exceptions);
    const ProxySettings settings(test.values);
    EXPECT_TRUE(Get().Complete());
    EXPECT_EQ(sink.body, test.body);
  }
}

TEST_F(WindowsProxyTest, AScriptNamesTheProxy) {
  const support::Headers type = {{"Content-Type", "application/x-ns-proxy-autoconfig"}};
  const auto script = [&](const std::string& body) {
    return support::Text("function FindProxyForURL(url, host) { return " + body + "; }", type);
  };
  const struct {
    const char* path;  // each its own, since the system remembers a script
    support::Answer script;
    const char* body;
  } cases[] = {
      {"/a.pac", script("host == \"127.0.0.9\" ? \"PROXY " + Host() + "\" : \"DIRECT\""), "through"},
      {"/b.pac", script("\"DIRECT\""), "directly"},
      {"/c.pac", support::Page(404, "<p>no script"), "directly"},  // the game is to be had all the same
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.path);
    const ProxySettings settings({"", "", proxy.Url(test.path)});
    proxy.On(test.path, test.script);
    EXPECT_TRUE(Get().Complete());
    EXPECT_EQ(sink.body, test.body);
  }
}

TEST_F(WindowsProxyTest, AScriptThatDoesNotComeIsNotWaitedForWhenThePlayerLeaves) {
  const ProxySettings settings({"", "", proxy.Url("/proxy.pac")});
  proxy.On("/proxy.pac", support::Silent());
  std::stop_source stop;
  const std::jthread player([&] {
    while (proxy.Count("/proxy.pac") == 0) Sleep(1);
    stop.request_stop();
  });
  EXPECT_EQ(Get(stop.get_token()).error, HttpError::Cancelled);
}

TEST_F(WindowsProxyTest, AProxyThatWantsANameIsTold) {
  const ProxySettings settings({Host(), "", ""});
  for (const char* scheme : {"Basic realm=\"x\"", "NTLM", "Negotiate", "Strange"}) {
    proxy.Forget();
    proxy.Otherwise([scheme](const support::SeenRequest&) {
      return support::Answer{
          .status = 407, .headers = {{"Proxy-Authenticate", scheme}}, .body = "<p>who are you?"};
    });
    const HttpOutcome outcome = Get();
    EXPECT_EQ(static_cast<int>(outcome.error), static_cast<int>(HttpError::CannotConnect)) << scheme;
    EXPECT_EQ(outcome.status, 407) << scheme;
    EXPECT_NE(outcome.systemError, 0u) << scheme;
    EXPECT_EQ(sink.body, "") << scheme;
    EXPECT_LE(proxy.Seen().size(), 5u) << scheme << ": it is not asked for ever";
  }
}

}  // namespace
}  // namespace platform
