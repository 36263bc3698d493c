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

Bytes bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}
MutableBytes mutableBytesOf(std::string& text) {
  return {reinterpret_cast<std::uint8_t*>(text.data()), text.size()};
}
std::uint32_t keyOf(const EncryptedSample& sample) {
  return load32(bytesOf(sample.key).data());
}

void expectBothWays(const PageCipher& cipher, PageNumber page, const std::string& inFile,
                    const std::string& plain, const char* label) {
  std::string bytes = inFile;
  cipher.decode(page, mutableBytesOf(bytes));
  EXPECT_EQ(bytes, unhex(plain)) << label << ", page " << page;
  cipher.encode(page, mutableBytesOf(bytes));
  EXPECT_EQ(bytes, inFile) << label << ", page " << page;
}

TEST(Encryption, PagesAreThoseOfKnownFiles) {
  for (const EncryptedSample& sample : encryptedSamples()) {
    const auto cipher = unlock(bytesOf(sample.information), keyOf(sample), sample.password);
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
      const auto cipher = unlock(bytesOf(sample.information), keyOf(sample), wrong);
      EXPECT_FALSE(cipher) << sample.label << ", '" << wrong << "'";
      EXPECT_EQ(cipher.failure(), Failure::notAllowed);
    }
  }
}

struct Lie {
  const char* sample;
  std::size_t at;    // in the information, if `from` is empty
  std::string from;  // what the first occurrence is replaced of
  std::string to;
  std::string reason;
};

