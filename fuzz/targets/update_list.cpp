#include "update/update_list.hpp"

#include "base/numeric.hpp"
#include "base/runtime_error.hpp"
#include "fuzz/support/game_world.hpp"
#include "fuzz/support/promises.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::GameWorld world;
  const std::string text(fuzz::Text(data, size));
  const std::string file = world.folder / "Update.ini";
  {
    const update::UpdateList list(*world.host.profiles, file, text);
    for (const char* category : update::kCategories) {
      try {
        const auto newest = list.Newest(category);
        // One that is published as a plain number is that number, wherever blanks stand in place of line
        // ends.
        const std::string plain =
            "[INIT] " + std::string(category) + "=" + std::to_string(newest.value_or(0));
        if (newest) {
          const update::UpdateList again(*world.host.profiles, world.folder / "Again.ini", plain);
          fuzz::Require(again.Newest(category) == newest, "a number that was read is read again");
        }
      } catch (const base::RuntimeError& error) {
        fuzz::Require(error.Is(base::ErrorNumber::Overflow),
                      "a list has at worst numbers that are too large");
      }
    }
  }
  fuzz::Require(!world.folder.Has("Update.ini"), "a list goes when it was used");
  return 0;
}
