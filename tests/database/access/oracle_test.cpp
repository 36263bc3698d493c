#include <set>

#include "base/files/replace.h"
#include "base/files/whole.h"
#include "encrypted_files.h"
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

// A recordset that stands on a record while another one changes the table.
class Watcher {
 public:
  Watcher(AccessRecordset& recordset, bool ordered) : recordset_(recordset), ordered_(ordered) {}

  void standOn(int id) {
    id_ = id;
    stand(recordset_, "ID", std::to_string(id));
  }
  // After one change of the other: what is read is that record or nothing, and the walk goes on after it.
  void check(const Model& before, const Model& after) {
    std::string text;
    const bool there(recordset_.readText("ID", text));
    if (!after.contains(id_) && after.size() < before.size()) {
      ASSERT_FALSE(there) << id_ << " was deleted, but " << text << " is read";
    } else {
      ASSERT_TRUE(there && after.contains(std::stoi(text))) << id_;
      ASSERT_EQ(after.contains(id_), std::stoi(text) == id_) << text;
      const auto& name = after.at(std::stoi(text)).at("Name");
      ASSERT_EQ(recordset_.readText("Name", text) ? std::optional(text) : std::nullopt, name);
    }
    recordset_.moveNext();
    const auto next = after.upper_bound(id_);
    if (ordered_) {
      ASSERT_EQ(recordset_.atEnd(), next == after.end());
      ASSERT_TRUE(next == after.end() || (recordset_.readText("ID", text) && std::stoi(text) == next->first))
          << id_;
    }
  }

 private:
  AccessRecordset& recordset_;
  bool ordered_;
  int id_ = 0;
};

struct OracleCase {
  unsigned seed;
  int steps;
  std::uint32_t cachePages;
  std::uint32_t pageKey;
  const char* encryption = nullptr;
};

class Oracle : public testing::TestWithParam<OracleCase> {};

// Random inserts, edits and deletes with two recordsets against the model; the table grows and shrinks, and the file
// is closed and opened again in between.
TEST_P(Oracle, FileAndModelAgree) {
  const auto [seed, steps, cachePages, pageKey, encryption] = GetParam();
  const Folder folder;
  makeDatabase(folder / "a.mdb", {peopleTable(), plainTable()}, {.pageKey = pageKey});
  std::string password;
  if (encryption != nullptr) {
    const EncryptedSample& sample = encryptedSample(encryption);
    password = sample.password;
    replaceFile(folder / "a.mdb", encrypted(readWholeFile(folder / "a.mdb").value(), sample));
  }
  RandomWork work(seed);
  std::map<std::string, Model> models;
  int refused = 0;
  for (int round = 0; round < 4; ++round) {
    OpenedFile file(folder / "a.mdb", nullptr, cachePages, password);
    ASSERT_TRUE(file.opened()) << file.reason();
    work.addsOfTen = round % 2 == 0 ? 7 : 2;
    for (const std::string name : {"People", "Plain"}) {
      const std::array recordsets = {file.table(name), file.table(name)};
      ASSERT_TRUE(recordsets[0] && recordsets[1]);
      Model& model = models[name];
      work.repeatsIds = name == "People";
      for (int i = 0; i < steps / 8; ++i) {
        AccessRecordset& acting = *recordsets[static_cast<std::size_t>(work.number(2))];
        Watcher watcher(&acting == recordsets[0].get() ? *recordsets[1] : *recordsets[0], name == "People");
        const bool watched = !model.empty() && work.number(4) == 0;
        if (watched) {
          watcher.standOn(std::next(model.begin(), work.number(static_cast<int>(model.size())))->first);
        }
        Model other;  // what the table would be, or was
        const bool done = work.step(acting, model, other);
        if (done) {
          std::swap(model, other);
        } else {
          ASSERT_TRUE(name == "People" && breaksUniqueness(model, other, work.added()));
          ++refused;
        }
        if (watched) {
          ASSERT_NO_FATAL_FAILURE(watcher.check(done ? other : model, model))
              << name << ", round " << round << ", step " << i;
        }
      }
      ASSERT_EQ(difference(*recordsets[0], model, name == "People"), "") << name << " in round " << round;
    }
    ASSERT_EQ(file.check(), "") << "round " << round;
  }
  EXPECT_GT(refused, 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Oracle,
                         testing::Values(OracleCase{1, 1000, 4096, 0}, OracleCase{2, 600, 16, 0},
                                         OracleCase{3, 400, 16, 0xC0FFEE}, OracleCase{4, 600, 64, 0},
                                         OracleCase{5, 400, 16, 0, "RC4, 128 bits"},
                                         OracleCase{6, 400, 16, 0, "AES-128, 50000 rounds"},
                                         OracleCase{7, 400, 16, 0, "agile, AES-128, SHA-1"}),
                         [](const auto& one) { return "seed" + std::to_string(one.param.seed); });

}  // namespace
}  // namespace veltrano::access
