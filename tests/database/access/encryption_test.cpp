#include <gmock/gmock.h>

#include <cstring>
#include <tuple>

#include "base/files/whole.h"
#include "database/access/engine.h"
#include "database/access/storage/encryption/information.h"
#include "database/access/storage/encryption/page_cipher.h"
#include "encrypted_files.h"
#include "harness.h"

namespace veltrano::access {
namespace {

using testing::HasSubstr;

void expectBothWays(const PageCipher& cipher, PageNumber page, const std::string& inFile,
                    const std::string& plain, const char* label) {
  ByteList bytes = bytesOf(inFile);
  cipher.decode(page, bytes);
  EXPECT_EQ(bytes, bytesOf(unhex(plain))) << label << ", page " << page;
  cipher.encode(page, bytes);
  EXPECT_EQ(bytes, bytesOf(inFile)) << label << ", page " << page;
}

TEST(Encryption, PagesAreThoseOfKnownFiles) {
  for (const EncryptedSample& sample : encryptedSamples()) {
    const std::uint32_t key = load32(bytesOf(sample.key).data());
    const auto cipher = unlock(bytesOf(sample.information), key, sample.password);
    ASSERT_TRUE(cipher) << sample.label << ": " << cipher.status().reason();
    expectBothWays(**cipher, 1, sample.page1, "0101640f01000000000000000200bb0f", sample.label);
    expectBothWays(**cipher, 2, sample.page2, "0201de0b000000001a04000059060000", sample.label);
    for (const std::string& wrong :
         {std::string(), sample.password + " ", std::string(256, 'x'), "\xEF\xBB\xBF" + sample.password}) {
      EXPECT_EQ(unlock(bytesOf(sample.information), key, wrong).failure(), Failure::notAllowed) << wrong;
    }
    for (std::size_t at = 0; at < sample.information.size(); ++at) {
      ByteList information = bytesOf(sample.information);
      EXPECT_FALSE(readEncryption(Bytes(information).first(at))) << sample.label << ", " << at;
      information[at] ^= 0x55;
      (void)readEncryption(information);  // must stay inside
    }
  }
  expectBothWays(*makePageEncoding(0xA7B773E0), 1, unhex("c6e651a664d6252e"), "0101640f01000000", "2000");
  expectBothWays(*makePageEncoding(0xA7E0C0FE), 1, unhex("a6039b27211b202c"), "0101e80601000000", "97");
}

TEST(Encryption, ByAnotherProviderIsRefusedWithAReason) {
  const char* const rc4 = "RC4, 40 bits";
  const char* const aes = "AES-128, 50000 rounds";
  const std::tuple<const char*, std::size_t, const char*, const char*> lies[] = {
      {rc4, 0, "01000100", "version 1.1"},
      {rc4, 0, "04000300", "version 4.3"},
      {rc4, 4, "00", "provider"},
      {rc4, 4, "24", "cipher"},
      {rc4, 8, "1f000000", "cut off"},
      {rc4, 8, "77000000", "check"},
      {rc4, 20, "0268", "cipher"},
      {rc4, 24, "0c80", "hash"},
      {rc4, 28, "27", "key length"},
      {aes, 28, "00010000", "key length"},
      {aes, 12 + 0x8C, "11", "check"},
      {aes, 12 + 0x8C + 36, "20", "check"},
      // What Access leaves out where it goes without saying.
      {rc4, 20, "00000000", ""},
      {rc4, 24, "00000000", ""},
      {"RC4, 128 bits", 28, "00000000", ""},
      {aes, 28, "00000000", ""},
  };
  for (const auto& [name, at, bytes, why] : lies) {
    const EncryptedSample& sample = encryptedSample(name);
    std::string information = sample.information;
    information.replace(at, std::strlen(bytes) / 2, unhex(bytes));
    const auto cipher = unlock(bytesOf(information), 1, sample.password);
    EXPECT_EQ(!cipher, *why != '\0') << name << ", " << at;
    EXPECT_THAT(cipher.status().reason(), HasSubstr(why));
  }
}

TEST(Encryption, OfAgileFilesWithOtherAttributesIsRefusedWithAReason) {
  const char* const entities = "<!DOCTYPE e [<!ENTITY a \"aaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">]><encryption ";
  const std::tuple<const char*, std::string, std::string> lies[] = {
      {"damaged", "<encryption ", entities},
      {"damaged", "encryption\" xmlns:p", "other\" xmlns:p"},
      {"damaged", "password\"><k", "certificate\"><k"},
      {"spinCount", "100000", "10000001"},
      {"spinCount", "100000", ""},
      {"hashAlgorithm", "SHA512", "SHA384"},
      {"cipherAlgorithm", "AES", "DES"},
      {"cipherChaining", "ModeCBC", "ModeCFB"},
      {"hashSize", "hashSize=\"64\"", "hashSize=\"20\""},
      {"keyBits", "keyBits=\"256\"", "keyBits=\"160\""},
      {"encryptedKeyValue", "keyBits=\"256\"", "keyBits=\"128\""},
      {"saltSize", "saltSize=\"16\"", "saltSize=\"8\""},
      {"saltValue", "3MF5qZLl/e0shTV0MAcVeg==", "3MF5qZLl/e0shTV0MAcVeg=!"},
      {"encryptedVerifierHashInput", "Hrg/aAeysxXJhTpEstAgJg==", ""},
      {"encryptedVerifierHashValue", "DwIg==", "DwIg"},
      {"encryptedKeyValue", "QubEoYk8CHTRtilBk6x3", "QubEoYk8CHTRtilB"},
  };
  const EncryptedSample& sample = encryptedSample("agile, AES-256, SHA-512");
  for (const auto& [why, from, to] : lies) {
    std::string information = sample.information;
    information.replace(information.find(from), from.size(), to);
    const auto cipher = unlock(bytesOf(information), 1, sample.password);
    EXPECT_THAT(cipher.status().reason(), HasSubstr("in a way that is not known: ")) << to;
    EXPECT_THAT(cipher.status().reason(), HasSubstr(why)) << to;
  }
}

class EncryptedFile : public DatabaseTest {
 protected:
  void SetUp() override {
    make({smallTable()});
    close();
    plain_ = readWholeFile(file_).value();
  }

