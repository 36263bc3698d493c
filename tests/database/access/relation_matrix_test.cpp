#include <gtest/gtest.h>

#include <functional>

#include "database/values/text_matcher.h"
#include "harness.h"

namespace veltrano::access {
namespace {

using Key = std::optional<int>;

constexpr const char* nothing = "";  // the change is refused

enum class Rule { refuse, cascade, setNull };
enum class Shape { oneColumn, twoColumns, self };

NewRelation relationOf(Rule rule) {
  return {.name = "Rel",
          .cascadeUpdates = rule == Rule::cascade,
          .onDelete = rule == Rule::cascade   ? OnDelete::cascade
                      : rule == Rule::setNull ? OnDelete::setNull
                                              : OnDelete::refuse};
}

// Parents 1 2 3 and children 10 to 13, in two tables or in one. A key of two columns is a number and a text.
class Family {
 public:
  Family(const std::filesystem::path& file, Shape shape, Rule rule) : shape_(shape) {
    const NewColumn id = {.name = "ID", .type = ColumnType::longInteger};
    const NewColumn name = {.name = "Name", .size = 100};
    const NewColumn up = {.name = "Up", .type = ColumnType::longInteger};
    NewTable parent = {.name = "Parent",
                       .columns = {id, {.name = "Text", .size = 20}, name},
                       .indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true}}};
    NewTable child = {.name = "Child",
                      .columns = {id, up, {.name = "UpText", .size = 30, .compressed = false}, name},
                      .indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true}}};
    NewRelation relation = relationOf(rule);
    relation.parent = shape == Shape::self ? "Child" : "Parent";
    relation.child = "Child";
    relation.parentColumns = {"ID"};
    relation.childColumns = {"Up"};
    if (shape == Shape::twoColumns) {
      parent.indexes[0].columns = {{"ID", false}, {"Text"}};
      relation.parentColumns = {"ID", "Text"};
      relation.childColumns = {"Up", "UpText"};
    }
    makeDatabase(file, {child, parent}, {.relations = {relation}});
    file_.emplace(file);
    parents_ = file_->table(relation.parent);
    children_ = file_->table("Child");
    for (int key = 1; key <= 3; ++key) {
      EXPECT_TRUE(addParent(key));
    }
    for (const auto& [child_id, key] : {std::pair(10, Key(1)), {11, 1}, {12, 2}, {13, std::nullopt}}) {
      EXPECT_TRUE(addChild(child_id, key));
    }
  }

  Status addParent(int key) {
    parents_->addNew();
    writeKey(*parents_, "ID", "Text", key);
    return parents_->update();
  }
  Status addChild(int id, Key key) {
    children_->addNew();
    children_->write("ID", id);
    writeKey(*children_, "Up", "UpText", key);
    return finish(*children_);
  }
  Status changeChild(int id, Key key) {
    find(*children_, id).edit();
    writeKey(*children_, "Up", "UpText", key);
    return finish(*children_);
  }
  Status changeParent(int key, int to) {
    find(*parents_, key).edit();
    writeKey(*parents_, "ID", "Text", to);
    return parents_->update();
  }
  Status renameParent(int key) {
    find(*parents_, key).edit();
    parents_->write("Name", std::string(90, 'n'));
    return parents_->update();
  }
  Status removeParent(int key) { return find(*parents_, key).remove(); }
  Status removeChild(int id) { return find(*children_, id).remove(); }

  /// "1 2 3: 10>1 11>1 12>2 13>-"
  std::string content() {
    std::string parents;
    std::string children;
    for (parents_->moveFirst(); parents_->atEnd() == false; parents_->moveNext()) {
      const std::string id = read(*parents_, "ID");
      if (id.size() == 1) {
        parents.insert(shape_ == Shape::twoColumns ? 0 : parents.size(), id + " ");
      }
    }
    for (children_->moveFirst(); children_->atEnd() == false; children_->moveNext()) {
      const std::string id = read(*children_, "ID");
      const std::string up = read(*children_, "Up");
      const std::string text = read(*children_, "UpText");
      if (id.size() > 1) {
        children += " " + id + ">" + (up == "()" ? "-" : up);
      }
      EXPECT_EQ(text, shape_ != Shape::twoColumns || up == "()" ? "()" : textOf(std::stoi(up)));
    }
    parents.back() = ':';
    return parents + children;
  }
  [[nodiscard]] std::string check() const { return file_->check(); }

 private:
  static std::string textOf(int key) { return "text " + std::to_string(key); }
  void writeKey(Recordset& recordset, const char* number, const char* text, Key key) {
    recordset.write(number, key ? Value(*key) : Value(Null{}));
    if (shape_ == Shape::twoColumns) {
      recordset.write(text, key ? Value(textOf(*key)) : Value(Null{}));
    }
  }
  // A refused edit lives on, and can be corrected.
  Status finish(Recordset& recordset) {
    Status done = recordset.update();
    if (!done) {
      writeKey(recordset, "Up", "UpText", 3);
      EXPECT_TRUE(recordset.update());
      EXPECT_TRUE(recordset.edit() || recordset.moveLast());
      recordset.moveFirst();
    }
    return done;
  }
  static Recordset& find(Recordset& recordset, int id) {
    recordset.moveFirst();
    EXPECT_TRUE(recordset.find("ID", TextMatcher(std::to_string(id), CaseRule::exact)));
    return recordset;
  }

  Shape shape_;
  std::optional<OpenedFile> file_;
  std::unique_ptr<AccessRecordset> parents_, children_;
};

