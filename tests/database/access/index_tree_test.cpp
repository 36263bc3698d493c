#include "database/access/index/tree.h"

#include <algorithm>
#include <functional>
#include <set>

#include "database/access/check/index_check.h"
#include "database/access/index/cursor.h"
#include "database/access/schema/catalog.h"
#include "database/access/storage/space/usage_map.h"
#include "harness.h"

namespace veltrano::access {
namespace {

struct ModelOrder {
  bool operator()(const OwnedEntry& left, const OwnedEntry& right) const {
    return left.key != right.key ? left.key < right.key : left.row < right.row;
  }
};
using Entries = std::set<OwnedEntry, ModelOrder>;

/// The index of an empty table in a new file, inside a transaction, and what must be in it.
class IndexTreeTest : public DatabaseTest {
 protected:
  void SetUp() override {
    make(tablesOf("table Empty; ID long; primary PrimaryKey (ID)"));
    const auto empty = findTable(pager(), "Empty");
    ASSERT_TRUE(empty);
    table_ = empty->page;
    index_ = empty->indexes.at(0);
    ASSERT_TRUE(pager().begin());
  }

  IndexTree tree() { return {pager(), table_, index_}; }

  void insert(OwnedEntry entry) {
    const auto place = model_.lower_bound(entry);
    const bool expectNew = (place == model_.end() || place->key != entry.key) &&
                           (place == model_.begin() || std::prev(place)->key != entry.key);
    bool newKey = false;
    ASSERT_EQ(tree().insert(entry.view(), newKey), !model_.contains(entry));
    if (model_.insert(std::move(entry)).second) {
      ASSERT_EQ(newKey, expectNew);
    }
  }
  void remove(const OwnedEntry& entry) { ASSERT_EQ(tree().remove(entry.view()), model_.erase(entry) == 1); }

  /// The tree is sound and holds what the model holds.
  void checkTree() {
    std::vector<OwnedEntry> entries;
    ASSERT_EQ(checkIndex(pager(), table_, index_, entries), "");
    ASSERT_EQ(entries.size(), model_.size());
    auto expected = model_.begin();
    for (const OwnedEntry& entry : entries) {
      ASSERT_EQ(compareEntries(entry.view(), expected->view()), 0);
      ++expected;
    }
  }
  [[nodiscard]] int pagesOfIndex() const {
    const UsageMap owned(pager(), index_.ownedPages);
    int count = 0;
    for (auto page = owned.next(0); page; page = owned.next(*page + 1)) {
      ++count;
    }
    return count;
  }

