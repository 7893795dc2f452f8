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
  // The picture, empty when it cannot be read: waits for one that is being read, and reads one whose turn has
  // not come on this thread.
  UniqueBitmap Take(const PictureKey& picture);
  void DropAll();

 private:
  void ReadAll();

  std::mutex mutex_;
  std::condition_variable ready_;
  std::deque<PictureKey> waiting_;
  std::optional<PictureKey> reading_;
  std::map<PictureKey, UniqueBitmap> read_;
  bool atWork_ = false;
  std::jthread thread_;  // only while there is something to read
};

}  // namespace ui::win32
