#ifndef VELTRANO_BASE_TEXT_EXCERPT_H
#define VELTRANO_BASE_TEXT_EXCERPT_H

// Foreign text in messages: what a file holds may be long, and may be anything.

#include <string>
#include <string_view>

namespace veltrano {

/// The start of a UTF-8 text in double quotes, with "..." where it was cut.
std::string excerpt(std::string_view text);

/// Replaces control characters, which would move a terminal's cursor or start another line, by '?'.
std::string printable(std::string text);

}  // namespace veltrano

#endif
