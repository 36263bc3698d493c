#include "database/access/storage/header.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "base/text/code_page.h"
#include "database/access/storage/encryption/information.h"
#include "database/access/storage/header_mask.h"
#include "database/access/storage/text_codec.h"

namespace veltrano::access {

// Offset Size
//   0x00    4  00 01 00 00
//   0x04   16  engine name, NUL at the end
//   0x14    4  version, the low byte counts
//   0x18       masked from here on (header_mask.h)
//   0x3A    2  Jet 3: text order
//   0x3C    2  code page
//   0x3E    4  key of the page encoding or encryption, 0 for neither
//   0x42   20  Jet 3: password in the code page, padded with zeros
//   0x42   40  Jet 4: password in UTF-16, padded with zeros, XORed with the mask that follows from the date
//   0x6E    4  Jet 4: text order, u16 language, 0, u8 version
//   0x72    8  Jet 4: date of creation; its whole days, as four bytes repeated, are the password's mask
//  0x299    2  .accdb: size of the description of the encryption, not masked, which follows

namespace {

constexpr std::size_t jet3TextOrderAt = 0x3A;
constexpr std::size_t codePageAt = 0x3C;
constexpr std::size_t pageKeyAt = 0x3E;
constexpr std::size_t passwordAt = 0x42;
constexpr std::size_t jet3PasswordSize = 20;
constexpr std::size_t jet4PasswordSize = 40;
constexpr std::size_t textOrderAt = 0x6E;
constexpr std::size_t creationAt = 0x72;
constexpr std::size_t encryptionAt = 0x299;
constexpr std::size_t encryptionEnd = 0xE00;

// The numeric value of the password's mask. Dates that do not fit (no such file is known) mask with zeros.
std::uint32_t passwordMask(const std::uint8_t* header) {
  const double date = loadDouble(header + creationAt);
  if (!(date > -2147483648.0 && date < 2147483648.0)) {
    return 0;
  }
  return static_cast<std::uint32_t>(static_cast<std::int32_t>(date));
}

std::string storedPassword(const std::uint8_t* header, Version version, std::uint16_t codePage) {
  if (isJet3(version)) {
    const Bytes bytes(header + passwordAt, jet3PasswordSize);
    const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
    return codePageToUtf8(codePage, bytes.first(static_cast<std::size_t>(end - bytes.begin())))
        .value_or(std::string());
  }
  const std::uint32_t mask = passwordMask(header);
  std::u16string text;
  for (std::size_t i = 0; i < jet4PasswordSize; i += 2) {
    const std::uint32_t part = i % 4 == 0 ? mask & 0xFFFF : mask >> 16;
    const auto unit = static_cast<char16_t>(load16(header + passwordAt + i) ^ part);
    if (unit == 0) {
      break;
    }
    text.push_back(unit);
  }
  return utf16ToUtf8(text);
}

// The engine's name is 15 characters and a NUL.
bool isEngine(Bytes bytes, std::string_view name) {
  constexpr std::size_t nameAt = 4;
  return std::memcmp(bytes.data() + nameAt, name.data(), name.size()) == 0 &&
         bytes[nameAt + name.size()] == 0;
}

// The version byte of a file that begins like a database.
Result<Version> versionOf(Bytes bytes) {
  constexpr std::array<std::uint8_t, 4> begin = {0, 1, 0, 0};
  constexpr std::size_t versionAt = 0x14;
  if (bytes.size() < 2048 || !std::equal(begin.begin(), begin.end(), bytes.begin())) {
    return {Failure::damaged, "not an Access database"};
  }
  if (isEngine(bytes, "MSISAM Database")) {
    return {Failure::other, "a money program's variant of the format"};
  }
  const std::uint8_t version = bytes[versionAt];
  const bool jet = isEngine(bytes, "Standard Jet DB") && version <= 1;
  const bool ace = isEngine(bytes, "Standard ACE DB") && version >= 2 && version <= 6;
  if (!jet && !ace) {
    return {Failure::other, "not an Access database of a known version"};
  }
  return static_cast<Version>(version);
}

// What takes the encryption off the pages of an .accdb file.
Result<std::unique_ptr<PageCipher>> unlockFile(Bytes page, std::uint32_t key, std::string_view password) {
  const std::size_t size = load16(page.data() + encryptionAt);
  const std::size_t from = encryptionAt + 2;
  if (size > encryptionEnd - from) {
    return unknownEncryption("its description is larger than its place");
  }
  return unlock(page.subspan(from, size), key, password);
}

}  // namespace

Result<Header> readHeader(Bytes bytes, std::string_view password) {
  const auto version = versionOf(bytes);
  if (!version) {
    return version.status();
  }
  if (bytes.size() < pageSizeOf(*version)) {
    return {Failure::damaged, "the header page is cut off"};
  }
  std::array<std::uint8_t, headerSize> page = {};
  std::copy_n(bytes.begin(), std::min(bytes.size(), page.size()), page.begin());
  maskHeader(page, *version);

  Header header;
  header.version = *version;
  if (const std::uint16_t codePage = load16(page.data() + codePageAt); codePage != 0) {
    header.codePage = codePage;
  }
  header.textOrder =
      isJet3(*version) ? load16(page.data() + jet3TextOrderAt) : load32(page.data() + textOrderAt);
  if (isJet3(*version) && !isKnownCodePage(header.codePage)) {
    return {Failure::other, "the file's texts are in a code page that the system cannot convert"};
  }
  const std::uint32_t key = load32(page.data() + pageKeyAt);
  const bool ace = *version >= Version::ace12;
  if (ace && key != 0) {
    auto cipher = unlockFile(page, key, password);
    if (!cipher) {
      return cipher.status();
    }
    header.cipher = *std::move(cipher);
    return header;
  }
  // The password field of .accdb files is not used.
  const std::string wanted = ace ? std::string() : storedPassword(page.data(), *version, header.codePage);
  if (wanted != password) {
    return {Failure::notAllowed, "the password is wrong"};
  }
  if (key != 0) {
    header.cipher = makePageEncoding(key);
  }
  return header;
}

}  // namespace veltrano::access
