#include "base/os/memory.h"

#include <new>

namespace veltrano {

// Large pages need a privilege that hosts do not have.
MemoryBlock allocateBlock(std::size_t size, Pages) {
  auto* block = static_cast<char*>(std::malloc(size));
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return MemoryBlock(block);
}

}  // namespace veltrano
