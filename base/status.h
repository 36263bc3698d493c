#ifndef VELTRANO_BASE_STATUS_H
#define VELTRANO_BASE_STATUS_H

// How a step inside the library fails: with a kind that its caller may act on, and a short reason in plain
// English for the trace. Hosts see neither.

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace veltrano {

enum class Failure : std::uint8_t {
  none,        ///< success
  missing,     ///< no such file or folder
  exists,      ///< there is one already
  inUse,       ///< another program or object has it; may pass
  notAllowed,  ///< the user may not do this
  full,        ///< no room on the disk
  damaged,     ///< the content is not what its format demands
  other,
};

/// Success, or why something failed.
class Status {
 public:
  /// Success.
  Status() = default;
  Status(Failure failure, std::string reason) : failure_(failure), reason_(std::move(reason)) {}

  explicit operator bool() const { return failure_ == Failure::none; }
  [[nodiscard]] Failure failure() const { return failure_; }
  /// "another program has the file open"; empty after success.
  [[nodiscard]] const std::string& reason() const { return reason_; }

 private:
  Failure failure_ = Failure::none;
  std::string reason_;
};

/// A value, or why there is none.
template <typename T>
class Result {
 public:
  Result(T value) : value_(std::move(value)) {}
  /// From what converts to a value: a pointer to a derived class.
  template <typename Other>
  requires std::is_convertible_v<Other, T> Result(Other value) : value_(std::move(value)) {}
  Result(Status failure) : status_(std::move(failure)) {}
  Result(Failure failure, std::string reason) : status_(failure, std::move(reason)) {}

  explicit operator bool() const { return value_.has_value(); }
  [[nodiscard]] const Status& status() const { return status_; }
  [[nodiscard]] Failure failure() const { return status_.failure(); }
  T& operator*() & { return *value_; }
  T&& operator*() && { return *std::move(value_); }
  const T& operator*() const& { return *value_; }
  T* operator->() { return &*value_; }
  const T* operator->() const { return &*value_; }

 private:
  std::optional<T> value_;
  Status status_;
};

}  // namespace veltrano

#endif
