#include <langinfo.h>
#include <locale.h>
#include <time.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "base/unique_handle.hpp"
#include "platform/machine.hpp"

namespace platform {
namespace {

struct LocaleTraits : base::NullIsNone<locale_t> {
  static void Close(locale_t locale) { freelocale(locale); }
};

class PosixClock : public Clock {
 public:
  // The environment's regional format. Where it sets none, the date is written as the game's players read it.
  PosixClock() : locale_(newlocale(LC_ALL_MASK, "", nullptr)) {
    if (!locale_) locale_.reset(newlocale(LC_ALL_MASK, "C", nullptr));
    const bool unset = std::string_view(nl_langinfo_l(D_FMT, locale_.get())) == "%m/%d/%y";
    dateFormat_ = unset ? "%d/%m/%Y" : "%x";
  }

  std::uint64_t Milliseconds() override {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
           static_cast<std::uint64_t>(now.tv_nsec) / 1'000'000;
  }

  // CLOCK_MONOTONIC counts from the machine's start.
  std::uint32_t SystemUptime() override { return static_cast<std::uint32_t>(Milliseconds()) & kUptimeMask; }

  void Sleep(std::uint32_t milliseconds) override {
    timespec rest{static_cast<time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
  }

  std::int64_t UnixTime() override { return time(nullptr); }
  std::string DateText() override { return Formatted(dateFormat_); }
  std::string TimeText() override { return Formatted("%X"); }

 private:
  std::string Formatted(const char* format) const {
    const time_t now = time(nullptr);
    tm local{};
    localtime_r(&now, &local);
    std::array<char, 128> text;
    return std::string(text.data(), strftime_l(text.data(), text.size(), format, &local, locale_.get()));
  }

  base::UniqueHandle<LocaleTraits> locale_;
  const char* dateFormat_;
};

}  // namespace

std::unique_ptr<Clock> MakeClock() { return std::make_unique<PosixClock>(); }

}  // namespace platform
