// Kills, power failures and, as often as kills, full disks from every call of the file system on, on a
// simulated disk (storm.h):
//   crash_storm [kills [power failures [first seed]]]
// for a plain file, and a third as many for each way to encrypt one. Prints the seed of each run that did
// harm, between which calls the runs ended, and the totals; exits 1 if a run did harm.

#include "storm.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using veltrano::access::Disaster;
using veltrano::access::EncryptedSample;
using veltrano::access::Storm;

int violations = 0;
std::map<std::string, int> cuts;

struct Runs {
  const char* name;
  Disaster disaster;
  int count;
};

void storm(const char* name, Storm storm, const std::vector<Runs>& all, int share, unsigned firstSeed) {
  int harmful = 0;
  std::printf("%s: ", name);
  for (const Runs& runs : all) {
    for (int i = 0; i < runs.count / share; ++i) {
      const unsigned seed = firstSeed + static_cast<unsigned>(i);
      if (const std::string wrong = storm.run(seed, runs.disaster); !wrong.empty()) {
        ++harmful;
        std::printf("\n%s, seed %u: %s\n", runs.name, seed, wrong.c_str());
      }
    }
    std::printf("%d %s, ", runs.count / share, runs.name);
  }
  std::printf(
      "%d changes, %d of them to be refused; %d journals found by the next opener, %d of them died as well; "
      "%d violations\n",
      storm.changes, storm.refusals, storm.journalsApplied, storm.diedTwice, harmful);
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
  const std::vector<Runs> runs = {{"kills", Disaster::death, kills},
                                  {"power failures", Disaster::powerFailure, number(2, 2000)},
                                  {"full disks", Disaster::fullDisk, kills}};
  const auto seed = static_cast<unsigned>(number(3, 1));
  storm("plain", Storm(), runs, 1, seed);
  storm("page encoding", Storm(nullptr, 0x12345678), runs, 3, seed);
  for (const EncryptedSample& sample : veltrano::access::encryptedSamples()) {
    storm(sample.label, Storm(&sample), runs, 3, seed);
  }
  for (const auto& [calls, ended] : cuts) {
    std::printf("%6d ended between: %s\n", ended, calls.c_str());
  }
  std::printf("%d violations\n", violations);
  return violations == 0 ? 0 : 1;
}
