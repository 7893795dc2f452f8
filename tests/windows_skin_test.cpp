// Pictures of the skin: read, brought to size, read ahead.
#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <tuple>
#include <vector>

#include "ui/win32/picture_cache.hpp"
#include "ui/win32/picture_file.hpp"
#include "ui/win32/resample.hpp"

namespace {

using ui::win32::UniqueBitmap;

const std::string kSkin = LAUNCHER_SKIN;

std::vector<std::uint32_t> PixelsOf(HBITMAP bitmap) {
  DIBSECTION section{};
  if (GetObjectW(bitmap, sizeof section, &section) != sizeof section) return {};
  const auto* first = static_cast<const std::uint32_t*>(section.dsBm.bmBits);
  return {first, first + static_cast<std::ptrdiff_t>(section.dsBm.bmWidth) * section.dsBm.bmHeight};
}

TEST(Resample, PixelsAreMeansOfTheAreaTheyCover) {
  using Picture = std::vector<std::uint32_t>;
  const auto resampled = [](ui::win32::PixelSize from, const Picture& source, ui::win32::PixelSize to) {
    Picture result(static_cast<std::size_t>(to.width * to.height));
    std::size_t row = 0;
    const auto next = [&] {
      const std::size_t at = row++ * static_cast<std::size_t>(from.width);
      return at < source.size() ? source.data() + at : nullptr;
    };
    EXPECT_TRUE(ui::win32::Resample(from, next, to, result.data()));
    return result;
  };
  EXPECT_EQ(
      resampled({4, 2}, {0x000000, 0x000040, 0x204060, 0x204060, 0x000040, 0x000080, 0x204060, 0x204060},
                {2, 1}),
      (Picture{0x000040, 0x204060}));
  EXPECT_EQ(resampled({2, 1}, {0x000000, 0x640000}, {4, 1}),
            (Picture{0x000000, 0x190000, 0x4B0000, 0x640000}));
  std::uint32_t pixel = 0;
  EXPECT_FALSE(ui::win32::Resample(
      {1, 2}, [] { return nullptr; }, {1, 1}, &pixel))
      << "a file that is cut";
}

// In whichever order they are asked for, and whatever was forgotten meanwhile.
TEST(PictureCache, WhatIsReadAheadIsWhatIsReadAtOnce) {
  const std::tuple<const char*, int, int> pictures[] = {
      {"Launcher.jpg", 450, 280}, {"jugar_n.jpg", 368, 100}, {"none.jpg", 20, 20}, {"cerrar_n.jpg", 40, 40}};
  ui::win32::PictureCache cache, plain, idle;
  idle.Expect();  // no picture comes before it goes
  cache.Expect();
  const auto ask = [&](const auto& picture) {
    const auto& [name, width, height] = picture;
    const std::vector<std::uint32_t> ahead = PixelsOf(cache.Picture(kSkin + name, width, height));
    EXPECT_EQ(ahead, PixelsOf(plain.Picture(kSkin + name, width, height))) << name;
    EXPECT_EQ(ahead.empty(), std::string(name) == "none.jpg") << name;
  };
  for (int round = 0; round < 4; ++round) {
    for (const auto& [name, width, height] : pictures) cache.Prepare(kSkin + name, width, height);
    if (round == 1) cache.Clear();
    if (round % 2) {
      for (const auto& picture : pictures) ask(picture);
    } else {
      for (std::size_t i = std::size(pictures); i > 0; --i) ask(pictures[i - 1]);
    }
    cache.Clear();
  }
  cache.Prepare(kSkin + "Launcher.jpg", 900, 560);  // still being read when the cache goes
}

TEST(PictureCache, APictureBecomesAnIconOfTheSizeAskedFor) {
  ui::win32::PictureCache cache;
  const ui::win32::UniqueIcon icon = cache.Icon(kSkin + "cerrar_n.jpg", 24);
  ICONINFO info{};
  ASSERT_TRUE(icon && GetIconInfo(icon.get(), &info));
  const UniqueBitmap colours(info.hbmColor), mask(info.hbmMask);
  BITMAP shape{};
  GetObjectW(colours.get(), sizeof shape, &shape);
  EXPECT_EQ(shape.bmWidth, 24);
  EXPECT_EQ(shape.bmHeight, 24);
  const HDC screen = GetDC(nullptr);
  const ui::win32::Canvas canvas(screen, 24, 24);
  ReleaseDC(nullptr, screen);
  DrawIconEx(canvas.Dc(), 0, 0, icon.get(), 24, 24, 0, nullptr, DI_NORMAL);
  std::set<COLORREF> seen;
  for (int at = 0; at < 24; ++at) seen.insert(GetPixel(canvas.Dc(), at, at));
  EXPECT_GT(seen.size(), 4u);
  EXPECT_TRUE(cache.Icon(kSkin + "HAND-M.CUR", 16)) << "the system's own kinds";
  EXPECT_FALSE(cache.Icon(kSkin + "none.jpg", 16));
}

}  // namespace
