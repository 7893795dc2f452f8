#include "base/relative_name.hpp"

#include "fuzz/support/promises.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view name = fuzz::Text(data, size);
  const std::string slashed = base::WithSlashes(name);
  fuzz::Require(base::WithSlashes(slashed) == slashed, "a name with slashes is one already");
  const bool safe = base::WhyUnsafe(name).empty();
  fuzz::Require(safe == base::WhyUnsafe(slashed).empty() || name.size() != slashed.size(),
                "separators alone make no name safe");
  if (!safe) return 0;
  fuzz::RequireSafeName(name);
  fuzz::RequireSafeName(slashed);
  fuzz::Require(base::WhyUnsafe(slashed).empty(), "a safe name stays safe with slashes");
  return 0;
}
