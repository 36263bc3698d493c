#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_ENCRYPTION_INFORMATION_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_ENCRYPTION_INFORMATION_H

// How an .accdb file is encrypted, as its header page says: with which ciphers, and what a password is checked
// against.

#include <cstdint>
#include <variant>
#include <vector>

#include "base/status.h"
#include "database/access/storage/bytes.h"
#include "database/access/storage/encryption/primitives.h"

namespace veltrano::access {

/// RC4 or AES, both by SHA-1: Access 2007, and older files converted by later versions.
struct ProviderEncryption {
  enum class Cipher : std::uint8_t { rc4, aes };
  Cipher cipher = Cipher::rc4;
  std::uint32_t keyBits = 0;  ///< 40 to 128 for RC4; 128, 192 or 256 for AES
  std::uint32_t rounds = 0;   ///< of the password's hash
  std::vector<std::uint8_t> salt;
  std::vector<std::uint8_t> verifier;  ///< encrypted: 16 bytes, and their hash of 20 (RC4) or 32 bytes (AES)
};

/// AES in chains, by any hash: Access 2010 and later.
struct AgileEncryption {
  /// The attributes that keys have in common.
  struct Key {
    Hash hash = Hash::sha1;
    std::uint32_t bits = 0;          ///< 128, 192 or 256
    std::vector<std::uint8_t> salt;  ///< 16 bytes
  };
  Key pages;
  Key password;
  std::uint32_t rounds = 0;
  std::vector<std::uint8_t> verifierInput;  ///< these three are encrypted: whole blocks of AES
  std::vector<std::uint8_t> verifierHash;
  std::vector<std::uint8_t> pagesKey;
};

using Encryption = std::variant<ProviderEncryption, AgileEncryption>;

/// The most rounds that a password's hash may take: a few seconds of work. Access writes 100,000.
inline constexpr std::uint32_t mostRounds = 10'000'000;

/// Fails, with a reason for the trace, if the bytes are damaged or describe an encryption that is not known
/// here. All sizes that a success gives fit the ciphers.
Result<Encryption> readEncryption(Bytes information);

/// The part of it for the XML of Access 2010 and later (agile_information.cpp).
Result<Encryption> readAgileEncryption(Bytes xml);

/// "the file is encrypted in a way that is not known: `what`"
Status unknownEncryption(const std::string& what);

}  // namespace veltrano::access

#endif
