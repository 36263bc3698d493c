#ifndef VELTRANO_TESTS_PDF_JPEG_TESTING_H
#define VELTRANO_TESTS_PDF_JPEG_TESTING_H

// JPEG files made by hand, segment by segment: what the marker scan looks at, and nothing that can be
// decoded.

#include <initializer_list>
#include <string>
#include <string_view>

namespace veltrano::tests {

inline std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text.push_back(static_cast<char>(value));
  return text;
}

inline std::string app0(int densityUnit) {
  return bytes({0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1, densityUnit, 0, 72, 0, 72, 0, 0});
}

inline std::string frame(int marker, int width, int height, int components) {
  std::string segment = bytes({0xFF, marker, 0, 8 + 3 * components, 8, height / 256, height % 256,
                               width / 256, width % 256, components});
  for (int i = 1; i <= components; ++i) segment += bytes({i, 0x11, 0});
  return segment;
}

/// The segments between the two end markers, filled up to `size` bytes by a comment.
inline std::string jpeg(std::initializer_list<std::string> segments, std::size_t size = 400) {
  std::string file = bytes({0xFF, 0xD8});
  for (const std::string& segment : segments) file += segment;
  const std::size_t comment = size - file.size() - 2;
  file += bytes({0xFF, 0xFE, static_cast<int>((comment - 2) / 256), static_cast<int>((comment - 2) % 256)});
  file.append(comment - 4, ' ');
  return file + bytes({0xFF, 0xD9});
}

}  // namespace veltrano::tests

#endif
