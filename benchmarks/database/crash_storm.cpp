// Kills and power failures at every call of the file system, on a simulated disk (storm.h):
//   crash_storm [kills [power failures [first seed]]]
// Prints the seed of each run that did harm, and the totals; exits 1 if there was one.

#include "storm.h"

#include <cstdio>
#include <cstdlib>

namespace {

using veltrano::access::Disaster;
using veltrano::access::EncryptedSample;
using veltrano::access::Storm;

int storm(const char* name, Disaster disaster, int runs, unsigned firstSeed,
          const EncryptedSample* encryption = nullptr) {
  Storm storm(encryption);
  int violations = 0;
  for (int i = 0; i < runs; ++i) {
    const unsigned seed = firstSeed + static_cast<unsigned>(i);
    const std::string wrong = storm.run(seed, disaster);
    if (!wrong.empty()) {
      ++violations;
      std::printf("%s, seed %u: %s\n", name, seed, wrong.c_str());
    }
  }
  std::printf("%d %s: %d journals found by the next opener, %d of them died as well; %d violations\n", runs,
              name, storm.journalsApplied, storm.diedTwice, violations);
  return violations;
}

}  // namespace

int main(int count, char** arguments) {
  const auto number = [&](int index, int otherwise) {
    return count > index ? std::atoi(arguments[index]) : otherwise;
  };
  const auto seed = static_cast<unsigned>(number(3, 1));
  const auto* const encryption = &veltrano::access::encryptedSample("agile, AES-192, SHA-1, 2 rounds");
  const int violations =
      storm("kills", Disaster::death, number(1, 1000), seed) +
      storm("power failures", Disaster::powerFailure, number(2, 2000), seed) +
      storm("kills of encrypted files", Disaster::death, number(1, 1000), seed, encryption) +
      storm("power failures of encrypted files", Disaster::powerFailure, number(2, 2000), seed, encryption);
  return violations == 0 ? 0 : 1;
}
