#ifndef VELTRANO_DATABASE_ACCESS_RULES_TOKENS_H
#define VELTRANO_DATABASE_ACCESS_RULES_TOKENS_H

// The words and signs of a validation rule.

#include <optional>
#include <string>
#include <string_view>

namespace veltrano::access {

struct Token {
  enum class Kind {
    end,
    number,  ///< 12.5, 1e3
    text,    ///< "..." or '...', without the quotes
    date,    ///< #...#, without the signs
    name,    ///< [...], without the brackets
    word,    ///< And, Len, a name without brackets
    sign,    ///< = <> < <= > >= ( ) , + - . !
  };
  Kind kind = Kind::end;
  std::string text = {};
};

/// Takes the next token off the front of `rest`. Empty if it is not one.
std::optional<Token> takeToken(std::string_view& rest);

}  // namespace veltrano::access

#endif
