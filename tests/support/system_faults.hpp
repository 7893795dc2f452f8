#pragma once

namespace support {

// Whether the system that the tests run on loses what follows a chunk's size line that came in pieces: Wine 8's
// WinHTTP does.
bool LosesChunksWithSplitLines();

}  // namespace support
