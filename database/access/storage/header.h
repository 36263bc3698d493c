#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_HEADER_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_HEADER_H

// The header page: which version a file has, what its texts are, how its pages are encoded, and whether the
// password is right.

#include <cstdint>
#include <memory>
#include <string_view>

#include "base/status.h"
#include "database/access/storage/bytes.h"
#include "database/access/storage/encryption/page_cipher.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

struct Header {
  Version version = Version::jet4;
  std::uint16_t codePage = 1252;
  std::uint32_t textOrder = 0;                   ///< low word: language; high byte: version
  std::unique_ptr<PageCipher> cipher = nullptr;  ///< null: the pages are plain
};

/// The most bytes of the file that readHeader wants.
inline constexpr std::size_t headerSize = 4096;

/// Reads the first bytes of a file and checks the password (UTF-8, empty for none). Fails if the engine cannot
/// read such files, or the password is wrong.
Result<Header> readHeader(Bytes bytes, std::string_view password);

}  // namespace veltrano::access

#endif
