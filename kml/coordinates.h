#ifndef VELTRANO_KML_COORDINATES_H
#define VELTRANO_KML_COORDINATES_H

// Text of coordinates and of the identifiers that are made from the time of day. Neither uses heap or locale.

#include <array>
#include <cstddef>
#include <string_view>

#include "base/numbers/numbers.h"

namespace veltrano {

/// "longitude,latitude,altitude" and CR LF.
class CoordinateTriple {
 public:
  /// X is the latitude, y the longitude.
  CoordinateTriple(double X, double y, double altitude);

  /// False if one of the numbers is not finite; the texts are then empty.
  explicit operator bool() const { return length_ != 0; }
  [[nodiscard]] std::string_view withoutLineEnd() const {
    return {text_.data(), length_ - (length_ ? 2 : 0)};
  }
  [[nodiscard]] std::string_view withLineEnd() const { return {text_.data(), length_}; }

 private:
  bool append(double number, std::string_view after);

  // A number takes 22 characters at most ("-1.23456789012345E-308").
  std::array<char, 72> text_;
  std::size_t length_ = 0;
};

/// The number at the end of an identifier: hundredths of seconds since midnight, in single precision, so that
/// two identifiers of the same hundredth are equal.
NumberText timeNumber(float secondsSinceMidnight);

}  // namespace veltrano

#endif
