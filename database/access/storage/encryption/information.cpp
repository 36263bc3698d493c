#include "database/access/storage/encryption/information.h"

#include <algorithm>
#include <string_view>

namespace veltrano::access {

// Offset Size
//      0    2  version.major
//      2    2  version.minor
//
// Version 4.4 (agile):
//      4    4  0x40
//      8       XML
//
// Versions 2.2, 3.2 and 4.2 (provider):
//      4    4  flags
//      8    4  size of the description that follows
//     12    4  the flags again
//     16    4  0
//     20    4  cipher
//     24    4  hash
//     28    4  bits of the key
//     32    4  type of the provider
//     36    8  0
//     44       name of the provider, UTF-16 with NUL
// After the description:
//      0    4  size of the salt, 16
//      4   16  salt
//     20   16  encrypted verifier
//     36    4  size of the verifier's hash, 20
//     40       encrypted hash of the verifier: 20 bytes (RC4) or 32 (AES)

namespace {

constexpr std::uint32_t flagCryptoApi = 0x04;
constexpr std::uint32_t flagForeign = 0x10;
constexpr std::uint32_t flagAes = 0x20;

constexpr std::uint32_t cipherRc4 = 0x6801;
constexpr std::uint32_t cipherAes128 = 0x660E;
constexpr std::uint32_t cipherAes192 = 0x660F;
constexpr std::uint32_t cipherAes256 = 0x6610;
constexpr std::uint32_t hashSha1 = 0x8004;

constexpr std::uint32_t standardRounds = 50'000;

// Of a description without a key length: that of the provider.
std::uint32_t rc4BitsOf(Bytes providerName) {
  constexpr std::u16string_view mark = u" Base ";
  std::u16string name;
  for (std::size_t i = 0; i + 2 <= providerName.size(); i += 2) {
    name.push_back(static_cast<char16_t>(load16(providerName.data() + i)));
  }
  return name.empty() || name.front() == 0 || name.find(mark) != std::u16string::npos ? 40 : 128;
}

// Sets what the description says. False if the key does not fit the cipher, or the cipher is not known.
bool takeCipher(Bytes description, std::uint32_t flags, ProviderEncryption& encryption) {
  std::uint32_t cipher = load32(description.data() + 8);
  if (cipher == 0) {
    cipher = (flags & flagAes) != 0 ? cipherAes128 : cipherRc4;
  }
  const std::uint32_t bits = load32(description.data() + 16);
  if (cipher == cipherRc4) {
    encryption.keyBits = bits != 0 ? bits : rc4BitsOf(description.subspan(32));
    return (flags & flagAes) == 0 && encryption.keyBits % 8 == 0 && encryption.keyBits >= 40 &&
           encryption.keyBits <= 128;
  }
  encryption.cipher = ProviderEncryption::Cipher::aes;
  encryption.keyBits = cipher == cipherAes128 ? 128 : cipher == cipherAes192 ? 192 : 256;
  // Without the flag it is how AES was switched on for files that had been made before there was a flag.
  encryption.rounds = (flags & flagAes) != 0 ? standardRounds : 0;
  return cipher >= cipherAes128 && cipher <= cipherAes256 &&
         (bits == encryption.keyBits || (bits == 0 && cipher == cipherAes128));
}

Result<Encryption> readProviderEncryption(Bytes information) {
  constexpr std::size_t descriptionAt = 12;
  constexpr std::size_t leastDescription = 32;
  constexpr std::size_t saltSize = 16;
  constexpr std::size_t verifierSize = 16;
  if (information.size() < descriptionAt + leastDescription) {
    return unknownEncryption("its description is cut off");
  }
  const std::uint32_t flags = load32(information.data() + 4);
  const std::uint32_t size = load32(information.data() + 8);
  const Bytes rest = information.subspan(descriptionAt);
  if (size < leastDescription || size > rest.size()) {
    return unknownEncryption("its description is cut off");
  }
  const Bytes description = rest.first(size);
  const Bytes check = rest.subspan(size);
  if ((flags & flagCryptoApi) == 0 || (flags & flagForeign) != 0) {
    return unknownEncryption("its provider is not that of Access");
  }
  ProviderEncryption encryption;
  const std::uint32_t hash = load32(description.data() + 12);
  if (!takeCipher(description, flags, encryption) || (hash != hashSha1 && hash != 0)) {
    return unknownEncryption("another cipher, key length or hash");
  }
  const std::size_t hashBytes = encryption.cipher == ProviderEncryption::Cipher::rc4 ? 20 : 32;
  if (check.size() < 40 + hashBytes || load32(check.data()) != saltSize ||
      load32(check.data() + 36) != hashSize(Hash::sha1)) {
    return unknownEncryption("the check of the password is damaged");
  }
  const Bytes salt = check.subspan(4, saltSize);
  const Bytes verifier = check.subspan(4 + saltSize, verifierSize);
  const Bytes verifierHash = check.subspan(40, hashBytes);
  encryption.salt.assign(salt.begin(), salt.end());
  encryption.verifier.assign(verifier.begin(), verifier.end());
  encryption.verifier.insert(encryption.verifier.end(), verifierHash.begin(), verifierHash.end());
  return Encryption(std::move(encryption));
}

}  // namespace

Status unknownEncryption(const std::string& what) {
  return {Failure::other, "the file is encrypted in a way that is not known: " + what};
}

Result<Encryption> readEncryption(Bytes information) {
  constexpr std::uint32_t agileReserved = 0x40;
  if (information.size() < 8) {
    return unknownEncryption("its description is missing");
  }
  const std::uint16_t major = load16(information.data());
  const std::uint16_t minor = load16(information.data() + 2);
  if (major == 4 && minor == 4 && load32(information.data() + 4) == agileReserved) {
    return readAgileEncryption(information.subspan(8));
  }
  if (major >= 2 && major <= 4 && minor == 2) {
    return readProviderEncryption(information);
  }
  return unknownEncryption("version " + std::to_string(major) + "." + std::to_string(minor));
}

}  // namespace veltrano::access
