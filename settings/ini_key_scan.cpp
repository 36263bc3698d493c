#include "settings/ini_key_scan.h"

#include "base/lane_widths.h"
#include "settings/ini_key_scan_lanes.h"

namespace veltrano {

namespace {

constexpr IniKeyScan scans[] = {scanBy16, scanBy32, scanBy64};

}  // namespace

const char* scanBy16(const char* from, const char* to, const IniProbes& probes) {
  return IniLanes<16>(probes).scan(from, to);
}

std::span<const IniKeyScan> usableIniKeyScans() {
  return std::span(scans).first(usableLaneWidths());
}

}  // namespace veltrano
