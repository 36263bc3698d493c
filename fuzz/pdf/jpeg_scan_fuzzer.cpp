// Scans any bytes for markers: as they are, and with the start and end markers that the scan requires, so
// that the walk between them is reached.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "pdf/images/jpeg_scan.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string bytes(data, data + size);
  veltrano::scanJpeg(bytes, {});

  bytes.insert(0, "\xFF\xD8");
  bytes.append(250, '\0');
  bytes.append("\xFF\xD9");
  std::size_t turns = 0;
  const veltrano::JpegScan scan = veltrano::scanJpeg(bytes, [&turns] { ++turns; });
  // Every step advances by at least one byte.
  if (turns > bytes.size() || scan.header.has_value() != scan.message.empty()) {
    std::abort();
  }
  return 0;
}
