#include "database/access/storage/encryption/page_cipher.h"

#include <algorithm>

#include "base/text/utf.h"
#include "database/access/storage/encryption/information.h"

namespace veltrano::access {

namespace {

class PageEncoding final : public PageCipher {
 public:
  explicit PageEncoding(std::uint32_t key) : PageCipher(key, Spread::byte) {}

 protected:
  void apply(Way /*way*/, const Block& block, MutableBytes bytes) const override { rc4(block, bytes); }
};

// --- Access 2007

constexpr std::size_t verifierSize = 16;

// One key for each page, from the hash of the password.
Secret rc4Key(Bytes base, Bytes block, std::uint32_t bits) {
  // A short key is lengthened with zeros, which change the stream.
  Secret key(std::size_t{16});
  const Secret hash = hashOf(Hash::sha1, {base, block});
  const Bytes used = hash.first(bits / 8);
  std::copy(used.begin(), used.end(), key.bytes().begin());
  return key;
}

Secret aesKey(Bytes base, Bytes block, std::uint32_t bits) {
  constexpr std::array<std::uint8_t, 2> pads = {0x36, 0x5C};
  constexpr std::size_t padded = 64;
  const Secret hash = hashOf(Hash::sha1, {base, block});
  Secret both(pads.size() * hashSize(Hash::sha1));
  for (std::size_t half = 0; half < pads.size(); ++half) {
    Secret text(padded);
    std::fill(text.bytes().begin(), text.bytes().end(), pads[half]);
    for (std::size_t i = 0; i < hash.bytes().size(); ++i) {
      text.bytes()[i] ^= hash.bytes()[i];
    }
    const Secret part = hashOf(Hash::sha1, {text.bytes()});
    std::copy(part.bytes().begin(), part.bytes().end(),
              both.bytes().begin() + static_cast<std::ptrdiff_t>(half * hashSize(Hash::sha1)));
  }
  return Secret(both.first(bits / 8));
}

class ProviderCipher final : public PageCipher {
 public:
  ProviderCipher(std::uint32_t key, const ProviderEncryption& encryption, Bytes password)
      : PageCipher(key, encryption.cipher == ProviderEncryption::Cipher::rc4 ? Spread::byte : Spread::block),
        rc4_(encryption.cipher == ProviderEncryption::Cipher::rc4),
        bits_(encryption.keyBits),
        base_(stretchedHash(Hash::sha1, encryption.salt, password, encryption.rounds)) {}

  [[nodiscard]] bool opens(const ProviderEncryption& encryption) const {
    Secret check{Bytes(encryption.verifier)};
    apply(Way::decode, {}, check.bytes());
    const Secret hash = hashOf(Hash::sha1, {check.first(verifierSize)});
    return std::equal(hash.bytes().begin(), hash.bytes().end(),
                      check.bytes().begin() + static_cast<std::ptrdiff_t>(verifierSize));
  }

 protected:
  void apply(Way way, const Block& block, MutableBytes bytes) const override {
    if (rc4_) {
      rc4(rc4Key(base_.bytes(), block, bits_).bytes(), bytes);
    } else {
      aesBlocks(way, aesKey(base_.bytes(), block, bits_).bytes(), bytes);
    }
  }

 private:
  bool rc4_;
  std::uint32_t bits_;
  Secret base_;
};

// --- Access 2010 and later

AesBlock startOf(Bytes bytes) {
  AesBlock start = {};
  std::copy_n(bytes.begin(), std::min(bytes.size(), start.size()), start.begin());
  return start;
}

// One random key for all pages, which a key made of the password has encrypted.
class AgileCipher final : public PageCipher {
 public:
  AgileCipher(std::uint32_t key, const AgileEncryption& encryption, Secret pagesKey)
      : PageCipher(key, Spread::chain), pages_(encryption.pages), key_(std::move(pagesKey)) {}

 protected:
  void apply(Way way, const Block& block, MutableBytes bytes) const override {
    aesChain(way, key_.bytes(), startOf(hashOf(pages_.hash, {pages_.salt, block}).bytes()), bytes);
  }

