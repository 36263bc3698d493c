#include "tests/short_memory.h"

#include <cstdlib>
#include <new>

std::size_t veltrano::tests::largestBlock = memoryEnough;

// The allocation functions of the program, in a file of their own: otherwise the compiler looks through them.
void* operator new(std::size_t size) {
  void* const block = size > veltrano::tests::largestBlock ? nullptr : std::malloc(size);
  return block != nullptr ? block : throw std::bad_alloc();
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}
