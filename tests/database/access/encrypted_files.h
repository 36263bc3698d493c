#ifndef VELTRANO_TESTS_DATABASE_ACCESS_ENCRYPTED_FILES_H
#define VELTRANO_TESTS_DATABASE_ACCESS_ENCRYPTED_FILES_H

// How files with a password are encrypted, one for each scheme: four as Access wrote them, three computed apart
// from the engine.

#include <string>
#include <string_view>
#include <vector>

#include "database/access/storage/format.h"

namespace veltrano::access {

struct EncryptedSample {
  const char* label;
  std::string password;     ///< UTF-8
  std::string key;          ///< as the header has it, four bytes
  std::string information;  ///< as the header has it
  std::string page1;        ///< how these pages of the file begin
  std::string page2;
};

const std::vector<EncryptedSample>& encryptedSamples();
const EncryptedSample& encryptedSample(std::string_view label);

/// Encrypts the content of a file of Access 2000 to make one of Access 2007 of it. Its password is the sample's.
std::string encrypted(std::string content, const EncryptedSample& sample);

/// The bytes that hexadecimal digits stand for, two by two, with a blank between them or none.
std::string unhex(std::string_view digits);

}  // namespace veltrano::access

#endif
