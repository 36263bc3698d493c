#include "imaging/byte_chunks.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace veltrano {

std::span<std::uint8_t> ByteChunks::grow() noexcept {
  try {
    chunks_.push_back(std::make_unique_for_overwrite<std::uint8_t[]>(chunkSize));
  } catch (const std::bad_alloc&) {
    return {};
  }
  unused_ = chunkSize;
  return {chunks_.back().get(), chunkSize};
}

bool ByteChunks::append(const std::uint8_t* bytes, std::size_t count) noexcept {
  while (count > 0) {
    if (unused_ == 0 && grow().empty()) return false;
    const std::size_t part = std::min(count, unused_);
    std::memcpy(chunks_.back().get() + (chunkSize - unused_), bytes, part);
    bytes += part;
    count -= part;
    unused_ -= part;
  }
  return true;
}

std::vector<std::string_view> ByteChunks::pieces() const {
  std::vector<std::string_view> views;
  views.reserve(chunks_.size());
  for (const auto& chunk : chunks_) {
    const std::size_t length = &chunk == &chunks_.back() ? chunkSize - unused_ : chunkSize;
    views.emplace_back(reinterpret_cast<const char*>(chunk.get()), length);
  }
  return views;
}

}  // namespace veltrano
