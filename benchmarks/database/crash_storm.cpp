// Kills and power failures at every call of the file system, on a simulated disk (storm.h):
//   crash_storm [kills [power failures [first seed]]]
// for a plain file, and a third as many for each way to encrypt one. Prints the seed of each run that did harm, between
// which calls the runs ended, and the totals; exits 1 if a run did harm.

#include "storm.h"

#include <cstdio>
#include <cstdlib>

namespace {

using veltrano::access::Disaster;
using veltrano::access::EncryptedSample;
using veltrano::access::Storm;

int violations = 0;
std::map<std::string, int> cuts;

void storm(const char* name, Storm storm, int kills, int powerFailures, unsigned firstSeed) {
  int harmful = 0;
  for (int i = 0; i < kills + powerFailures; ++i) {
    const bool kill = i < kills;
    const unsigned seed = firstSeed + static_cast<unsigned>(kill ? i : i - kills);
    const std::string wrong = storm.run(seed, kill ? Disaster::death : Disaster::powerFailure);
    if (!wrong.empty()) {
      ++harmful;
      std::printf("%s, %s, seed %u: %s\n", name, kill ? "kill" : "power failure", seed, wrong.c_str());
    }
  }
  std::printf(
      "%s: %d kills, %d power failures; %d changes, %d refused; %d journals found by the next opener, %d of "
      "them died as well; %d violations\n",
      name, kills, powerFailures, storm.changes, storm.refusals, storm.journalsApplied, storm.diedTwice,
      harmful);
  std::fflush(stdout);
  violations += harmful;
  for (const auto& [calls, runs] : storm.cuts) {
    cuts[calls] += runs;
  }
}

}  // namespace

int main(int count, char** arguments) {
  const auto number = [&](int index, int otherwise) {
    return count > index ? std::atoi(arguments[index]) : otherwise;
  };
  const int kills = number(1, 1000);
  const int powerFailures = number(2, 2000);
  const auto seed = static_cast<unsigned>(number(3, 1));
  storm("plain", Storm(), kills, powerFailures, seed);
  storm("page encoding", Storm(nullptr, 0x12345678), kills / 3, powerFailures / 3, seed);
  for (const EncryptedSample& sample : veltrano::access::encryptedSamples()) {
    storm(sample.label, Storm(&sample), kills / 3, powerFailures / 3, seed);
  }
  for (const auto& [calls, runs] : cuts) {
    std::printf("%6d ended between: %s\n", runs, calls.c_str());
  }
  std::printf("%d violations\n", violations);
  return violations == 0 ? 0 : 1;
}
