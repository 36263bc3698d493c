#ifndef VELTRANO_PDF_TEXT_LINKS_H
#define VELTRANO_PDF_TEXT_LINKS_H

// URI links: where a link lies on its page and where it leads.

#include <string>
#include <string_view>
#include <vector>

#include "pdf/document/page_geometry.h"
#include "pdf/fonts/font.h"

namespace veltrano {

/// One link annotation.
struct Link {
  int page = 0;  ///< the page being written when the link was made, counted from 1
  Area area;
  std::string target;
};

/// The area of a link around a text that starts at `start` (points): as high as the font size, from the
/// lowest descender up. For a turned text the upright box around that.
Area linkedText(Point start, std::string_view text, const Font& font, double rotation);

/// Adds a link. The count has 16 bits: beyond the last number a link takes the place of the previous one.
void addLink(std::vector<Link>& links, Link link);

/// A link target as a literal string takes it: backslash and parentheses escaped, CR and LF removed.
std::string escapeLinkTarget(std::string_view target);

}  // namespace veltrano

#endif
