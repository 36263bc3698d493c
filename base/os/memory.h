#ifndef VELTRANO_BASE_OS_MEMORY_H
#define VELTRANO_BASE_OS_MEMORY_H

// Memory for data that is large and written once.

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace veltrano {

struct FreeBlock {
  void operator()(char* block) const { std::free(block); }
};
using MemoryBlock = std::unique_ptr<char[], FreeBlock>;

enum class Pages { small, large };

/// `size` (not 0) bytes of undefined content. Large pages are a wish, for blocks of some megabytes: fetching memory
/// in small pages costs more than filling it. Throws std::bad_alloc.
MemoryBlock allocateBlock(std::size_t size, Pages pages);

}  // namespace veltrano

#endif
