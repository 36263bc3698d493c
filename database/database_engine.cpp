#include "database/database_engine.h"

#include "database/text_matcher.h"

namespace veltrano {

bool Recordset::find(std::string_view field, const TextMatcher& matcher) {
  std::string text;
  while (!atEnd().value_or(true)) {
    if (readText(field, text) && matcher.matchesUtf8(text)) {
      return true;
    }
    if (!moveNext()) {
      return false;
    }
  }
  return false;
}

}  // namespace veltrano
