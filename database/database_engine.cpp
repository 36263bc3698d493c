#include "database/database_engine.h"

#include "database/values/text_matcher.h"

namespace veltrano {

bool Recordset::find(std::string_view field, const TextMatcher& matcher) {
  std::string text;
  do {
    if (readText(field, text) && matcher.matchesUtf8(text)) {
      return true;
    }
  } while (moveNext() && !atEnd().value_or(true));
  return false;
}

}  // namespace veltrano
