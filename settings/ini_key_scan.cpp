#include "settings/ini_key_scan.h"

#include "settings/ini_key_scan_lanes.h"

namespace veltrano {

namespace {

constexpr IniKeyScan scans[] = {scanBy16, scanBy32, scanBy64};

std::size_t countUsable() {
#if defined(__x86_64__) || defined(__i386__)
  if (__builtin_cpu_supports("avx2") == 0) {
    return 1;
  }
  return __builtin_cpu_supports("avx512bw") == 0 ? 2 : 3;
#else
  return 1;
#endif
}

}  // namespace

const char* scanBy16(const char* from, const char* to, const IniProbes& probes) {
  return IniLanes<16>(probes).scan(from, to);
}

std::span<const IniKeyScan> usableIniKeyScans() {
  static const std::size_t usable = countUsable();
  return {scans, usable};
}

}  // namespace veltrano
