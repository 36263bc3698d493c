#include "veltrano/dib_section.h"

#include <cstring>
#include <limits>
#include <utility>

#include "imaging/bitmap/dib_backing.h"
#include "imaging/bitmap/point_sampling.h"

namespace veltrano {

cDIBSection::cDIBSection() = default;
cDIBSection::~cDIBSection() = default;

cDIBSection::cDIBSection(cDIBSection&& other) noexcept
    : backing_(std::move(other.backing_)), header_(std::exchange(other.header_, {})) {}

cDIBSection& cDIBSection::operator=(cDIBSection&& other) noexcept {
  std::swap(backing_, other.backing_);
  std::swap(header_, other.header_);
  return *this;
}

GraphicsHandle cDIBSection::hDC() const {
  return backing_ ? backing_->context() : 0;
}
GraphicsHandle cDIBSection::hDib() const {
  return backing_ ? backing_->section() : 0;
}
std::uint8_t* cDIBSection::DIBSectionBitsPtr() const {
  return backing_ ? backing_->bits() : nullptr;
}

std::int32_t cDIBSection::BytesPerScanLine() const {
  return static_cast<std::int32_t>(bytesPerScanLine(header_.biWidth));
}

bool cDIBSection::CreateDIB(GraphicsHandle dc, std::int32_t width, std::int32_t height, int bitMode,
                            GraphicsHandle& dib) {
  ClearUp();
  dib = 0;
  const std::int64_t lineLength = bitMode == 3 ? bytesPerScanLine(width) : std::int64_t{width} * 4;
  if (width < 1 || height < 1 || lineLength > std::numeric_limits<std::int32_t>::max() / height) return false;

  BitmapInfoHeader header;
  header.biWidth = width;
  header.biHeight = height;
  header.biBitCount = bitMode == 3 ? 24 : 32;
  header.biSizeImage =
      static_cast<std::uint32_t>(bytesPerScanLine(width)) * static_cast<std::uint32_t>(height);
  backing_ = makeDibBacking(dc, header);
  if (!backing_) return false;
  header_ = header;
  dib = backing_->section();
  return true;
}

bool cDIBSection::Create(std::int32_t width, std::int32_t height) {
  GraphicsHandle dib = 0;
  if (CreateDIB(0, width, height, 3, dib) && backing_->attachContext()) return true;
  ClearUp();
  return false;
}

bool cDIBSection::CreateFromPicture(const Picture& picture) {
  if (picture.bits() != nullptr) {
    if (!Create(picture.width(), picture.height())) return false;
    std::memcpy(DIBSectionBitsPtr(), picture.bits(), header_.biSizeImage);
    return true;
  }
  const std::optional<BitmapSize> size = bitmapSize(picture.bitmap());
  if (size && Create(size->width, size->height) && copyBitmap(picture.bitmap(), *size, hDC())) return true;
  ClearUp();
  return false;
}

void cDIBSection::LoadPictureBlt(GraphicsHandle sourceDC, std::int32_t sourceX, std::int32_t sourceY,
                                 std::int32_t width, std::int32_t height, std::uint32_t operation) {
  if (width < 0) width = Width();
  if (height < 0) height = Height();
  blitContext(hDC(), {0, 0, width, height}, sourceDC, sourceX, sourceY, operation);
}

void cDIBSection::PaintPicture(GraphicsHandle destinationDC, std::int32_t x, std::int32_t y,
                               std::int32_t width, std::int32_t height, std::int32_t sourceX,
                               std::int32_t sourceY, std::uint32_t operation) const {
  if (width < 0) width = Width();
  if (height < 0) height = Height();
  blitContext(destinationDC, {x, y, width, height}, hDC(), sourceX, sourceY, operation);
}

void cDIBSection::Stretch(GraphicsHandle destinationDC, std::int32_t x, std::int32_t y, std::int32_t width,
                          std::int32_t height, std::int32_t sourceX, std::int32_t sourceY,
                          std::uint32_t operation, bool halftone) const {
  if (width < 0) width = Width();
  if (height < 0) height = Height();
  const bool shrinks = width < Width() || height < Height();
  stretchContext(destinationDC, {x, y, width, height}, hDC(), {sourceX, sourceY, Width(), Height()},
                 operation, halftone || shrinks);
}

cDIBSection cDIBSection::Resample2(std::int32_t newHeight, std::int32_t newWidth) const {
  cDIBSection resized;
  // An empty section resizes to an empty one: a black image would be taken for a picture.
  if (hDC() == 0 || !resized.Create(newWidth, newHeight)) return resized;
  if (newWidth == Width() && newHeight == Height()) {
    resized.LoadPictureBlt(hDC());
    return resized;
  }
  samplePoints({resized.DIBSectionBitsPtr(), newWidth, newHeight, resized.BytesPerScanLine()},
               {DIBSectionBitsPtr(), Width(), Height(), BytesPerScanLine()});
  return resized;
}

void cDIBSection::ClearUp() {
  backing_.reset();
  header_ = {};
}

}  // namespace veltrano
