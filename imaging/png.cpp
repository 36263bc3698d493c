#include "veltrano/png.h"

#include <utility>

#include "base/files/whole.h"
#include "base/trace.h"
#include "imaging/byte_chunks.h"
#include "imaging/png_writer.h"
#include "veltrano/dib_section.h"

namespace veltrano {

struct VeltranoPNG::Impl {
  std::string initString;
};

VeltranoPNG::VeltranoPNG() : impl_(std::make_unique<Impl>()) {}
VeltranoPNG::VeltranoPNG(VeltranoPNG&&) noexcept = default;
VeltranoPNG& VeltranoPNG::operator=(VeltranoPNG&&) noexcept = default;
VeltranoPNG::~VeltranoPNG() = default;

void VeltranoPNG::Init(std::string xInitString) {
  impl_->initString = std::move(xInitString);
}

const std::string& VeltranoPNG::initString() const {
  return impl_->initString;
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
