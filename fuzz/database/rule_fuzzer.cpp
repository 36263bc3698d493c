// Any text as a validation rule, and as a pattern of Like for itself: reading it ends, and stays inside memory.

#include <cstdint>
#include <string_view>

#include "base/text/wtf8.h"
#include "database/access/rules/parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace veltrano::access;
  static const TableDefinition table = [] {
    TableDefinition made;
    made.name = "T";
    for (const auto& [name, type] : {std::pair("N", ColumnType::longInteger), {"T", ColumnType::text}}) {
      Column column;
      column.name = name;
      column.type = type;
      made.columns.push_back(column);
    }
    return made;
  }();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  (void)parseRule(text, table, std::nullopt, TextOrder::general);
  (void)parseRule(text, table, 1, TextOrder::generalLegacy);
  const std::u16string units = veltrano::wtf8ToUtf16(text.substr(0, 200));
  if (const auto pattern = LikePattern::parse(units, TextOrder::general)) {
    (void)pattern->matches(units);
  }
  return 0;
}
