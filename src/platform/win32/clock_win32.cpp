#include <windows.h>
// after windows.h, which it builds on
#include <timeapi.h>

#include <ctime>

#include "platform/machine.hpp"
#include "platform/win32/awake_time.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

class SystemClock : public Clock {
 public:
  std::uint64_t Milliseconds() override { return AwakeMs(); }
  std::uint32_t SystemUptime() override { return timeGetTime() & kUptimeMask; }
  void Sleep(std::uint32_t milliseconds) override { ::Sleep(milliseconds); }

  std::int64_t UnixTime() override { return time(nullptr); }
  std::string DateText() override {
    return Formatted([](wchar_t* text, int size) {
      return GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, DATE_SHORTDATE, nullptr, nullptr, text, size, nullptr);
    });
  }
  std::string TimeText() override {
    return Formatted([](wchar_t* text, int size) {
      return GetTimeFormatEx(LOCALE_NAME_USER_DEFAULT, 0, nullptr, nullptr, text, size);
    });
  }

 private:
  template <class Format>
  static std::string Formatted(Format format) {
    wchar_t text[128];
    const int size = format(text, static_cast<int>(std::size(text)));
    return size > 0 ? Narrow({text, static_cast<std::size_t>(size - 1)}) : std::string{};
  }
};

}  // namespace

std::unique_ptr<Clock> MakeClock() { return std::make_unique<SystemClock>(); }

}  // namespace platform
