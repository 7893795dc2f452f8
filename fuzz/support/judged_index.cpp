#include "fuzz/support/judged_index.hpp"

#include <sanitizer/allocator_interface.h>

#include "base/runtime_error.hpp"
#include "fuzz/support/promises.hpp"
#include "platform/files.hpp"
#include "update/index_file.hpp"

namespace fuzz {
namespace {

// A record's own 34 bytes become no more than this many, a letter of its name at most three; the rest is for
// the first refusals, whose names are kept.
constexpr std::size_t kPerRecord = 34, kMostGrowth = 4, kForRefusals = 3'000'000;

}  // namespace

void JudgeIndex(const std::string& path) {
  const std::uint64_t size = platform::StampOf(path)->size;
  const std::size_t heapBefore = __sanitizer_get_current_allocated_bytes();
  update::IndexFile index;
  bool whole = true;
  try {
    index.Read(path);
  } catch (const base::RuntimeError&) {
    whole = false;
  }
  const std::size_t taken = __sanitizer_get_current_allocated_bytes() - heapBefore;
  Require(taken <= size * kMostGrowth + kForRefusals, "memory grows with the index");
  Require(index.ReadWholly() == whole, "an index that was read wholly says so");
  Require(index.Count() <= size / kPerRecord, "no record is made up");
  Require(index.Refusals().size() <= index.RefusedCount() && index.RefusedCount() <= index.Count(),
          "refused records are counted");
  for (std::size_t i = 0; i < index.Count(); ++i) {
    const update::IndexRecord record = index[i];
    if (!record.inBin.empty()) RequireSafeName(record.inBin);
  }
}

}  // namespace fuzz
