#include "database/access/authoring/schema_text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "base/text/excerpt.h"
#include "base/text/wtf8.h"

namespace veltrano::access {

namespace {

constexpr std::pair<std::string_view, ColumnType> typeNames[] = {
    {"boolean", ColumnType::boolean},
    {"byte", ColumnType::byte},
    {"integer", ColumnType::integer},
    {"long", ColumnType::longInteger},
    {"currency", ColumnType::currency},
    {"single", ColumnType::single},
    {"double", ColumnType::real},
    {"datetime", ColumnType::dateTime},
    {"binary", ColumnType::binary},
    {"text", ColumnType::text},
    {"ole", ColumnType::ole},
    {"memo", ColumnType::memo},
    {"guid", ColumnType::guid},
    {"decimal", ColumnType::numeric},
    {"complex", ColumnType::complex},
    {"bigint", ColumnType::bigInteger},
    {"datetime2", ColumnType::extendedDate},
    {"autonumber", ColumnType::longInteger},
    {"autoguid", ColumnType::guid},
};
constexpr std::string_view indexWords[] = {"primary", "unique", "index"};
constexpr std::string_view blanks = " \t\r";
constexpr std::string_view marks = "()[],#";

/// One line, taken from its front word by word.
class Line {
 public:
  explicit Line(std::string_view text) : rest_(text.substr(0, text.find_last_not_of(blanks) + 1)) {
    skipBlanks();
  }

  [[nodiscard]] bool empty() const { return rest_.empty(); }
  [[nodiscard]] std::string_view rest() const { return rest_; }
  [[nodiscard]] bool startsWith(char mark) const { return rest_.starts_with(mark); }
  bool take(char mark) {
    if (!startsWith(mark)) {
      return false;
    }
    rest_.remove_prefix(1);
    skipBlanks();
    return true;
  }
  bool takeWord(std::string_view word) {
    if (nextWord() != word) {
      return false;
    }
    this->word();
    return true;
  }
  /// Up to a blank or a mark; empty at those.
  [[nodiscard]] std::string_view nextWord() const {
    return rest_.substr(0, std::min(rest_.find_first_of(" \t\r()[],"), rest_.size()));
  }
  std::string_view word() {
    const std::string_view found = nextWord();
    rest_.remove_prefix(found.size());
    skipBlanks();
    return found;
  }
  /// A word, or anything in brackets; empty if there is neither.
  std::string name() {
    if (!startsWith('[')) {
      return std::string(word());
    }
    const std::size_t end = std::min(rest_.find(']'), rest_.size());
    std::string found(rest_.substr(1, end - 1));
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    skipBlanks();
    return found;
  }
  template <typename Number>
  bool number(Number& value) {
    const std::string_view digits = word();
    const char* end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, value);
    return stopped == end && error == std::errc();
  }

 private:
  void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size())); }

  std::string_view rest_;
};

// The parsers of a line return what is wrong with it, empty if nothing is.

std::string parseType(Line& line, NewColumn& column) {
  const std::string_view word = line.word();
  const auto* type = std::ranges::find(typeNames, word, &std::pair<std::string_view, ColumnType>::first);
  if (type == std::end(typeNames)) {
    return excerpt(word) + " is not a type";
  }
  column.type = type->second;
  column.autoNumber = word.starts_with("auto");
  if (!line.take('(')) {
    return {};
  }
  bool sound = false;
  if (column.type == ColumnType::numeric) {
    sound = line.number(column.precision) && (!line.take(',') || line.number(column.scale));
  } else if (column.type == ColumnType::text || column.type == ColumnType::binary) {
    sound = line.number(column.size);
  }
  return sound && line.take(')') ? std::string() : "the size of " + excerpt(column.name) + " is not valid";
}

std::string parseColumn(Line& line, NewTable& table) {
  NewColumn column;
  column.name = line.name();
  std::string wrong = parseType(line, column);
  while (wrong.empty() && !line.empty()) {
    if (line.takeWord("required")) {
      column.required = true;
    } else if (line.takeWord("nonempty")) {
      column.allowZeroLength = false;
    } else if (line.takeWord("default")) {
      column.defaultValue = line.rest();
      break;
    } else {
      wrong = excerpt(line.rest()) + " is not understood";
    }
  }
  table.columns.push_back(std::move(column));
  return wrong;
}

