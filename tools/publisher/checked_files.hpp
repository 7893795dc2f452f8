#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "publisher/layout.hpp"

namespace publisher {

// A file on this machine, removed when this goes away if it was only fetched to be read.
class LocalCopy {
 public:
  enum class Kind { Original, Fetched };
  LocalCopy(std::string path, Kind kind) : path_(std::move(path)), kind_(kind) {}
  LocalCopy(LocalCopy&& other) noexcept : path_(std::exchange(other.path_, {})), kind_(other.kind_) {}
  ~LocalCopy();

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
  Kind kind_;
};

// Where a check takes the files of a publication from, by their names in it ("OldAct/Update.ini"). Safe to
// use from several threads.
class CheckedFiles {
 public:
  virtual ~CheckedFiles() = default;

  // What findings call the file: with its folder or mirror.
  virtual std::string Called(const std::string& name) const = 0;
  // None when there is no such file; Failure when it cannot be had for another reason.
  virtual std::optional<LocalCopy> Fetch(const std::string& name) = 0;
  virtual std::uint64_t SizeOf(const std::string& name) const = 0;  // 0 when it cannot be told beforehand
};

// A publication on this machine.
class FolderFiles : public CheckedFiles {
 public:
  explicit FolderFiles(const Layout& layout) : layout_(layout) {}

  std::string Called(const std::string& name) const override { return layout_.At(name); }
  std::optional<LocalCopy> Fetch(const std::string& name) override;
  std::uint64_t SizeOf(const std::string& name) const override;

 private:
  const Layout& layout_;
};

}  // namespace publisher
