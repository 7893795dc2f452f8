#pragma once

#include <utility>

namespace base {

// Owns one handle of the system or of a library, as std::unique_ptr owns an object. Traits name its Type, the
// value Invalid() that is no handle, and Close(Type), which is never given that value.
template <class Traits>
class UniqueHandle {
 public:
  using Type = typename Traits::Type;

  UniqueHandle() = default;
  explicit UniqueHandle(Type handle) : handle_(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  ~UniqueHandle() { reset(); }

  Type get() const { return handle_; }
  explicit operator bool() const { return handle_ != Traits::Invalid(); }
  Type release() { return std::exchange(handle_, Traits::Invalid()); }
  void reset(Type handle = Traits::Invalid()) {
    const Type old = std::exchange(handle_, handle);
    if (old != Traits::Invalid()) Traits::Close(old);
  }
  Type* receive() {  // for calls that hand a handle out
    reset();
    return &handle_;
  }

 private:
  Type handle_ = Traits::Invalid();
};

// What the traits of most handles have in common: null is none.
template <class Handle>
struct NullIsNone {
  using Type = Handle;
  static Type Invalid() { return nullptr; }
};

}  // namespace base
