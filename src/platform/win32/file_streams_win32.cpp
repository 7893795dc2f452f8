#include <windows.h>
// after windows.h, which it builds on
#include <winternl.h>

#include <algorithm>
#include <atomic>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/system_error.hpp"
#include "platform/win32/system_library.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kPiece = 64 * 1024;
constexpr std::size_t kMostPerCall = 16 * 1024 * 1024;

// Opens a file, waiting a little while somebody holds it; the code of the last failure.
DWORD TryOpen(const std::string& path, DWORD access, DWORD disposition, unique_file& file, DWORD flags = 0) {
  const std::wstring name = SystemPath(path);
  const auto attempt = [&] {
    file.reset(CreateFileW(name.c_str(), access, kShareAll, nullptr, disposition, flags, nullptr));
    return static_cast<bool>(file);
  };
  if (attempt()) return ERROR_SUCCESS;
  const DWORD code = GetLastError();
  // Nobody can hold a file that is being made, and a folder stays one: this does not pass.
  if (code == ERROR_ACCESS_DENIED && (disposition == CREATE_NEW || IsFolder(path))) return code;
  return WithPatience(attempt);
}

unique_file Open(const std::string& path, DWORD access, DWORD disposition, DWORD flags = 0) {
  unique_file file;
  const DWORD code = TryOpen(path, access, disposition, file, flags);
  if (code != ERROR_SUCCESS) RaiseSystemError(code, path);
  return file;
}

void Require(DWORD code) {
  if (code != ERROR_SUCCESS) RaiseSystemError(code);
}

void WriteAll(const unique_file& file, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const auto piece = static_cast<DWORD>(std::min(bytes.size(), kMostPerCall));
    DWORD written = 0;
    Require(WithPatience([&] { return WriteFile(file.get(), bytes.data(), piece, &written, nullptr) != 0; }));
    bytes = bytes.subspan(written);
  }
}

DWORD TryFlush(const unique_file& file) {
  return WithPatience([&] { return FlushFileBuffers(file.get()) != 0; });
}

// Only a handle that may write can be flushed; the read-only attribute is asked for when the handle is made.
// None when somebody holds the file for longer than a moment.
unique_file OpenToFlush(const std::string& path) {
  const std::wstring name = SystemPath(path);
  const DWORD attributes = GetFileAttributesW(name.c_str());
  const bool readOnly = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY);
  if (readOnly) SetFileAttributesW(name.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  unique_file file;
  const DWORD code = TryOpen(path, GENERIC_WRITE, OPEN_EXISTING, file);
  if (readOnly) SetFileAttributesW(name.c_str(), attributes);
  RaiseUnlessHarmless(code, path);
  return file;
}

// Hands a file's bytes to the disk without waiting until it holds them for good. False where the system
// (before Windows 8) or the file system cannot.
bool WriteOut(const unique_file& file) {
  using Call = LONG NTAPI(HANDLE, ULONG flags, void* parameters, ULONG size, IO_STATUS_BLOCK*);
  static auto* const call = FunctionOf<Call>(GetModuleHandleW(L"ntdll.dll"), "NtFlushBuffersFileEx");
  constexpr ULONG kNoSync = 2;  // FLUSH_FLAGS_NO_SYNC
  IO_STATUS_BLOCK status{};
  return call != nullptr && call(file.get(), kNoSync, nullptr, 0, &status) >= 0;
}

// While marked, the file goes when its last handle is closed, so that a killed process leaves nothing. Not
// every file system can do that, and nothing depends on it.
void MarkForRemoval(const unique_file& file, bool remove) {
  FILE_DISPOSITION_INFO disposition{};
  disposition.DeleteFile = remove;
  SetFileInformationByHandle(file.get(), FileDispositionInfo, &disposition, sizeof disposition);
}

std::string NeighbourOf(const std::string& path) {
  static std::atomic<unsigned> count{0};
  return path + "." + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count) + ".tmp";
}

}  // namespace

struct InputFile::Handle {
  unique_file file;
};

