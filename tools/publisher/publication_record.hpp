#pragma once

#include <map>
#include <string>

#include "publisher/layout.hpp"

namespace publisher {

// What was published under which number: "SHA-256  OldAct/Mapas/Mapas3.zip" a line, as sha256sum writes and
// checks them. A number that players may have had must never mean anything else.
class PublicationRecord {
 public:
  explicit PublicationRecord(const Layout& layout);  // Failure when the file is no such list

  const std::map<std::string, std::string>& Digests() const { return digests_; }  // by archive
  int Newest(const std::string& category) const;                                  // 0: none is recorded

  // Adds every archive that the update list names and this lacks, and writes the file if there was one.
  void TakeInListed();

 private:
  void Parse(std::string_view text, const std::string& file);

  const Layout& layout_;
  std::map<std::string, std::string> digests_;
};

// The category and number that an archive's name ("OldAct/Mapas/Mapas3.zip") tells; number 0 when it is none.
struct PatchNumber {
  std::string category;
  int number = 0;
};
PatchNumber PatchNumberOf(const std::string& archive);

}  // namespace publisher
