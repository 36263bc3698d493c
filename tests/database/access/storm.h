#ifndef VELTRANO_TESTS_DATABASE_ACCESS_STORM_H
#define VELTRANO_TESTS_DATABASE_ACCESS_STORM_H

// Random work on a database with relations, in memory, that ends by the death of the process or of the power at any call
// of the file system, also while the next opener puts the file right; or whose disk is full from some call on. Each
// change must be made or refused as keys and relations say, and a full disk refuses what needs room, and nothing else.
// Afterwards the file must be sound, and in a state that it had: that of the last Update, or of the one under way;
// after a power failure that of the last close of the table or the file, or a later one.

#include <map>
#include <string>

#include "encrypted_files.h"
#include "simulated_disk.h"
#include "storm_model.h"

namespace veltrano::access {

enum class Disaster { death, powerFailure, fullDisk };

class Storm {
 public:
  /// Makes the database that every run begins with. `encryption` may be null and `pageKey` 0; otherwise no file may
  /// ever hold plain text.
  explicit Storm(const EncryptedSample* encryption = nullptr, std::uint32_t pageKey = 0);

  /// One run. "" or what is wrong.
  std::string run(unsigned seed, Disaster disaster);

  int changes = 0;
  int refusals = 0;                 ///< of them, as relations and keys demand
  int journalsApplied = 0;          ///< runs in which the next opener found a journal
  int diedTwice = 0;                ///< runs in which it did not survive that, either
  std::map<std::string, int> cuts;  ///< runs by the calls of the file system before and after the first end

 private:
  [[nodiscard]] bool holdsPlainText(const SimulatedDisk& disk) const;

  bool secret_;
  std::string password_;
  std::string base_;
  StormModel baseModel_;
};

}  // namespace veltrano::access

#endif
