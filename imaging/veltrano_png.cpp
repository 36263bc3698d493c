#include "imaging/veltrano_png.h"

#include <system_error>
#include <utility>

#include "base/os/files.h"
#include "base/trace.h"
#include "imaging/byte_chunks.h"
#include "imaging/dib_section.h"
#include "imaging/png_writer.h"

namespace veltrano {
namespace {

// Told before the picture is compressed, which takes seconds for a large one.
bool folderExists(const std::filesystem::path& file) {
  const std::filesystem::path folder = file.parent_path();
  std::error_code ignored;
  return folder.empty() || std::filesystem::is_directory(folder, ignored);
}

}  // namespace

void VeltranoPNG::Init(std::string xInitString) {
  initString_ = std::move(xInitString);
}

bool VeltranoPNG::SavePNG(const Picture& pct, const std::filesystem::path& sPNGFileName) {
  if (!folderExists(sPNGFileName)) {
    traceSkipped("SavePNG", "no such folder");
    return false;
  }
  cDIBSectionPNG dib;
  if (!dib.CreateFromPicture(pct)) {
    traceSkipped("SavePNG", "the picture is no bitmap, or too large");
    return false;
  }
  ByteChunks chunks;
  return writePng({dib.DIBSectionBitsPtr(), dib.Width(), dib.Height(), dib.BytesPerScanLine()}, chunks) &&
         replaceFile(sPNGFileName, chunks.pieces());
}

}  // namespace veltrano
