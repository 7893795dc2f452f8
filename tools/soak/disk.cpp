#include "soak/disk.hpp"

#include <sys/mount.h>
#include <sys/statvfs.h>

#include <stdexcept>

#include "platform/files.hpp"

namespace soak {
namespace {

constexpr const char* kAnySize = "size=1g";
constexpr int kAttempts = 1000;

bool Mount(const std::string& folder, const std::string& size, unsigned long flags) {
  return mount("soak", folder.c_str(), "tmpfs", flags, size.c_str()) == 0;
}

}  // namespace

Disk::Disk(std::string folder)
    : folder_((platform::MakeFolders(folder), std::move(folder))), mounted_(Mount(folder_, kAnySize, 0)) {}

Disk::~Disk() {
  if (mounted_) umount2(folder_.c_str(), MNT_DETACH);
}

// What is written meanwhile may make the new size too small.
void Disk::LeaveFree(std::uint64_t bytes) {
  largestFile_ = bytes;
  for (int attempt = 0; mounted_ && attempt < kAttempts; ++attempt) {
    struct statvfs now;
    if (statvfs(folder_.c_str(), &now) != 0) break;
    const std::uint64_t used = (now.f_blocks - now.f_bfree) * now.f_frsize;
    if (Mount(folder_, "size=" + std::to_string(used + bytes), MS_REMOUNT)) return;
  }
  if (mounted_) throw std::runtime_error("the disk cannot be made smaller");
}

void Disk::GiveBack() {
  largestFile_ = 0;
  if (mounted_ && !Mount(folder_, kAnySize, MS_REMOUNT))
    throw std::runtime_error("the disk cannot be made larger");
}

std::vector<std::string> Disk::Limited(std::vector<std::string> command) const {
  if (mounted_ || largestFile_ == 0) return command;
  // Without the signal that goes with it, a write beyond the limit fails as any other.
  const std::vector<std::string> through = {"/usr/bin/env", "--ignore-signal=XFSZ", "prlimit",
                                            "--fsize=" + std::to_string(largestFile_)};
  command.insert(command.begin(), through.begin(), through.end());
  return command;
}

}  // namespace soak
