#include <gtest/gtest.h>

#include <set>

#include "harness.h"

namespace veltrano::access {
namespace {

// A change that the indexes refuse: the primary key or the code is taken.
bool breaksUniqueness(const Model& before, const Model& after, bool added) {
  std::set<std::string> codes;
  for (const auto& [id, record] : after) {
    const auto& code = record.at("Code");
    if (code && !codes.insert(*code).second) {
      return true;
    }
  }
  return after.size() < before.size() + (added ? 1 : 0);
}

struct OracleCase {
  unsigned seed;
  int steps;
  std::uint32_t cachePages;
  std::uint32_t pageKey;
};

class Oracle : public testing::TestWithParam<OracleCase> {};

// Random inserts, edits and deletes against the model; the file closed and opened again in between.
TEST_P(Oracle, FileAndModelAgree) {
  const auto [seed, steps, cachePages, pageKey] = GetParam();
  const Folder folder;
  makeDatabase(folder / "a.mdb", {peopleTable(), plainTable()}, {.pageKey = pageKey});
  RandomWork work(seed);
  std::map<std::string, Model> models;
  int refused = 0;
  for (int round = 0; round < 4; ++round) {
    OpenedFile file(folder / "a.mdb", nullptr, cachePages);
    ASSERT_TRUE(file.opened()) << file.reason();
    for (const std::string name : {"People", "Plain"}) {
      const auto recordset = file.table(name);
      ASSERT_TRUE(recordset);
      Model& model = models[name];
      work.repeatsIds = name == "People";
      for (int i = 0; i < steps / 8; ++i) {
        Model after;
        if (work.step(*recordset, model, after)) {
          model = std::move(after);
        } else {
          ASSERT_TRUE(name == "People" && breaksUniqueness(model, after, work.added()))
              << recordset->lastError();
          ++refused;
        }
      }
      ASSERT_EQ(difference(readAll(*recordset), model, name == "People"), "")
          << name << " in round " << round;
    }
    ASSERT_EQ(file.check(), "") << "round " << round;
  }
  EXPECT_GT(refused, 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Oracle,
                         testing::Values(OracleCase{1, 2400, 4096, 0}, OracleCase{2, 1200, 16, 0},
                                         OracleCase{3, 400, 16, 0xC0FFEE}, OracleCase{4, 1200, 64, 0}),
                         [](const auto& one) { return "seed" + std::to_string(one.param.seed); });

}  // namespace
}  // namespace veltrano::access