std::string parseIndex(Line& line, NewTable& table) {
  NewIndex index;
  const std::string_view kind = line.word();
  index.primary = kind == "primary";
  index.unique = kind == "unique";
  index.name = line.name();
  bool more = line.take('(');
  if (!more || index.name.empty()) {
    return "an index needs a name and columns: " + std::string(kind) + " NAME (COLUMN, COLUMN desc)";
  }
  while (more) {
    NewIndexColumn column{.name = line.name()};
    column.ascending = !line.takeWord("desc");
    index.columns.push_back(std::move(column));
    more = line.take(',');
  }
  if (!line.take(')')) {
    return "the columns of " + excerpt(index.name) + " have no end";
  }
  while (!line.empty()) {
    if (line.takeWord("required")) {
      index.required = true;
    } else if (line.takeWord("ignorenulls")) {
      index.ignoreNulls = true;
    } else {
      return excerpt(line.rest()) + " is not understood";
    }
  }
  table.indexes.push_back(std::move(index));
  return {};
}

std::string parseLine(Line& line, std::vector<NewTable>& tables) {
  if (line.takeWord("table")) {
    tables.push_back({.name = line.name()});
    return tables.back().name.empty() || !line.empty() ? "a table needs one name" : "";
  }
  if (tables.empty()) {
    return "a table comes first: table NAME";
  }
  return std::ranges::find(indexWords, line.nextWord()) != std::end(indexWords)
             ? parseIndex(line, tables.back())
             : parseColumn(line, tables.back());
}

std::string written(const std::string& name) {
  const bool reserved = name == "table" || std::ranges::find(indexWords, name) != std::end(indexWords);
  const bool plain = name.find_first_of(blanks) == std::string::npos &&
                     name.find_first_of(marks) == std::string::npos && !reserved;
  return plain ? name : "[" + name + "]";
}

std::string typeOf(const Column& column, Version version) {
  if (column.autoNumber || column.autoGuid) {
    return column.autoGuid ? "autoguid" : "autonumber";
  }
  std::string text = "unknown";
  for (const auto& [name, type] : typeNames) {
    if (type == column.type) {
      text = name;
      break;
    }
  }
  if (column.type == ColumnType::text || column.type == ColumnType::binary) {
    const bool units = column.type == ColumnType::text && !isJet3(version);
    text += "(" + std::to_string(units ? column.length / 2 : column.length) + ")";
  } else if (column.type == ColumnType::numeric) {
    text += "(" + std::to_string(column.precision) + "," + std::to_string(column.scale) + ")";
  }
  return text;
}

}  // namespace

Result<std::vector<NewTable>> parseSchema(std::string_view text) {
  if (!isWtf8(text)) {
    return {Failure::damaged, "the text is not UTF-8"};
  }
  std::vector<NewTable> tables;
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  text.remove_prefix(text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    Line line(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::string wrong = line.empty() || line.startsWith('#') ? "" : parseLine(line, tables);
    if (!wrong.empty()) {
      return {Failure::damaged, "line " + std::to_string(number) + ": " + wrong};
    }
  }
  if (tables.empty()) {
    return {Failure::damaged, "it describes no table"};
  }
  return tables;
}

std::string describeTable(const TableDefinition& table, Version version) {
  std::string text = "table " + written(table.name) + "\n";
  for (const Column& column : table.columns) {
    text += "  " + written(column.name) + " " + typeOf(column, version) +
            (column.required ? " required" : "") +
            (column.isText() && !column.allowZeroLength ? " nonempty" : "") +
            (column.defaultValue.empty() ? "" : " default " + column.defaultValue) + "\n";
  }
  for (const Index& index : table.indexes) {
    text += std::string("  ") +
            (index.primary  ? "primary "
             : index.unique ? "unique "
                            : "index ") +
            written(index.name) + " (";
    for (const IndexColumn& part : index.columns) {
      const Column* column = table.byNumber(part.column);
      text += (&part == index.columns.data() ? "" : ", ") +
              (column != nullptr ? written(column->name) : "?") + (part.ascending ? "" : " desc");
    }
    text += std::string(")") + (index.required && !index.primary ? " required" : "") +
            (index.ignoreNulls ? " ignorenulls" : "") + "\n";
  }
  return text;
}

}  // namespace veltrano::access
