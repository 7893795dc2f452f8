#pragma once

namespace support {

// What this process holds of the window system.
struct GuiObjects {
  unsigned drawing = 0;  // pens, brushes, fonts, bitmaps, drawing surfaces
  unsigned windows = 0;
};
GuiObjects CountGuiObjects();

}  // namespace support
