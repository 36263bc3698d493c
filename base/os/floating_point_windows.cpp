#include "base/os/floating_point_windows.h"

#include <windows.h>

#include <xmmintrin.h>

namespace veltrano {

namespace {

/// All exceptions masked, round to nearest; the stack unit with 64 bits of precision.
constexpr FloatingPointSettings librarySettings = {0x1F80, 0x037F};

/// A thread's innermost member whose host has settings of its own. A slot of the system: the compiler's thread_local
/// allocates in every thread.
class InnermostMember {
 public:
  InnermostMember() noexcept : slot_(TlsAlloc()) {}
  InnermostMember(const InnermostMember&) = delete;
  InnermostMember& operator=(const InnermostMember&) = delete;
  ~InnermostMember() { TlsFree(slot_); }

  [[nodiscard]] LibraryArithmetic* get() const { return static_cast<LibraryArithmetic*>(TlsGetValue(slot_)); }
  void set(LibraryArithmetic* member) const { TlsSetValue(slot_, member); }

 private:
  DWORD slot_;
};

const InnermostMember innermost;

/// An exception that the stack unit has noted is raised as soon as somebody lets it.
void clearPending() {
  unsigned short status = 0;
  __asm__ __volatile__("fnstsw %0" : "=a"(status));
  if ((status & 0x3F) != 0) {
    __asm__ __volatile__("fnclex");
  }
}

}  // namespace

FloatingPointSettings FloatingPointSettings::current() {
  FloatingPointSettings settings{_mm_getcsr(), 0};
  __asm__ __volatile__("fnstcw %0" : "=m"(settings.stack));
  return settings;
}

void FloatingPointSettings::apply() const {
  clearPending();
  __asm__ __volatile__("fldcw %0" : : "m"(stack));
  _mm_setcsr(vector);
}

bool FloatingPointSettings::operator==(const FloatingPointSettings& other) const {
  constexpr unsigned noted = 0x3F;
  return stack == other.stack && (vector & ~noted) == (other.vector & ~noted);
}

LibraryArithmetic::LibraryArithmetic()
    : host_(FloatingPointSettings::current()), differs_(!(host_ == librarySettings)) {
  if (differs_) {
    outer_ = innermost.get();
    innermost.set(this);
    librarySettings.apply();
  }
}

LibraryArithmetic::~LibraryArithmetic() {
  if (differs_) {
    host_.apply();
    innermost.set(outer_);
  } else {
    clearPending();
  }
}

HostArithmetic::HostArithmetic() : member_(innermost.get()) {
  if (member_ != nullptr) {
    innermost.set(nullptr);
    member_->host_.apply();
  }
}

HostArithmetic::~HostArithmetic() {
  if (member_ != nullptr) {
    member_->host_ = FloatingPointSettings::current();
    librarySettings.apply();
    innermost.set(member_);
  }
}

}  // namespace veltrano
