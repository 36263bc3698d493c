#ifndef VELTRANO_BASE_LANE_WIDTHS_H
#define VELTRANO_BASE_LANE_WIDTHS_H

#include <cstddef>

namespace veltrano {

/// How many of the widths of Lanes 16, 32 and 64 this processor has the instructions for, from the smallest
/// up; at least one.
std::size_t usableLaneWidths();

}  // namespace veltrano

#endif