  PageNumber table_ = 0;
  Index index_;
  Entries model_;
};

/// A long integer's key.
OwnedEntry numberEntry(std::uint32_t number, std::uint32_t row) {
  OwnedEntry entry{{0x7F, 0, 0, 0, 0}, {row >> 8, static_cast<std::uint8_t>(row)}};
  storeBig32(&entry.key[1], number ^ 0x80000000);
  return entry;
}

// An entry takes 9 bytes, 7 or less after a prefix of 2: more than 500 in 3616 bytes, were every page full.
TEST_F(IndexTreeTest, FillsPagesWithAscendingAndDescendingKeys) {
  constexpr std::uint32_t count = 10000;
  for (const bool ascending : {true, false}) {
    for (std::uint32_t i = 0; i < count; ++i) {
      ASSERT_NO_FATAL_FAILURE(insert(numberEntry(ascending ? i : count - i, i + 1000)));
    }
    EXPECT_LT(pagesOfIndex(), static_cast<int>(count) / (ascending ? 500 : 360) + 5);
    ASSERT_NO_FATAL_FAILURE(checkTree());
    for (std::uint32_t i = 0; i < count; ++i) {
      ASSERT_NO_FATAL_FAILURE(remove(numberEntry(ascending ? i : count - i, i + 1000)));
    }
  }
}

ByteList randomBytes(RandomWork& random, int size, int values) {
  ByteList bytes(static_cast<std::size_t>(size));
  for (auto& byte : bytes) {
    byte = static_cast<std::uint8_t>(random.number(values));
  }
  return bytes;
}

// So many equal bytes, and then others.
ByteList beginningWith(int equal, int byte, const ByteList& tail) {
  ByteList key(static_cast<std::size_t>(equal), static_cast<std::uint8_t>(byte));
  key.insert(key.end(), tail.begin(), tail.end());
  return key;
}

constexpr int longest = longestKey;

struct Pattern {
  const char* name;
  int operations;
  std::function<ByteList(RandomWork&, int)> makeKey;  ///< the second is the number of the operation
};
const Pattern patterns[] = {
    {"few different keys", 3000, [](auto& random, int) { return randomBytes(random, 2, 3); }},
    {"prefixes of each other", 3000,
     [](auto& random, int) { return randomBytes(random, random.number(12), 2); }},
    {"alike for long, then different", 2000,
     [](auto& random, int) {
       return beginningWith(100 + random.number(3) * 20, 0x42, randomBytes(random, 6, 256));
     }},
    {"of many folders, up to the longest key", 2000,
     [](auto& random, int) {
       const int folder = random.number(40);
       return beginningWith(20 + folder * 29, 0x40 + folder % 7,
                            randomBytes(random, 1 + random.number(8), 256));
     }},
    {"folder after folder, each between others", 1000,
     [](auto&, int i) {
       const int folder = i / 60 * 7 % 12;
       return beginningWith(150 + folder * 80, 'a' + folder, bytesOf(std::to_string(100000 + i * 37 % 60)));
     }},
    {"as long as they may be: three to a page, a deep tree", 1500,
     [](auto& random, int) { return randomBytes(random, longest - random.number(300), 250); }},
    {"of every length", 2000,
     [](auto& random, int) { return randomBytes(random, random.number(longest), 256); }},
};

TEST_F(IndexTreeTest, MatchesAModelThroughRandomChanges) {
  for (const Pattern& pattern : patterns) {
    SCOPED_TRACE(pattern.name);
    RandomWork random(1);
    // Grows, then shrinks to nothing.
    for (int i = 0; i < pattern.operations * 2; ++i) {
      const bool growing = i < pattern.operations;
      const bool adds = random.number(4) != 0 ? growing : !growing;
      if (adds) {
        const auto row = static_cast<std::uint32_t>(1000 + random.number(5000));
        ASSERT_NO_FATAL_FAILURE(
            insert({pattern.makeKey(random, i), {row >> 8, static_cast<std::uint8_t>(row)}}));
      } else if (!model_.empty()) {
        const auto from = model_.lower_bound({pattern.makeKey(random, i), {}});
        ASSERT_NO_FATAL_FAILURE(remove(OwnedEntry(from == model_.end() ? *model_.rbegin() : *from)));
      }
      if (i % 500 == 0) {
        ASSERT_NO_FATAL_FAILURE(checkTree());
      }
    }
    ASSERT_NO_FATAL_FAILURE(checkTree());
    while (!model_.empty()) {
      ASSERT_NO_FATAL_FAILURE(remove(OwnedEntry(*model_.begin())));
    }
    EXPECT_EQ(pagesOfIndex(), 1) << "the root alone must be left";
  }
}

// Forward over every tenth number, with neighbours coming and going, the current entry among them; and back.
TEST_F(IndexTreeTest, CursorKeepsItsPlaceThroughChanges) {
  const auto entryOf = [](std::uint32_t i) { return numberEntry(i * 10, 1000 + i); };
  for (std::uint32_t i = 0; i < 2000; ++i) {
    ASSERT_NO_FATAL_FAILURE(insert(entryOf(i)));
  }
  const IndexTree walked = tree();
  IndexCursor cursor(walked, pager());
  ASSERT_TRUE(cursor.first());
  for (std::uint32_t i = 0; i < 2000; ++i) {
    ASSERT_EQ(cursor.entry().row, entryOf(i).row) << i;
    ASSERT_NO_FATAL_FAILURE(remove(entryOf(i)));
    if (i >= 50) {
      ASSERT_NO_FATAL_FAILURE(insert(entryOf(i - 50)));
    }
    ASSERT_EQ(cursor.next(), i < 1999);
  }
  ASSERT_TRUE(cursor.last());
  for (auto expected = model_.rbegin(); expected != model_.rend(); ++expected) {
    ASSERT_EQ(compareEntries(cursor.entry(), expected->view()), 0);
    ASSERT_EQ(cursor.previous(), std::next(expected) != model_.rend());
  }
  bool newKey = false;
  EXPECT_FALSE(tree().insert({ByteList(longestKey + 1, 7), {4, 0}}, newKey));
}

}  // namespace
}  // namespace veltrano::access
