#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

// Paths are UTF-8 and may hold doubled separators. On Windows, where other programs (virus scanners above
// all) hold files for moments, every call waits up to half a second for its file. Failures are
// base::RuntimeError with the classic numbers: 53 no such file, 76 no such folder, 70 permission denied or in
// use, 75 path/file access error, 61 disk full, 57 other I/O.
namespace platform {

extern const std::string kSeparator;  // "\" on Windows, "/" on Linux
extern const std::string kLineEnd;    // of text files: CR LF on Windows, LF on Linux

// `path` with every "\" and "/" turned into the platform's own separator.
std::string NativePath(std::string_view path);

bool IsFile(const std::string& path);
bool IsFolder(const std::string& path);  // a link to a folder counts
bool IsThere(const std::string& path);   // anything, be it a link that leads nowhere

struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t modified = 0;  // the file system's own units
  bool operator==(const FileStamp&) const = default;
};
std::optional<FileStamp> StampOf(const std::string& path);
// The same of several files of one folder by their names in it, for about the cost of listing the folder.
std::vector<std::optional<FileStamp>> StampsOf(const std::string& folder,
                                               std::span<const std::string_view> names);

void RemoveFile(const std::string& path);     // 53 when there is none
bool TryRemoveFile(const std::string& path);  // true when there is no such file afterwards
void RemoveTree(const std::string& folder);   // links are removed, never followed; a missing folder is fine
// Removes the folders below `folder` that hold no file; links are neither followed nor removed. Never fails.
void RemoveEmptyFolders(const std::string& folder);
bool TryRemoveEmptyFolder(const std::string& path);
void MakeFolder(const std::string& path);   // one level; an existing folder is fine
void MakeFolders(const std::string& path);  // every missing level

// Renames `from` over `to` (same volume) so that any reader sees the old or the new file whole. A target that
// is a running program is moved aside first and removed as soon as the system allows.
void ReplaceFileWith(const std::string& from, const std::string& to);
// Gives a file another name on the same volume without waiting for the disk; 58 when `to` is taken.
void RenameFile(const std::string& from, const std::string& to);
void CloneFile(const std::string& from, const std::string& to);  // through a neighbour; replaces `to`
// Gives the bytes of `from` the second name `to`, whose old file is replaced: a hard link where the file
// system has them, a copy elsewhere. Neither file may be written in place afterwards.
void ShareFile(const std::string& from, const std::string& to);
// Its bytes are on the disk when this returns, as far as the file system can flush and nobody else holds the
// file; raises when it is missing or its bytes are lost.
void FlushFile(const std::string& path);
void FlushTree(const std::string& folder);  // every file below the folder, for about the wait that one costs

// Bytes that this user may still write below `folder`, which exists; the largest number when the system does
// not tell.
std::uint64_t FreeSpace(const std::string& folder);
// Raises 61 with the amount that is missing, in the player's words, when there are not so many free.
void RequireSpace(const std::string& folder, std::uint64_t bytes);

struct FolderEntry {
  std::string name;
  bool folder = false;  // a link is none
};
// What lies directly in a folder, in no order.
std::vector<FolderEntry> ListFolder(const std::string& folder);

// Whether this user may make files in `folder`, found out by making one; false for a missing folder.
bool CanWriteTo(const std::string& folder);

// Names of the programs that hold the file open, as the player knows them, separated by ", "; empty when
// there are none or the system does not tell (Linux).
std::string HolderOf(const std::string& path);

struct FoundFile {
  std::string path;  // relative to the folder searched, platform separators
  bool operator==(const FoundFile&) const = default;
};
// Every file below `folder`, sub-folders included, sorted; links and junctions are neither followed nor
// listed. Those of the folders that were reached when `stop` is requested.
std::vector<FoundFile> ListTree(const std::string& folder, std::stop_token stop = {});

// A file read in pieces.
class InputFile {
 public:
  explicit InputFile(const std::string& path);  // opens; other programs may read, write and delete meanwhile
  ~InputFile();
  InputFile(InputFile&&) noexcept;

  std::uint64_t Size() const;
  FileStamp Stamp() const;
  FileStamp Opened() const;  // the stamp it was opened with; that of now where opening does not tell it
  std::size_t Read(std::span<std::byte> into);  // bytes read, 0 at the end
  // As Read, from `offset` on; several threads may do so at the same time.
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> into) const;
  void Seek(std::uint64_t offset);

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

// A new file written under its name from the start, in a folder whose half-written files nobody takes.
class NewFile {
 public:
  enum class Kind { Data, Program };  // a program may be run, where the system wants to be told

  explicit NewFile(const std::string& path, Kind kind = Kind::Data);  // 58 when the name is taken
  // A file that is there already, what is written being put behind its end.
  static NewFile Continuing(const std::string& path);
  ~NewFile();
  NewFile(NewFile&&) noexcept;

  void Write(std::span<const std::byte> bytes);

 private:
  struct Handle;
  explicit NewFile(std::unique_ptr<Handle> handle);
  std::unique_ptr<Handle> handle_;
};

// A file written to a neighbour of its name and renamed over it by Commit; destroyed without Commit it leaves
// nothing.
class OutputFile {
 public:
  enum class Existing { Replace, Refuse };  // Refuse: 58 at Commit when the name is taken

  explicit OutputFile(const std::string& path, Existing existing = Existing::Replace);
  ~OutputFile();
  OutputFile(OutputFile&&) noexcept;

  void Write(std::span<const std::byte> bytes);
  void Write(std::string_view text);
  // Puts the file under its name, its bytes on the disk before unless it is one that is soon deleted again.
  enum class Lasting { Yes, No };
  void Commit(Lasting lasting = Lasting::Yes);

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

// The whole file; 7 (Out of memory) when it is larger than `limit` bytes.
std::string ReadWhole(const std::string& path, std::uint64_t limit);
void WriteWhole(const std::string& path, std::string_view bytes);
void AppendTo(const std::string& path, std::string_view bytes);  // made when missing

std::string ExecutablePath();                     // full path of the running program
std::string FolderOf(const std::string& path);    // without trailing separator
std::string FileNameOf(const std::string& path);  // last part
std::string BaseNameOf(const std::string& path);  // last part without its extension
std::string SystemFolder();  // Windows: the system directory, or an error; Linux: /usr/bin

}  // namespace platform
