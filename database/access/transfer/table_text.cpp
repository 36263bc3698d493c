#include "database/access/transfer/table_text.h"

#include <algorithm>

#include "base/text/wtf8.h"

namespace veltrano::access {

namespace {

/// True if JSON takes the value without quotes; booleans are not for this function.
bool isJsonNumber(ColumnType type, std::string_view text) {
  const bool number = (type >= ColumnType::byte && type <= ColumnType::real) || type == ColumnType::numeric ||
                      type == ColumnType::complex || type == ColumnType::bigInteger;
  return number && text.find('n') == std::string_view::npos;  // nan, inf
}

void appendEscape(std::string& target, unsigned unit) {
  constexpr char digits[] = "0123456789abcdef";
  target += "\\u";
  for (const unsigned shift : {12U, 8U, 4U, 0U}) {
    target += digits[(unit >> shift) & 15U];
  }
}

void appendJsonString(std::string& target, std::string_view text) {
  const auto at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  target += '"';
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (at(i) == '"' || at(i) == '\\') {
      target.append(1, '\\').append(1, text[i]);
    } else if (at(i) == '\n') {
      target += "\\n";
    } else if (at(i) < ' ') {
      appendEscape(target, at(i));
    } else if (at(i) == 0xED && i + 2 < text.size() && at(i + 1) >= 0xA0) {
      // A lone surrogate, which JSON can say and UTF-8 cannot.
      appendEscape(target, 0xD000U | (at(i + 1) & 0x3FU) << 6U | (at(i + 2) & 0x3FU));
      i += 2;
    } else {
      target += text[i];
    }
  }
  target += '"';
}

void appendJsonValue(std::string& target, ColumnType type, std::string_view text) {
  if (type == ColumnType::boolean) {
    target += text == "True" ? "true" : "false";
  } else if (isJsonNumber(type, text)) {
    target += text;
  } else {
    appendJsonString(target, text);
  }
}

bool canBeEmpty(const Column& column) {
  return column.isText() || column.type == ColumnType::binary || column.type == ColumnType::ole;
}

/// A column that is exported, and what comes before its value in each record.
struct Shown {
  std::size_t index;
  std::string before;
};

std::vector<Shown> shownColumns(const TableReader& reader, TextForm form) {
  std::vector<Shown> shown;
  for (std::size_t i = 0; i < reader.columns().size(); ++i) {
    if (reader.columns()[i].calculated) {
      continue;
    }
    std::string before = shown.empty() ? "" : ",";
    if (form == TextForm::jsonLines) {
      before = shown.empty() ? "{" : ",";
      appendJsonString(before, reader.columns()[i].name);
      before += ':';
    }
    shown.push_back({i, std::move(before)});
  }
  return shown;
}

}  // namespace

Result<std::uint64_t> exportRecords(TableReader& reader, TextForm form, Damage damage,
                                    const std::function<void(std::string& text, double done)>& written) {
  const std::vector<Shown> shown = shownColumns(reader, form);
  const double expected = std::max(1.0, static_cast<double>(reader.expectedRecords()));
  const bool json = form == TextForm::jsonLines;
  std::string text;
  std::string value;
  std::uint64_t damaged = 0;
  for (const Shown& column : shown) {
    if (!json) {
      text += column.before;
      appendCsv(text, reader.columns()[column.index].name);
    }
  }
  text += json ? "" : "\n";
  for (double records = 1; reader.next(); ++records) {
    for (const auto& [index, before] : shown) {
      text += before;
      const auto field = reader.read(index, value);
      damaged += field == TableReader::Field::damaged ? 1 : 0;
      if (field != TableReader::Field::value) {
        text += json ? "null" : "";
      } else if (json) {
        appendJsonValue(text, reader.columns()[index].type, value);
      } else {
        appendCsv(text, value);
      }
    }
    text += json ? "}\n" : "\n";
    if (damage == Damage::fails && damaged + reader.damagedRecords() != 0) {
      break;
    }
    written(text, std::min(0.99, records / expected));
  }
  damaged += reader.damagedRecords();
  if (damage == Damage::fails && (damaged != 0 || reader.indexDamaged())) {
    return {Failure::damaged, reader.indexDamaged() ? "its primary key is damaged" : "a record is damaged"};
  }
  written(text, 1);
  return damaged;
}

Status importRecords(CsvReader& csv, Pager& pager, std::string_view table,
                     const std::function<void(double done)>& added) {
  std::vector<CsvField> fields;
  if (!csv.next(fields)) {
    return csv.status() ? Status(Failure::damaged, "no line names the fields") : csv.status();
  }
  std::vector<std::string> names;
  names.reserve(fields.size());
  for (const CsvField& field : fields) {
    names.push_back(field.text);
    if (!isWtf8(field.text)) {
      return {Failure::damaged, "line 1: the text is not UTF-8"};
    }
  }
  auto filler = TableFiller::begin(pager, table, names);
  if (!filler) {
    return filler.status();
  }
  const auto wrong = [&csv](const std::string& reason) {
    return Status(Failure::damaged, "line " + std::to_string(csv.line()) + ": " + reason);
  };
  std::vector<std::optional<std::string_view>> values(names.size());
  while (csv.next(fields)) {
    if (names.size() > 1 && fields.size() == 1 && fields[0].text.empty()) {
      continue;  // a blank line
    }
    if (fields.size() != names.size()) {
      const bool one = fields.size() == 1;
      return wrong((one ? "there is 1 field" : "there are " + std::to_string(fields.size()) + " fields") +
                   " instead of " + std::to_string(names.size()));
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
      const auto& [text, quoted] = fields[i];
      if (!isWtf8(text)) {
        return wrong("the text is not UTF-8");
      }
      const bool null = text.empty() && !(quoted && canBeEmpty((*filler)->column(i)));
      values[i] = null ? std::nullopt : std::optional<std::string_view>(text);
    }
    if (const Status done = (*filler)->add(values); !done) {
      return wrong(done.reason());
    }
    added(csv.done());
  }
  if (!csv.status()) {
    return wrong(csv.status().reason());
  }
  added(1);
  return (*filler)->commit();
}

}  // namespace veltrano::access
