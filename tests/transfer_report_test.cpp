#include "web/transfer_report.hpp"

#include <gtest/gtest.h>

#include <set>

namespace {

using base::ErrorNumber;
using base::RuntimeError;
using platform::HttpError;
using web::TransferReport;

TEST(TransferReport, SaysWhyInAFewWordsAndInOneLine) {
  TransferReport notFound, cut, full;
  notFound.outcome = {HttpError::None, 404};
  notFound.bytes = 9;
  cut.outcome = {HttpError::CutShort, 200, 18, "partial file"};
  cut.bytes = 20;
  cut.announced = 5'000;
  full.outcome = {HttpError::None, 200};
  full.own = RuntimeError(ErrorNumber::DiskFull, "disco lleno: faltan 3 MB");
  const struct {
    TransferReport& report;
    bool arrived;
    std::string_view reason, more;
  } cases[] = {
      {notFound, true, "el servidor respondió 404", "HTTP 404, 9 bytes"},
      {cut, false, "la conexión se cortó antes del final", "HTTP 200, 20 de 5000 bytes; 18 partial file"},
      {full, false, "disco lleno: faltan 3 MB", "HTTP 200, 0 bytes; error 61"}};
  for (const auto& entry : cases) {
    EXPECT_EQ(entry.report.Arrived(), entry.arrived) << entry.reason;
    EXPECT_FALSE(entry.report.Good()) << entry.reason;
    EXPECT_EQ(entry.report.Reason(), entry.reason);
    EXPECT_EQ(entry.report.Details(), std::string(entry.reason) + " (" + std::string(entry.more) + ")");
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
