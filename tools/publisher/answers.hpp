#pragma once

#include <string>

namespace publisher {

// What launchers would not take of an answer's body, in one sentence without a name; empty when it is good.
std::string WhyBadProbe(const std::string& body);    // Online.txt
std::string WhyBadServers(const std::string& body);  // info.php
std::string WhyBadNews(const std::string& body);     // noticiasbase.php
std::string WhyBadAddress(const std::string& body);  // ipdate.php

}  // namespace publisher
