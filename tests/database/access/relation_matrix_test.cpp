#include <functional>

#include "harness.h"

namespace veltrano::access {
namespace {

using Key = std::optional<int>;

enum class Shape { oneColumn, twoColumns, self };

// Parents 1 2 3 and children 10 to 13, in two tables or in one. A key of two columns is a number and a text.
class Family {
 public:
  Family(const std::filesystem::path& file, Shape shape, OnDelete rule) : shape_(shape) {
    const bool two = shape == Shape::twoColumns;
    auto tables = tablesOf(
        "table Child; ID long; Up long; UpText text(30); Name text(100); primary P (ID)\n"
        "table Parent; ID long; Text text(20); Name text(100); primary P " +
        std::string(two ? "(ID desc, Text)" : "(ID)"));
    tables[0].columns[2].compressed = false;
    using Names = std::vector<std::string>;
    const NewRelation relation = {
        "Rel",   shape == Shape::self ? "Child" : "Parent", two ? Names{"ID", "Text"} : Names{"ID"},
        "Child", two ? Names{"Up", "UpText"} : Names{"Up"}, rule == OnDelete::cascade,
        rule};
    makeDatabase(file, tables, {.relations = {relation}});
    file_.emplace(file);
    parents_ = file_->table(relation.parent);
    children_ = file_->table("Child");
    for (int key = 1; key <= 3; ++key) {
      EXPECT_TRUE(addParent(key));
    }
    for (const auto& [child, key] : {std::pair(10, Key(1)), {11, 1}, {12, 2}, {13, std::nullopt}}) {
      EXPECT_TRUE(addChild(child, key));
    }
  }

  Status addParent(int key) { return add(*parents_, keyValues("ID", "Text", key)); }
  Status addChild(int id, Key key) {
    Values values = keyValues("Up", "UpText", key);
    values.emplace_back("ID", id);
    return finish(add(*children_, values));
  }
  Status changeChild(int id, Key key) {
    stand(*children_, "ID", std::to_string(id));
    return finish(change(*children_, keyValues("Up", "UpText", key)));
  }
  Status changeParent(int key, int to) {
    stand(*parents_, "ID", std::to_string(key));
    return change(*parents_, keyValues("ID", "Text", to));
  }
  Status renameParent(int key) {
    stand(*parents_, "ID", std::to_string(key));
    return change(*parents_, {{"Name", std::string(90, 'n')}});
  }
  Status removeParent(int key) {
    stand(*parents_, "ID", std::to_string(key));
    return parents_->remove();
  }
  Status removeChild(int id) {
    stand(*children_, "ID", std::to_string(id));
    return children_->remove();
  }

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
      const bool hasText = shape_ == Shape::twoColumns && up != "()";
      EXPECT_EQ(read(*children_, "UpText"), hasText ? "text " + up : "()");
      if (id.size() > 1) {
        children += " " + id + ">" + (up == "()" ? "-" : up);
      }
    }
    parents.back() = ':';
    return parents + children;
  }
  [[nodiscard]] std::string check() const { return file_->check(); }

 private:
  [[nodiscard]] Values keyValues(const char* number, const char* text, Key key) const {
    Values values = {{number, key ? Value(*key) : Value(Null{})}};
    if (shape_ == Shape::twoColumns) {
      values.emplace_back(text, key ? Value("text " + std::to_string(*key)) : Value(Null{}));
    }
    return values;
  }
  // A refused edit of a child lives on, and can be corrected.
  Status finish(Status done) {
    if (!done) {
      for (const auto& [field, value] : keyValues("Up", "UpText", 3)) {
        children_->write(field, value);
      }
      EXPECT_TRUE(children_->update());
    }
    return done;
  }

  Shape shape_;
  std::optional<OpenedFile> file_;
  std::unique_ptr<AccessRecordset> parents_, children_;
};

struct Change {
  const char* what;
  std::function<Status(Family&)> make;
  // The tables afterwards, by the rules refuse, cascade and set null, or under all of them; after a "!" if the
  // change is refused.
  std::vector<std::string> content;
};

constexpr const char* atFirst = "1 2 3: 10>1 11>1 12>2 13>-";

std::vector<Change> changes() {
  const std::string same = atFirst;
  return {
      {"add a child", [](Family& f) { return f.addChild(14, 2); }, {same + " 14>2"}},
      {"add a child of nobody", [](Family& f) { return f.addChild(14, {}); }, {same + " 14>-"}},
      {"add a child without its parent", [](Family& f) { return f.addChild(14, 9); }, {"!" + same + " 14>3"}},
      {"add a parent", [](Family& f) { return f.addParent(9); }, {"1 2 3 9: 10>1 11>1 12>2 13>-"}},
      {"move a child", [](Family& f) { return f.changeChild(12, 1); }, {"1 2 3: 10>1 11>1 12>1 13>-"}},
      {"free a child", [](Family& f) { return f.changeChild(12, {}); }, {"1 2 3: 10>1 11>1 12>- 13>-"}},
      {"move a child away", [](Family& f) { return f.changeChild(12, 9); }, {"!1 2 3: 10>1 11>1 12>3 13>-"}},
      {"change a parent's key",
       [](Family& f) { return f.changeParent(1, 7); },
       {"!" + same, "2 3 7: 10>7 11>7 12>2 13>-", "!" + same}},
      {"change a parent's key to one in use", [](Family& f) { return f.changeParent(1, 2); }, {"!" + same}},
      {"change a childless parent's key",
       [](Family& f) { return f.changeParent(3, 7); },
       {"1 2 7: 10>1 11>1 12>2 13>-"}},
      {"change another field of a parent", [](Family& f) { return f.renameParent(1); }, {same}},
      {"delete a parent",
       [](Family& f) { return f.removeParent(1); },
       {"!" + same, "2 3: 12>2 13>-", "2 3: 10>- 11>- 12>2 13>-"}},
      {"delete a childless parent",
       [](Family& f) { return f.removeParent(3); },
       {"1 2: 10>1 11>1 12>2 13>-"}},
      {"delete a child", [](Family& f) { return f.removeChild(10); }, {"1 2 3: 11>1 12>2 13>-"}},
  };
}

class RelationMatrix : public testing::TestWithParam<std::tuple<Shape, OnDelete>> {};

TEST_P(RelationMatrix, IsEnforced) {
  const auto [shape, rule] = GetParam();
  const Folder folder;
  for (const auto& [what, make, content] : changes()) {
    SCOPED_TRACE(what);
    Family family(folder / (std::string(what) + ".mdb"), shape, rule);
    ASSERT_EQ(family.content(), atFirst);
    const Status done = make(family);
    EXPECT_EQ((done ? "" : "!") + family.content(),
              content[content.size() > 1 ? static_cast<std::size_t>(rule) : 0]);
    const bool duplicate = std::string_view(what).ends_with("in use");
    EXPECT_TRUE(done ||
                done.reason().find(duplicate ? "duplicate" : "the relation Rel: ") != std::string::npos)
        << done.reason();
    EXPECT_EQ(family.check(), "");
  }
}

INSTANTIATE_TEST_SUITE_P(All, RelationMatrix,
                         testing::Combine(testing::Values(Shape::oneColumn, Shape::twoColumns, Shape::self),
                                          testing::Values(OnDelete::refuse, OnDelete::cascade,
                                                          OnDelete::setNull)));

}  // namespace
}  // namespace veltrano::access
