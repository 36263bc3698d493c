#ifndef VELTRANO_SERVER_COM_DISPATCH_CORE_H
#define VELTRANO_SERVER_COM_DISPATCH_CORE_H

#include "server/com/class_table.h"
#include "server/com/dispatch/call.h"

namespace veltrano::server {

/// The part of IDispatch and IProvideClassInfo2 that needs no template.
class DispatchCore {
 public:
  explicit DispatchCore(const ClassEntry& entry) : entry_(entry) {}

  [[nodiscard]] const ClassEntry& entry() const { return entry_; }
  HRESULT getTypeInfo(UINT index, ITypeInfo** type);
  HRESULT getClassInfo(ITypeInfo** type);
  HRESULT getGuid(DWORD kind, GUID* guid) const;
  HRESULT getIdsOfNames(REFIID iid, OLECHAR** names, UINT count, DISPID* ids) const;
  HRESULT invoke(IDispatch& object, DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments,
                 VARIANT* result, UINT* wrongArgument);
  /// The host's own variant of the call's parameter whose kind matters; null if the call was early bound.
  const VARIANT* takeKeptKind() { return kinds_.take(); }

 private:
  const ClassEntry& entry_;
  KindKeeper kinds_;
};

}  // namespace veltrano::server

#endif
