#ifndef VELTRANO_SERVER_COM_DISPATCH_CALL_H
#define VELTRANO_SERVER_COM_DISPATCH_CALL_H

// The coercing Invoke: late-bound calls of a dual interface.
//
// Parameters are typed and by reference, and script hosts pass variables as references to variants, which the system's
// dispatcher (DispInvoke) refuses. Here every argument is coerced to its declared type first and written back
// afterwards, and omitted ones get their defaults. Then the slot of the vtable is called directly, not through
// DispCallFunc or ITypeInfo::Invoke: those would convert each argument once more, pass null for omitted optional ones,
// and take several times as long.

#include "server/com/dispatch/interface_table.h"

namespace veltrano::server {

/// Where an object takes the host's own variant of a parameter whose kind matters (ClassEntry::keptKinds),
/// for the duration of one call.
class KindKeeper {
 public:
  /// Null when the call did not come through the dispatcher: then the typed argument is all there is.
  const VARIANT* take() { return std::exchange(kept_, nullptr); }
  void keep(const VARIANT* kept) { kept_ = kept; }

 private:
  const VARIANT* kept_ = nullptr;
};

struct Call {
  IDispatch* object;  ///< its dual interface
  KindKeeper* kinds;
  LCID locale;
  DISPPARAMS* arguments;
  VARIANT* result;      ///< may be null
  UINT* wrongArgument;  ///< may be null
};

/// Checks what the host passed, coerces, calls and writes back. The result is that of the member (S_OK), or
/// says what is wrong with the arguments: DISP_E_BADPARAMCOUNT, DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW,
/// DISP_E_PARAMNOTOPTIONAL, DISP_E_PARAMNOTFOUND, DISP_E_NONAMEDARGS.
HRESULT callMember(const Member& member, const Call& call);

}  // namespace veltrano::server

#endif
