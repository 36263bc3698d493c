#include <gmock/gmock.h>

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

std::uint32_t pageKeyOf(const EncryptedSample& sample) {
  return load32(bytesOf(sample.key).data());
}

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
    const auto cipher = unlock(bytesOf(sample.information), pageKeyOf(sample), sample.password);
    ASSERT_TRUE(cipher) << sample.label << ": " << cipher.status().reason();
    expectBothWays(**cipher, 1, sample.page1, "0101640f01000000000000000200bb0f", sample.label);
    expectBothWays(**cipher, 2, sample.page2, "0201de0b000000001a04000059060000", sample.label);
  }
  expectBothWays(*makePageEncoding(0xA7B773E0), 1, unhex("c6e651a664d6252e"), "0101640f01000000", "2000");
  expectBothWays(*makePageEncoding(0xA7E0C0FE), 1, unhex("a6039b27211b202c"), "0101e80601000000", "97");
}

TEST(Encryption, AnswersToOnePassword) {
  for (const EncryptedSample& sample : encryptedSamples()) {
    for (const std::string& wrong : {std::string(), sample.password + " ", std::string("TEST123"),
                                     std::string(256, 'x'), "\xEF\xBB\xBF" + sample.password}) {
      const auto cipher = unlock(bytesOf(sample.information), pageKeyOf(sample), wrong);
      EXPECT_FALSE(cipher) << sample.label << ", '" << wrong << "'";
      EXPECT_EQ(cipher.failure(), Failure::notAllowed);
    }
  }
}

void expectUnknown(const std::string& information, const std::string& password, const char* why) {
  const auto cipher = unlock(bytesOf(information), 1, password);
  EXPECT_FALSE(cipher) << why;
  EXPECT_THAT(cipher.status().reason(), HasSubstr("in a way that is not known: ")) << why;
  EXPECT_THAT(cipher.status().reason(), HasSubstr(why));
}

TEST(Encryption, ByAnotherProviderIsRefusedWithAReason) {
  const char* const rc4 = "RC4, 40 bits";
  const char* const aes = "AES-128, 50000 rounds";
  const struct {
    const char* sample;
    std::size_t at;
    const char* reason;
    std::vector<const char*> bytes;
  } lies[] = {
      {rc4, 0, "version 1.1", {"01000100"}},
      {rc4, 0, "version 4.3", {"04000300"}},
      {rc4, 0, "version 4.4", {"04000400"}},
      {rc4, 4, "provider", {"00", "14"}},
      {rc4, 4, "cipher", {"24"}},
      {rc4, 8, "cut off", {"1f000000", "ffffffff"}},
      {rc4, 8, "check", {"77000000"}},
      {rc4, 20, "cipher", {"0268"}},
      {rc4, 24, "hash", {"0c80"}},
      {rc4, 28, "key length", {"27", "88", "20"}},
      {aes, 28, "key length", {"00010000"}},
      {aes, 12 + 0x8C, "check", {"11"}},
      {aes, 12 + 0x8C + 36, "check", {"20"}},
  };
  for (const auto& [name, at, reason, replacements] : lies) {
    const EncryptedSample& sample = encryptedSample(name);
    for (const char* bytes : replacements) {
      const std::string lie = unhex(bytes);
      expectUnknown(std::string(sample.information).replace(at, lie.size(), lie), sample.password, reason);
    }
  }
}

TEST(Encryption, OfAgileFilesWithOtherAttributesIsRefusedWithAReason) {
  const char* const entities = "<!DOCTYPE e [<!ENTITY a \"aaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">]><encryption ";
  const struct {
    const char* reason;
    std::string from;  // of which the first one is replaced
    std::vector<std::string> to;
  } lies[] = {
      {"damaged", "<encryption ", {"<encryption", entities}},
      {"damaged", "keyData", {"keyDatum"}},
      {"damaged", "encryption\" xmlns:p", {"other\" xmlns:p"}},
      {"damaged", "password\"><k", {"certificate\"><k"}},
      {"spinCount", "100000", {"10000001", "-1", "99999999999999999999", ""}},
      {"hashAlgorithm", "SHA512", {"SHA384"}},
      {"cipherAlgorithm", "AES", {"DES"}},
      {"cipherChaining", "ModeCBC", {"ModeCFB"}},
      {"hashSize", "hashSize=\"64\"", {"hashSize=\"20\""}},
      {"keyBits", "keyBits=\"256\"", {"keyBits=\"160\""}},
      {"encryptedKeyValue", "keyBits=\"256\"", {"keyBits=\"128\""}},
      {"saltSize", "saltSize=\"16\"", {"saltSize=\"8\""}},
      {"saltValue", "3MF5qZLl/e0shTV0MAcVeg==", {"3MF5", "3MF5qZLl/e0shTV0MAcVeg=!"}},
      {"encryptedVerifierHashInput", "Hrg/aAeysxXJhTpEstAgJg==", {""}},
      {"encryptedVerifierHashValue", "DwIg==", {"DwIg"}},
      {"encryptedKeyValue", "QubEoYk8CHTRtilBk6x3", {"QubEoYk8CHTRtilB"}},
  };
  const EncryptedSample& sample = encryptedSample("agile, AES-256, SHA-512");
  for (const auto& [reason, from, replacements] : lies) {
    const std::size_t at = sample.information.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    for (const std::string& to : replacements) {
      expectUnknown(std::string(sample.information).replace(at, from.size(), to), sample.password, reason);
    }
  }
}