  std::string plain_;
};

TEST_F(EncryptedFile, KeepsItsSecretThroughChanges) {
  for (const EncryptedSample& sample : encryptedSamples()) {
    SCOPED_TRACE(sample.label);
    const std::string start = encrypted(plain_, sample);
    replaceFile(file_, start);
    EXPECT_FALSE(open(file_) || open(file_, "x"));
    EXPECT_EQ(readWholeFile(file_), start);
    const std::string note(6000, 'n');
    for (const char* scene : {"add Small Name=Smith", "all Small ID Name: 1Smith; change Small ID=1 Note=",
                              "delete Small ID=1; add Small Name=Smith Note="}) {
      opened_.emplace(file_, nullptr, 16, sample.password);
      ASSERT_TRUE(opened_->opened()) << opened_->reason();
      play(scene + (std::string_view(scene).ends_with('=') ? note : ""));
      close();
    }
    opened_.emplace(file_, nullptr, 16, sample.password);
    play("all Small ID Name Note: 2Smith" + note);
    close();
    const std::string content = readWholeFile(file_).value();
    EXPECT_EQ(content.substr(0, pageSize), start.substr(0, pageSize));
    for (const std::string& secret : {std::string("Smith"), std::string("S\0m\0i", 5), note.substr(0, 32)}) {
      EXPECT_EQ(content.find(secret), std::string::npos);
    }
  }
}

TEST_F(EncryptedFile, ThatIsDamagedIsRefused) {
  const EncryptedSample& sample = encryptedSample("RC4, 128 bits");
  const std::string good = encrypted(plain_, sample);
  for (const auto& [at, bytes, reason] :
       {std::tuple(0x299, "0000", "missing"), std::tuple(0x299, "660b", "larger than its place"),
        std::tuple(0x29B, "0500", "version 5.2"), std::tuple(0x1000, "00", "do not decode"),
        std::tuple(0x2001, "00", "do not decode")}) {
    std::string bad = good;
    replaceFile(file_, bad.replace(static_cast<std::size_t>(at), std::strlen(bytes) / 2, unhex(bytes)));
    const OpenedFile opened(file_, nullptr, 16, sample.password);
    EXPECT_FALSE(opened.opened());
    EXPECT_THAT(opened.reason(), HasSubstr(reason)) << at;
  }
}

}  // namespace
}  // namespace veltrano::access
