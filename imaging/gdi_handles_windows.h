#ifndef VELTRANO_IMAGING_GDI_HANDLES_WINDOWS_H
#define VELTRANO_IMAGING_GDI_HANDLES_WINDOWS_H

// Owners of GDI handles, so that no path loses one. For the *_windows.cpp files only.

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <utility>

namespace veltrano {

/// Handles held by all owners together.
inline std::atomic<std::int64_t> ownedGdiHandles{0};

/// Owns one handle and closes it with `close`; 0 is none. Movable.
template <typename Handle, auto close>
class OwnedHandle {
 public:
  OwnedHandle() = default;
  explicit OwnedHandle(Handle handle) : handle_(handle) {
    if (handle_) ++ownedGdiHandles;
  }
  OwnedHandle(OwnedHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  OwnedHandle& operator=(OwnedHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  ~OwnedHandle() {
    if (!handle_) return;
    close(handle_);
    --ownedGdiHandles;
  }

  [[nodiscard]] Handle get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  Handle handle_ = nullptr;
};

using OwnedBitmap = OwnedHandle<HBITMAP, [](HBITMAP bitmap) { DeleteObject(bitmap); }>;
using OwnedMemoryDC = OwnedHandle<HDC, [](HDC dc) { DeleteDC(dc); }>;
/// The desktop's own context is lent, not made: it is released.
using OwnedDesktopDC = OwnedHandle<HDC, [](HDC dc) { ReleaseDC(GetDesktopWindow(), dc); }>;

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
