#include "ui/win32/layout.hpp"

#include <algorithm>

namespace ui::win32 {

const LayoutRow* WindowLayout::Find(std::string_view control) const {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.name == control; });
  return found == rows.end() ? nullptr : &*found;
}

const WindowLayout& LayoutOf(std::string_view window) {
  static const WindowLayout empty{"", 400, 300, Chrome::Dialog, 0x0A1026, {}};
  for (const WindowLayout* layout :
       {&kMainLayout, &kNewsLayout, &kOptionsLayout, &kKeysLayout, &kMessagesLayout}) {
    if (layout->window == window) return *layout;
  }
  return empty;
}

}  // namespace ui::win32
