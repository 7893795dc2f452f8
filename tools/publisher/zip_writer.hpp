#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.hpp"
#include "publisher/console.hpp"
#include "publisher/source_files.hpp"

namespace publisher {

// Writes a ZIP archive (PKWARE APPNOTE 6.3) front to back: deflated entries with UTF-8 names, sizes behind
// the data, no times of files, so that the same files give the same bytes. ZIP64 is not written, since
// launchers do not read it: what would need it is a Failure.
class ZipWriter {
 public:
  explicit ZipWriter(const std::string& path);

  void Add(const SourceFile& file, Progress& progress);
  void AddText(const std::string& name, std::string_view text);
  void Commit();  // the archive whole under its name

  // Failure when no archive can hold so much, be it of one file or altogether.
  static void CheckSize(const std::string& what, std::uint64_t size);

 private:
  struct Entry {
    std::string name;
    bool program = false;
    std::uint32_t crc = 0;
    std::uint64_t size = 0, packedSize = 0, offset = 0;
  };

  using Read = std::function<std::size_t(std::span<std::byte>)>;  // 0 at the end

  // `what` is named when the bytes are too many.
  void AddEntry(Entry entry, const std::string& what, const Read& read);
  void Write(const std::string& bytes);
  void WriteData(Entry& entry, const std::string& what, const Read& read);
  static std::string FactsOf(const Entry& entry);

  const std::string path_;
  platform::OutputFile file_;
  std::uint64_t offset_ = 0;
  std::vector<Entry> entries_;
};

// A file of an archive that lies nowhere else.
struct TextFile {
  std::string name, text;
};

// All of `files` and `texts` as the archive `target`.
void WriteArchive(const std::vector<SourceFile>& files, const std::string& target, Progress& progress,
                  const std::vector<TextFile>& texts = {});

}  // namespace publisher
