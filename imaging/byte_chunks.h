#ifndef VELTRANO_IMAGING_BYTE_CHUNKS_H
#define VELTRANO_IMAGING_BYTE_CHUNKS_H

// Encoded bytes on their way to a file: they grow in pieces, so that nothing is moved and no memory is held
// twice.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace veltrano {

class ByteChunks {
 public:
  /// A fresh piece of memory to write to, empty if memory is short; the pieces before it count as full. Never
  /// throws: C code that cannot be unwound calls it.
  std::span<std::uint8_t> grow() noexcept;
  /// The last piece ends with `unused` free bytes.
  void finish(std::size_t unused) { unused_ = unused; }
  /// Adds bytes; false if memory is short. Not to be mixed with grow.
  bool append(const std::uint8_t* bytes, std::size_t count) noexcept;

  /// The bytes in order, borrowed.
  [[nodiscard]] std::vector<std::string_view> pieces() const;

 private:
  static constexpr std::size_t chunkSize = std::size_t{1} << 18;
  std::vector<std::unique_ptr<std::uint8_t[]>> chunks_;
  std::size_t unused_ = 0;
};

}  // namespace veltrano

#endif
