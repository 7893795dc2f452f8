#pragma once

#include <cstdint>
#include <string_view>

namespace soak {

// Chance that depends on nothing but a seed and what it is asked about, so that the order in which threads
// ask does not matter.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(Mixed(seed)) {}

  // Further dice for one matter.
  Dice For(std::string_view matter) const {
    std::uint64_t mixed = state_;
    for (const char c : matter) mixed = Mixed(mixed ^ static_cast<unsigned char>(c));
    return Dice(mixed);
  }
  Dice For(std::uint64_t number) const { return Dice(state_ ^ Mixed(number)); }

  std::uint64_t Next() { return state_ = Mixed(state_); }
  std::uint64_t Below(std::uint64_t limit) { return Next() % limit; }
  bool Chance(double probability) { return static_cast<double>(Below(1'000'000)) < probability * 1e6; }

 private:
  // The finalizer of SplitMix64.
  static std::uint64_t Mixed(std::uint64_t value) {
    value += 0x9e3779b97f4a7c15;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9;
    value = (value ^ (value >> 27)) * 0x94d049bb133111eb;
    return value ^ (value >> 31);
  }

  std::uint64_t state_;
};

}  // namespace soak
