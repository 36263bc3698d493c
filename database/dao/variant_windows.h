#ifndef VELTRANO_DATABASE_DAO_VARIANT_WINDOWS_H
#define VELTRANO_DATABASE_DAO_VARIANT_WINDOWS_H

// clang-format off
#include <windows.h>
#include <oleauto.h>
// clang-format on

#include <optional>
#include <string>
#include <string_view>

#include "veltrano/value.h"

namespace veltrano::dao {

/// A VARIANT and what it holds.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant&& other) noexcept;
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&value_); }

  static Variant flag(bool value);
  static Variant number(long value);
  /// `utf8` may hold unpaired surrogates (base/text/wtf8.h).
  static Variant text(std::string_view utf8);
  /// An argument that is left out.
  static Variant missing();
  /// Empty if the value has no automation form.
  static std::optional<Variant> from(const Value& value);

  VARIANT& raw() { return value_; }
  [[nodiscard]] const VARIANT& raw() const { return value_; }

  /// As field_to_text.h has it. False for a null and for what has no text.
  bool toText(std::string& text) const;
  [[nodiscard]] std::optional<bool> toFlag() const;
  [[nodiscard]] std::optional<long> toNumber() const;

 private:
  /// Converted by the system, in no locale.
  [[nodiscard]] std::optional<Variant> convertedTo(VARTYPE type) const;

  VARIANT value_;
};

}  // namespace veltrano::dao

#endif
