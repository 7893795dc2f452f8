#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace base {

// The classic run-time's error numbers that this program raises or translates to.
enum class ErrorNumber {
  InvalidProcedureCall = 5,
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  TypeMismatch = 13,
  BadFileNameOrNumber = 52,
  FileNotFound = 53,
  DeviceIoError = 57,
  FileAlreadyExists = 58,
  DiskFull = 61,
  InputPastEndOfFile = 62,
  PermissionDenied = 70,
  DiskNotReady = 71,
  PathFileAccessError = 75,
  PathNotFound = 76,
  InvalidPicture = 481,
  InvalidFileFormat = 321,
  InterfaceNotSupported = 430,
};

// The classic English description of a number, as it appears in the player's error texts.
std::string_view DescriptionOf(ErrorNumber number);

// A failure inside a procedure. Never crosses the boundary of a named procedure (see startup/procedure.hpp).
class RuntimeError : public std::exception {
 public:
  explicit RuntimeError(ErrorNumber number) : RuntimeError(number, std::string(DescriptionOf(number))) {}
  RuntimeError(ErrorNumber number, std::string description)
      : number_(static_cast<int>(number)), description_(std::move(description)) {}

  int Number() const { return number_; }
  bool Is(ErrorNumber number) const { return number_ == static_cast<int>(number); }
  const std::string& Description() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int number_;
  std::string description_;
};

}  // namespace base
