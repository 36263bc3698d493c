#include "pdf/graphics/content_text.h"

namespace veltrano {

void ContentText::grow(std::size_t count) {
  constexpr std::size_t smallest = 4096;
  const std::size_t length = size();
  const std::size_t capacity = std::max({smallest, 2 * length, length + count});
  auto larger = std::make_unique_for_overwrite<char[]>(capacity);
  std::copy_n(bytes_.get(), length, larger.get());
  bytes_ = std::move(larger);
  next_ = bytes_.get() + length;
  end_ = bytes_.get() + capacity;
}

}  // namespace veltrano
