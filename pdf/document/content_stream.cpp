#include "pdf/document/content_stream.h"

#include "base/trace.h"

namespace veltrano {

char* ContentStream::grow(char* next, std::size_t count) {
  constexpr std::size_t smallest = 4096;
  const std::size_t ended = size();
  const auto length = static_cast<std::size_t>(next - bytes_.get());
  const std::size_t capacity = std::max({smallest, 2 * length, length + count});
  auto larger = std::make_unique_for_overwrite<char[]>(capacity);
  std::copy_n(bytes_.get(), length, larger.get());
  bytes_ = std::move(larger);
  next_ = bytes_.get() + ended;
  end_ = bytes_.get() + capacity;
  return bytes_.get() + length;
}

void ContentWriter::traceLostLine() {
  trace("A number is not finite; the operator that needs it is left out of the page.");
}

}  // namespace veltrano
