// The backing without GDI: zeroed memory, and a PixelSurface whose address stands for the device context.

#include <cstdlib>

#include "imaging/bitmap/dib_backing.h"

namespace veltrano {
namespace {

using Memory = std::unique_ptr<std::uint8_t, decltype(&std::free)>;

class BufferBacking final : public DibBacking {
 public:
  BufferBacking(Memory bits, const BitmapInfoHeader& header)
      : bits_(std::move(bits)),
        surface_{bits_.get(), header.biWidth, header.biHeight, bytesPerScanLine(header.biWidth)} {}

  bool attachContext() override {
    attached_ = true;
    return true;
  }
  [[nodiscard]] GraphicsHandle context() const override {
    return attached_ ? reinterpret_cast<GraphicsHandle>(&surface_) : 0;
  }
  [[nodiscard]] GraphicsHandle section() const override {
    return reinterpret_cast<GraphicsHandle>(bits_.get());
  }
  [[nodiscard]] std::uint8_t* bits() const override { return bits_.get(); }

 private:
  Memory bits_;
  PixelSurface surface_;
  bool attached_ = false;
};

// A handle is a number by contract.
const PixelSurface& surfaceOf(GraphicsHandle context) {
  return *reinterpret_cast<const PixelSurface*>(context);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

std::unique_ptr<DibBacking> makeDibBacking(GraphicsHandle, const BitmapInfoHeader& header) {
  const std::size_t lineLength = header.biBitCount == 32
                                     ? static_cast<std::size_t>(header.biWidth) * 4
                                     : static_cast<std::size_t>(bytesPerScanLine(header.biWidth));
  // calloc: large blocks come zeroed from the system without being touched.
  Memory bits(static_cast<std::uint8_t*>(std::calloc(static_cast<std::size_t>(header.biHeight), lineLength)),
              std::free);
  if (!bits) return nullptr;
  return std::make_unique<BufferBacking>(std::move(bits), header);
}

void blitContext(GraphicsHandle target, PixelRectangle rectangle, GraphicsHandle source, std::int64_t sourceX,
                 std::int64_t sourceY, std::uint32_t operation) {
  if (target == 0 || source == 0) return;
  blitPixels(surfaceOf(target), rectangle, surfaceOf(source), sourceX, sourceY, operation);
}

void stretchContext(GraphicsHandle target, PixelRectangle to, GraphicsHandle source, PixelRectangle from,
                    std::uint32_t operation, bool halftone) {
  if (target == 0 || source == 0 || target == source) return;
  stretchPixels(surfaceOf(target), to, surfaceOf(source), from, operation, halftone);
}

std::optional<BitmapSize> bitmapSize(GraphicsHandle) {
  return std::nullopt;
}
bool copyBitmap(GraphicsHandle, BitmapSize, GraphicsHandle) {
  return false;
}

}  // namespace veltrano
