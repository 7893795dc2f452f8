#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <bcrypt.h>

#include "platform/win32/handles.hpp"

namespace platform::handle_traits {

struct Algorithm {
  using Type = BCRYPT_ALG_HANDLE;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { BCryptCloseAlgorithmProvider(handle, 0); }
};

struct Hash {
  using Type = BCRYPT_HASH_HANDLE;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { BCryptDestroyHash(handle); }
};

struct Key {
  using Type = BCRYPT_KEY_HANDLE;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { BCryptDestroyKey(handle); }
};

}  // namespace platform::handle_traits
