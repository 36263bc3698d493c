#ifndef VELTRANO_PDF_DOCUMENT_PAGE_GEOMETRY_H
#define VELTRANO_PDF_DOCUMENT_PAGE_GEOMETRY_H

// Units, page sizes, margins and the current position.
//
// User units have their origin at the top left of the page and y downwards; points have theirs at the bottom
// left. A user x is x * scaleFactor points, a user y is page height - y * scaleFactor points.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "veltrano/value.h"

namespace veltrano {

struct Point {
  double x = 0;
  double y = 0;
};

/// A box in user units, from its top left corner.
struct Box {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

/// A box in points, `top` from the bottom of the page.
struct Area {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
};

/// Points per unit of PDFUnitStr. Empty if `unit` is not one.
std::optional<double> pointsPerUnit(std::int32_t unit);
/// "pt", "mm" or "cm"; empty for other factors.
std::string unitName(double pointsPerUnit);

/// One entry of the per-page list; sizes in points.
struct PageFormat {
  double width = 0;
  double height = 0;

  /// The size of a PDFFormatPgStr. False, and nothing set, for other codes.
  bool setNamed(const Value& code);
  /// Width and height, or as much of them as the array holds. False if `value` is not an array of numbers.
  bool setFromArray(const Value& value);
  /// Rounds to whole points (a side that does not fit 16 bits stays), then swaps the sides if asked to.
  void orient(bool swapSides);
};

constexpr PageFormat a4{595.28, 841.89};

struct PageGeometry {
  double scaleFactor = *pointsPerUnit(2);  ///< points per user unit
  std::vector<PageFormat> pages{a4};       ///< page n at n - 1; never empty, currentPage is within it
  std::size_t currentPage = 1;             ///< counted from 1
  /// Margins are whole user units by design: every setter rounds.
  std::int16_t leftMargin = 1;
  std::int16_t topMargin = 1;
  std::int16_t rightMargin = 1;
  std::int16_t bottomMargin = 1;
  std::int16_t cellMargin = 3;
  double currentX = 1;
  double currentY = 1;

  [[nodiscard]] PageFormat& current() { return pages[currentPage - 1]; }
  [[nodiscard]] const PageFormat& current() const { return pages[currentPage - 1]; }
  /// Goes on to the next page, which starts with the size of this one.
  void nextPage();

  [[nodiscard]] double xPoints(double x) const { return x * scaleFactor; }
  /// Not a number when a host has stored such a page height. Lines made of it are then left out.
  [[nodiscard]] double yPoints(double y) const { return current().height - y * scaleFactor; }
  [[nodiscard]] Point points(Point user) const { return {xPoints(user.x), yPoints(user.y)}; }
  [[nodiscard]] Area area(const Box& box) const {
    return {xPoints(box.x), yPoints(box.y), box.width * scaleFactor, box.height * scaleFactor};
  }

  /// A coordinate of 0 is that of the current position.
  [[nodiscard]] Point orCurrent(double x, double y) const {
    return {x == 0 ? currentX : x, y == 0 ? currentY : y};
  }

  /// Sets the current position. A coordinate that is not finite leaves the previous one.
  void moveTo(double x, double y);
};

}  // namespace veltrano

#endif
