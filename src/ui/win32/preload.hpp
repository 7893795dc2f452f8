#pragma once

#include <thread>

namespace ui::win32 {

// Brings in the library that reads the first window's pictures, on another thread while this one is on its
// way there. It stays. Nothing whose beginning makes windows may come this way: two threads that load and
// make windows can wait for each other for ever.
class Preload {
 public:
  Preload();

 private:
  std::jthread thread_;
};

}  // namespace ui::win32
