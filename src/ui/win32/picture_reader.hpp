#pragma once

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <tuple>

#include "ui/win32/gdi.hpp"

namespace ui::win32 {

// A file (full path) and the size in pixels that its picture is wanted in.
using PictureKey = std::tuple<std::string, int, int>;

// Reads pictures ahead, on a thread of its own and in the order in which they were asked for.
class PictureReader {
 public:
  PictureReader() = default;
  ~PictureReader();
  PictureReader(const PictureReader&) = delete;

  // Brings in what reads pictures and waits for the first of them. The caller's thread has COM, so that it
  // stays. What makes windows when it is loaded must not come this way: two threads of which each loads
  // something and makes windows can wait for each other for ever.
  void Expect();
  void Begin(const PictureKey& picture);
  // The picture, empty when it cannot be read. One whose turn has not come is read on this thread, and while
  // one that is being read is not ready, so are those that wait.
  UniqueBitmap Take(const PictureKey& picture);
  void DropAll();

 private:
  void Start();
  void ReadAll();
  UniqueBitmap ReadFirst(std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;
  std::condition_variable ready_;
  std::deque<PictureKey> waiting_;
  std::optional<PictureKey> reading_;
  std::map<PictureKey, UniqueBitmap> read_;
  bool expecting_ = false;  // the first picture
  bool atWork_ = false;
  std::jthread thread_;  // only while there is something to read
};

}  // namespace ui::win32