struct Change {
  const char* what;
  std::function<Status(Family&)> make;
  // What is in the tables afterwards; nothing: it was refused, and corrected to parent 3.
  const char* refuse;
  const char* cascade;
  const char* setNull;
};

std::vector<Change> changes() {
  return {
      {"add a child", [](Family& f) { return f.addChild(14, 2); },  //
       "1 2 3: 10>1 11>1 12>2 13>- 14>2", "1 2 3: 10>1 11>1 12>2 13>- 14>2",
       "1 2 3: 10>1 11>1 12>2 13>- 14>2"},
      {"add a child of nobody", [](Family& f) { return f.addChild(14, std::nullopt); },
       "1 2 3: 10>1 11>1 12>2 13>- 14>-", "1 2 3: 10>1 11>1 12>2 13>- 14>-",
       "1 2 3: 10>1 11>1 12>2 13>- 14>-"},
      {"add a child without its parent", [](Family& f) { return f.addChild(14, 9); }, nothing, nothing,
       nothing},
      {"add a parent", [](Family& f) { return f.addParent(9); },  //
       "1 2 3 9: 10>1 11>1 12>2 13>-", "1 2 3 9: 10>1 11>1 12>2 13>-", "1 2 3 9: 10>1 11>1 12>2 13>-"},
      {"move a child", [](Family& f) { return f.changeChild(12, 1); },  //
       "1 2 3: 10>1 11>1 12>1 13>-", "1 2 3: 10>1 11>1 12>1 13>-", "1 2 3: 10>1 11>1 12>1 13>-"},
      {"free a child", [](Family& f) { return f.changeChild(12, std::nullopt); },  //
       "1 2 3: 10>1 11>1 12>- 13>-", "1 2 3: 10>1 11>1 12>- 13>-", "1 2 3: 10>1 11>1 12>- 13>-"},
      {"move a child to nobody", [](Family& f) { return f.changeChild(12, 9); }, nothing, nothing, nothing},
      {"change a parent's key", [](Family& f) { return f.changeParent(1, 7); },  //
       nothing, "2 3 7: 10>7 11>7 12>2 13>-", nothing},
      {"change a parent's key to one in use", [](Family& f) { return f.changeParent(1, 2); }, nothing,
       nothing, nothing},
      {"change a childless parent's key", [](Family& f) { return f.changeParent(3, 7); },  //
       "1 2 7: 10>1 11>1 12>2 13>-", "1 2 7: 10>1 11>1 12>2 13>-", "1 2 7: 10>1 11>1 12>2 13>-"},
      {"change another field of a parent", [](Family& f) { return f.renameParent(1); },  //
       "1 2 3: 10>1 11>1 12>2 13>-", "1 2 3: 10>1 11>1 12>2 13>-", "1 2 3: 10>1 11>1 12>2 13>-"},
      {"delete a parent", [](Family& f) { return f.removeParent(1); },  //
       nothing, "2 3: 12>2 13>-", "2 3: 10>- 11>- 12>2 13>-"},
      {"delete a childless parent", [](Family& f) { return f.removeParent(3); },  //
       "1 2: 10>1 11>1 12>2 13>-", "1 2: 10>1 11>1 12>2 13>-", "1 2: 10>1 11>1 12>2 13>-"},
      {"delete a child", [](Family& f) { return f.removeChild(10); },  //
       "1 2 3: 11>1 12>2 13>-", "1 2 3: 11>1 12>2 13>-", "1 2 3: 11>1 12>2 13>-"},
  };
}

class RelationMatrix : public testing::TestWithParam<std::tuple<Shape, Rule>> {};

TEST_P(RelationMatrix, IsEnforced) {
  const auto [shape, rule] = GetParam();
  const Folder folder;
  for (const Change& change : changes()) {
    SCOPED_TRACE(change.what);
    Family family(folder / (std::string(change.what) + ".mdb"), shape, rule);
    const std::string before = family.content();
    ASSERT_EQ(before, "1 2 3: 10>1 11>1 12>2 13>-");
    const std::string expected = rule == Rule::refuse    ? change.refuse
                                 : rule == Rule::cascade ? change.cascade
                                                         : change.setNull;
    const Status done = change.make(family);
    EXPECT_EQ(static_cast<bool>(done), expected != nothing) << done.reason();
    if (!expected.empty()) {
      EXPECT_EQ(family.content(), expected);
    } else {
      const bool duplicate = std::string_view(change.what).ends_with("in use");
      EXPECT_NE(done.reason().find(duplicate ? "duplicate" : "the relation Rel: "), std::string::npos)
          << done.reason();
      const std::string what = change.what;
      EXPECT_EQ(family.content(), what == "add a child without its parent" ? before + " 14>3"
                                  : what == "move a child to nobody"       ? "1 2 3: 10>1 11>1 12>3 13>-"
                                                                           : before);
    }
    EXPECT_EQ(family.check(), "");
  }
}

INSTANTIATE_TEST_SUITE_P(All, RelationMatrix,
                         testing::Combine(testing::Values(Shape::oneColumn, Shape::twoColumns, Shape::self),
                                          testing::Values(Rule::refuse, Rule::cascade, Rule::setNull)));

}  // namespace
}  // namespace veltrano::access