InputFile::InputFile(const std::string& path) : handle_(std::make_unique<Handle>()) {
  handle_->file = Open(path, GENERIC_READ, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
}

InputFile::~InputFile() = default;
InputFile::InputFile(InputFile&&) noexcept = default;

std::uint64_t InputFile::Size() const {
  LARGE_INTEGER size;
  if (!GetFileSizeEx(handle_->file.get(), &size)) RaiseSystemError(GetLastError());
  return static_cast<std::uint64_t>(size.QuadPart);
}

// Not by the call that tells all of a file at once: it asks for the number of the volume too, which takes
// longer than opening and reading a small file.
FileStamp InputFile::Stamp() const {
  FILE_BASIC_INFO information;
  if (!GetFileInformationByHandleEx(handle_->file.get(), FileBasicInfo, &information, sizeof information))
    RaiseSystemError(GetLastError());
  return {Size(), information.LastWriteTime.QuadPart};
}

FileStamp InputFile::Opened() const { return Stamp(); }

std::size_t InputFile::Read(std::span<std::byte> into) {
  const auto piece = static_cast<DWORD>(std::min(into.size(), kMostPerCall));
  DWORD count = 0;
  const HANDLE file = handle_->file.get();
  Require(WithPatience([&] { return ReadFile(file, into.data(), piece, &count, nullptr) != 0; }));
  return count;
}

std::size_t InputFile::ReadAt(std::uint64_t offset, std::span<std::byte> into) const {
  const auto piece = static_cast<DWORD>(std::min(into.size(), kMostPerCall));
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  DWORD count = 0;
  const HANDLE file = handle_->file.get();
  const DWORD code = WithPatience([&] { return ReadFile(file, into.data(), piece, &count, &place) != 0; });
  if (code != ERROR_HANDLE_EOF) Require(code);
  return count;
}

void InputFile::Seek(std::uint64_t offset) {
  LARGE_INTEGER position;
  position.QuadPart = static_cast<LONGLONG>(offset);
  if (!SetFilePointerEx(handle_->file.get(), position, nullptr, FILE_BEGIN)) RaiseSystemError(GetLastError());
}

struct NewFile::Handle {
  unique_file file;
};

NewFile::NewFile(const std::string& path, Kind) : handle_(std::make_unique<Handle>()) {
  handle_->file = Open(path, GENERIC_WRITE, CREATE_NEW);
}

NewFile::NewFile(std::unique_ptr<Handle> handle) : handle_(std::move(handle)) {}

NewFile NewFile::Continuing(const std::string& path) {
  auto handle = std::make_unique<Handle>();
  handle->file = Open(path, FILE_APPEND_DATA, OPEN_EXISTING);
  return NewFile(std::move(handle));
}

NewFile::~NewFile() = default;
NewFile::NewFile(NewFile&&) noexcept = default;

void NewFile::Write(std::span<const std::byte> bytes) { WriteAll(handle_->file, bytes); }

struct OutputFile::Handle {
  std::string path;
  std::string neighbour;
  Existing existing;
  unique_file file;
  bool committed = false;

  Handle(const std::string& name, Existing whenTaken)
      : path(name),
        neighbour(NeighbourOf(name)),
        existing(whenTaken),
        file(Open(neighbour, GENERIC_WRITE | DELETE, CREATE_NEW)) {
    MarkForRemoval(file, true);
  }
  ~Handle() {
    file.reset();
    if (!committed) DeleteFileW(SystemPath(neighbour).c_str());
  }
};

OutputFile::OutputFile(const std::string& path, Existing existing)
    : handle_(std::make_unique<Handle>(path, existing)) {}

OutputFile::~OutputFile() = default;
OutputFile::OutputFile(OutputFile&&) noexcept = default;

void OutputFile::Write(std::span<const std::byte> bytes) { WriteAll(handle_->file, bytes); }
void OutputFile::Write(std::string_view text) { Write(std::as_bytes(std::span(text))); }

void OutputFile::Commit(Lasting lasting) {
  Handle& output = *handle_;
  if (lasting == Lasting::Yes) RaiseUnlessHarmless(TryFlush(output.file));
  MarkForRemoval(output.file, false);
  output.file.reset();
  if (output.existing == Existing::Replace) {
    ReplaceFileWith(output.neighbour, output.path);
  } else {
    const std::wstring from = SystemPath(output.neighbour), to = SystemPath(output.path);
    const DWORD code =
        WithPatience([&] { return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0; });
    if (code != ERROR_SUCCESS) RaiseSystemError(code);
  }
  output.committed = true;
}

void FlushFile(const std::string& path) {
  const unique_file file = OpenToFlush(path);
  if (file) RaiseUnlessHarmless(TryFlush(file), path);
}

// The disk is told to empty its own cache once, with the last file, since that is what takes the time.
void FlushTree(const std::string& folder) {
  unique_file last;
  for (const FoundFile& found : ListTree(folder)) {
    unique_file file = OpenToFlush(folder + kSeparator + found.path);
    if (!file) continue;
    if (!WriteOut(file)) RaiseUnlessHarmless(TryFlush(file));
    last = std::move(file);
  }
  if (last) RaiseUnlessHarmless(TryFlush(last));
}

bool CanWriteTo(const std::string& folder) {
  const std::wstring probe = SystemPath(NeighbourOf(folder + kSeparator));
  return static_cast<bool>(unique_file(
      CreateFileW(probe.c_str(), GENERIC_WRITE | DELETE, kShareAll, nullptr, CREATE_NEW,
                  FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr)));
}

void CloneFile(const std::string& from, const std::string& to) {
  InputFile source(from);
  OutputFile target(to);
  std::vector<std::byte> piece(kPiece);
  while (const std::size_t count = source.Read(piece)) target.Write(std::span(piece).first(count));
  target.Commit();
}

void ShareFile(const std::string& from, const std::string& to) {
  const std::string neighbour = NeighbourOf(to);
  if (!CreateHardLinkW(SystemPath(neighbour).c_str(), SystemPath(from).c_str(), nullptr)) {
    return CloneFile(from, to);
  }
  try {
    ReplaceFileWith(neighbour, to);
  } catch (const base::RuntimeError&) {
    TryRemoveFile(neighbour);
    throw;
  }
  TryRemoveFile(neighbour);  // still there when both names were the same file already
}

void WriteWhole(const std::string& path, std::string_view bytes) {
  OutputFile file(path);
  file.Write(bytes);
  file.Commit();
}

void AppendTo(const std::string& path, std::string_view bytes) {
  WriteAll(Open(path, FILE_APPEND_DATA, OPEN_ALWAYS), std::as_bytes(std::span(bytes)));
}

}  // namespace platform