TEST(Encryption, OfOtherKindsIsRefusedWithAReason) {
  const std::string entities = "<!DOCTYPE e [<!ENTITY a \"aaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">]><encryption ";
  const char* const rc4 = "RC4, 40 bits";
  const char* const aes = "AES-128, 50000 rounds";
  const char* const agile = "agile, AES-256, SHA-512";
  const std::vector<Lie> lies = {
      {rc4, 0, "", unhex("01000100"), "version 1.1"},
      {rc4, 0, "", unhex("04000300"), "version 4.3"},
      {rc4, 0, "", unhex("04000400"), "version 4.4"},
      {rc4, 4, "", unhex("00"), "provider"},
      {rc4, 4, "", unhex("14"), "provider"},
      {rc4, 4, "", unhex("24"), "cipher"},
      {rc4, 8, "", unhex("1f000000"), "cut off"},
      {rc4, 8, "", unhex("ffffffff"), "cut off"},
      {rc4, 8, "", unhex("77000000"), "check"},
      {rc4, 20, "", unhex("0268"), "cipher"},
      {rc4, 24, "", unhex("0c80"), "hash"},
      {rc4, 28, "", unhex("27"), "key length"},
      {rc4, 28, "", unhex("88"), "key length"},
      {rc4, 28, "", unhex("20"), "key length"},
      {aes, 28, "", unhex("00010000"), "key length"},
      {aes, 12 + 0x8C, "", unhex("11"), "check"},
      {aes, 12 + 0x8C + 36, "", unhex("20"), "check"},
      {agile, 0, "<encryption ", "<encryption", "damaged"},
      {agile, 0, "<encryption ", entities, "damaged"},
      {agile, 0, "keyData", "keyDatum", "damaged"},
      {agile, 0, "encryption\" xmlns:p", "other\" xmlns:p", "damaged"},
      {agile, 0, "password\"><k", "certificate\"><k", "damaged"},
      {agile, 0, "\"100000\"", "\"10000001\"", "spinCount"},
      {agile, 0, "\"100000\"", "\"-1\"", "spinCount"},
      {agile, 0, "\"100000\"", "\"99999999999999999999\"", "spinCount"},
      {agile, 0, "\"100000\"", "\"\"", "spinCount"},
      {agile, 0, "SHA512", "SHA384", "hashAlgorithm"},
      {agile, 0, "\"AES\"", "\"DES\"", "cipherAlgorithm"},
      {agile, 0, "ModeCBC", "ModeCFB", "cipherChaining"},
      {agile, 0, "hashSize=\"64\"", "hashSize=\"20\"", "hashSize"},
      {agile, 0, "keyBits=\"256\"", "keyBits=\"160\"", "keyBits"},
      {agile, 0, "keyBits=\"256\"", "keyBits=\"128\"", "encryptedKeyValue"},
      {agile, 0, "saltSize=\"16\"", "saltSize=\"8\"", "saltSize"},
      {agile, 0, "3MF5qZLl/e0shTV0MAcVeg==", "3MF5", "saltValue"},
      {agile, 0, "3MF5qZLl/e0shTV0MAcVeg==", "3MF5qZLl/e0shTV0MAcVeg=!", "saltValue"},
      {agile, 0, "Hrg/aAeysxXJhTpEstAgJg==", "", "encryptedVerifierHashInput"},
      {agile, 0, "DwIg==", "DwIg", "encryptedVerifierHashValue"},
      {agile, 0, "QubEoYk8CHTRtilBk6x3", "QubEoYk8CHTRtilB", "encryptedKeyValue"}};
  for (const Lie& lie : lies) {
    std::string information = encryptedSample(lie.sample).information;
    const std::size_t at = lie.from.empty() ? lie.at : information.find(lie.from);
    ASSERT_LT(at, information.size()) << lie.from;
    information.replace(at, lie.from.empty() ? lie.to.size() : lie.from.size(), lie.to);
    const auto cipher = unlock(bytesOf(information), 1, encryptedSample(lie.sample).password);
    EXPECT_FALSE(cipher) << lie.from << lie.to;
    EXPECT_THAT(cipher.status().reason(), HasSubstr("in a way that is not known: ")) << lie.from;
    EXPECT_THAT(cipher.status().reason(), HasSubstr(lie.reason)) << lie.from;
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

// As a host sees it: open, change, close, open again, for each kind of encryption.
TEST(EncryptedFile, KeepsItsSecretThroughChanges) {
  const Folder folder;
  const auto path = folder / "a.accdb";
  makeDatabase(folder / "plain.mdb", {smallTable()});
  const std::string plain = readWholeFile(folder / "plain.mdb").value();
  for (const EncryptedSample& sample : encryptedSamples()) {
    SCOPED_TRACE(sample.label);
    const std::string start = encrypted(plain, sample);
    replaceFile(path, start);
    for (const auto& wrong : {std::optional<std::string>(), std::optional<std::string>("x")}) {
      EXPECT_FALSE(open(path, wrong));
    }
    EXPECT_EQ(readWholeFile(path), start);
    std::string longText;
    for (int round = 0; round < 3; ++round) {
      const auto database = open(path, sample.password);
      ASSERT_TRUE(database);
      const auto table = openTable(*database, "Peo\xC5\xBCle");
      ASSERT_TRUE(table);
      EXPECT_EQ(read(*table, "Note"), round == 0 ? "()" : longText);
      table->moveFirst();
      if (round == 1) {
        EXPECT_TRUE(table->remove());
      }
      for (const char* name : {"Smith", "Jones"}) {
        table->addNew();
        table->write("Name", name);
        EXPECT_TRUE(table->update());
      }
      table->moveFirst();
      table->moveNext();
      longText = std::string(6000, static_cast<char>('a' + round));
      for (const char* field : {"Note", "Code"}) {
        table->moveFirst();
        EXPECT_TRUE(table->edit());
        table->write(field, field[0] == 'N' ? longText : "c" + std::to_string(round));
        EXPECT_TRUE(table->update());
      }
      EXPECT_TRUE(table->close());
      EXPECT_TRUE(database->close());
      const std::string content = readWholeFile(path).value();
      EXPECT_EQ(content.substr(0, 4096), start.substr(0, 4096));
      for (const std::string& secret :
           {std::string("Smith"), std::string("S\0m\0i", 5), longText.substr(0, 32)}) {
        EXPECT_EQ(content.find(secret), std::string::npos);
      }
    }
    EXPECT_EQ(OpenedFile(path, nullptr, 16, sample.password).check(), "");
  }
}

TEST(EncryptedFile, WantsThePasswordOfEveryObject) {
  const Folder folder;
  const auto path = folder / "a.accdb";
  makeDatabase(folder / "plain.mdb", {smallTable()});
  const EncryptedSample& sample = encryptedSample("AES-256, no rounds");
  replaceFile(path, encrypted(readWholeFile(folder / "plain.mdb").value(), sample));
  const auto engine = makeAccessEngine();
  const auto opens = [&](const std::string& password) {
    return engine->openDatabase(path.string(), std::string(passwordConnectPrefix) + password);
  };
  const auto first = opens(sample.password);
  ASSERT_TRUE(first);
  EXPECT_TRUE(opens(sample.password));
  for (const std::string& wrong : {std::string("Password"), sample.password + "x", std::string("passwor")}) {
    EXPECT_EQ(opens(wrong).status().reason(), "the password is wrong");
  }
  EXPECT_FALSE(engine->openDatabase(path.string(), std::nullopt));
}

TEST(EncryptedFile, ThatIsDamagedIsRefused) {
  const Folder folder;
  const auto path = folder / "a.accdb";
  makeDatabase(folder / "plain.mdb", {smallTable()});
  const EncryptedSample& sample = encryptedSample("RC4, 128 bits");
  const std::string good = encrypted(readWholeFile(folder / "plain.mdb").value(), sample);
  for (const auto& [at, bytes, reason] :
       {std::tuple(0x299, "0000", "missing"), std::tuple(0x299, "660b", "larger than its place"),
        std::tuple(0x29B, "0500", "version 5.2"), std::tuple(0x1000, "00", "do not decode"),
        std::tuple(0x2001, "00", "do not decode")}) {
    const std::string change = unhex(bytes);
    std::string bad = good;
    replaceFile(path, bad.replace(static_cast<std::size_t>(at), change.size(), change));
    const OpenedFile opened(path, nullptr, 16, sample.password);
    EXPECT_FALSE(opened.opened());
    EXPECT_THAT(opened.reason(), HasSubstr(reason)) << at;
  }
}

TEST(Encryption, MayBeDamagedAnywhere) {
  for (const EncryptedSample& sample : encryptedSamples()) {
    for (std::size_t at = 0; at < sample.information.size(); ++at) {
      EXPECT_FALSE(readEncryption(bytesOf(sample.information).first(at))) << sample.label << ", " << at;
      std::string damaged = sample.information;
      damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
      (void)readEncryption(bytesOf(damaged));  // must stay inside
    }
  }
}

}  // namespace
}  // namespace veltrano::access
