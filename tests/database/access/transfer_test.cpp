#include "base/files/whole.h"
#include "database/access/authoring/schema_text.h"
#include "database/access/schema/catalog.h"
#include "database/access/transfer/table_text.h"
#include "harness.h"

namespace veltrano::access {
namespace {

using namespace std::string_literals;

/// Records as "(a|'b')", with quotes around the values that had some; then what is wrong, if anything is.
std::string records(const Folder& folder, std::string_view csv) {
  EXPECT_TRUE(replaceFile(folder / "a.csv", csv));
  auto reader = CsvReader::open(folder / "a.csv");
  if (!reader) {
    return reader.status().reason();
  }
  std::string text;
  std::vector<CsvField> fields;
  while (reader->next(fields)) {
    for (const CsvField& field : fields) {
      text += (&field == fields.data() ? "(" : "|") + (field.quoted ? "'" + field.text + "'" : field.text);
    }
    text += ")";
  }
  return reader->status() ? text : text + std::to_string(reader->line()) + ": " + reader->status().reason();
}

TEST(Csv, IsReadOrRefused) {
  const Folder folder;
  const std::string block(65534, 'x');  // what follows straddles two reads
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"a,b\n1,2", "(a|b)(1|2)"},
      {"\xEF\xBB\xBF\"a,,\";b,c;d\r\n\"1\";;\r\n", "('a,,'|b,c|d)('1'||)"},
      {"a\tb\n\t\n", "(a|b)(|)"},
      {"a\n\"1,\"\"\r\n2\"\nx", "(a)('1,\"\r\n2')(x)"},
      {"a\n5\" pipe, b\"\"c\n", "(a)(5\" pipe| b\"\"c)"},
      {"a\n\"b\"c\n", "(a)2: text follows a closing quote"},
      {"a\n\n\"b\n\n\"\n\"c\" ,d", "(a)()('b\n\n')6: text follows a closing quote"},
      {block + "\"\"\n\"" + block + "\"\"\"\n", "(" + block + "\"\")('" + block + "\"')"},
      {block + ",\"x\"y", "1: text follows a closing quote"},
      {"\xFF\xFE"s + "a\0"s, "the text is not UTF-8 but UTF-16"},
      {"a\nb\0\n"s, "(a)(b\0)"s},
  };
  for (const auto& [csv, expected] : cases) {
    EXPECT_EQ(records(folder, csv), expected) << csv.substr(0, 80);
  }
  EXPECT_EQ(CsvReader::open(folder.path()).status().reason(), "a folder has this name");
}

std::string exported(Pager& pager, const char* table, TextForm form) {
  const auto reader = TableReader::open(pager, table, Walk::keyOrder);
  std::string all;
  const auto take = [&](std::string& text, double) { all += std::exchange(text, ""); };
  return reader && exportRecords(**reader, form, Damage::fails, take) ? all : "failed";
}

std::string imported(Pager& pager, const char* table, std::string_view csv, double stopAt = 2) {
  const Folder folder;
  EXPECT_TRUE(replaceFile(folder / "a.csv", csv));
  auto reader = CsvReader::open(folder / "a.csv");
  try {
    return importRecords(*reader, pager, table,
                         [&](double done) {
                           if (done >= stopAt) throw std::runtime_error("stopped");
                         })
        .reason();
  } catch (const std::runtime_error& stop) {
    return stop.what();
  }
}

using Transfer = DatabaseTest;

