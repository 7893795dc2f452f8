#pragma once

#include <string>

namespace support {

// Makes the folder `link` a junction that leads to `target`, both full paths. Under Wine, which cannot make
// one, a symbolic link of the host system, which Wine shows as a junction. False when neither works.
bool MakeJunction(const std::string& link, const std::string& target);

}  // namespace support