 private:
  AgileEncryption::Key pages_;
  Secret key_;
};

// Decrypts what the header page holds, under the key that the hash of the password and a purpose make.
Secret openValue(const AgileEncryption& encryption, Bytes hash, std::uint64_t purpose, Bytes value) {
  constexpr std::uint8_t filler = 0x36;
  std::array<std::uint8_t, 8> block;
  store64(block.data(), purpose);
  const Secret derived = hashOf(encryption.password.hash, {hash, block});
  Secret key(std::size_t{encryption.password.bits / 8});
  std::fill(key.bytes().begin(), key.bytes().end(), filler);
  std::copy_n(derived.bytes().begin(), std::min(derived.bytes().size(), key.bytes().size()),
              key.bytes().begin());
  Secret opened(value);
  aesChain(Way::decode, key.bytes(), startOf(encryption.password.salt), opened.bytes());
  return opened;
}

// The key of the pages; empty if the password is wrong.
std::optional<Secret> pagesKeyOf(const AgileEncryption& encryption, Bytes password) {
  // As the format has them, read as little-endian numbers.
  constexpr std::uint64_t forInput = 0x799E4B3B76D2A7FE;
  constexpr std::uint64_t forHash = 0x4E3461306D0FAAD7;
  constexpr std::uint64_t forPages = 0xD6D0ACABE70B6E14;
  const Hash hash = encryption.password.hash;
  const Secret base = stretchedHash(hash, encryption.password.salt, password, encryption.rounds);
  const Secret input = openValue(encryption, base.bytes(), forInput, encryption.verifierInput);
  const Secret stored = openValue(encryption, base.bytes(), forHash, encryption.verifierHash);
  const Secret expected = hashOf(hash, {input.bytes()});
  if (!std::equal(expected.bytes().begin(), expected.bytes().end(), stored.bytes().begin())) {
    return std::nullopt;
  }
  const Secret opened = openValue(encryption, base.bytes(), forPages, encryption.pagesKey);
  return Secret(opened.first(encryption.pages.bits / 8));
}

// UTF-16 without anything around it.
Secret passwordBytes(std::string_view password) {
  std::u16string text = utf8ToUtf16(password, LoneSurrogate::kept);
  Secret bytes(2 * text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    store16(bytes.bytes().data() + 2 * i, text[i]);
  }
  wipe({reinterpret_cast<std::uint8_t*>(text.data()), 2 * text.size()});
  return bytes;
}

std::unique_ptr<PageCipher> open(const ProviderEncryption& encryption, std::uint32_t key, Bytes password) {
  auto cipher = std::make_unique<ProviderCipher>(key, encryption, password);
  return cipher->opens(encryption) ? std::move(cipher) : nullptr;
}

std::unique_ptr<PageCipher> open(const AgileEncryption& encryption, std::uint32_t key, Bytes password) {
  auto pagesKey = pagesKeyOf(encryption, password);
  return pagesKey ? std::make_unique<AgileCipher>(key, encryption, *std::move(pagesKey)) : nullptr;
}

}  // namespace

PageCipher::Stretch PageCipher::changedBy(Stretch plain, std::size_t pageSize) const {
  constexpr std::size_t cipherBlock = sizeof(AesBlock);
  if (spread_ == Spread::byte) {
    return plain;
  }
  const std::size_t begin = plain.begin / cipherBlock * cipherBlock;
  const std::size_t end = (plain.end + cipherBlock - 1) / cipherBlock * cipherBlock;
  return {begin, spread_ == Spread::block ? end : pageSize};
}

std::unique_ptr<PageCipher> makePageEncoding(std::uint32_t key) {
  return std::make_unique<PageEncoding>(key);
}

Result<std::unique_ptr<PageCipher>> unlock(Bytes information, std::uint32_t key, std::string_view password) {
  constexpr std::size_t longestPassword = std::size_t{2} * 255;
  const auto encryption = readEncryption(information);
  if (!encryption) {
    return encryption.status();
  }
  if (password.empty()) {
    return {Failure::notAllowed, "the file is encrypted, and no password was given"};
  }
  const Secret bytes = passwordBytes(password);
  std::unique_ptr<PageCipher> cipher;
  if (bytes.bytes().size() <= longestPassword) {
    cipher = std::visit([&](const auto& kind) { return open(kind, key, bytes.bytes()); }, *encryption);
  }
  if (!cipher) {
    return {Failure::notAllowed, "the password is wrong"};
  }
  return cipher;
}

}  // namespace veltrano::access
