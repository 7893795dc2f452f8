#pragma once

#include <span>
#include <string>

#include "platform/http_client.hpp"

namespace support {

// Keeps what a transfer brings.
struct BodySink : platform::HttpSink {
  void Begin(const platform::HttpHead& begun) override {
    head = begun;
    body.clear();
  }
  bool Write(std::span<const std::byte> bytes) override {
    body.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return true;
  }

  platform::HttpHead head;
  std::string body;
};

}  // namespace support