// Nulls and empty texts in a table of one column, where a null is an empty line.
TEST_F(Transfer, BringsOneColumnBack) {
  make(tablesOf("table A; V text\n table B; V text"));
  for (const std::string_view csv : {"V\n", "V\n\n", "V\n\"\"\n", "V\n\n\"\"\n\nx\n\" \"\n\"\n\"\n\n"}) {
    const std::string before = exported(pager(), "A", TextForm::csv);
    ASSERT_EQ(imported(pager(), "A", csv), "");
    EXPECT_EQ(exported(pager(), "A", TextForm::csv), before + std::string(csv.substr(2)));
  }
  ASSERT_EQ(imported(pager(), "B", exported(pager(), "A", TextForm::csv)), "");
  EXPECT_EQ(exported(pager(), "B", TextForm::jsonLines), exported(pager(), "A", TextForm::jsonLines));
  EXPECT_NE(exported(pager(), "B", TextForm::jsonLines).find("{\"V\":null}\n{\"V\":\"\"}\n"),
            std::string::npos);
}

TEST_F(Transfer, AddsAllRecordsOrNone) {
  make(tablesOf("table Parent; ID long; Up long; primary P (ID)\n"
                "table Child; ID long; Up long; primary P (ID)"),
       {.relations = {{"Families", "Parent", {"ID"}, "Child", {"Up"}}}});
  ASSERT_EQ(imported(pager(), "Parent", "ID\n1\n2\n"), "");
  const std::pair<const char*, const char*> cases[] = {
      {"ID,Up\n1,1\n2,3\n", "line 3: the relation Families: no record of Parent has the key"},
      {"ID,Up\n1,1\n1,2\n", "line 3: a duplicate in the index P"},
      {"ID,Up\n1,1\n\n2\n", "line 4: there is 1 field instead of 2"},
      {"I\x1B[D,Up\n1,1\n", "there is no field \"I?[D\""},
  };
  for (const auto& [csv, reason] : cases) {
    EXPECT_EQ(imported(pager(), "Child", csv), reason);
    EXPECT_EQ(exported(pager(), "Child", TextForm::csv), "ID,Up\n") << csv;
  }
  EXPECT_EQ(imported(pager(), "Child", "ID,Up\n1,1\n2,\n", 1), "stopped")
      << "before the records become lasting";
  EXPECT_EQ(exported(pager(), "Child", TextForm::csv), "ID,Up\n");
  EXPECT_EQ(imported(pager(), "Child", "ID,Up\n1,1\n\n2,\n"), "");
  EXPECT_EQ(exported(pager(), "Child", TextForm::csv), "ID,Up\n1,1\n2,\n");
}

using SchemaText = DatabaseTest;

TEST_F(SchemaText, SaysWhatIsWrongWhere) {
  const std::string head = "table T\n  ID long\n";
  const std::pair<std::string, std::string> cases[] = {
      {"", "it describes no table"},
      {"ID long\n", "line 1: a table comes first: table NAME"},
      {head + "  A text(99999999999)\n", "line 3: the size of \"A\" is not valid"},
      {head + "  A long requiredd\n", "line 3: \"requiredd\" is not understood"},
      {head + "  index I (ID\n", "line 3: the columns of \"I\" have no end"},
      {head + "  A te\x1Bxt" + std::string(50, 'x') + "\n",
       "line 3: \"te?xt" + std::string(35, 'x') + "...\" is not a type"},
      {head + "  \xE9 text\n", "the text is not UTF-8"},
  };
  for (const auto& [text, reason] : cases) {
    EXPECT_EQ(parseSchema(text).status().reason(), reason) << text;
  }
}

TEST_F(SchemaText, DescribesWhatItMade) {
  const std::string text =
      "table [My table]\n  ID autonumber\n  Key autoguid\n  [table] text(50) required nonempty default "
      "\"a\"\n"
      "  [a,b] decimal(10,2) default 1.5\n  Z\u00fcrich binary(7)\n  primary [P k] (ID)\n"
      "  unique U ([a,b], [table] desc) required\n  index I (Z\u00fcrich) ignorenulls\n"
      "table [primary]\n  A memo\n";
  make(tablesOf(text));
  std::string described;
  for (const char* name : {"My table", "primary"}) {
    described += describeTable(*findTable(pager(), name), pager().version());
  }
  EXPECT_EQ(described, text);
}

}  // namespace
}  // namespace veltrano::access
