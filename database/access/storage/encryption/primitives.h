#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_ENCRYPTION_PRIMITIVES_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_ENCRYPTION_PRIMITIVES_H

// Hashes, ciphers and Base64, all of them those of Mbed TLS, and memory that is wiped.

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

#include "database/access/storage/bytes.h"

namespace veltrano::access {

/// Overwrites bytes in a way that the compiler does not leave out.
void wipe(MutableBytes bytes);

/// Bytes that are wiped at the end of their life: keys, passwords and what leads to them. Never grows, so that
/// no copy is left behind.
class Secret {
 public:
  Secret() = default;
  explicit Secret(std::size_t size) : bytes_(size) {}
  explicit Secret(Bytes bytes) : bytes_(bytes.begin(), bytes.end()) {}
  Secret(Secret&& other) noexcept = default;
  Secret& operator=(Secret&& other) noexcept {
    bytes_.swap(other.bytes_);
    return *this;
  }
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;
  ~Secret() { wipe(bytes_); }

  [[nodiscard]] Bytes bytes() const { return bytes_; }
  [[nodiscard]] MutableBytes bytes() { return bytes_; }
  [[nodiscard]] Bytes first(std::size_t size) const { return bytes().first(size); }

 private:
  std::vector<std::uint8_t> bytes_;
};

enum class Hash : std::uint8_t { sha1, sha512 };

/// In bytes.
constexpr std::size_t hashSize(Hash hash) {
  return hash == Hash::sha1 ? 20 : 64;
}
/// The hash of the parts, one after the other.
Secret hashOf(Hash hash, std::initializer_list<Bytes> parts);
/// The hash of salt and password, then so many times that of the round's number (four bytes, from 0) and the hash
/// before: what makes trying passwords slow.
Secret stretchedHash(Hash hash, Bytes salt, Bytes password, std::uint32_t rounds);

/// Encodes or decodes, which is the same, from the start of the key's stream. The key has 1 to 256 bytes.
void rc4(Bytes key, MutableBytes bytes);

enum class Way : std::uint8_t { decode, encode };
using AesBlock = std::array<std::uint8_t, 16>;

// AES with a key of 16, 24 or 32 bytes. The bytes are whole blocks of 16; nothing is padded.

/// Each block by itself (ECB).
void aesBlocks(Way way, Bytes key, MutableBytes bytes);
/// Each block chained to the one before (CBC), the first one to `start`.
void aesChain(Way way, Bytes key, AesBlock start, MutableBytes bytes);

/// Empty if that is not Base64.
std::optional<std::vector<std::uint8_t>> fromBase64(std::string_view text);

}  // namespace veltrano::access

#endif
