#include "database/access/storage/encryption/primitives.h"

#include <mbedtls/aes.h>
#include <mbedtls/arc4.h>
#include <mbedtls/base64.h>
#include <mbedtls/platform_util.h>
#include <mbedtls/sha1.h>
#include <mbedtls/sha512.h>

#include <algorithm>

namespace veltrano::access {

// The library's results are not looked at: its functions fail on wrong sizes only, which this header excludes.

namespace {

/// `target` may lie within the parts.
void hashInto(Hash kind, std::initializer_list<Bytes> parts, std::uint8_t* target) {
  if (kind == Hash::sha1) {
    mbedtls_sha1_context state;
    mbedtls_sha1_init(&state);
    (void)mbedtls_sha1_starts_ret(&state);
    for (const Bytes part : parts) {
      (void)mbedtls_sha1_update_ret(&state, part.data(), part.size());
    }
    (void)mbedtls_sha1_finish_ret(&state, target);
    mbedtls_sha1_free(&state);
    return;
  }
  mbedtls_sha512_context state;
  mbedtls_sha512_init(&state);
  (void)mbedtls_sha512_starts_ret(&state, 0);
  for (const Bytes part : parts) {
    (void)mbedtls_sha512_update_ret(&state, part.data(), part.size());
  }
  (void)mbedtls_sha512_finish_ret(&state, target);
  mbedtls_sha512_free(&state);
}

class Aes {
 public:
  Aes(Way way, Bytes key) : mode_(way == Way::decode ? MBEDTLS_AES_DECRYPT : MBEDTLS_AES_ENCRYPT) {
    // The library computes its tables at the first key, without a lock.
    [[maybe_unused]] static const bool tablesMade = makeTables();
    mbedtls_aes_init(&state_);
    const auto bits = static_cast<unsigned>(key.size() * 8);
    (void)(way == Way::decode ? mbedtls_aes_setkey_dec(&state_, key.data(), bits)
                              : mbedtls_aes_setkey_enc(&state_, key.data(), bits));
  }
  Aes(const Aes&) = delete;
  Aes& operator=(const Aes&) = delete;
  ~Aes() { mbedtls_aes_free(&state_); }

  void blocks(MutableBytes bytes) {
    for (std::size_t at = 0; at + blockSize <= bytes.size(); at += blockSize) {
      (void)mbedtls_aes_crypt_ecb(&state_, mode_, bytes.data() + at, bytes.data() + at);
    }
  }
  void chain(AesBlock& start, MutableBytes bytes) {
    (void)mbedtls_aes_crypt_cbc(&state_, mode_, bytes.size(), start.data(), bytes.data(), bytes.data());
  }

 private:
  static constexpr std::size_t blockSize = sizeof(AesBlock);

  static bool makeTables() {
    mbedtls_aes_context state;
    mbedtls_aes_init(&state);
    const bool made = mbedtls_aes_setkey_enc(&state, AesBlock().data(), 8 * blockSize) == 0;
    mbedtls_aes_free(&state);
    return made;
  }

  mbedtls_aes_context state_;
  int mode_;
};

}  // namespace

void wipe(MutableBytes bytes) {
  mbedtls_platform_zeroize(bytes.data(), bytes.size());
}

Secret hashOf(Hash hash, std::initializer_list<Bytes> parts) {
  Secret result(hashSize(hash));
  hashInto(hash, parts, result.bytes().data());
  return result;
}

Secret stretchedHash(Hash hash, Bytes salt, Bytes password, std::uint32_t rounds) {
  constexpr std::size_t numberSize = 4;
  Secret text(numberSize + hashSize(hash));
  const MutableBytes result = text.bytes().subspan(numberSize);
  hashInto(hash, {salt, password}, result.data());
  for (std::uint32_t round = 0; round < rounds; ++round) {
    store32(text.bytes().data(), round);
    hashInto(hash, {text.bytes()}, result.data());
  }
  return Secret(Bytes(result));
}

void rc4(Bytes key, MutableBytes bytes) {
  mbedtls_arc4_context state;
  mbedtls_arc4_init(&state);
  mbedtls_arc4_setup(&state, key.data(), static_cast<unsigned>(key.size()));
  (void)mbedtls_arc4_crypt(&state, bytes.size(), bytes.data(), bytes.data());
  mbedtls_arc4_free(&state);
}

void aesBlocks(Way way, Bytes key, MutableBytes bytes) {
  Aes(way, key).blocks(bytes);
}

void aesChain(Way way, Bytes key, AesBlock start, MutableBytes bytes) {
  Aes(way, key).chain(start, bytes);
}

std::optional<std::vector<std::uint8_t>> fromBase64(std::string_view text) {
  std::vector<std::uint8_t> bytes(text.size());
  std::size_t size = 0;
  if (mbedtls_base64_decode(bytes.data(), bytes.size(), &size,
                            reinterpret_cast<const unsigned char*>(text.data()), text.size()) != 0) {
    return std::nullopt;
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace veltrano::access
