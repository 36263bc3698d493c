#ifndef VELTRANO_PDF_DOCUMENT_PAGE_GEOMETRY_H
#define VELTRANO_PDF_DOCUMENT_PAGE_GEOMETRY_H

// Units, page sizes, margins and the current position.
//
// User units have their origin at the top left of the page and y downwards; points have theirs at the bottom
// left. A user x is x * scaleFactor points, a user y is page height - y * scaleFactor points.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace veltrano {

/// One entry of the per-page lists; sizes in points.
struct PageFormat {
  double width = 0;
  double height = 0;
  bool landscape = false;
};

constexpr double a4Width = 595.28;
constexpr double a4Height = 841.89;

struct PageGeometry {
  static constexpr double pointsPerMillimetre = 72 / 25.4;
  static constexpr double pointsPerCentimetre = 72 / 2.54;

  double scaleFactor = pointsPerCentimetre;  ///< points per user unit
  std::vector<PageFormat> pages;             ///< page n at n - 1; never empty, currentPage is within it
  std::size_t currentPage = 1;               ///< counted from 1
  std::int16_t defaultMargin = 1;
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
  /// In points; not a number when a host has stored such a height. Lines made of it are then left out.
  [[nodiscard]] double pageHeight() const { return current().height; }
  [[nodiscard]] double xPoints(double x) const { return x * scaleFactor; }
  [[nodiscard]] double yPoints(double y) const { return pageHeight() - y * scaleFactor; }
};

}  // namespace veltrano

#endif
