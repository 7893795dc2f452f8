#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "publisher/findings.hpp"
#include "update/signed_file.hpp"

namespace publisher {

// Holds the files of a publication against its Signed.txt. Safe to use from several threads.
class SignatureCheck {
 public:
  // `publicKey`: Base64; empty: nobody's signature is wanted, so only what is signed is looked at.
  SignatureCheck(std::string publicKey, Findings& findings)
      : publicKey_(std::move(publicKey)), findings_(findings) {}

  bool Wanted() const { return !publicKey_.empty(); }

  // Takes in the text of a Signed.txt; Failure when it is no good.
  void TakeIn(const std::string& text, const std::string& called);

  // Compares a file that launchers ask for, `path` being its local copy.
  void Compare(const std::string& name, const std::string& path, const std::string& called);
  void CompareCounts(const std::vector<int>& counts, const std::string& called);

 private:
  const std::string publicKey_;
  Findings& findings_;
  std::optional<update::SignedFile> file_;
};

}  // namespace publisher
