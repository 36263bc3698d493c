// Any text in any width: nothing is lost, nothing comes twice, and it ends.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "pdf/text/line_breaking.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  double available = 0;
  if (size < sizeof available) {
    return 0;
  }
  std::memcpy(&available, data, sizeof available);
  const std::string_view text(reinterpret_cast<const char*>(data) + sizeof available,
                              size - sizeof available);
  veltrano::FontMetrics metrics;
  for (std::size_t code = 1; code < metrics.widths.size(); ++code) {
    metrics.widths[code] = static_cast<std::int32_t>(code % 7) * 100;
  }
  const char* expected = text.data();
  for (const veltrano::TextLine& line : veltrano::breakText(text, {metrics, 10, available})) {
    const std::string_view gap(expected, static_cast<std::size_t>(line.text.data() - expected));
    const bool known = gap.empty() || gap == " " || gap == "\r\n";
    if (line.text.data() < expected || !known || !line.text.starts_with(line.counted)) {
      std::abort();
    }
    expected = line.text.data() + line.text.size();
    static_cast<void>(veltrano::justifyingSpace(line.text, 10, available));
  }
  if (expected != text.data() + text.size()) {
    std::abort();
  }
  return 0;
}
