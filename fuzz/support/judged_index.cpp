#include "fuzz/support/judged_index.hpp"

#include <sanitizer/allocator_interface.h>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "fuzz/support/promises.hpp"
#include "platform/files.hpp"
#include "update/index_file.hpp"

namespace fuzz {
namespace {

constexpr std::size_t kBytesOfRecord = 34;  // at least
// What is kept of a record: twice its longest name, since names are gathered in one text, and the rest of it;
// and in all, the first refusals with their names.
constexpr std::size_t kMostOfRecord = 2 * base::kLongestName + 32, kMostInAll = 3'000'000, kMostGrowth = 4;

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
  Require(taken <= index.Count() * kMostOfRecord + kMostInAll || !whole, "memory grows with the records");
  Require(taken <= size * kMostGrowth + kMostInAll, "memory grows with the index");
  Require(index.ReadWholly() == whole, "an index that was read wholly says so");
  Require(index.Count() <= size / kBytesOfRecord, "no record is made up");
  Require(index.Refusals().size() <= index.RefusedCount() && index.RefusedCount() <= index.Count(),
          "refused records are counted");
  for (std::size_t i = 0; i < index.Count(); ++i) {
    const update::IndexRecord record = index[i];
    if (!record.inBin.empty()) RequireSafeName(record.inBin);
  }
}

}  // namespace fuzz
