// What the header page says of the encryption, and the password given to it. The first byte chooses one of the known
// descriptions (encrypted_files.h); the others change it, three bytes each: u16 offset, u8 value. If there is no such
// description, the rest is taken as it is.

#include <cstdlib>
#include <string>
#include <variant>

#include "database/access/storage/encryption/information.h"
#include "database/access/storage/encryption/page_cipher.h"
#include "encrypted_files.h"

using namespace veltrano::access;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::size_t chosen = *data++;
  --size;
  std::string text(data, data + size);
  std::string password = "x";
  if (chosen < encryptedSamples().size()) {
    const EncryptedSample& sample = encryptedSamples()[chosen];
    text = sample.information;
    password = sample.password;
    for (; size >= 3; data += 3, size -= 3) {
      text[load16(data) % text.size()] = static_cast<char>(data[2]);
    }
  }
  const Bytes information(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  const auto encryption = readEncryption(information);
  // Rounds take time and find nothing.
  constexpr std::uint32_t fewRounds = 100;
  if (!encryption || std::visit([](const auto& kind) { return kind.rounds; }, *encryption) > fewRounds) {
    return 0;
  }
  if (const auto cipher = unlock(information, 0x01020304, password)) {
    const std::string plain(4096, 'p');
    std::string page = plain;
    const MutableBytes bytes(reinterpret_cast<std::uint8_t*>(page.data()), page.size());
    (*cipher)->encode(7, bytes);
    (*cipher)->decode(7, bytes);
    if (page != plain) {
      std::abort();
    }
  }
  return 0;
}
