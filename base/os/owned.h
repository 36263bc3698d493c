#ifndef VELTRANO_BASE_OS_OWNED_H
#define VELTRANO_BASE_OS_OWNED_H

// The owner of a handle of the system.

#include <utility>

namespace veltrano {

/// Owns one handle and closes it with `close` when it goes away; `none` stands for no handle. Movable.
template <typename Handle, auto close, auto none = nullptr>
class Owned {
 public:
  Owned() = default;
  explicit Owned(Handle handle) : handle_(handle) {}
  Owned(Owned&& other) noexcept : handle_(std::exchange(other.handle_, none)) {}
  Owned& operator=(Owned&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() {
    if (*this) {
      close(handle_);
    }
  }

  explicit operator bool() const { return handle_ != Handle{none}; }
  [[nodiscard]] Handle get() const { return handle_; }

 private:
  Handle handle_{none};
};

}  // namespace veltrano

#endif
