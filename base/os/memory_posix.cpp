#include "base/os/memory.h"

#include <sys/mman.h>

#include <new>

namespace veltrano {

MemoryBlock allocateBlock(std::size_t size, Pages pages) {
  constexpr std::size_t largePage = std::size_t{2} << 20;
  // Only where the rest of the last large page is a small part of the whole.
  const bool large = pages == Pages::large && size >= 2 * largePage && size % largePage == 0;
  auto* block = static_cast<char*>(large ? std::aligned_alloc(largePage, size) : std::malloc(size));
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  if (large) {
    ::madvise(block, size, MADV_HUGEPAGE);  // a wish: without it the pages are small
  }
  return MemoryBlock(block);
}

}  // namespace veltrano
