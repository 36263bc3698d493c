#ifndef VELTRANO_TESTS_SPLIT_H
#define VELTRANO_TESTS_SPLIT_H

// Tables of a test as one text.

#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace veltrano::tests {

/// The parts of `text` between the separators.
inline std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t end = 0; (end = text.find(separator, start)) != std::string_view::npos; start = end + 1)
    parts.emplace_back(text.substr(start, end - start));
  parts.emplace_back(text.substr(start));
  return parts;
}

/// The words of each row of `text`; rows are separated by ";".
inline std::vector<std::vector<std::string>> table(std::string_view text) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& row : split(text, ';')) {
    std::istringstream words(row);
    rows.emplace_back(std::istream_iterator<std::string>(words), std::istream_iterator<std::string>());
  }
  return rows;
}

}  // namespace veltrano::tests

#endif
