// The marker scan over any bytes: with the ends that it asks for, so that the walk between them is reached,
// and without.

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
  // Every step of the walk goes on by a byte at least.
  if (turns > bytes.size() || scan.header.has_value() != scan.message.empty()) {
    std::abort();
  }
  return 0;
}
