#ifndef VELTRANO_BASE_NUMBERS_DIGIT_WRITING_H
#define VELTRANO_BASE_NUMBERS_DIGIT_WRITING_H

// Decimal digits of whole numbers, written in place.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veltrano {

/// Two digits at a time halve the divisions, which are what printing a whole number costs.
inline constexpr auto digitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

/// Writes `value` so that its last digit stands before `end`; returns where it begins.
template <typename Unsigned>
char* writeBackwards(char* end, Unsigned value) {
  while (value >= 100) {
    const auto pair = static_cast<std::size_t>(value % 100);
    value /= 100;
    end -= 2;
    std::memcpy(end, &digitPairs[2 * pair], 2);
  }
  if (value >= 10) {
    end -= 2;
    std::memcpy(end, &digitPairs[2 * static_cast<std::size_t>(value)], 2);
  } else {
    *--end = static_cast<char>('0' + value);
  }
  return end;
}

inline char* writePair(char* target, std::uint32_t value) {
  std::memcpy(target, &digitPairs[std::size_t{2} * value], 2);
  return target + 2;
}

inline char* writeOneOrTwo(char* target, std::uint32_t value) {
  if (value >= 10) {
    return writePair(target, value);
  }
  *target = static_cast<char>('0' + value);
  return target + 1;
}

/// Returns where the digits end.
template <typename Unsigned>
char* writeDigits(char* target, Unsigned value) {
  if (value < 100) {
    return writeOneOrTwo(target, static_cast<std::uint32_t>(value));
  }
  if (value < 10000) {
    const auto few = static_cast<std::uint32_t>(value);
    return writePair(writeOneOrTwo(target, few / 100), few % 100);
  }
  std::array<char, 20> digits;
  char* const end = digits.data() + digits.size();
  return std::copy(writeBackwards(end, value), end, target);
}

}  // namespace veltrano

#endif
