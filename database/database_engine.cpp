#include "database/database_engine.h"

#include "base/trace.h"
#include "database/values/text_matcher.h"

namespace veltrano {

bool Recordset::find(std::string_view field, const TextMatcher& matcher) {
  std::string text;
  bool everRead = false;
  Status read;
  do {
    read = readText(field, text);
    if (read && matcher.matchesUtf8(text)) {
      return true;
    }
    everRead = everRead || read;
  } while (moveNext() && !atEnd().value_or(true));
  if (!everRead) {
    trace("The field \"", field, "\" has a text in none of the records: ", read, ".");
  }
  return false;
}

}  // namespace veltrano
