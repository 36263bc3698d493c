#ifndef VELTRANO_FUZZ_DATABASE_DAMAGED_FILE_H
#define VELTRANO_FUZZ_DATABASE_DAMAGED_FILE_H

// Databases for the fuzzers to damage, plain and under each cipher, and the damage.

#include <memory>
#include <string>
#include <vector>

#include "database/access/storage/bytes.h"
#include "database/access/storage/encryption/page_cipher.h"
#include "encrypted_files.h"

namespace veltrano::access {

class GoodFile {
 public:
  /// A file with all kinds of tables, relations and long values. `encryption` may be null.
  explicit GoodFile(const EncryptedSample* encryption);
  /// The plain one, and one for each cipher whose description asks for few rounds. Instead of them, if the
  /// environment variable ACCESS_FUZZ_FILE names a file, that one; its pages must not be encoded, and its
  /// password is in ACCESS_FUZZ_PASSWORD.
  static std::vector<GoodFile> makeAll();

  [[nodiscard]] const std::string& password() const { return password_; }
  [[nodiscard]] const std::string& stored() const { return stored_; }

  /// The file after a list of changes, six bytes each: u24 offset, u8 kind of change, u16 argument. So the
  /// fuzzer works on the structures instead of finding the format's magic numbers first. Pages are changed
  /// before they are encrypted, but for the last kind; the header page is left alone.
  [[nodiscard]] std::string damaged(Bytes changes) const;

 private:
  GoodFile() = default;
  static std::vector<GoodFile> fromEnvironment();
  [[nodiscard]] std::string encodeChanged(const std::string& bad) const;

  std::string plain_;
  std::string stored_;
  std::string password_;
  std::shared_ptr<const PageCipher> cipher_;  ///< null: the pages are plain
};

}  // namespace veltrano::access

#endif
