#ifndef VELTRANO_IMAGING_JPEG_ERRORS_H
#define VELTRANO_IMAGING_JPEG_ERRORS_H

// How libjpeg's way of failing, a longjmp, is kept from skipping destructors: only `guarded` calls into it,
// and the steps handed to guarded own nothing.

#include <cstddef>
#include <cstdio>

// libjpeg's header needs the two above.
#include <jpeglib.h>

#include <csetjmp>

#include "imaging/jpeg/intel_jpeg_library.h"

namespace veltrano::mIntelJPEGLibrary {

struct JpegErrors {
  jpeg_error_mgr manager;  // first member: libjpeg hands its address back
  std::jmp_buf escape;
  CoderResult result = CoderResult::ok;
  bool damaged = false;  ///< image data was missing or made no sense; decoding went on with a guess

  JpegErrors();
  JpegErrors(const JpegErrors&) = delete;
  JpegErrors& operator=(const JpegErrors&) = delete;
  ~JpegErrors() = default;
};

/// Leaves the running step with `result`.
[[noreturn]] void giveUp(j_common_ptr coder, CoderResult result);

/// Runs `step`; false if libjpeg gave up in it, errors.result then says why. The step must capture by
/// reference and own nothing.
template <typename Step>
bool guarded(JpegErrors& errors, const Step& step) {
  if (setjmp(errors.escape) != 0) return false;
  step();
  return true;
}

}  // namespace veltrano::mIntelJPEGLibrary

#endif
