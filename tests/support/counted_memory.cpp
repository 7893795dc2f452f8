#include "support/counted_memory.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kRoom = alignof(std::max_align_t);  // before each block, for its size

std::atomic<std::size_t> held = 0, most = 0;

void Raise(std::size_t now) {
  std::size_t known = most;
  while (now > known && !most.compare_exchange_weak(known, now)) {
  }
}

// Null when there is none left.
void* Give(std::size_t size) {
  auto* const block = static_cast<std::byte*>(std::malloc(size + kRoom));
  if (!block) return nullptr;
  *reinterpret_cast<std::size_t*>(block) = size;
  Raise(held += size);
  return block + kRoom;
}

void Take(void* given) noexcept {
  if (!given) return;
  auto* const block = static_cast<std::byte*>(given) - kRoom;
  held -= *reinterpret_cast<std::size_t*>(block);
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
  void* const given = Give(size);
  if (!given) throw std::bad_alloc();
  return given;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Give(size); }
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Give(size); }
void operator delete(void* given) noexcept { Take(given); }
void operator delete(void* given, std::size_t) noexcept { Take(given); }
void operator delete[](void* given) noexcept { Take(given); }
void operator delete[](void* given, std::size_t) noexcept { Take(given); }

namespace support {

CountedMemory::CountedMemory() : before_(held) { most = before_; }

std::size_t CountedMemory::Most() const { return most - before_; }

}  // namespace support
