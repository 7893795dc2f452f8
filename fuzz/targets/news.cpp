#include "fuzz/support/promises.hpp"
#include "fuzz/support/web_world.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::WebWorld world;
  world.http.bodies["noticiasbase.php"] = fuzz::Text(data, size);
  world.http.bodies["info.php"] = "1@Norte@ONLINE@1@0@187@@0|";
  int shown = 0;
  world.news.showMessage = [&](const std::string& text, const std::string& title, std::int32_t,
                               std::int32_t time) {
    ++shown;
    fuzz::Require(text.size() + title.size() <= 3 * size && time > 0, "news are what came");
  };
  for (int tick = 0; tick < 3; ++tick) {
    world.news.Timer_Timer();
    world.Step(2'000);
  }
  fuzz::Require(shown <= 1, "the same news are shown once");
  return 0;
}
