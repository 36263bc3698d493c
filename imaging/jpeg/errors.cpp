#include "imaging/jpeg/errors.h"

// After it: jerror.h makes an enumeration from libjpeg's own definitions.
#include <jerror.h>

namespace veltrano::mIntelJPEGLibrary {
namespace {

bool losesImageData(int warning) {
  return warning == JWRN_HIT_MARKER || warning == JWRN_HUFF_BAD_CODE || warning == JWRN_ARITH_BAD_CODE ||
         warning == JWRN_MUST_RESYNC;
}

void errorExit(j_common_ptr coder) {
  switch (coder->err->msg_code) {
    case JERR_OUT_OF_MEMORY:
    case JERR_NO_BACKING_STORE:
      giveUp(coder, CoderResult::memoryError);
    case JERR_NO_SOI:
    case JERR_INPUT_EMPTY:
      giveUp(coder, CoderResult::notJpeg);
    case JERR_BAD_PRECISION:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_SOF_UNSUPPORTED:
      giveUp(coder, CoderResult::unsupportedFrame);
    default:
      giveUp(coder, CoderResult::badData);
  }
}

// Level -1 is a warning, the others are remarks; nothing is printed.
void emitMessage(j_common_ptr coder, int level) {
  if (level < 0 && losesImageData(coder->err->msg_code))
    reinterpret_cast<JpegErrors*>(coder->err)->damaged = true;
}

}  // namespace

JpegErrors::JpegErrors() {
  jpeg_std_error(&manager);
  manager.error_exit = errorExit;
  manager.emit_message = emitMessage;
}

void giveUp(j_common_ptr coder, CoderResult result) {
  auto* errors = reinterpret_cast<JpegErrors*>(coder->err);
  errors->result = result;
  std::longjmp(errors->escape, 1);
}

}  // namespace veltrano::mIntelJPEGLibrary
