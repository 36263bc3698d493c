#ifndef VELTRANO_KML_MARKUP_H
#define VELTRANO_KML_MARKUP_H

// Texts that the writer itself puts into markup. Those of the caller are written as they are.

#include <cstddef>
#include <string>
#include <string_view>

namespace veltrano {

/// The ANSI text as character data in ASCII: markup characters and letters beyond ASCII as references, since
/// the file's bytes are not what its declaration says, and without the control characters that XML refuses.
std::string characterData(std::string_view ansi);

/// `text` with every occurrence of `what` replaced by `with`; none of them is copied before it is written.
struct Replaced {
  std::string_view text;
  std::string_view what;
  std::string_view with;
};

inline void appendPiece(std::string& target, std::string_view piece) {
  target.append(piece);
}
/// Literals, whose length need not be counted.
template <std::size_t size>
void appendPiece(std::string& target, const char (&literal)[size]) {
  target.append(literal, size - 1);
}
void appendPiece(std::string& target, const Replaced& piece);

}  // namespace veltrano

#endif
