// The backing on GDI.

#include "imaging/bitmap/dib_backing.h"

#include <windows.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "base/os/owned.h"

namespace veltrano {
namespace {

using OwnedBitmap = Owned<HBITMAP, [](HBITMAP bitmap) { DeleteObject(bitmap); }>;
using OwnedMemoryDC = Owned<HDC, [](HDC dc) { DeleteDC(dc); }>;
/// The desktop's own context is lent, not made: it is released.
using OwnedDesktopDC = Owned<HDC, [](HDC dc) { ReleaseDC(GetDesktopWindow(), dc); }>;

/// Keeps a bitmap selected into a device context and puts the previous one back; outlived by both.
class Selection {
 public:
  Selection() = default;
  Selection(HDC dc, HBITMAP bitmap) : dc_(dc), previous_(SelectObject(dc, bitmap)) {}
  Selection(Selection&& other) noexcept
      : dc_(other.dc_), previous_(std::exchange(other.previous_, nullptr)) {}
  Selection& operator=(Selection&& other) noexcept {
    std::swap(dc_, other.dc_);
    std::swap(previous_, other.previous_);
    return *this;
  }
  Selection(const Selection&) = delete;
  Selection& operator=(const Selection&) = delete;
  ~Selection() {
    if (previous_) SelectObject(dc_, previous_);
  }
  explicit operator bool() const { return previous_ != nullptr; }

 private:
  HDC dc_ = nullptr;
  HGDIOBJ previous_ = nullptr;
};

template <typename Handle>
Handle asHandle(GraphicsHandle number) {
  return reinterpret_cast<Handle>(number);
}

template <typename Handle>
GraphicsHandle asNumber(Handle handle) {
  return reinterpret_cast<GraphicsHandle>(handle);
}

class GdiBacking final : public DibBacking {
 public:
  GdiBacking(OwnedBitmap section, void* bits) : section_(std::move(section)), bits_(bits) {}

  bool attachContext() override {
    OwnedMemoryDC context(CreateCompatibleDC(nullptr));
    if (!context) return false;
    Selection selection(context.get(), section_.get());
    if (!selection) return false;
    context_ = std::move(context);
    selection_ = std::move(selection);
    return true;
  }
  [[nodiscard]] GraphicsHandle context() const override { return asNumber(context_.get()); }
  [[nodiscard]] GraphicsHandle section() const override { return asNumber(section_.get()); }
  [[nodiscard]] std::uint8_t* bits() const override {
    GdiFlush();  // drawing is queued per thread; the pixels are only right once the queue is empty
    return static_cast<std::uint8_t*>(bits_);
  }

 private:
  // Destroyed from the last to the first: unselect, delete the context, delete the section.
  OwnedBitmap section_;
  OwnedMemoryDC context_;
  Selection selection_;
  void* bits_;
};

// GDI counts in 32 bits.
int clampToInt(std::int64_t value) {
  return static_cast<int>(
      std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

}  // namespace

std::unique_ptr<DibBacking> makeDibBacking(GraphicsHandle dc, const BitmapInfoHeader& header) {
  BITMAPINFO info{};
  static_assert(sizeof(info.bmiHeader) == sizeof(header));
  std::copy_n(reinterpret_cast<const std::uint8_t*>(&header), sizeof(header),
              reinterpret_cast<std::uint8_t*>(&info.bmiHeader));
  OwnedMemoryDC screen;
  if (dc == 0) {
    screen = OwnedMemoryDC(CreateCompatibleDC(nullptr));
    dc = asNumber(screen.get());
  }
  void* bits = nullptr;
  OwnedBitmap section(CreateDIBSection(asHandle<HDC>(dc), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!section || bits == nullptr) return nullptr;
  return std::make_unique<GdiBacking>(std::move(section), bits);
}

void blitContext(GraphicsHandle target, PixelRectangle rectangle, GraphicsHandle source, std::int64_t sourceX,
                 std::int64_t sourceY, std::uint32_t operation) {
  if (target == 0 || source == 0) return;
  BitBlt(asHandle<HDC>(target), clampToInt(rectangle.x), clampToInt(rectangle.y), clampToInt(rectangle.width),
         clampToInt(rectangle.height), asHandle<HDC>(source), clampToInt(sourceX), clampToInt(sourceY),
         operation);
}

void stretchContext(GraphicsHandle target, PixelRectangle to, GraphicsHandle source, PixelRectangle from,
                    std::uint32_t operation, bool halftone) {
  if (target == 0 || source == 0) return;
  if (halftone) SetStretchBltMode(asHandle<HDC>(target), HALFTONE);
  StretchBlt(asHandle<HDC>(target), clampToInt(to.x), clampToInt(to.y), clampToInt(to.width),
             clampToInt(to.height), asHandle<HDC>(source), clampToInt(from.x), clampToInt(from.y),
             clampToInt(from.width), clampToInt(from.height), operation);
}

std::optional<BitmapSize> bitmapSize(GraphicsHandle bitmap) {
  BITMAP description{};
  if (bitmap == 0 || GetObjectType(asHandle<HGDIOBJ>(bitmap)) != OBJ_BITMAP ||
      GetObjectA(asHandle<HGDIOBJ>(bitmap), sizeof(description), &description) == 0) {
    return std::nullopt;
  }
  return BitmapSize{static_cast<std::int32_t>(description.bmWidth),
                    static_cast<std::int32_t>(description.bmHeight)};
}

bool copyBitmap(GraphicsHandle bitmap, BitmapSize size, GraphicsHandle target) {
  const OwnedDesktopDC desktop(GetDC(GetDesktopWindow()));
  const OwnedMemoryDC context(CreateCompatibleDC(desktop.get()));
  if (!context) return false;
  const Selection selection(context.get(), asHandle<HBITMAP>(bitmap));
  return selection &&
         BitBlt(asHandle<HDC>(target), 0, 0, size.width, size.height, context.get(), 0, 0, SRCCOPY) != 0;
}

}  // namespace veltrano
