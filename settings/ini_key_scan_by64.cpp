#include "settings/ini_key_scan_lanes.h"

namespace veltrano {

const char* scanBy64(const char* from, const char* to, const IniProbes& probes) {
  return IniLanes<64>(probes).scan(from, to);
}

}  // namespace veltrano
