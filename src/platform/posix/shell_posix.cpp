#include "base/url.hpp"
#include "platform/machine.hpp"

namespace platform {
namespace {

// Tells what would be opened; whoever drives the Linux build decides what to do about it.
class PosixShell : public Shell {
 public:
  explicit PosixShell(TellOutside tell) : tell_(std::move(tell)) {}

  bool OpenPage(const std::string& url, const std::string&) override {
    if (base::ResolvedUrl(url).empty()) return false;
    tell_("Open " + url);
    return true;
  }

  bool OpenFile(const std::string& file, const std::string&) override {
    tell_("Open " + file);
    return true;
  }

 private:
  TellOutside tell_;
};

}  // namespace

std::unique_ptr<Shell> MakeShell(TellOutside tell) { return std::make_unique<PosixShell>(std::move(tell)); }

}  // namespace platform
