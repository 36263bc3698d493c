// The metrics reader over any bytes, whole and cut off.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "pdf/fonts/afm_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto whole = veltrano::parseAfm(text, true);
  if (!whole || whole->widths[0] != 0) {
    std::abort();
  }
  static_cast<void>(whole->width(text, 12));
  static_cast<void>(whole->underlinePosition + whole->underlineThickness + whole->descender);
  // What is answered for the start of a file must hold for the whole of it.
  const auto start = veltrano::parseAfm(text.substr(0, size / 2), false);
  if (start && start->widths != whole->widths) {
    std::abort();
  }
  return 0;
}
