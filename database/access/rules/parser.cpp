#include "database/access/rules/parser.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/numbers/numbers.h"
#include "base/text/lower_case.h"
#include "base/text/wtf8.h"
#include "database/access/rules/tokens.h"
#include "database/values/date_from_text.h"

namespace veltrano::access {

namespace {

using Kind = RuleNode::Kind;

constexpr std::size_t longestRule = 4096;
constexpr int deepestRule = 64;

class Parser {
 public:
  Parser(std::string_view rule, const TableDefinition& table, std::optional<std::size_t> field,
         std::optional<TextOrder> order)
      : rest_(rule), table_(table), field_(field), order_(order) {}
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;
  ~Parser() = default;

  Result<RuleNode> parse() {
    step();
    RuleNode node = asTruth(disjunction());
    if (done_ && token_.kind != Token::Kind::end) {
      fail("\"" + token_.text + "\" is not understood");
    }
    return done_ ? Result<RuleNode>(std::move(node)) : done_;
  }

 private:
  // After a failure the parser stands at the end, where every rule of the grammar ends.
  RuleNode fail(std::string why) {
    if (done_) {
      done_ = {Failure::other, std::move(why)};
    }
    token_ = {};
    rest_ = {};
    return {};
  }
  void step() {
    if (auto token = takeToken(rest_)) {
      token_ = *std::move(token);
    } else {
      fail("\"" + std::string(rest_.substr(0, 20)) + "\" is not understood");
    }
  }
  [[nodiscard]] bool atWord(std::string_view word) const {
    return token_.kind == Token::Kind::word && sameAsciiName(std::string_view(token_.text), word);
  }
  bool takeWord(std::string_view word) {
    const bool there = atWord(word);
    if (there) {
      step();
    }
    return there;
  }
  bool takeSign(std::string_view sign) {
    const bool there = token_.kind == Token::Kind::sign && token_.text == sign;
    if (there) {
      step();
    }
    return there;
  }
  void expectSign(std::string_view sign) {
    if (!takeSign(sign)) {
      fail("\"" + std::string(sign) + "\" is missing");
    }
  }

  RuleNode disjunction();
  RuleNode conjunction();
  RuleNode negation();
  RuleNode predicate();
  std::optional<RuleNode> test(RuleNode left);
  RuleNode isNull(RuleNode left);
  RuleNode between(RuleNode left);
  RuleNode in(RuleNode left);
  RuleNode like(RuleNode left);
  RuleNode sum();
  RuleNode primary();
  RuleNode wordAsValue();
  RuleNode function(const std::string& name);
  RuleNode fieldNamed(std::string name);
  RuleNode fieldAt(std::size_t place);
  RuleNode date();
  RuleNode asTruth(RuleNode node);
  RuleNode compared(Comparison comparison, RuleNode left, RuleNode right);
  bool comparable(const RuleNode& left, const RuleNode& right);
  std::optional<Comparison> takeComparison();

