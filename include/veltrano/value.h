#ifndef VELTRANO_VALUE_H
#define VELTRANO_VALUE_H

// A value whose kind the caller chooses: what automation hosts pass as a variant, without any COM in it.

#include <array>
#include <compare>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "veltrano/export.h"

namespace veltrano {

/// The automation null: known to have no value, unlike an empty Value, which has not been given one.
struct Null {
  friend bool operator==(Null, Null) = default;
};
/// Days since 1899-12-30, the fraction being the time of day.
struct Date {
  double days = 0;
  friend bool operator==(Date, Date) = default;
};
/// An exact amount, counted in ten-thousandths.
struct Currency {
  std::int64_t tenThousandths = 0;
  friend bool operator==(Currency, Currency) = default;
};
/// A whole number of up to 28 digits with a decimal point in it, exact: magnitude / 10^scale. Automation's
/// decimals use the three lower parts of the magnitude and scales of 0 to 28.
struct Decimal {
  bool negative = false;
  std::array<std::uint32_t, 4> magnitude{};  ///< least significant part first
  std::uint8_t scale = 0;
  friend bool operator==(const Decimal&, const Decimal&) = default;
};
/// Something of another kind (an automation object, for instance). It has no number and no text.
struct Opaque {
  friend bool operator==(Opaque, Opaque) = default;
};

class VELTRANO_API Value {
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
  /// A whole number of another width. One above 2^63 - 1 is kept as a decimal, so it is exact, too.
  template <std::integral T>
  Value(T number) : data_(static_cast<std::int64_t>(number)) {
    static_assert(sizeof(T) <= sizeof(std::int64_t));
    if constexpr (std::unsigned_integral<T> && sizeof(T) == sizeof(std::uint64_t)) {
      if (number > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
        data_ = Decimal{
            .magnitude = {static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(number >> 32)}};
      }
    }
  }
  Value(double number) : data_(number) {}
  /// Keeps its precision: as text it has at most 7 significant digits.
  Value(float number) : data_(number) {}
  Value(Date date) : data_(date) {}
  Value(Currency amount) : data_(amount) {}
  Value(const Decimal& number) : data_(number) {}
  /// In the encoding of the class that takes it: ANSI for VeltranoPDF and VeltranoKML, UTF-8 for the settings
  /// and database classes (veltrano/text.h converts).
  Value(std::string text) : data_(std::move(text)) {}
  Value(std::string_view text) : data_(std::string(text)) {}
  Value(const char* text) : data_(std::string(text)) {}
  /// Deleted: any other pointer would become a flag, as L"text", u8"text" and nullptr.
  Value(const void* pointer) = delete;
  /// A list of values of any kind (a variant array).
  Value(List list) : data_(std::move(list)) {}
  /// A typed array of 64-bit floats.
  Value(Doubles numbers) : data_(std::move(numbers)) {}
  Value(Bytes bytes) : data_(std::move(bytes)) {}
  Value(Opaque opaque) : data_(opaque) {}

  [[nodiscard]] bool isEmpty() const { return std::holds_alternative<std::monostate>(data_); }
  [[nodiscard]] bool isNull() const { return std::holds_alternative<Null>(data_); }
  /// A whole number of any width; flags are not.
  [[nodiscard]] bool isInteger() const { return std::holds_alternative<std::int64_t>(data_); }
  /// A whole number, float, currency, decimal or flag: what arithmetic takes without parsing text. Dates are
  /// not.
  [[nodiscard]] bool isNumeric() const;
  [[nodiscard]] bool isText() const { return std::holds_alternative<std::string>(data_); }

  /// The alternative T, or a null pointer.
  template <typename T>
  [[nodiscard]] const T* as() const {
    return std::get_if<T>(&data_);
  }

  /// The number of a numeric value, a date or an empty value (0); true is -1. Text is parsed with a decimal
  /// point in every locale. Empty for the other kinds and for text that is not a number.
  [[nodiscard]] std::optional<double> toDouble() const;
  /// toDouble rounded, ties to even. Empty if the result does not fit.
  [[nodiscard]] std::optional<std::int32_t> toInt32() const;
  [[nodiscard]] std::optional<std::int16_t> toInt16() const;
  /// Text as it is, a number in its general decimal form (15 significant digits, 7 of a float, all of a
  /// currency or decimal), a flag as "True" or "False", an empty value as "". Empty for the other kinds.
  [[nodiscard]] std::optional<std::string> toText() const;

  friend bool operator==(const Value&, const Value&) = default;

 private:
  std::variant<std::monostate, Null, bool, std::int64_t, double, float, Date, Currency, Decimal, std::string,
               List, Doubles, Bytes, Opaque>
      data_;
};

}  // namespace veltrano

#endif
