#include <gtest/gtest.h>

#include <algorithm>

#include "database/values/text_matcher.h"
#include "harness.h"

namespace veltrano::access {
namespace {

using Fields = std::map<std::string, std::optional<int>>;
using Rows = std::map<int, Fields>;  // by a number that a row keeps when its ID changes
using Tables = std::map<std::string, Rows>;

std::vector<NewRelation> relations() {
  return {{"AB", "A", {"ID"}, "B", {"A"}, true, OnDelete::cascade},
          {"BC", "B", {"ID"}, "C", {"B"}, true, OnDelete::setNull},
          {"AC", "A", {"ID"}, "C", {"A"}, false, OnDelete::refuse},
          {"CC", "C", {"ID"}, "C", {"Up"}, true, OnDelete::cascade},
          {"BD", "B", {"ID", "A"}, "D", {"B", "BA"}, true, OnDelete::cascade}};
}

std::vector<NewTable> tables() {
  const auto number = [](const char* name) {
    return NewColumn{.name = name, .type = ColumnType::longInteger};
  };
  const NewColumn mark = number("Mark");
  const NewColumn note = {.name = "Note", .type = ColumnType::memo};
  const NewIndex key = {.name = "P", .columns = {{"ID"}}, .primary = true};
  return {{.name = "A", .columns = {number("ID"), mark}, .indexes = {key}},
          {.name = "B",
           .columns = {number("ID"), number("A"), mark, note},
           .indexes = {key, {.name = "U", .columns = {{"ID"}, {"A", false}}, .unique = true}}},
          {.name = "C",
           .columns = {number("ID"), number("A"), number("B"), number("Up"), mark, note},
           .indexes = {key, {.name = "ByA", .columns = {{"A", false}}, .ignoreNulls = true}}},
          {.name = "D", .columns = {number("ID"), number("B"), number("BA"), mark, note}, .indexes = {key}}};
}

std::vector<std::optional<int>> values(const Fields& fields, const std::vector<std::string>& names) {
  std::vector<std::optional<int>> all;
  all.reserve(names.size());
  for (const std::string& name : names) {
    all.push_back(fields.at(name));
  }
  return all;
}

bool allNull(const std::vector<std::optional<int>>& key) {
  return std::ranges::all_of(key, [](const auto& part) { return !part; });
}

// What a record's change does to the others; `after` is empty if it was deleted.
void follow(Tables& all, const std::string& table, const Fields& before, const std::optional<Fields>& after) {
  for (const NewRelation& relation : relations()) {
    if (relation.parent != table) {
      continue;
    }
    const auto key = values(before, relation.parentColumns);
    const bool same = after && values(*after, relation.parentColumns) == key;
    const bool follows = after ? relation.cascadeUpdates : relation.onDelete != OnDelete::refuse;
    if (same || !follows || allNull(key)) {
      continue;
    }
    std::vector<int> children;
    for (const auto& [number, fields] : all[relation.child]) {
      if (values(fields, relation.childColumns) == key) {
        children.push_back(number);
      }
    }
    for (const int number : children) {
      Rows& rows = all[relation.child];
      if (!rows.contains(number)) {
        continue;
      }
      const Fields old = rows[number];
      if (!after && relation.onDelete == OnDelete::cascade) {
        rows.erase(number);
        follow(all, relation.child, old, std::nullopt);
        continue;
      }
      for (std::size_t i = 0; i < relation.childColumns.size(); ++i) {
        rows[number][relation.childColumns[i]] =
            after ? after->at(relation.parentColumns[i]) : std::optional<int>();
      }
      const Fields now = rows[number];
      follow(all, relation.child, old, now);
    }
  }
}

// Whether keys are unique and every child has its parent.
bool sound(const Tables& all) {
  for (const auto& [name, rows] : all) {
    std::map<int, int> ids;
    for (const auto& [number, fields] : rows) {
      if (++ids[*fields.at("ID")] > 1) {
        return false;
      }
    }
  }
  return std::ranges::all_of(relations(), [&](const NewRelation& relation) {
    return std::ranges::all_of(all.at(relation.child), [&](const auto& child) {
      const auto key = values(child.second, relation.childColumns);
      return allNull(key) || std::ranges::any_of(all.at(relation.parent), [&](const auto& parent) {
               return values(parent.second, relation.parentColumns) == key;
             });
    });
  });
}

std::string shown(const Rows& rows) {
  std::map<int, std::string> lines;
  for (const auto& [number, fields] : rows) {
    std::string line;
    for (const auto& [name, value] : fields) {
      line += " " + name + "=" + (value ? std::to_string(*value) : "-");
    }
    lines[*fields.at("ID")] = line;
  }
  std::string all;
  for (const auto& [id, line] : lines) {
    all += line + "\n";
  }
  return all;
}

class RelationOracle : public testing::TestWithParam<unsigned> {
 protected:
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

