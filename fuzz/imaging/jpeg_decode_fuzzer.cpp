// Decodes any bytes as JPEG at every scale, then resamples and encodes the result.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "imaging/jpeg/intel_jpeg_library.h"
#include "veltrano/jpg.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace veltrano;
  if (size == 0) return 0;
  const auto length = static_cast<std::int32_t>(size);
  // The last byte selects the scale and is part of the data too.
  cDIBSection dib;
  mIntelJPEGLibrary::loadJpegBufferToDib(dib, data, length, 1 << (data[size - 1] & 3));
  if (dib.Width() > 0 && dib.Width() < 300 && dib.Height() < 300) {
    VeltranoJPG().SaveJPEGFromRAMToMemoryResampled({reinterpret_cast<const char*>(data), size}, 40, 17, 13);
  }
  return 0;
}
