#include "base/runtime_error.hpp"

namespace base {

std::string_view DescriptionOf(ErrorNumber number) {
  switch (number) {
    case ErrorNumber::InvalidProcedureCall:
      return "Invalid procedure call or argument";
    case ErrorNumber::Overflow:
      return "Overflow";
    case ErrorNumber::OutOfMemory:
      return "Out of memory";
    case ErrorNumber::SubscriptOutOfRange:
      return "Subscript out of range";
    case ErrorNumber::TypeMismatch:
      return "Type mismatch";
    case ErrorNumber::BadFileNameOrNumber:
      return "Bad file name or number";
    case ErrorNumber::FileNotFound:
      return "File not found";
    case ErrorNumber::DeviceIoError:
      return "Device I/O error";
    case ErrorNumber::FileAlreadyExists:
      return "File already exists";
    case ErrorNumber::DiskFull:
      return "Disk full";
    case ErrorNumber::InputPastEndOfFile:
      return "Input past end of file";
    case ErrorNumber::PermissionDenied:
      return "Permission denied";
    case ErrorNumber::DiskNotReady:
      return "Disk not ready";
    case ErrorNumber::PathFileAccessError:
      return "Path/File access error";
    case ErrorNumber::PathNotFound:
      return "Path not found";
    case ErrorNumber::InvalidFileFormat:
      return "Invalid file format";
    case ErrorNumber::InvalidPicture:
      return "Invalid picture";
    case ErrorNumber::InterfaceNotSupported:
      return "Class does not support Automation or does not support expected interface";
  }
  return "Application-defined or object-defined error";
}

}  // namespace base
