// Opens a database whose header page says something else of its encryption. The first byte chooses one of the
// known descriptions (encrypted_files.h); the others change the file, four bytes each: u24 offset, u8 value,
// most of them in the header page. If there is no such description, the rest of the input is the description.

#include <cstdlib>
#include <string>
#include <variant>

#include "damaged_file.h"
#include "database/access/storage/encryption/information.h"
#include "database/access/storage/encryption/page_cipher.h"
#include "hostile.h"
#include "simulated_disk.h"

using namespace veltrano::access;

namespace {

constexpr std::size_t pageSize = 4096;
constexpr std::size_t descriptionAt = 0x299;

// Rounds take time and find nothing.
bool asksForManyRounds(Bytes information) {
  constexpr std::uint32_t few = 100;
  const auto encryption = readEncryption(information);
  return encryption && std::visit([](const auto& kind) { return kind.rounds; }, *encryption) > few;
}

void tryCipher(Bytes information, const std::string& password) {
  if (const auto cipher = unlock(information, 0x01020304, password)) {
    const std::string plain(pageSize, 'p');
    std::string page = plain;
    const MutableBytes bytes(reinterpret_cast<std::uint8_t*>(page.data()), page.size());
    (*cipher)->encode(7, bytes);
    (*cipher)->decode(7, bytes);
    if (page != plain) {
      std::abort();
    }
  }
}

std::vector<std::string> storedFiles() {
  std::vector<std::string> files;
  for (const EncryptedSample& sample : encryptedSamples()) {
    files.push_back(GoodFile(&sample).stored());
  }
  return files;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<std::string> files = storedFiles();
  if (size == 0) {
    return 0;
  }
  const std::size_t chosen = *data++;
  --size;
  std::string file = files[chosen % files.size()];
  auto* const bytes = reinterpret_cast<std::uint8_t*>(file.data());
  if (chosen < files.size()) {
    for (; size >= 4; data += 4, size -= 4) {
      const std::size_t at = load24(data);
      file[at < 0x800000 ? at % pageSize : at % file.size()] = static_cast<char>(data[3]);
    }
  } else {
    size = std::min<std::size_t>(size, 0xE00 - descriptionAt - 2);
    store16(bytes + descriptionAt, static_cast<std::uint32_t>(size));
    std::copy_n(data, size, bytes + descriptionAt + 2);
  }
  const Bytes information(bytes + descriptionAt + 2,
                          std::min<std::size_t>(load16(bytes + descriptionAt), pageSize - descriptionAt - 2));
  if (!asksForManyRounds(information)) {
    const std::string& password = encryptedSamples()[chosen % files.size()].password;
    tryCipher(information, password);
    SimulatedDisk disk;
    disk.put("bad.accdb", std::move(file));
    readHostileFile("bad.accdb", disk, password);
  }
  return 0;
}
