#pragma once

namespace platform {

// First call of the program, before any library is loaded by hand: libraries come from the system folder
// only, a damaged heap ends the program, and the system asks the player no questions about missing disks.
void HardenProcess();

}  // namespace platform
