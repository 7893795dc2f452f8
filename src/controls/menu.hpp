#pragma once

#include <deque>
#include <string>

#include "controls/control.hpp"

namespace controls {

// One entry of a pop-up menu; the caption "-" is a separator, "&" marks the access key.
struct MenuEntry {
  std::string name;
  std::string caption;
  bool enabled = true;
  Event<> Click;
};

struct Menu {
  std::string name;
  std::string caption;
  std::deque<MenuEntry> entries;  // a deque, since entries stay where they are
};

}  // namespace controls
