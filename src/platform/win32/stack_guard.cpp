#include <windows.h>

#include <cstdint>

// What -fstack-protector calls. The toolchain's own library of this would open the system's cryptography at
// every start, before the program can say where libraries come from.
extern "C" {

extern std::uintptr_t __stack_chk_guard;
[[noreturn]] void __stack_chk_fail();

// Its lowest byte is zero, so that no text that runs over can contain it.
std::uintptr_t __stack_chk_guard = 0x2B992DDF;
}

namespace {

// From what no other process can foresee: moments, and where this one was put.
__attribute__((constructor, optimize("no-stack-protector"))) void ChooseGuard() {
  LARGE_INTEGER counter{};
  QueryPerformanceCounter(&counter);
  FILETIME time{};
  GetSystemTimeAsFileTime(&time);
  std::uint64_t mixed = static_cast<std::uint64_t>(counter.QuadPart) ^
                        (std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
  const std::uint64_t others[] = {GetCurrentProcessId(), GetCurrentThreadId(), GetTickCount64(),
                                  reinterpret_cast<std::uintptr_t>(&counter),
                                  reinterpret_cast<std::uintptr_t>(GetModuleHandleW(nullptr))};
  for (const std::uint64_t other : others) {
    mixed = (mixed ^ other) * 0x9E3779B97F4A7C15;  // the golden ratio: every bit reaches the upper ones
    mixed ^= mixed >> 29;
  }
  __stack_chk_guard = static_cast<std::uintptr_t>(mixed) & ~std::uintptr_t{0xFF};
}

}  // namespace

// Straight to the handler of crashes: the stack is not to be trusted with the search for another one.
void __stack_chk_fail() {
  OutputDebugStringA("*** stack smashing detected ***");
  CONTEXT context{};
  RtlCaptureContext(&context);
  EXCEPTION_RECORD record{};
  record.ExceptionCode = STATUS_STACK_BUFFER_OVERRUN;
  record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
  record.ExceptionAddress = __builtin_return_address(0);
  EXCEPTION_POINTERS pointers{&record, &context};
  UnhandledExceptionFilter(&pointers);
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_STACK_BUFFER_OVERRUN));
  __builtin_unreachable();
}
