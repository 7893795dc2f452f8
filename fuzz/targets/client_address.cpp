#include "base/text.hpp"
#include "fuzz/support/promises.hpp"
#include "fuzz/support/web_world.hpp"
#include "platform/encoding.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::WebWorld world;
  world.http.bodies["ipdate.php"] = fuzz::Text(data, size);
  const std::string known = world.selection.ClientAddressQuery();
  if (known.empty()) return 0;
  const std::string date(base::Field(known, 1, '-')),
      address = known.substr(std::min(date.size() + 1, known.size()));
  fuzz::Require(date.empty() || base::Split(date, '/').size() == 3, "a date has three parts");
  fuzz::Require(address.empty() || web::IsDottedAddress(address) || web::IsColonList(address),
                "an address that is kept is one");
  for (const char c : platform::ToAnsi(known))
    fuzz::Require(c != '"' && c != '%' && c != '&' && c != '|', "an answer that is kept is harmless as text");
  // What is known is not asked again.
  world.http.bodies["ipdate.php"] = "1/1/2030-10.0.0.1";
  if (!date.empty() && !address.empty())
    fuzz::Require(world.selection.ClientAddressQuery() == known, "what is known stays");
  return 0;
}
