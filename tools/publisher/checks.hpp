#pragma once

#include <cstddef>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "publisher/checked_files.hpp"
#include "publisher/console.hpp"
#include "publisher/failure.hpp"
#include "publisher/findings.hpp"
#include "publisher/signature_check.hpp"
#include "update/index_file.hpp"

namespace publisher {

// One publication under examination: every file that launchers may ask for is fetched, judged and remembered.
class Examination {
 public:
  // `publicKey`: Base64, of whom Signed.txt has to be signed; empty: it need not be there.
  Examination(CheckedFiles& files, std::string publicKey, Findings& findings, Console& console)
      : files_(files), findings_(findings), console_(console), signature_(std::move(publicKey), findings) {}

  void CheckAll();
  void CheckContent();  // all but the probe and the web scripts

  const std::set<std::string>& Expected() const { return expected_; }  // names of what launchers ask for

 private:
  void CheckSignature();
  void CheckAnswers();  // the probe and the web scripts
  void CheckPatches();  // and the update list
  void CheckIndex();
  void CheckClient();  // after the patches

  // Hands the local path of a file to `judge`, whose exceptions become problems of it; so does its absence.
  template <class Judge>
  void Examine(const std::string& name, Judge judge) {
    Expect(name);
    const std::string called = files_.Called(name);
    findings_.Judge(called, {}, [&] {
      const std::optional<LocalCopy> copy = files_.Fetch(name);
      if (!copy) throw Failure("it is missing");
      findings_.Judge(called, copy->Path(), [&] {
        signature_.Compare(name, copy->Path(), called);
        judge(copy->Path());
      });
    });
  }
  void Expect(const std::string& name);
  void CheckRecord(const update::IndexRecord& record, Progress& progress);

  CheckedFiles& files_;
  Findings& findings_;
  Console& console_;
  SignatureCheck signature_;
  std::mutex mutex_;  // of expected_
  std::set<std::string> expected_;
  std::vector<int> counts_;  // of the update list, by category; none when it is no good
};

// Problems of a publication's folder that no mirror shows: archives that are not those which were published
// under their numbers, and a list that went back.
void CheckHistory(const Layout& layout, Findings& findings);

// Warns of what is in the folder and no launcher asks for.
void WarnOfStrayFiles(const Layout& layout, const std::set<std::string>& expected, Findings& findings);

}  // namespace publisher
