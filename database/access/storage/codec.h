#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_CODEC_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_CODEC_H

// The masks that lie over the bytes of a file: that of the header page, and the page encoding of Jet 3 and
// Jet 4.

#include <cstdint>

#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

/// Takes the fixed mask off the header page, or puts it on: the same operation. `header` is the whole page.
void maskHeader(MutableBytes header, Version version);

/// The encoding of whole pages under a key. Key 0 leaves them as they are.
class PageCodec {
 public:
  explicit PageCodec(std::uint32_t key = 0) : key_(key) {}

  [[nodiscard]] bool encodes() const { return key_ != 0; }
  /// Decodes or encodes a page in place: the same operation. Page 0 and files without a key stay as they are.
  void apply(PageNumber page, MutableBytes bytes) const;

 private:
  std::uint32_t key_;
};

}  // namespace veltrano::access

#endif
