#include <algorithm>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "web/host_selection.hpp"

namespace modGeneral {
namespace {

// Three numbers with "/" between them.
bool IsDate(std::string_view text) {
  const auto parts = base::Split(text, '/');
  return parts.size() == 3 && std::all_of(parts.begin(), parts.end(), base::IsNumeric);
}

}  // namespace

std::string HostSelection::AddressQueryUrl() const {
  constexpr const char* kScript = "/web/include/ipdate.php";
  if (services_.deployment.IsSecondHost(hosts_.WebBaseURL)) return services_.deployment.api + kScript;
  return hosts_.WebBaseURL + "../.." + kScript;
}

// Takes date and address out of an answer; false when its address is of no kind at all.
bool HostSelection::TakeAddress(const std::string& body) {
  const std::string date(base::Field(body, 1, '-'));
  const std::string address(base::Field(body, 2, '-'));
  const bool dotted = web::IsDottedAddress(address);
  if (!dotted && !web::IsColonList(address)) return false;
  const bool dated = IsDate(date);
  ServerDate = dated ? date : std::string{};
  // A dotted address is kept even beside a date that is none.
  PublicAddress = dotted || dated ? address : std::string{};
  return true;
}

// A whole answer ends the attempts, whatever stands in it.
std::string HostSelection::ClientAddressQuery() {
  if (ServerDate.empty() || PublicAddress.empty()) {
    web::Attempts attempts(services_, budget_, ServerDate.empty() ? 0 : 1);
    const std::string url = AddressQueryUrl();
    web::TextAnswer answer;
    answer.report.outcome.error = platform::HttpError::Cancelled;
    for (bool first = true; !answer.report.Arrived() && attempts.Next(); first = false) {
      const web::TextOptions options{.wholeLimitMs = attempts.LimitMs()};
      answer = first ? transfers_.GetHttpText(url, options) : inet_.OpenURL(url, options);
    }
    if (!TakeAddress(answer.text)) return {};
  }
  return ServerDate + "-" + PublicAddress;
}

}  // namespace modGeneral
