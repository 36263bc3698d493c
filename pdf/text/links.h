#ifndef VELTRANO_PDF_TEXT_LINKS_H
#define VELTRANO_PDF_TEXT_LINKS_H

// URI links: where a link lies on its page and where it leads.

#include <string>
#include <string_view>
#include <vector>

namespace veltrano {

/// One link annotation. The left and top edge (from the page bottom), width and height are in points.
struct LinkEntry {
  int page = 0;  ///< the page being written when the link was made, counted from 1
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
  std::string target;
};

enum class LinkKind { text, rectangle, ellipse, cell, image };

/// The shape that a link is made for: its kind and its bounding box in user units, which the link covers.
struct LinkShape {
  LinkKind kind = LinkKind::text;
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

struct LinkState {
  LinkShape shape;  ///< kind `text` when no shape is asking for a link
  std::vector<LinkEntry> links;
};

/// A link target as a PDF string takes it: backslash and parentheses escaped, CR and LF removed.
std::string escapeLinkTarget(std::string_view target);

}  // namespace veltrano

#endif
