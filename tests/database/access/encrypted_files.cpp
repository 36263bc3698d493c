#include "encrypted_files.h"

#include <algorithm>
#include <stdexcept>

#include "base/text/utf.h"
#include "database/access/storage/encryption/page_cipher.h"
#include "database/access/storage/header_mask.h"

namespace veltrano::access {

namespace {

std::string little(std::uint32_t value) {
  std::string bytes(4, '\0');
  store32(reinterpret_cast<std::uint8_t*>(bytes.data()), value);
  return bytes;
}

std::string provider(std::uint32_t flags, std::uint32_t cipher, std::uint32_t bits, std::uint32_t type,
                     const std::string& name, const char* check) {
  std::string description = little(flags) + little(0) + little(cipher) + little(0x8004) + little(bits) +
                            little(type) + little(0) + little(0);
  for (const char c : name + '\0') {
    description += {c, '\0'};
  }
  return unhex("04000200") + little(flags) + little(static_cast<std::uint32_t>(description.size())) +
         description + unhex(check);
}

// The information of agile encryption, as Access writes it.
struct AgileText {
  std::string hash, hashSize, bits, pagesSalt, rounds, salt, verifierInput, verifierHash, pagesKey;

  [[nodiscard]] std::string attributes(const std::string& itsSalt) const {
    return "saltSize=\"16\" blockSize=\"16\" keyBits=\"" + bits + "\" hashSize=\"" + hashSize +
           "\" cipherAlgorithm=\"AES\" cipherChaining=\"ChainingModeCBC\" hashAlgorithm=\"" + hash +
           "\" saltValue=\"" + itsSalt + "\"";
  }
  [[nodiscard]] std::string information() const {
    const std::string office = "\"http://schemas.microsoft.com/office/2006/";
    return unhex("0400040040000000") + "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n" +
           "<encryption xmlns=" + office + "encryption\" xmlns:p=" + office +
           "keyEncryptor/password\"><keyData " + attributes(pagesSalt) +
           "/><keyEncryptors><keyEncryptor uri=" + office +
           "keyEncryptor/password\"><p:encryptedKey spinCount=\"" + rounds + "\" " + attributes(salt) +
           " encryptedVerifierHashInput=\"" + verifierInput + "\" encryptedVerifierHashValue=\"" +
           verifierHash + "\" encryptedKeyValue=\"" + pagesKey +
           "\"/></keyEncryptor></keyEncryptors></encryption>";
  }
};

}  // namespace

const std::vector<EncryptedSample>& encryptedSamples() {
  static const std::string aesProvider = "Microsoft Enhanced RSA and AES Cryptographic Provider";
  static const std::vector<EncryptedSample> samples = {
      {"RC4, 40 bits", "Test123", unhex("e127f3a1"),
       provider(0x04, 0x6801, 40, 1, "Microsoft Base Cryptographic Provider v1.0",
                "1000000078da7d5196c71492eed3b4471a47944927f28425cc153a8f0c296d467fc6fb30"
                "140000004dc1ea9024bbc3bf372ef0d987974c85fa729d62"),
       unhex("1ff3c8a1bacb73e00e29ee45d7073039"), unhex("1ee47f53e664de0874985b8f28526886")},
      {"RC4, 128 bits", "S\xC3\xA9same 1", unhex("441ec3a5"),
       provider(0x04, 0x6801, 128, 1, "Microsoft Enhanced Cryptographic Provider v1.0",
                "1000000039c219b8b34ffc57ed51d29eddfdcf59fd3fb45d6007f667010a14d87025201f"
                "140000006a3681d33939d1fdcb5222a1f9027edc16628471"),
       unhex("7c575f64bea94ae5e515ec75a3590251"), unhex("2d5be26e7b4df6416e0f55142b47aab3")},
      {"AES-128, 50000 rounds", "S\xC3\xA9same 1", unhex("441ec3a5"),
       provider(0x24, 0x660E, 128, 24, aesProvider,
                "1000000039c219b8b34ffc57ed51d29eddfdcf59b1d5c4c9c1a3e81c71701396d4aa7f26"
                "1400000000284cb9dc01f21f777d883b3307c0295e5d625dfff2bf0e655c9e61db88e6c7"),
       unhex("50bcecde3a8ecb350e64a47f0c39b2a7"), unhex("34ff0a82b1b812d4b9b51c944dbee8ac")},
      {"AES-256, no rounds", "password", unhex("879ee6a1"),
       provider(0x0C, 0x6610, 256, 24, aesProvider,
                "100000007413eec1b30f2d38a62d1160e1b00ce7cad9594b612a162f52b00350e54537f8"
                "1400000019f94c8655326a58a04a82d61699a884acf288030d14442371fdce77c9e63bca"),
       unhex("8ea7f079a8e33da9b11b0d77999b6818"), unhex("d9a093fb8e8b00fc0b627cf44eccd265")},
      {"agile, AES-128, SHA-1", "Test123", unhex("bc8beba0"),
       AgileText{"SHA1", "20", "128", "DpYj4WNbM6JWXkuaGykRtA==", "100000",
                 "x8auqBWNRtGDHQwze+aBVg==", "VPXJzdncGO4XhFrLmdoILA==",
                 "4SEcXpKVsp0g39RV9on+EcJ9/J7+9cpByDyoj7sd9VQ=", "o0cj94OxoyHGQ6CDwqTdBg=="}
           .information(),
       unhex("15219dee99e87ccec2919ea03bd3d79f"), unhex("70c56dbe8ee1f49cb4b98d1425627486")},
      {"agile, AES-256, SHA-512", "1234", unhex("a91fb3a1"),
       AgileText{"SHA512", "64", "256", "3MF5qZLl/e0shTV0MAcVeg==", "100000",
                 "jcfjvcJDRj2D1OagFsj3Tw==", "Hrg/aAeysxXJhTpEstAgJg==",
                 "Cuwbj9YRMPQdGo72XYiE0qAha9XAxmfjRZEHZZ0Yv71RCUIWoQ8NqXk6pEtUBk7FKReaNSbkRWZ34cLoksDwIg==",
                 "QubEoYk8CHTRtilBk6x3Reet6nNYPdIWVGe9nedugdM="}
           .information(),
       unhex("c31154b0dc50ab52707e36597795277b"), unhex("96f7868dae0de06f9ba845d6312bdc0a")},
      {"agile, AES-192, SHA-1, 2 rounds", "S\xC3\xA9same 1", unhex("01020304"),
       AgileText{"SHA1", "20", "192", "UFFSU1RVVldYWVpbXF1eXw==", "2", "EBESExQVFhcYGRobHB0eHw==",
                 "HQf45DFLcW9cF4C3o7rVGA==", "yWLgnITaHumDsbAojF7JFJp/2JaKtSau5A3NrbFvnsM=",
                 "2+6dqeta/kH3LOaup6H0bcb/g72oL9EMW4lmjax2iXc="}
           .information(),
       unhex("6e70413d676a64adc5e14b4a09d7c9b2"), unhex("5e92f67c33168cbae868da5cc5b005b4")}};
  return samples;
}

const EncryptedSample& encryptedSample(std::string_view label) {
  const auto& all = encryptedSamples();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.label == label; });
  return found != all.end() ? *found : throw std::invalid_argument(std::string(label));
}

std::string encrypted(std::string content, const EncryptedSample& sample) {
  constexpr std::size_t size = 4096;
  const MutableBytes all(reinterpret_cast<std::uint8_t*>(content.data()), content.size());
  maskHeader(all.first(size), Version::jet4);
  content.replace(0x3E, 4, sample.key);
  maskHeader(all.first(size), Version::ace12);
  content.replace(4, 17, std::string("Standard ACE DB\0\x02", 17));
  store16(&all[0x299], static_cast<std::uint32_t>(sample.information.size()));
  content.replace(0x29B, sample.information.size(), sample.information);
  const auto cipher =
      unlock(all.subspan(0x29B, sample.information.size()),
             load32(reinterpret_cast<const std::uint8_t*>(sample.key.data())), sample.password);
  for (std::size_t page = 1; page * size < content.size(); ++page) {
    (*cipher)->encode(static_cast<PageNumber>(page), all.subspan(page * size, size));
  }
  return content;
}

std::string unhex(std::string_view digits) {
  std::string bytes;
  for (std::size_t i = 0; i + 2 <= digits.size(); i += digits.substr(i + 2, 1) == " " ? 3 : 2) {
    bytes.push_back(static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16)));
  }
  return bytes;
}

}  // namespace veltrano::access