  std::string_view rest_;
  const TableDefinition& table_;
  std::optional<std::size_t> field_;
  std::optional<TextOrder> order_;
  Token token_;
  Status done_;  // the first failure
  int depth_ = 0;
};

RuleNode Parser::fieldAt(std::size_t place) {
  return {.kind = Kind::column, .type = ruleTypeOf(table_.columns[place]), .column = place, .parts = {}};
}

// A value alone stands for "= value" in the rule of a field.
RuleNode Parser::asTruth(RuleNode node) {
  const bool bareConstant = node.kind == Kind::constant && field_;
  if (!done_ || (node.type == RuleType::truth && !bareConstant)) {
    return node;
  }
  if (node.type == RuleType::null || !field_) {
    return fail("a value stands where a condition belongs");
  }
  return compared(Comparison::equal, fieldAt(*field_), std::move(node));
}

RuleNode Parser::disjunction() {
  if (++depth_ > deepestRule) {
    return fail("it is nested too deeply");
  }
  RuleNode node = conjunction();
  if (atWord("Or")) {
    node = nodeOf(Kind::any, RuleType::truth, asTruth(std::move(node)));
    while (takeWord("Or")) {
      node.parts.push_back(asTruth(conjunction()));
    }
  }
  --depth_;
  return node;
}

RuleNode Parser::conjunction() {
  RuleNode node = negation();
  if (atWord("And")) {
    node = nodeOf(Kind::all, RuleType::truth, asTruth(std::move(node)));
    while (takeWord("And")) {
      node.parts.push_back(asTruth(negation()));
    }
  }
  return node;
}

RuleNode Parser::negation() {
  bool opposite = false;
  bool any = false;
  for (; takeWord("Not"); any = true) {
    opposite = !opposite;
  }
  RuleNode node = predicate();
  if (!any) {
    return node;
  }
  node = asTruth(std::move(node));
  return opposite ? nodeOf(Kind::opposite, RuleType::truth, std::move(node)) : node;
}

RuleNode Parser::predicate() {
  if (field_) {
    if (auto implied = test(fieldAt(*field_))) {
      return *std::move(implied);
    }
  }
  RuleNode left = sum();
  auto tested = test(left);
  return tested ? *std::move(tested) : left;
}

// What is said of `left`. Empty, with no token taken, if nothing is.
std::optional<RuleNode> Parser::test(RuleNode left) {
  if (const auto comparison = takeComparison()) {
    return compared(*comparison, std::move(left), sum());
  }
  if (takeWord("Is")) {
    return isNull(std::move(left));
  }
  const bool opposite = takeWord("Not");
  std::optional<RuleNode> node;
  if (takeWord("Between")) {
    node = between(std::move(left));
  } else if (takeWord("In")) {
    node = in(std::move(left));
  } else if (takeWord("Like")) {
    node = like(std::move(left));
  } else if (opposite) {
    node = fail("\"Not\" is not understood");
  }
  return opposite && node ? nodeOf(Kind::opposite, RuleType::truth, *std::move(node)) : node;
}

std::optional<Comparison> Parser::takeComparison() {
  constexpr std::pair<std::string_view, Comparison> signs[] = {
      {"=", Comparison::equal},        {"<>", Comparison::unequal}, {"<", Comparison::less},
      {"<=", Comparison::lessOrEqual}, {">", Comparison::greater},  {">=", Comparison::greaterOrEqual}};
  for (const auto& [sign, comparison] : signs) {
    if (takeSign(sign)) {
      return comparison;
    }
  }
  return std::nullopt;
}

bool Parser::comparable(const RuleNode& left, const RuleNode& right) {
  const auto isText = [](const RuleNode& node) { return node.type == RuleType::text; };
  const auto isNull = [](const RuleNode& node) { return node.type == RuleType::null; };
  if ((isText(left) || isText(right)) && !order_) {
    fail("the order of the database's texts is not known");
  } else if (!(isNumeric(left.type) && isNumeric(right.type)) &&
             !((isText(left) || isNull(left)) && (isText(right) || isNull(right)))) {
    fail("it compares values of different types");
  }
  return static_cast<bool>(done_);
}

RuleNode Parser::compared(Comparison comparison, RuleNode left, RuleNode right) {
  comparable(left, right);
  RuleNode node = nodeOf(Kind::compare, RuleType::truth, std::move(left), std::move(right));
  node.comparison = comparison;
  return node;
}

RuleNode Parser::isNull(RuleNode left) {
  const bool opposite = takeWord("Not");
  if (!takeWord("Null")) {
    return fail("\"Null\" is missing");
  }
  RuleNode node = nodeOf(Kind::isNull, RuleType::truth, std::move(left));
  return opposite ? nodeOf(Kind::opposite, RuleType::truth, std::move(node)) : node;
}

RuleNode Parser::between(RuleNode left) {
  RuleNode low = sum();
  if (!takeWord("And")) {
    return fail("\"And\" is missing");
  }
  RuleNode high = sum();
  if (!comparable(left, low) || !comparable(left, high)) {
    return {};
  }
  return nodeOf(Kind::between, RuleType::truth, std::move(left), std::move(low), std::move(high));
}

RuleNode Parser::in(RuleNode left) {
  expectSign("(");
  RuleNode node = nodeOf(Kind::in, RuleType::truth, std::move(left));
  do {
    RuleNode one = sum();
    if (!comparable(node.parts.front(), one)) {
      return {};
    }
    node.parts.push_back(std::move(one));
  } while (takeSign(","));
  expectSign(")");
  return node;
}

RuleNode Parser::like(RuleNode left) {
  if ((left.type != RuleType::text && left.type != RuleType::number) || token_.kind != Token::Kind::text) {
    return fail("it compares with a pattern what is not a text");
  }
  auto pattern = order_ ? LikePattern::parse(wtf8ToUtf16(token_.text), *order_) : std::nullopt;
  if (!pattern) {
    return fail(order_ ? "the pattern \"" + token_.text + "\" is not valid"
                       : "the order of the database's texts is not known");
  }
  step();
  RuleNode node = nodeOf(Kind::like, RuleType::truth, std::move(left));
  node.pattern = *std::move(pattern);
  return node;
}

RuleNode Parser::sum() {
  RuleNode node = primary();
  bool days = node.type == RuleType::date;
  while (done_) {
    const bool minus = takeSign("-");
    if (!minus && !takeSign("+")) {
      break;
    }
    RuleNode term = primary();
    if (!isNumeric(node.type) || !isNumeric(term.type)) {
      return fail("it adds what is not a number");
    }
    days = days != (term.type == RuleType::date);
    if (minus) {
      term = nodeOf(Kind::negative, RuleType::number, std::move(term));
    }
    if (node.kind != Kind::sum) {
      node = nodeOf(Kind::sum, RuleType::number, std::move(node));
    }
    node.parts.push_back(std::move(term));
    node.type = days ? RuleType::date : RuleType::number;
  }
  return node;
}

RuleNode Parser::primary() {
  if (takeSign("-")) {
    if (++depth_ > deepestRule) {
      return fail("it is nested too deeply");
    }
    RuleNode part = primary();
    --depth_;
    return isNumeric(part.type) ? nodeOf(Kind::negative, RuleType::number, std::move(part))
                                : fail("it negates what is not a number");
  }
  if (takeSign("(")) {
    RuleNode node = disjunction();
    expectSign(")");
    return node;
  }
  switch (token_.kind) {
    case Token::Kind::number: {
      const auto number = parseNumber(token_.text);
      step();
      return number ? constantOf(RuleType::number, *number) : fail("a number is too large");
    }
    case Token::Kind::text: {
      RuleNode node = constantOf(RuleType::text, wtf8ToUtf16(token_.text));
      step();
      return node;
    }
    case Token::Kind::date:
      return date();
    case Token::Kind::name: {
      std::string name = token_.text;
      step();
      return fieldNamed(std::move(name));
    }
    case Token::Kind::word:
      return wordAsValue();
    default:
      return fail(token_.kind == Token::Kind::end ? "it ends too early"
                                                  : "\"" + token_.text + "\" is not understood");
  }
}

// #1/31/2000 14:05#: the month first in every locale.
RuleNode Parser::date() {
  const auto value = dateFromText(token_.text, DateOrder::monthFirst);
  if (!value) {
    return fail("\"#" + token_.text + "#\" is not a date");
  }
  step();
  return constantOf(RuleType::date, value->days);
}

RuleNode Parser::wordAsValue() {
  constexpr std::pair<std::string_view, double> flags[] = {{"True", -1}, {"Yes", -1}, {"On", -1},
                                                           {"False", 0}, {"No", 0},   {"Off", 0}};
  for (const auto& [word, value] : flags) {
    if (takeWord(word)) {
      return constantOf(RuleType::truth, value);
    }
  }
  if (takeWord("Null")) {
    return constantOf(RuleType::null, {});
  }
  std::string word = token_.text;
  step();
  return takeSign("(") ? function(word) : fieldNamed(std::move(word));
}

// After the opening parenthesis.
RuleNode Parser::function(const std::string& name) {
  const std::string_view called = name;
  const bool length = sameAsciiName(called, "Len");
  if (length || sameAsciiName(called, "IsNull")) {
    RuleNode part = disjunction();
    expectSign(")");
    if (length && part.type != RuleType::text && part.type != RuleType::number) {
      return fail("it measures what is not a text");
    }
    return length ? nodeOf(Kind::length, RuleType::number, std::move(part))
                  : nodeOf(Kind::isNull, RuleType::truth, std::move(part));
  }
  constexpr std::pair<std::string_view, Kind> moments[] = {
      {"Now", Kind::now}, {"Date", Kind::today}, {"Time", Kind::timeOfDay}};
  for (const auto& [word, kind] : moments) {
    if (sameAsciiName(called, word)) {
      expectSign(")");
      return {.kind = kind, .type = RuleType::date, .parts = {}};
    }
  }
  return fail("the function " + name + " is not known");
}

// [Field], [Table].[Field] or [Table]![Field].
RuleNode Parser::fieldNamed(std::string name) {
  if (takeSign(".") || takeSign("!")) {
    const bool ownTable = sameName(name, table_.name);
    name = token_.text;
    const bool named = token_.kind == Token::Kind::name || token_.kind == Token::Kind::word;
    if (!ownTable || !named) {
      return fail("it is about another table");
    }
    step();
  }
  const Column* column = table_.find(name);
  return column != nullptr ? fieldAt(static_cast<std::size_t>(column - table_.columns.data()))
                           : fail("the field " + name + " does not exist");
}

}  // namespace

Result<RuleNode> parseRule(std::string_view rule, const TableDefinition& table,
                           std::optional<std::size_t> field, std::optional<TextOrder> order) {
  if (rule.size() > longestRule) {
    return {Failure::other, "it is too long"};
  }
  return Parser(rule, table, field, order).parse();
}

}  // namespace veltrano::access
