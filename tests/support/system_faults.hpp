#pragma once

namespace support {

// Whether the system that the tests run on loses what follows a chunk's size line that came in pieces: Wine
// 8's WinHTTP does.
bool LosesChunksWithSplitLines();
// Whether it says of every certificate that it refuses only that it refused one, as Wine 8's WinHTTP does.
bool KeepsToItselfWhyACertificateIsRefused();

}  // namespace support
