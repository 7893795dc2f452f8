#pragma once

#include <string>

#include "platform/http_client.hpp"
#include "publisher/cache_rules.hpp"
#include "publisher/findings.hpp"

namespace publisher {

// Judges what a mirror says beside a whole file: how long caches may keep it, how it is known again, how long
// it is. `called`: the file's address.
void JudgeHead(const platform::HttpHead& head, FileKind kind, const std::string& called, Findings& findings);

}  // namespace publisher