  // Mostly keys that there are.
  std::optional<int> someKey(const Rows& rows, const std::string& name) {
    if (rows.empty() || below(8) == 0) {
      return below(3) == 0 ? std::nullopt : std::optional(below(60));
    }
    return std::next(rows.begin(), below(static_cast<int>(rows.size())))->second.at(name);
  }
  // The fields of the relations; those of one relation mostly from one parent.
  void assign(const std::string& table, Fields& fields) {
    for (const NewRelation& relation : relations()) {
      if (relation.child != table || below(3) == 0) {
        continue;
      }
      const Rows& parents = model_[relation.parent];
      if (relation.childColumns.size() > 1 && !parents.empty() && below(5) != 0) {
        const Fields& parent = std::next(parents.begin(), below(static_cast<int>(parents.size())))->second;
        for (std::size_t i = 0; i < relation.childColumns.size(); ++i) {
          fields[relation.childColumns[i]] = parent.at(relation.parentColumns[i]);
        }
        continue;
      }
      for (std::size_t i = 0; i < relation.childColumns.size(); ++i) {
        fields[relation.childColumns[i]] = someKey(parents, relation.parentColumns[i]);
      }
    }
  }
  static void write(AccessRecordset& recordset, const Fields& before, const Fields& fields) {
    for (const auto& [name, value] : fields) {
      if (!before.contains(name) || before.at(name) != value) {
        ASSERT_TRUE(recordset.write(name, value ? Value(*value) : Value(Null{}))) << name;
      }
    }
  }
  static bool stand(AccessRecordset& recordset, const Fields& fields) {
    recordset.moveFirst();
    return recordset.find("Mark", TextMatcher(std::to_string(*fields.at("Mark")), CaseRule::exact));
  }
  Status step(AccessRecordset& recordset, const std::string& table, Tables& after);

  static std::string read(AccessRecordset& recordset, const std::string& table) {
    Rows rows;
    std::string text;
    int number = 0;
    for (recordset.moveFirst(); recordset.atEnd() == false; recordset.moveNext()) {
      rows[number++] = readFields(recordset, table);
    }
    return shown(rows);
  }
  static Fields readFields(AccessRecordset& recordset, const std::string& table) {
    Fields fields;
    std::string text;
    for (const NewTable& one : tables()) {
      for (const NewColumn& column : one.columns) {
        if (one.name == table && column.name != "Note") {
          fields[column.name] =
              recordset.readText(column.name, text) ? std::optional(std::stoi(text)) : std::nullopt;
        }
      }
    }
    return fields;
  }

  std::mt19937 random_{GetParam()};
  Tables model_;
  int nextMark_ = 0;
};

// One change, tried on the recordset; `after` is what the model is if it worked.
Status RelationOracle::step(AccessRecordset& recordset, const std::string& table, Tables& after) {
  after = model_;
  Rows& rows = after[table];
  const int kind = below(10);
  if (kind < 5 || rows.empty()) {
    Fields fields;
    for (const NewTable& one : tables()) {
      for (const NewColumn& column : one.columns) {
        if (one.name == table && column.name != "Note") {
          fields[column.name] = std::nullopt;
        }
      }
    }
    fields["ID"] = below(60);
    fields["Mark"] = ++nextMark_;
    if (table != "A") {
      assign(table, fields);
    }
    recordset.addNew();
    write(recordset, {}, fields);
    recordset.write("Note", std::string(static_cast<std::size_t>(below(3) == 0 ? 5000 : 30), 'n'));
    rows[nextMark_] = fields;
    return recordset.update();
  }
  const int number = std::next(rows.begin(), below(static_cast<int>(rows.size())))->first;
  const Fields before = rows[number];
  EXPECT_TRUE(stand(recordset, before));
  if (kind < 7) {
    rows.erase(number);
    follow(after, table, before, std::nullopt);
    return recordset.remove();
  }
  Fields fields = before;
  assign(table, fields);
  if (below(2) == 0) {
    fields["ID"] = below(60);
  }
  recordset.edit();
  write(recordset, before, fields);
  rows[number] = fields;
  follow(after, table, before, fields);
  return recordset.update();
}

// Random changes to four related tables against the model, while other recordsets stand on records of all of them.
TEST_P(RelationOracle, FileAndModelAgree) {
  const Folder folder;
  makeDatabase(folder / "a.mdb", tables(), {.relations = relations()});
  const std::array names = {"A", "B", "C", "D"};
  int refused = 0;
  int cascaded = 0;
  for (int round = 0; round < 3; ++round) {
    OpenedFile file(folder / "a.mdb", nullptr, round == 1 ? 16 : 4096);
    std::map<std::string, std::array<std::unique_ptr<AccessRecordset>, 2>> open;
    for (const std::string name : names) {
      open[name] = {file.table(name), file.table(name)};
      model_[name];
    }
    for (int i = 0; i < 250; ++i) {
      std::map<std::string, int> watched;
      for (const std::string name : names) {
        Rows& rows = model_[name];
        if (!rows.empty()) {
          watched[name] = std::next(rows.begin(), below(static_cast<int>(rows.size())))->first;
          ASSERT_TRUE(stand(*open[name][1], rows[watched[name]]));
        }
      }
      const std::string table = names[random_() % names.size()];
      Tables after;
      const Status done = step(*open[table][0], table, after);
      ASSERT_EQ(static_cast<bool>(done), sound(after)) << table << ", step " << i << ": " << done.reason();
      refused += done ? 0 : 1;
      if (done) {
        for (const std::string name : names) {
          cascaded += name != table && shown(after[name]) != shown(model_[name]) ? 1 : 0;
        }
        model_ = std::move(after);
      }
      for (const auto& [name, number] : watched) {
        AccessRecordset& watching = *open[name][1];
        std::string text;
        const bool there(watching.readText("Mark", text));
        ASSERT_EQ(there, model_[name].contains(number)) << name << ", step " << i;
        ASSERT_TRUE(!there || readFields(watching, name) == model_[name][number]) << name << ", step " << i;
      }
      if (i % 50 == 0) {
        ASSERT_EQ(file.check(), "") << "step " << i;
      }
    }
    for (const std::string name : names) {
      ASSERT_EQ(read(*open[name][0], name), shown(model_[name]));
    }
    ASSERT_EQ(file.check(), "") << "round " << round;
  }
  EXPECT_GT(refused, 60);
  EXPECT_GT(cascaded, 20);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RelationOracle, testing::Range(1U, 5U));

}  // namespace
}  // namespace veltrano::access
