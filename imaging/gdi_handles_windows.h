#ifndef VELTRANO_IMAGING_GDI_HANDLES_WINDOWS_H
#define VELTRANO_IMAGING_GDI_HANDLES_WINDOWS_H

// Owners of GDI handles.

#include <windows.h>

#include <utility>

#include "base/os/owned.h"

namespace veltrano {

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

}  // namespace veltrano

#endif
