#ifndef VELTRANO_SERVER_COM_CALL_SCOPE_H
#define VELTRANO_SERVER_COM_CALL_SCOPE_H

// What holds for the time of one call from a host.

#include <xmmintrin.h>

#include "server/com/automation.h"

namespace veltrano::server {

/// Calculates as the library expects it, whatever the host does with its own numbers: some hosts let a
/// division by zero or an overflow raise a processor exception. The host's settings come back at the end.
class FloatingPointScope {
 public:
  FloatingPointScope() : vector_(_mm_getcsr()) {
    _mm_setcsr(vectorDefaults);
    __asm__ __volatile__("fnstcw %0" : "=m"(stack_));
    __asm__ __volatile__("fldcw %0" : : "m"(stackDefaults));
  }
  FloatingPointScope(const FloatingPointScope&) = delete;
  FloatingPointScope& operator=(const FloatingPointScope&) = delete;
  FloatingPointScope(FloatingPointScope&&) = delete;
  FloatingPointScope& operator=(FloatingPointScope&&) = delete;
  ~FloatingPointScope() {
    // A flag left standing would raise the exception as soon as the host lets it.
    __asm__ __volatile__("fnclex");
    __asm__ __volatile__("fldcw %0" : : "m"(stack_));
    _mm_setcsr(vector_);
  }

 private:
  static constexpr unsigned vectorDefaults = 0x1F80;       // all exceptions masked, to nearest
  static constexpr unsigned short stackDefaults = 0x037F;  // the same, 64 bits of precision
  unsigned vector_;
  unsigned short stack_ = stackDefaults;
};

/// Keeps an object alive: a host may release its last reference in an event.
class KeepAlive {
 public:
  explicit KeepAlive(IUnknown& object) : object_(object) { object_.AddRef(); }
  KeepAlive(const KeepAlive&) = delete;
  KeepAlive& operator=(const KeepAlive&) = delete;
  KeepAlive(KeepAlive&&) = delete;
  KeepAlive& operator=(KeepAlive&&) = delete;
  ~KeepAlive() { object_.Release(); }

 private:
  IUnknown& object_;
};

}  // namespace veltrano::server

#endif
