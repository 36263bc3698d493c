#include "server/com/dispatch/core.h"

#include <array>
#include <cstdio>

#include "base/trace.h"
#include "server/com/module.h"

namespace veltrano::server {

namespace {

HRESULT findType(REFGUID guid, ITypeInfo** type) {
  if (type == nullptr) {
    return E_POINTER;
  }
  *type = nullptr;
  return guarded([&] {
    ComPointer<ITypeLib> library;
    const HRESULT loaded = loadTypeLibrary(library);
    return FAILED(loaded) ? loaded : library->GetTypeInfoOfGuid(guid, type);
  });
}

void traceRefused(const ClassEntry& entry, const Member& member, const DISPPARAMS& passed, HRESULT reason,
                  UINT wrong) {
  if (traceEnabled()) {
    const std::string name(member.name.begin(), member.name.end());
    const TracedMember traced(entry.name, name.c_str());
    std::array<char, 11> code{};
    std::snprintf(code.data(), code.size(), "0x%08lX", static_cast<unsigned long>(reason));
    if (wrong < passed.cArgs && (reason == DISP_E_TYPEMISMATCH || reason == DISP_E_OVERFLOW)) {
      // Hosts pass arguments from the last to the first.
      trace("The host gets the error ", code.data(), ": argument ", passed.cArgs - wrong,
            " cannot be what the member takes there.");
    } else {
      trace("The host gets the error ", code.data(), "; number of arguments passed: ", passed.cArgs, ".");
    }
  }
}

}  // namespace

HRESULT DispatchCore::getTypeInfo(UINT index, ITypeInfo** type) {
  if (index != 0) {
    if (type != nullptr) {
      *type = nullptr;
    }
    return DISP_E_BADINDEX;
  }
  return findType(*entry_.dispatchInterface, type);
}

HRESULT DispatchCore::getClassInfo(ITypeInfo** type) {
  return findType(*entry_.clsid, type);
}

HRESULT DispatchCore::getGuid(DWORD kind, GUID* guid) const {
  if (guid == nullptr) {
    return E_POINTER;
  }
  *guid = GUID_NULL;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) {
    return E_INVALIDARG;
  }
  if (entry_.eventInterface == nullptr) {
    return E_FAIL;
  }
  *guid = *entry_.eventInterface;
  return S_OK;
}

HRESULT DispatchCore::getIdsOfNames(REFIID iid, OLECHAR** names, UINT count, DISPID* ids) const {
  if (iid != IID_NULL) {
    return DISP_E_UNKNOWNINTERFACE;
  }
  return guarded([&] {
    const InterfaceTable* table = InterfaceTable::of(entry_);
    return table != nullptr ? table->identify(names, count, ids) : TYPE_E_CANTLOADLIBRARY;
  });
}

HRESULT DispatchCore::invoke(IDispatch& object, DISPID id, REFIID iid, LCID locale, WORD flags,
                             DISPPARAMS* arguments, VARIANT* result, UINT* wrongArgument) {
  if (result != nullptr) {
    VariantInit(result);
  }
  if (iid != IID_NULL) {
    return DISP_E_UNKNOWNINTERFACE;
  }
  if (arguments == nullptr) {
    return E_INVALIDARG;
  }
  return guarded([&] {
    const InterfaceTable* table = InterfaceTable::of(entry_);
    if (table == nullptr) {
      return TYPE_E_CANTLOADLIBRARY;
    }
    const Member* member = table->find(id, flags);
    if (member == nullptr) {
      return DISP_E_MEMBERNOTFOUND;
    }
    UINT wrong = 0;
    UINT* const place = wrongArgument != nullptr ? wrongArgument : &wrong;
    const HRESULT called = callMember(*member, {&object, &kinds_, locale, arguments, result, place});
    if (FAILED(called)) {
      traceRefused(entry_, *member, *arguments, called, *place);
    }
    return called;
  });
}

}  // namespace veltrano::server
