#include "web/transfer_report.hpp"

#include <gtest/gtest.h>

#include <set>

namespace {

using base::ErrorNumber;
using base::RuntimeError;
using platform::HttpError;
using web::TransferReport;

TEST(TransferReport, SaysWhyInAFewWordsAndInOneLine) {
  const struct {
    TransferReport report;
    bool arrived, good;
    std::string reason, more;
  } cases[] = {
      {{{HttpError::None, 404}, 9}, true, false, "el servidor respondió 404", "HTTP 404, 9 bytes"},
      {{{HttpError::CutShort, 200, 18, "partial file"}, 20, 5'000},
       false,
       false,
       "la conexión se cortó antes del final",
       "HTTP 200, 20 de 5000 bytes; 18 partial file"},
      {{{HttpError::None, 200}, 0, {}, RuntimeError(ErrorNumber::DiskFull, "disco lleno: faltan 3 MB")},
       false,
       false,
       "disco lleno: faltan 3 MB",
       "HTTP 200, 0 bytes; error 61"},
  };
  for (const auto& entry : cases) {
    EXPECT_EQ(entry.report.Arrived(), entry.arrived) << entry.reason;
    EXPECT_EQ(entry.report.Good(), entry.good) << entry.reason;
    EXPECT_EQ(entry.report.Reason(), entry.reason);
    EXPECT_EQ(entry.report.Details(), entry.reason + " (" + entry.more + ")");
  }
}

TEST(TransferReport, EveryFailureHasWordsOfItsOwn) {
  std::set<std::string> words;
  for (int error = static_cast<int>(HttpError::BadUrl); error <= static_cast<int>(HttpError::Other);
       ++error) {
    words.insert(TransferReport{{static_cast<HttpError>(error)}}.Reason());
  }
  EXPECT_EQ(words.size(), 9u);
  EXPECT_FALSE(words.contains("error desconocido"));
}

}  // namespace
