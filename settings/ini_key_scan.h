#ifndef VELTRANO_SETTINGS_INI_KEY_SCAN_H
#define VELTRANO_SETTINGS_INI_KEY_SCAN_H

// Ruling out that lines of a key begin somewhere, as fast as memory is read and however short the lines are.

#include <cstddef>
#include <span>

namespace veltrano {

/// What a byte in a line of the key must be once the bit that tells its cases apart is set.
struct IniProbe {
  std::size_t offset;  ///< from the begin of the line
  char lower;
  char caseBit;
};

/// Three bytes are enough to rule out nearly all other lines.
struct IniProbes {
  std::size_t sign;  ///< offset of the "=" behind the key
  IniProbe first;
  IniProbe second;
};

/// Where a scan stops, lines of the key may begin at so many bytes.
constexpr std::size_t iniWindow = 64;

/// Lines of the key may begin from `from` to before `to`, and the text goes on for `sign` bytes behind `to`.
/// Returns the first place from which on a window of that range must be looked at closely; lines that begin
/// before it are none of the key.
using IniKeyScan = const char* (*)(const char* from, const char* to, const IniProbes& probes);

/// All that the processor can run, the fastest one last; they differ in speed only.
std::span<const IniKeyScan> usableIniKeyScans();

}  // namespace veltrano

#endif
