#include "base/lane_widths.h"

namespace veltrano {

namespace {

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

std::size_t usableLaneWidths() {
  static const std::size_t usable = countUsable();
  return usable;
}

}  // namespace veltrano
