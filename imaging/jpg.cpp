#include "veltrano/jpg.h"

#include <algorithm>
#include <cstddef>

#include "base/trace.h"
#include "imaging/jpeg/intel_jpeg_library.h"

namespace veltrano {
namespace {

/// Names the member in the trace.
struct Member : TracedMember {
  explicit Member(const char* name) : TracedMember("VeltranoJPG", name) {}
};

// Resizes in place if both sizes are given; one of them alone is ignored.
void fixSize(cDIBSection& dib, std::int32_t width, std::int32_t height) {
  if (width != 0 && height != 0) {
    dib = dib.Resample2(height, width);
  } else if (width != 0 || height != 0) {
    trace("Only one of the two sizes is given; the picture keeps its own size.");
  }
}

void createFrom(cDIBSection& dib, const Picture& picture) {
  if (!dib.CreateFromPicture(picture))
    trace("The picture is not a bitmap, cannot be copied, or is too large.");
}

// Hosts pass addresses as numbers.
const std::uint8_t* asAddress(std::uintptr_t number) {
  return reinterpret_cast<const std::uint8_t*>(number);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

void VeltranoJPG::SaveJPEG(const Picture& ImageToSave, const std::filesystem::path& xFilename,
                           std::int32_t JPEGQuality, std::int32_t FixWidth, std::int32_t FixHeight) {
  const Member member("SaveJPEG");
  cDIBSection dib;
  createFrom(dib, ImageToSave);
  fixSize(dib, FixWidth, FixHeight);
  mIntelJPEGLibrary::saveDibToJpegFile(dib, xFilename, JPEGQuality);
}

std::string VeltranoJPG::SaveJPEGToMemory(const Picture& ImageToSave, std::int32_t JPEGQuality, std::int32_t,
                                          std::int32_t) {
  const Member member("SaveJPEGToMemory");
  cDIBSection dib;
  createFrom(dib, ImageToSave);
  return mIntelJPEGLibrary::saveDibToJpegString(dib, JPEGQuality);
}

Picture VeltranoJPG::LoadJPEGFromRAMToPicture(std::uintptr_t, std::int32_t, std::int32_t, std::int32_t) {
  const Member member("LoadJPEGFromRAMToPicture");
  return {};
}

bool VeltranoJPG::LoadJPEGFromRAM2Picture(GraphicsHandle Dest_hDC, std::uintptr_t ArrayPointer,
                                          std::int32_t ArraySize, std::int32_t X, std::int32_t y) {
  const Member member("LoadJPEGFromRAM2Picture");
  cDIBSection dib;
  if (mIntelJPEGLibrary::loadJpegBufferToDib(dib, asAddress(ArrayPointer), ArraySize)) {
    JPEGWidth = mIntelJPEGLibrary::lastJpegWidth();
    JPEGHeight = mIntelJPEGLibrary::lastJpegHeight();
    if (X == 0 && y == 0) {
      dib.PaintPicture(Dest_hDC);
    } else {
      dib.Stretch(Dest_hDC, 0, 0, X, y);
    }
  }
  return false;  // whether it was drawn or not: hosts rely on it
}

bool VeltranoJPG::LoadJPEGFromRAM2PictureXY(GraphicsHandle Dest_hDC, std::uintptr_t ArrayPointer,
                                            std::int32_t ArraySize, std::int32_t x1, std::int32_t Y1,
                                            std::int32_t X, std::int32_t y) {
  const Member member("LoadJPEGFromRAM2PictureXY");
  cDIBSection dib;
  if (mIntelJPEGLibrary::loadJpegBufferToDib(dib, asAddress(ArrayPointer), ArraySize)) {
    // Painted and then stretched over it: the first shows where the second cannot draw.
    dib.PaintPicture(Dest_hDC, x1, Y1, X, y);
    const bool ownSize = X == 0 && y == 0;
    dib.Stretch(Dest_hDC, x1, Y1, ownSize ? dib.Width() : X, ownSize ? dib.Height() : y, 0, 0,
                copySourceOperation, true);
  }
  return false;  // as above
}

std::string VeltranoJPG::SaveJPEGFromRAMToMemoryResampled(std::string_view ImageToSave,
                                                          std::int32_t JPEGQuality, std::int32_t FixWidth,
                                                          std::int32_t FixHeight) {
  const Member member("SaveJPEGFromRAMToMemoryResampled");
  cDIBSection dib;
  const auto size = static_cast<std::int32_t>(std::min<std::size_t>(ImageToSave.size(), INT32_MAX));
  if (mIntelJPEGLibrary::loadJpegBufferToDib(dib, reinterpret_cast<const std::uint8_t*>(ImageToSave.data()),
                                             size)) {
    JPEGWidth = mIntelJPEGLibrary::lastJpegWidth();
    JPEGHeight = mIntelJPEGLibrary::lastJpegHeight();
  } else {
    dib.ClearUp();  // half a picture is not a picture
  }
  fixSize(dib, FixWidth, FixHeight);
  return mIntelJPEGLibrary::saveDibToJpegString(dib, JPEGQuality);
}

std::string VeltranoJPG::SaveJPEGToMemoryResampled(const std::filesystem::path& ImageToSave,
                                                   std::int32_t JPEGQuality, std::int32_t FixWidth,
                                                   std::int32_t FixHeight) {
  const Member member("SaveJPEGToMemoryResampled");
  cDIBSection dib;
  mIntelJPEGLibrary::loadJpegFileToDib(dib, ImageToSave);
  fixSize(dib, FixWidth, FixHeight);
  return mIntelJPEGLibrary::saveDibToJpegString(dib, JPEGQuality);
}

void VeltranoJPG::SaveJPEGResampled(const std::filesystem::path& ImageToSave,
                                    const std::filesystem::path& TargetFile, std::int32_t JPEGQuality,
                                    std::int32_t FixWidth, std::int32_t FixHeight) {
  const Member member("SaveJPEGResampled");
  cDIBSection dib;
  mIntelJPEGLibrary::loadJpegFileToDib(dib, ImageToSave);
  fixSize(dib, FixWidth, FixHeight);
  mIntelJPEGLibrary::saveDibToJpegFile(dib, TargetFile, JPEGQuality);
}

}  // namespace veltrano
