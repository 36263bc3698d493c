#include <expat.h>

#include <array>
#include <charconv>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "database/access/storage/encryption/information.h"

namespace veltrano::access {

// encryption
//   keyData                      what the pages are encrypted with
//   keyEncryptors
//     keyEncryptor
//       encryptedKey             what the password opens; has a namespace of its own
//
// Other elements, such as keys for the holders of certificates, are skipped.

namespace {

// As the parser gives names with their namespace.
constexpr std::string_view keyDataName = "http://schemas.microsoft.com/office/2006/encryption|keyData";
constexpr std::string_view encryptedKeyName =
    "http://schemas.microsoft.com/office/2006/keyEncryptor/password|encryptedKey";

constexpr std::size_t blockSize = sizeof(AesBlock);

constexpr std::size_t inBlocks(std::size_t size) {
  return (size + blockSize - 1) / blockSize * blockSize;
}

/// Takes the attributes of an element by their names, and remembers the first one that does not do.
class Attributes {
 public:
  explicit Attributes(const XML_Char** namesAndValues) : at_(namesAndValues) {}

  std::string_view text(const char* name) const {
    for (const XML_Char** pair = at_; *pair != nullptr; pair += 2) {
      if (std::strcmp(*pair, name) == 0) {
        return pair[1];
      }
    }
    return {};
  }
  void expect(const char* name, bool holds) {
    if (!holds && wrong_.empty()) {
      wrong_ = name;
    }
  }
  void expectText(const char* name, std::string_view value) { expect(name, text(name) == value); }
  std::uint32_t number(const char* name, std::uint32_t least, std::uint32_t most) {
    const std::string_view digits = text(name);
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    expect(name,
           error == std::errc() && end == digits.data() + digits.size() && value >= least && value <= most);
    return value;
  }
  std::vector<std::uint8_t> bytes(const char* name) {
    auto value = fromBase64(text(name));
    expect(name, value.has_value());
    return std::move(value).value_or(std::vector<std::uint8_t>());
  }
  /// The name of the first attribute that is missing or not as it must be; empty if none is.
  [[nodiscard]] const std::string& wrong() const { return wrong_; }

 private:
  const XML_Char** at_;
  std::string wrong_;
};

AgileEncryption::Key takeKey(Attributes& attributes) {
  AgileEncryption::Key key;
  key.hash = attributes.text("hashAlgorithm") == "SHA512" ? Hash::sha512 : Hash::sha1;
  attributes.expectText("hashAlgorithm", key.hash == Hash::sha512 ? "SHA512" : "SHA1");
  attributes.expectText("cipherAlgorithm", "AES");
  attributes.expectText("cipherChaining", "ChainingModeCBC");
  attributes.number("blockSize", blockSize, blockSize);
  attributes.number("hashSize", static_cast<std::uint32_t>(hashSize(key.hash)),
                    static_cast<std::uint32_t>(hashSize(key.hash)));
  key.bits = attributes.number("keyBits", 128, 256);
  attributes.expect("keyBits", key.bits % 64 == 0);
  attributes.number("saltSize", blockSize, blockSize);
  key.salt = attributes.bytes("saltValue");
  attributes.expect("saltValue", key.salt.size() == blockSize);
  return key;
}

struct Reader {
  XML_Parser parser = nullptr;
  AgileEncryption encryption;
  bool hasPages = false;
  bool hasPassword = false;
  bool memoryLacks = false;
  std::string wrong;  ///< the first attribute that is

  void takePassword(Attributes& attributes) {
    encryption.password = takeKey(attributes);
    encryption.rounds = attributes.number("spinCount", 0, mostRounds);
    encryption.verifierInput = attributes.bytes("encryptedVerifierHashInput");
    encryption.verifierHash = attributes.bytes("encryptedVerifierHashValue");
    encryption.pagesKey = attributes.bytes("encryptedKeyValue");
    attributes.expect("encryptedVerifierHashInput", encryption.verifierInput.size() == blockSize);
    attributes.expect("encryptedVerifierHashValue",
                      encryption.verifierHash.size() == inBlocks(hashSize(encryption.password.hash)));
  }

  void start(std::string_view name, const XML_Char** namesAndValues) {
    Attributes attributes(namesAndValues);
    if (name == keyDataName && !hasPages) {
      encryption.pages = takeKey(attributes);
      hasPages = true;
    } else if (name == encryptedKeyName && !hasPassword) {
      takePassword(attributes);
      hasPassword = true;
    }
    if (wrong.empty()) {
      wrong = attributes.wrong();
    }
  }
};

// No exception may pass through the parser, which is written in C.
void startElement(void* data, const XML_Char* name, const XML_Char** attributes) {
  auto* const reader = static_cast<Reader*>(data);
  try {
    reader->start(name, attributes);
  } catch (const std::bad_alloc&) {
    reader->memoryLacks = true;
    XML_StopParser(reader->parser, XML_FALSE);
  }
}

// Entities are not needed, and a small file could make a large text of them.
void startDocumentType(void* reader, const XML_Char*, const XML_Char*, const XML_Char*, int) {
  XML_StopParser(static_cast<Reader*>(reader)->parser, XML_FALSE);
}

}  // namespace

Result<Encryption> readAgileEncryption(Bytes xml) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreateNS(nullptr, '|'),
                                                                            &XML_ParserFree);
  if (!parser) {
    throw std::bad_alloc();
  }
  Reader reader;
  reader.parser = parser.get();
  XML_SetUserData(parser.get(), &reader);
  XML_SetStartElementHandler(parser.get(), startElement);
  XML_SetStartDoctypeDeclHandler(parser.get(), startDocumentType);
  const bool parsed = XML_Parse(parser.get(), reinterpret_cast<const char*>(xml.data()),
                                static_cast<int>(xml.size()), XML_TRUE) == XML_STATUS_OK;
  if (reader.memoryLacks) {
    throw std::bad_alloc();
  }
  if (!parsed || !reader.hasPages || !reader.hasPassword) {
    return unknownEncryption("its description is damaged");
  }
  AgileEncryption& encryption = reader.encryption;
  if (reader.wrong.empty() && encryption.pagesKey.size() != inBlocks(encryption.pages.bits / 8)) {
    reader.wrong = "encryptedKeyValue";
  }
  if (!reader.wrong.empty()) {
    return unknownEncryption("its attribute " + reader.wrong);
  }
  return Encryption(std::move(encryption));
}

}  // namespace veltrano::access
