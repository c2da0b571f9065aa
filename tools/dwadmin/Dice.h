// Random numbers that are the same on every machine: the standard library's distributions differ from one
// library to the next.
#pragma once

#include <cstddef>
#include <cstdint>

namespace dw {

/// A stream of numbers that depends only on its seed. It uses whole numbers, so that no machine's rounding
/// shows.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed) {}

  /// 0 to `count` - 1.
  std::uint32_t Below(std::uint32_t count) {
    return static_cast<std::uint32_t>(((Next() >> 32) * static_cast<std::uint64_t>(count)) >> 32);
  }
  /// `low` to `high`, both included.
  int Between(int low, int high) {
    return low + static_cast<int>(Below(static_cast<std::uint32_t>(high - low + 1)));
  }
  bool Chance(int percent) { return Between(1, 100) <= percent; }
  template <class T, std::size_t N>
  const T& Pick(const T (&choices)[N]) {
    return choices[Below(static_cast<std::uint32_t>(N))];
  }

 private:
  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15ULL;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }
  std::uint64_t state_;
};

}  // namespace dw
