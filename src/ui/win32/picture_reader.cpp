#include "ui/win32/picture_reader.hpp"

#include <algorithm>
#include <utility>

#include "platform/win32/com_apartment.hpp"
#include "ui/win32/picture_file.hpp"

namespace ui::win32 {
namespace {

UniqueBitmap Read(const PictureKey& picture) {
  const auto& [path, width, height] = picture;
  return ReadPicture(path, width, height);
}

// The first picture would look for what can read it, in libraries that cannot be loaded while the other
// thread loads its own for the window. What was found once stays known.
void LookForDecoders() {
  const auto factory = MakeImagingFactory();
  if (!factory) return;
  Made<IEnumUnknown>([&](auto** made) {
    return factory->CreateComponentEnumerator(WICDecoder, WICComponentEnumerateDefault, made);
  });
}

}  // namespace

PictureReader::~PictureReader() {
  DropAll();
  const std::lock_guard lock(mutex_);
  expecting_ = false;
  ready_.notify_all();
}

void PictureReader::Expect() {
  const std::lock_guard lock(mutex_);
  expecting_ = true;
  Start();
}

void PictureReader::Start() {
  if (!std::exchange(atWork_, true)) thread_ = std::jthread([this] { ReadAll(); });
}

void PictureReader::Begin(const PictureKey& picture) {
  const std::lock_guard lock(mutex_);
  const bool begun = reading_ == picture || read_.contains(picture) ||
                     std::find(waiting_.begin(), waiting_.end(), picture) != waiting_.end();
  if (begun) return;
  waiting_.push_back(picture);
  expecting_ = false;
  ready_.notify_all();
  Start();
}

void PictureReader::ReadAll() {
  const platform::ComApartment com(COINIT_MULTITHREADED);
  LookForDecoders();
  std::unique_lock lock(mutex_);
  ready_.wait(lock, [this] { return !expecting_; });
  while (!waiting_.empty()) {
    reading_ = waiting_.front();
    UniqueBitmap bitmap = ReadFirst(lock);
    // Nobody wants it any more when all were dropped meanwhile.
    if (reading_) read_[*reading_] = std::move(bitmap);
    reading_.reset();
    ready_.notify_all();
  }
  atWork_ = false;
}

// Of those that wait; the lock is open meanwhile.
UniqueBitmap PictureReader::ReadFirst(std::unique_lock<std::mutex>& lock) {
  const PictureKey picture = std::move(waiting_.front());
  waiting_.pop_front();
  lock.unlock();
  UniqueBitmap bitmap = Read(picture);
  lock.lock();
  return bitmap;
}

UniqueBitmap PictureReader::Take(const PictureKey& picture) {
  {
    std::unique_lock lock(mutex_);
    std::erase(waiting_, picture);
    while (reading_ == picture && !waiting_.empty()) {
      const PictureKey other = waiting_.front();
      read_[other] = ReadFirst(lock);
    }
    ready_.wait(lock, [&] { return reading_ != picture; });
    if (auto found = read_.extract(picture)) return std::move(found.mapped());
  }
  return Read(picture);
}

void PictureReader::DropAll() {
  const std::lock_guard lock(mutex_);
  waiting_.clear();
  reading_.reset();
  read_.clear();
}

}  // namespace ui::win32
