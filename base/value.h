#ifndef VELTRANO_BASE_VALUE_H
#define VELTRANO_BASE_VALUE_H

// A value whose kind the caller chooses: what automation hosts pass as a variant, without any COM in it. The
// server makes Values from variants and back; C++ callers construct them directly.

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace veltrano {

/// The automation null: a value that is known to be none.
struct Null {
  friend bool operator==(Null, Null) = default;
};
/// Days since 1899-12-30, the fraction being the time of day.
struct Date {
  double days = 0;
  friend bool operator==(Date, Date) = default;
};
/// A scaled integer in ten-thousandths, exact.
struct Currency {
  std::int64_t tenThousandths = 0;
  friend bool operator==(Currency, Currency) = default;
};
/// A whole number of up to 28 digits with a decimal point in it, exact: magnitude / 10^scale. Automation's decimals
/// use the three lower parts of the magnitude and scales of 0 to 28.
struct Decimal {
  bool negative = false;
  std::array<std::uint32_t, 4> magnitude{};  ///< least significant part first
  std::uint8_t scale = 0;
  friend bool operator==(const Decimal&, const Decimal&) = default;
};
/// Something that is none of the other kinds (an automation object, for instance). It converts to nothing.
struct Opaque {
  friend bool operator==(Opaque, Opaque) = default;
};

class Value {
 public:
  using List = std::vector<Value>;
  using Doubles = std::vector<double>;
  using Bytes = std::vector<std::uint8_t>;

  /// The empty value.
  Value() = default;
  Value(Null null) : data_(null) {}
  Value(bool flag) : data_(flag) {}
  Value(int number) : data_(std::int64_t{number}) {}
  Value(std::int64_t number) : data_(number) {}
  Value(double number) : data_(number) {}
  /// Keeps its precision: as text it has at most 7 significant digits.
  Value(float number) : data_(number) {}
  Value(Date date) : data_(date) {}
  Value(Currency amount) : data_(amount) {}
  Value(const Decimal& number) : data_(number) {}
  /// The text's encoding is that of the class that takes it: ANSI text in pdf/ and kml/, UTF-8 in settings/
  /// and database/.
  Value(std::string text) : data_(std::move(text)) {}
  Value(const char* text) : data_(std::string(text)) {}
  /// A list of values of any kind (a variant array).
  Value(List list) : data_(std::move(list)) {}
  /// A typed array of 64-bit floats.
  Value(Doubles numbers) : data_(std::move(numbers)) {}
  Value(Bytes bytes) : data_(std::move(bytes)) {}
  Value(Opaque opaque) : data_(opaque) {}

  [[nodiscard]] bool isEmpty() const { return std::holds_alternative<std::monostate>(data_); }
  [[nodiscard]] bool isNull() const { return std::holds_alternative<Null>(data_); }
  /// A whole number of any width, but no flag.
  [[nodiscard]] bool isInteger() const { return std::holds_alternative<std::int64_t>(data_); }
  /// A whole number, float, currency, decimal or flag: what arithmetic takes without reading a text. Dates are not.
  [[nodiscard]] bool isNumeric() const;
  [[nodiscard]] bool isText() const { return std::holds_alternative<std::string>(data_); }

  /// The alternative T, or a null pointer.
  template <typename T>
  [[nodiscard]] const T* as() const {
    return std::get_if<T>(&data_);
  }

  /// Number of a numeric value, a date or an empty value (0); true is -1. Texts are read as invariant
  /// decimals. Nothing for the other kinds.
  [[nodiscard]] std::optional<double> toDouble() const;
  /// toDouble rounded, ties to even; nothing when it does not fit.
  [[nodiscard]] std::optional<std::int32_t> toInt32() const;
  [[nodiscard]] std::optional<std::int16_t> toInt16() const;
  /// The text of a text, the general decimal text of a number ("True" and "False" for a flag), "" for empty;
  /// nothing for the other kinds.
  [[nodiscard]] std::optional<std::string> toText() const;

  friend bool operator==(const Value&, const Value&) = default;

 private:
  std::variant<std::monostate, Null, bool, std::int64_t, double, float, Date, Currency, Decimal, std::string,
               List, Doubles, Bytes, Opaque>
      data_;
};

}  // namespace veltrano

#endif