// What Access leaves out where it goes without saying.
TEST(Encryption, MayLackCipherAndKeyLength) {
  for (const char* label : {"RC4, 40 bits", "RC4, 128 bits", "AES-128, 50000 rounds"}) {
    const EncryptedSample& sample = encryptedSample(label);
    for (const std::size_t at : {20U, 24U, 28U}) {
      std::string information = sample.information;
      information.replace(at, 4, 4, '\0');
      EXPECT_TRUE(unlock(bytesOf(information), 1, sample.password)) << label << ", " << at;
    }
  }
}

class EncryptedFile : public testing::Test {
 protected:
  void SetUp() override {
    makeDatabase(folder_ / "plain.mdb", {smallTable()});
    plain_ = readWholeFile(folder_ / "plain.mdb").value();
  }

  Folder folder_;
  std::filesystem::path path_ = folder_ / "a.accdb";
  std::string plain_;
};

// As a host sees it: open, change, close, open again, for each kind of encryption.
TEST_F(EncryptedFile, KeepsItsSecretThroughChanges) {
  for (const EncryptedSample& sample : encryptedSamples()) {
    SCOPED_TRACE(sample.label);
    const std::string start = encrypted(plain_, sample);
    replaceFile(path_, start);
    EXPECT_FALSE(open(path_) || open(path_, "x"));
    EXPECT_EQ(readWholeFile(path_), start);
    std::string longText = "()";
    for (int round = 0; round < 3; ++round) {
      const auto database = open(path_, sample.password);
      ASSERT_TRUE(database);
      const auto table = openTable(*database, "Peo\u017cle");
      ASSERT_TRUE(table);
      EXPECT_EQ(read(*table, "Note"), longText);
      EXPECT_EQ(static_cast<bool>(table->remove()), round != 0);
      EXPECT_TRUE(add(*table, {{"Name", "Smith"}}) && add(*table, {{"Name", "Jones"}}));
      table->moveFirst();
      longText = std::string(6000, static_cast<char>('a' + round));
      EXPECT_TRUE(change(*table, {{"Note", longText}}));
      EXPECT_TRUE(change(*table, {{"Code", std::to_string(round)}}));
      EXPECT_TRUE(table->close() && database->close());
      const std::string content = readWholeFile(path_).value();
      EXPECT_EQ(content.substr(0, pageSize), start.substr(0, pageSize));
      for (const std::string& secret :
           {std::string("Smith"), std::string("S\0m\0i", 5), longText.substr(0, 32)}) {
        EXPECT_EQ(content.find(secret), std::string::npos);
      }
    }
    EXPECT_EQ(OpenedFile(path_, nullptr, 16, sample.password).check(), "");
  }
}

TEST_F(EncryptedFile, WantsThePasswordOfEveryObject) {
  const EncryptedSample& sample = encryptedSample("AES-256, no rounds");
  replaceFile(path_, encrypted(plain_, sample));
  const auto engine = makeAccessEngine();
  const auto opens = [&](const std::string& password) {
    return engine->openDatabase(path_.string(), std::string(passwordConnectPrefix) + password);
  };
  const auto first = opens(sample.password);
  ASSERT_TRUE(first);
  EXPECT_TRUE(opens(sample.password));
  for (const std::string& wrong : {std::string("Password"), sample.password + "x", std::string("passwor")}) {
    EXPECT_EQ(opens(wrong).status().reason(), "the password is wrong");
  }
  EXPECT_FALSE(engine->openDatabase(path_.string(), std::nullopt));
}

TEST_F(EncryptedFile, ThatIsDamagedIsRefused) {
  const EncryptedSample& sample = encryptedSample("RC4, 128 bits");
  const std::string good = encrypted(plain_, sample);
  for (const auto& [at, bytes, reason] :
       {std::tuple(0x299, "0000", "missing"), std::tuple(0x299, "660b", "larger than its place"),
        std::tuple(0x29B, "0500", "version 5.2"), std::tuple(0x1000, "00", "do not decode"),
        std::tuple(0x2001, "00", "do not decode")}) {
    const std::string change = unhex(bytes);
    std::string bad = good;
    replaceFile(path_, bad.replace(static_cast<std::size_t>(at), change.size(), change));
    const OpenedFile opened(path_, nullptr, 16, sample.password);
    EXPECT_FALSE(opened.opened());
    EXPECT_THAT(opened.reason(), HasSubstr(reason)) << at;
  }
}

TEST(Encryption, MayBeDamagedAnywhere) {
  for (const EncryptedSample& sample : encryptedSamples()) {
    const ByteList information = bytesOf(sample.information);
    for (std::size_t at = 0; at < information.size(); ++at) {
      EXPECT_FALSE(readEncryption(Bytes(information).first(at))) << sample.label << ", " << at;
      ByteList damaged = information;
      damaged[at] ^= 0x55;
      (void)readEncryption(damaged);  // must stay inside
    }
  }
}

}  // namespace
}  // namespace veltrano::access
