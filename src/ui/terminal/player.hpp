#pragma once

#include <string>

#include "controls/control.hpp"

namespace ui {

// What the player does to a control, as real pointers and keys would do it. Each gives the reason why it
// cannot be done, empty when it was done.
std::string ClickControl(controls::Control& control);
std::string EnterValue(controls::Control& control, const std::string& value);
std::string PointAt(controls::Control& control);

// Why the player cannot reach a window at all; empty when it is on screen.
std::string WhyOutOfReach(const controls::Window& window);

}  // namespace ui
