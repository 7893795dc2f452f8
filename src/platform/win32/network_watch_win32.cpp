#include <winsock2.h>
// after winsock2.h, which they build on
#include <iphlpapi.h>
#include <windows.h>

#include <thread>

#include "platform/network_watch.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/system_library.hpp"

namespace platform {
namespace {

constexpr DWORD kPatienceMs = 1'000;  // for the system to take back its notice

}  // namespace

struct NetworkWatch::Watcher {
  explicit Watcher(std::function<void()> tell)
      : changed(std::move(tell)),
        notice(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
        end(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    if (notice && end) thread = std::jthread([this] { Watch(); });
  }
  ~Watcher() {
    if (end) SetEvent(end.get());
  }

  // Its library comes on this thread, since the first window waits for what the other one loads.
  void Watch() {
    const unique_library library = LoadSystemLibrary(L"iphlpapi.dll");
    auto* const notify = FunctionOf<decltype(NotifyAddrChange)>(library.get(), "NotifyAddrChange");
    auto* const cancel = FunctionOf<decltype(CancelIPChangeNotify)>(library.get(), "CancelIPChangeNotify");
    if (!notify || !cancel) return;
    overlapped.hEvent = notice.get();
    const HANDLE events[] = {end.get(), notice.get()};
    for (;;) {
      HANDLE systems = nullptr;  // not ours to close
      if (notify(&systems, &overlapped) != ERROR_IO_PENDING) return;
      if (WaitForMultipleObjects(2, events, FALSE, INFINITE) != WAIT_OBJECT_0 + 1) break;
      changed();
    }
    if (cancel(&overlapped)) WaitForSingleObject(notice.get(), kPatienceMs);
  }

  std::function<void()> changed;
  unique_event notice, end;
  OVERLAPPED overlapped{};
  std::jthread thread;  // the first to go
};

NetworkWatch::NetworkWatch(std::function<void()> changed)
    : watcher_(std::make_unique<Watcher>(std::move(changed))) {}
NetworkWatch::~NetworkWatch() = default;

}  // namespace platform
