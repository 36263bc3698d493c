#include "base/text/lower_case.h"

#include <algorithm>

#include "base/text/utf.h"

namespace veltrano {

char16_t lowerCaseBeyondAscii(char16_t c) {
  const LowerCaseRun* end = lowerCaseRuns + lowerCaseRunCount;
  const LowerCaseRun* next = std::upper_bound(
      lowerCaseRuns, end, c, [](char16_t code, const LowerCaseRun& run) { return code < run.first; });
  if (next == lowerCaseRuns) {
    return c;
  }
  const LowerCaseRun& run = next[-1];
  if (c <= run.last && (c - run.first) % run.step == 0) {
    return static_cast<char16_t>(c + run.shift);
  }
  return c;
}

std::u16string lowerCaseUtf16(std::string_view utf8) {
  std::u16string text = utf8ToUtf16(utf8);
  std::transform(text.begin(), text.end(), text.begin(), lowerCase);
  return text;
}

bool sameName(std::string_view left, std::string_view right) {
  return left == right || lowerCaseUtf16(left) == lowerCaseUtf16(right);
}

}  // namespace veltrano
