#ifndef VELTRANO_DATABASE_ACCESS_SCHEMA_FIELD_CODEC_H
#define VELTRANO_DATABASE_ACCESS_SCHEMA_FIELD_CODEC_H

// What the bytes of a cell mean: as text, in comparisons, in index keys, and made of assigned values.

#include <optional>
#include <string>
#include <vector>

#include "database/access/pages/row.h"
#include "database/access/schema/table_definition.h"
#include "database/access/storage/pager.h"
#include "database/values/text_matcher.h"
#include "veltrano/value.h"

namespace veltrano::access {

/// Replaces `text` by the text of a cell, as field_to_text.h has it. False, with an empty text, if the cell is
/// damaged, a memo cell without bytes (which is a null), or of a type without text.
bool cellToText(Pager& pager, const Column& column, Bytes cell, std::string& text);

/// True if the matcher matches the cell's text. Texts are compared as they are stored.
bool cellMatches(Pager& pager, const Column& column, Bytes cell, const TextMatcher& matcher);

/// The value of a cell as index keys are made of it: part of `cell` or of `buffer`. Empty if it is damaged.
std::optional<StoredValue> cellToStored(Pager& pager, const Column& column, std::optional<Bytes> cell,
                                        std::vector<std::uint8_t>& buffer);

/// The cell for an assigned value. For a memo or OLE column the cell's bytes are the value itself, not yet
/// stored. Empty if the value does not convert or fit. Nulls are not for this function.
std::optional<std::vector<std::uint8_t>> valueToCell(const Column& column, const Value& value);

}  // namespace veltrano::access

#endif
