#include "fuzz/support/judged_index.hpp"
#include "fuzz/support/promises.hpp"
#include "support/temp_folder.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const support::TempFolder folder;
  folder.Put("Info.txt", fuzz::Text(data, size));
  fuzz::JudgeIndex(folder / "Info.txt");
  return 0;
}
