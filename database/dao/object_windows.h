#ifndef VELTRANO_DATABASE_DAO_AUTOMATION_WINDOWS_H
#define VELTRANO_DATABASE_DAO_AUTOMATION_WINDOWS_H

// Late-bound automation in few words: owned variants and objects whose members are called by name.

// clang-format off
#include <windows.h>
#include <oleauto.h>
// clang-format on

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "base/value.h"

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
  static Variant text(std::string_view utf8);
  /// An argument that is left out.
  static Variant missing();
  /// Nothing for a value that has no automation form.
  static std::optional<Variant> from(const Value& value);

  VARIANT& raw() { return value_; }
  [[nodiscard]] const VARIANT& raw() const { return value_; }

  /// As field_conversion.h has it. False for a null and for what has no text.
  bool toText(std::string& text) const;
  [[nodiscard]] std::optional<bool> toFlag() const;
  [[nodiscard]] std::optional<long> toNumber() const;

 private:
  /// Converted by the system, in no locale.
  [[nodiscard]] std::optional<Variant> convertedTo(VARTYPE type) const;

  VARIANT value_;
};

/// A reference to an automation object.
class Object {
 public:
  Object() = default;
  /// Takes over the caller's reference.
  explicit Object(IDispatch* owned) : dispatch_(owned) {}
  Object(Object&& other) noexcept : dispatch_(other.dispatch_) { other.dispatch_ = nullptr; }
  Object& operator=(Object&& other) noexcept;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  ~Object();

  /// The object that a result holds; empty when it holds none.
  static Object of(const Variant& result);

  explicit operator bool() const { return dispatch_ != nullptr; }
  [[nodiscard]] IDispatch* get() const { return dispatch_; }

  // Each answers the result, or nothing and puts the reason into `error`. Arguments are in their written
  // order.
  [[nodiscard]] std::optional<Variant> call(const wchar_t* method,
                                            std::initializer_list<const Variant*> arguments,
                                            std::string& error) const;
  [[nodiscard]] std::optional<Variant> property(const wchar_t* name, std::string& error) const;
  /// The default member with one argument: an item of a collection.
  [[nodiscard]] std::optional<Variant> item(const Variant& key, std::string& error) const;
  bool setProperty(const wchar_t* name, const Variant& value, std::string& error) const;

 private:
  [[nodiscard]] std::optional<DISPID> find(const wchar_t* name, std::string& error) const;
  [[nodiscard]] std::optional<Variant> invoke(DISPID member, WORD kind,
                                              std::initializer_list<const Variant*> arguments,
                                              std::string& error) const;

  IDispatch* dispatch_ = nullptr;
};

}  // namespace veltrano::dao

#endif
