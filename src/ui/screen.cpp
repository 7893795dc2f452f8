#include "ui/screen.hpp"

#include <algorithm>

namespace ui {
namespace {

// `at` moved as little as it takes for `length` pixels to lie between `low` and `high`; the start is what
// stays in sight when they do not fit.
int Within(int at, int length, int low, int high) { return std::max(std::min(at, high - length), low); }

bool Holds(const Area& area, int x, int y) {
  return x >= area.left && x < area.right && y >= area.top && y < area.bottom;
}

}  // namespace

void Screen::CentreOver(controls::Window& window, const controls::Window& over) {
  if (!over.Visible || over.State.Get() == controls::WindowState::Minimised) {
    Centre(window);
    return;
  }
  const Area below = Bounds(over);
  const Area own = Bounds(window);
  const Area work = WorkArea();
  int left = below.left + (below.Width() - own.Width()) / 2;
  int top = below.top + (below.Height() - own.Height()) / 2;
  if (Holds(work, below.left + below.Width() / 2, below.top + below.Height() / 2)) {
    left = Within(left, own.Width(), work.left, work.right);
    top = Within(top, own.Height(), work.top, work.bottom);
  }
  MoveTo(window, left, top);
}

}  // namespace ui
