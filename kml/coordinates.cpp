#include "kml/coordinates.h"

#include <cstring>

namespace veltrano {

CoordinateTriple::CoordinateTriple(double X, double y, double altitude) {
  if (!append(y, ",") || !append(X, ",") || !append(altitude, "\r\n")) {
    length_ = 0;
  }
}

bool CoordinateTriple::append(double number, std::string_view after) {
  const NumberText text = generalNumberText(number);
  const std::string_view digits = text.view();
  if (digits.empty()) {
    return false;
  }
  std::memcpy(text_.data() + length_, digits.data(), digits.size());
  length_ += digits.size();
  std::memcpy(text_.data() + length_, after.data(), after.size());
  length_ += after.size();
  return true;
}

NumberText timeNumber(float secondsSinceMidnight) {
  constexpr float hundredthsOfASecond = 100.0F;
  return singleNumberText(secondsSinceMidnight * hundredthsOfASecond);
}

}  // namespace veltrano
