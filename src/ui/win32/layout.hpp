#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace ui::win32 {

enum class Align { Left, Center, Right };
// One line, cut with "..." at its end or in the middle of its path; or wrapped, cut when even that overflows.
enum class Lines { Single, Path, Wrapped };

// Where a control stands, in pixels at 96 dots per inch, and how its text looks. A control without a row is
// not shown. The rows of a window stand in the order in which the keyboard and screen readers walk it: a
// label before the box that it names.
struct LayoutRow {
  std::string_view name;
  int x, y, width, height;
  int points = 9;
  std::uint32_t colour = 0xDCE5FA;  // 0xRRGGBB
  Align align = Align::Left;
  Lines lines = Lines::Single;
  const wchar_t* face = L"Tahoma";
};

// What surrounds a window: nothing; nothing, above all others and never active; or a title bar.
enum class Chrome { Borderless, Notice, Dialog };

struct WindowLayout {
  std::string_view window;
  int width, height;  // of the client area
  Chrome chrome;
  std::uint32_t colour;  // where there is no picture
  std::span<const LayoutRow> rows;

  const LayoutRow* Find(std::string_view control) const;
};

extern const WindowLayout kMainLayout, kNewsLayout, kOptionsLayout, kKeysLayout, kMessagesLayout;

// The layout of a window by its name; an unknown window gets an empty one.
const WindowLayout& LayoutOf(std::string_view window);

}  // namespace ui::win32
