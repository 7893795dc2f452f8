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

  void Begin(const PictureKey& picture);
  // The picture, empty when it cannot be read. One whose turn has not come is read on this thread, and while
  // one that is being read is not ready, so are those that wait.
  UniqueBitmap Take(const PictureKey& picture);
  void DropAll();

 private:
  void ReadAll();
  UniqueBitmap ReadFirst(std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;
  std::condition_variable ready_;
  std::deque<PictureKey> waiting_;
  std::optional<PictureKey> reading_;
  std::map<PictureKey, UniqueBitmap> read_;
  bool atWork_ = false;
  std::jthread thread_;  // only while there is something to read
};

}  // namespace ui::win32
