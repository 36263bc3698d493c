#ifndef VELTRANO_SERVER_COM_DISPATCH_ARGUMENT_H
#define VELTRANO_SERVER_COM_DISPATCH_ARGUMENT_H

// One argument of a late-bound call on its way to a typed parameter by reference, and back.

#include <cstdint>

#include "server/com/dispatch/interface_table.h"

namespace veltrano::server {

/// Holds what the member gets. Does not move, because `pointer` may lead into it.
class Argument {
 public:
  Argument() = default;
  Argument(const Argument&) = delete;
  Argument& operator=(const Argument&) = delete;
  Argument(Argument&&) = delete;
  Argument& operator=(Argument&&) = delete;
  ~Argument();

  /// Takes the host's argument as the parameter's type. A variable of that type is referred to; anything else is
  /// coerced into a copy. Fails with DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW if it cannot be, DISP_E_PARAMNOTOPTIONAL
  /// if a required argument was left out.
  HRESULT take(VARIANT& given, const Parameter& parameter, LCID locale);
  /// Stands in for an argument that was not passed.
  HRESULT takeDefault(const Parameter& parameter);
  /// All `count` arguments of a call as an array of variants; `last` is where the reversed list of the call starts.
  HRESULT takeList(VARIANT* last, UINT count);
  /// A place of the given type for the member's result.
  void makeResult(VARTYPE type);

  /// The host's variable gets what the member made of its copy, if it changed.
  void writeBack(LCID locale);
  /// Hands the result over, or drops it for a null pointer.
  void giveResult(VARIANT* result);

  [[nodiscard]] void* pointer() const { return pointer_; }

 private:
  HRESULT coerce(const VARIANT& source, VARTYPE type, LCID locale);
  HRESULT coerceObject(IUnknown* object, VARTYPE type, LCID locale);
  HRESULT coerceFlag(const VARIANT& source, LCID locale);
  HRESULT coercePicture(const VARIANT& source);
  /// A number that fits only without a sign, taken as the bits of a signed one.
  bool coercePattern(const VARIANT& source, VARTYPE type, LCID locale);
  void own(VARTYPE type);

  void* pointer_ = nullptr;
  VARIANT storage_;              // initialised by own()
  VARIANT* variable_ = nullptr;  // the host's, when its value had to be coerced
  std::int64_t before_ = 0;      // the bits of the coerced value
  bool owns_ = false;
};

}  // namespace veltrano::server

#endif
