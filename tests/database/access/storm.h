#ifndef VELTRANO_TESTS_DATABASE_ACCESS_STORM_H
#define VELTRANO_TESTS_DATABASE_ACCESS_STORM_H

// Random work on a database in memory that ends by the death of the process or of the power, at any call of
// the file system, also while the next opener puts the file right. Afterwards the file must be sound, and in
// a state that it had: after a death that of the last Update, or of the one under way; after a power failure
// that of the last close of the table or the file, or a later one.

#include <map>
#include <random>
#include <string>

#include "encrypted_files.h"
#include "simulated_disk.h"

namespace veltrano::access {

enum class Disaster { death, powerFailure };

class Storm {
 public:
  /// Makes the database that every run begins with. `encryption` may be null; otherwise no file may ever hold
  /// plain text.
  explicit Storm(const EncryptedSample* encryption = nullptr);

  /// One run. "" or what is wrong.
  std::string run(unsigned seed, Disaster disaster);

  int journalsApplied = 0;  ///< runs in which the next opener found a journal
  int diedTwice = 0;        ///< runs in which it did not survive that, either

 private:
  [[nodiscard]] bool holdsPlainText(const SimulatedDisk& disk) const;

  const EncryptedSample* encryption_;
  std::string password_;
  std::string base_;
  std::map<int, int> baseModel_;  // version of each record by its ID
};

}  // namespace veltrano::access

#endif
