#include "database/access/rules/tokens.h"

#include <algorithm>

namespace veltrano::access {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isWordCharacter(char c) {
  return isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// What lies between the first character and the next `close`; in quotes a doubled one stands for itself.
std::optional<Token> takeEnclosed(std::string_view& rest, Token::Kind kind, char close) {
  Token token{kind};
  for (std::size_t i = 1; i < rest.size(); ++i) {
    if (rest[i] != close) {
      token.text.push_back(rest[i]);
    } else if (kind == Token::Kind::text && i + 1 < rest.size() && rest[i + 1] == close) {
      token.text.push_back(rest[i++]);
    } else {
      rest.remove_prefix(i + 1);
      return token;
    }
  }
  return std::nullopt;
}

Token takeFirst(std::string_view& rest, Token::Kind kind, std::size_t count) {
  Token token{kind, std::string(rest.substr(0, count))};
  rest.remove_prefix(count);
  return token;
}

std::size_t lengthOfNumber(std::string_view text) {
  const auto skipDigits = [text](std::size_t from) {
    while (from < text.size() && isDigit(text[from])) {
      ++from;
    }
    return from;
  };
  std::size_t end = skipDigits(0);
  if (end < text.size() && text[end] == '.') {
    end = skipDigits(end + 1);
  }
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    const std::size_t sign = end + 1 < text.size() && (text[end + 1] == '+' || text[end + 1] == '-') ? 2 : 1;
    const std::size_t exponent = skipDigits(end + sign);
    end = exponent > end + sign ? exponent : end;
  }
  return end;
}

}  // namespace

std::optional<Token> takeToken(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n"), rest.size()));
  if (rest.empty()) {
    return Token();
  }
  const char first = rest.front();
  switch (first) {
    case '"':
    case '\'':
      return takeEnclosed(rest, Token::Kind::text, first);
    case '#':
      return takeEnclosed(rest, Token::Kind::date, '#');
    case '[':
      return takeEnclosed(rest, Token::Kind::name, ']');
    default:
      break;
  }
  if (isDigit(first) || (first == '.' && rest.size() > 1 && isDigit(rest[1]))) {
    return takeFirst(rest, Token::Kind::number, lengthOfNumber(rest));
  }
  if (isWordCharacter(first)) {
    const auto end = std::find_if_not(rest.begin(), rest.end(), isWordCharacter);
    return takeFirst(rest, Token::Kind::word, static_cast<std::size_t>(end - rest.begin()));
  }
  for (const std::string_view sign : {"<>", "<=", ">="}) {
    if (rest.starts_with(sign)) {
      return takeFirst(rest, Token::Kind::sign, sign.size());
    }
  }
  constexpr std::string_view signs = "=<>(),+-.!";
  return signs.find(first) != signs.npos ? std::optional(takeFirst(rest, Token::Kind::sign, 1))
                                         : std::nullopt;
}

}  // namespace veltrano::access
