#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_ENCRYPTION_PAGE_CIPHER_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_ENCRYPTION_PAGE_CIPHER_H

// What turns pages as the file has them into plain ones, and back. One object serves one open file; its keys are
// wiped when it goes.

#include <cstdint>
#include <memory>
#include <string_view>

#include "base/status.h"
#include "database/access/storage/bytes.h"
#include "database/access/storage/encryption/primitives.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

class PageCipher {
 public:
  /// Which encoded bytes of a page a plain one has a part in.
  enum class Spread : std::uint8_t {
    byte,   ///< that one
    block,  ///< its block of 16
    chain,  ///< its block and all after it
  };
  struct Stretch {
    std::size_t begin;
    std::size_t end;
  };

  /// `key`: that of the header page.
  PageCipher(std::uint32_t key, Spread spread) : key_(key), spread_(spread) {}
  PageCipher(const PageCipher&) = delete;
  PageCipher& operator=(const PageCipher&) = delete;
  virtual ~PageCipher() = default;

  /// In place, a whole page other than the first. The same plain bytes always give the same encoded ones.
  void decode(PageNumber page, MutableBytes bytes) const { apply(Way::decode, blockOf(page), bytes); }
  void encode(PageNumber page, MutableBytes bytes) const { apply(Way::encode, blockOf(page), bytes); }
  /// The encoded bytes of a page of that size that may change if the plain ones of a stretch do.
  [[nodiscard]] Stretch changedBy(Stretch plain, std::size_t pageSize) const;

 protected:
  /// What makes the key of each page another one.
  using Block = std::array<std::uint8_t, 4>;
  virtual void apply(Way way, const Block& block, MutableBytes bytes) const = 0;

 private:
  [[nodiscard]] Block blockOf(PageNumber page) const {
    Block block;
    store32(block.data(), key_ ^ page);
    return block;
  }

  std::uint32_t key_;
  Spread spread_;
};

/// The page encoding of .mdb files, which no password protects.
std::unique_ptr<PageCipher> makePageEncoding(std::uint32_t key);

/// The cipher of an .accdb file, from what its header page says and the password (UTF-8). Fails, with a reason
/// for the trace, if the password is wrong or the encryption is not known. May take tenths of a second, as the
/// formats intend.
Result<std::unique_ptr<PageCipher>> unlock(Bytes information, std::uint32_t key, std::string_view password);

}  // namespace veltrano::access

#endif
