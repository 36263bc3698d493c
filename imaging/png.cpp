#include "imaging/veltrano_png.h"

#include <utility>

#include "base/os/files.h"
#include "base/trace.h"
#include "imaging/byte_chunks.h"
#include "imaging/dib_section.h"
#include "imaging/png_writer.h"

namespace veltrano {

void VeltranoPNG::Init(std::string xInitString) {
  initString_ = std::move(xInitString);
}

bool VeltranoPNG::SavePNG(const Picture& pct, const std::filesystem::path& sPNGFileName) {
  cDIBSectionPNG dib;
  if (!dib.CreateFromPicture(pct)) {
    traceSkipped("SavePNG", "the picture is not a bitmap, cannot be copied, or is too large");
    return false;
  }
  ByteChunks chunks;
  return writePng({dib.DIBSectionBitsPtr(), dib.Width(), dib.Height(), dib.BytesPerScanLine()}, chunks) &&
         replaceFile(sPNGFileName, chunks.pieces());
}

}  // namespace veltrano
