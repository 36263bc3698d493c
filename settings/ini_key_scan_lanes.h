#ifndef VELTRANO_SETTINGS_INI_KEY_SCAN_LANES_H
#define VELTRANO_SETTINGS_INI_KEY_SCAN_LANES_H

// The scan itself, for source files that are compiled for one width each.

#include <cstddef>
#include <cstdint>

#include "base/byte_lanes.h"
#include "settings/ini_key_scan.h"

namespace veltrano {

const char* scanBy16(const char* from, const char* to, const IniProbes& probes);
const char* scanBy32(const char* from, const char* to, const IniProbes& probes);
const char* scanBy64(const char* from, const char* to, const IniProbes& probes);

template <std::size_t width>
class IniLanes {
 public:
  explicit IniLanes(const IniProbes& probes) : probes_(probes) {}

  const char* scan(const char* at, const char* to) const {
    if (to - at >= step) {
      if (mayBeginAt(at)) {
        return at;
      }
      // Lanes that do not cross the lines of the processor's cache are read faster.
      at += width - reinterpret_cast<std::uintptr_t>(at + probes_.sign) % width;
    }
    while (to - at >= stepsAtOnce * step && !mayBeginInSteps(at)) {
      at += stepsAtOnce * step;
    }
    while (to - at >= step && !mayBeginAt(at)) {
      at += step;
    }
    return at;
  }

 private:
  static constexpr std::ptrdiff_t step = width;
  static constexpr std::ptrdiff_t stepsAtOnce = 4;
  static_assert(width <= iniWindow);

  /// Zero in the lanes where a line of the key may begin.
  [[nodiscard]] Lanes<width> differences(const char* at) const {
    const IniProbe& first = probes_.first;
    const IniProbe& second = probes_.second;
    return (Lanes<width>(at + probes_.sign) ^ '=') |
           ((Lanes<width>(at + first.offset) | first.caseBit) ^ first.lower) |
           ((Lanes<width>(at + second.offset) | second.caseBit) ^ second.lower);
  }

  [[nodiscard]] bool mayBeginAt(const char* at) const { return (differences(at) == '\0').any(); }

  [[nodiscard]] bool mayBeginInSteps(const char* at) const {
    Lanes<width> smallest = differences(at);
    for (std::ptrdiff_t i = 1; i < stepsAtOnce; ++i) {
      smallest = smaller(smallest, differences(at + i * step));
    }
    return (smallest == '\0').any();
  }

  const IniProbes probes_;
};

}  // namespace veltrano

#endif
