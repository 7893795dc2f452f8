#pragma once

#include <cstddef>
#include <string>

#include "publisher/console.hpp"
#include "publisher/findings.hpp"

namespace publisher {

// Each of these returns how many files it asked for. Failure when there is nothing to be checked at all.

// A mirror over HTTP: every file that launchers may ask for, and how it is sent. `publicKey`: Base64, empty
// when no signature is wanted.
std::size_t CheckMirror(const std::string& url, const std::string& publicKey, Findings& findings,
                        Console& console);

// Every mirror that a Deployment.ini names, by the key that it names, and all of them against each other.
std::size_t CheckDeployment(const std::string& file, Findings& findings, Console& console);

}  // namespace publisher
