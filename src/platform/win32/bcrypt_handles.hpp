#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <bcrypt.h>

#include "base/unique_handle.hpp"

namespace platform::handle_traits {

struct Algorithm : base::NullIsNone<BCRYPT_ALG_HANDLE> {
  static void Close(Type handle) { BCryptCloseAlgorithmProvider(handle, 0); }
};

struct Hash : base::NullIsNone<BCRYPT_HASH_HANDLE> {
  static void Close(Type handle) { BCryptDestroyHash(handle); }
};

struct Key : base::NullIsNone<BCRYPT_KEY_HANDLE> {
  static void Close(Type handle) { BCryptDestroyKey(handle); }
};

}  // namespace platform::handle_traits
