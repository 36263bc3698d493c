#ifndef VELTRANO_TESTS_SHORT_MEMORY_H
#define VELTRANO_TESTS_SHORT_MEMORY_H

#include <cstddef>
#include <limits>

namespace veltrano::tests {

constexpr std::size_t memoryEnough = std::numeric_limits<std::size_t>::max();
/// The heap gives no block that is larger.
extern std::size_t largestBlock;

}  // namespace veltrano::tests

#endif
