#include "server/com/dispatch/interface_table.h"

#include <algorithm>
#include <array>
#include <atomic>

#include "base/text/lower_case.h"
#include "server/com/module.h"

namespace veltrano::server {

namespace {

/// Whether a name stands before another one, whatever their case.
bool isBefore(std::wstring_view left, std::wstring_view right) {
  return std::ranges::lexicographical_compare(left, right, {}, lowerAscii<wchar_t>, lowerAscii<wchar_t>);
}

/// Names of a member and its parameters.
std::vector<std::wstring> functionNames(ITypeInfo& type, MEMBERID id) {
  std::array<BSTR, InterfaceTable::mostParameters + 1> texts{};
  UINT count = 0;
  type.GetNames(id, texts.data(), static_cast<UINT>(texts.size()), &count);
  std::vector<std::wstring> names;
  for (UINT i = 0; i < count; ++i) {
    names.emplace_back(texts[i], SysStringLen(texts[i]));
    SysFreeString(texts[i]);
  }
  return names;
}

/// What a named type stands for: an enumeration is a 32-bit number, an interface an object.
VARTYPE namedType(ITypeInfo& type, HREFTYPE reference) {
  ComPointer<ITypeInfo> named;
  TYPEATTR* attributes = nullptr;
  if (FAILED(type.GetRefTypeInfo(reference, named.out())) || FAILED(named->GetTypeAttr(&attributes))) {
    return VT_EMPTY;
  }
  const TYPEKIND kind = attributes->typekind;
  named->ReleaseTypeAttr(attributes);
  return static_cast<VARTYPE>(kind == TKIND_ENUM ? VT_I4 : VT_DISPATCH);
}

/// The type that a parameter refers to; VT_EMPTY if it is not a reference, as all of ours are.
VARTYPE referredType(ITypeInfo& type, const TYPEDESC& description) {
  if (description.vt != VT_PTR) {
    return VT_EMPTY;
  }
  const TYPEDESC& target = *description.lptdesc;
  switch (target.vt) {
    case VT_USERDEFINED:
      return namedType(type, target.hreftype);
    case VT_PTR:
      return VT_DISPATCH;
    case VT_SAFEARRAY:
      return VT_ARRAY;
    default:
      return target.vt;
  }
}

/// The default of a number or flag; 0 for what has none.
double defaultNumber(const PARAMDESC& parameter) {
  OwnedVariant number;
  const bool given = (parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0;
  return given && SUCCEEDED(
                      VariantChangeType(number.get(), &parameter.pparamdescex->varDefaultValue, 0, VT_R8))
             ? number->dblVal
             : 0;
}

/// The flags of Invoke that mean the member. Hosts call properties as methods to read them, set them to objects, and
/// read functions without parameters like properties.
WORD invocations(const Member& member) {
  switch (member.kind) {
    case INVOKE_PROPERTYPUT:
      return DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
    case INVOKE_PROPERTYGET:
      return DISPATCH_PROPERTYGET | DISPATCH_METHOD;
    default:
      return member.parameters.empty() && member.result != VT_EMPTY ? DISPATCH_METHOD | DISPATCH_PROPERTYGET
                                                                    : DISPATCH_METHOD;
  }
}

bool keepsKind(const ClassEntry& entry, std::wstring_view member, std::wstring_view parameter) {
  return std::any_of(entry.keptKinds.begin(), entry.keptKinds.end(), [&](const KeptKind& kept) {
    return kept.member == member && kept.parameter == parameter;
  });
}

}  // namespace

const InterfaceTable* InterfaceTable::of(const ClassEntry& entry) {
  static std::vector<std::atomic<const InterfaceTable*>> tables(classTable().size());
  auto& known = tables[static_cast<std::size_t>(&entry - classTable().data())];
  ComPointer<ITypeLib> library;
  if (known == nullptr && SUCCEEDED(loadTypeLibrary(library))) {
    // Kept for good, like the DLL that has made an object. Of two threads that read it at once the first one's stays.
    auto table = read(entry, *library.get());
    const InterfaceTable* none = nullptr;
    if (known.compare_exchange_strong(none, table.get())) {
      static_cast<void>(table.release());
    }
  }
  return known;
}

std::unique_ptr<InterfaceTable> InterfaceTable::read(const ClassEntry& entry, ITypeLib& library) {
  auto table = std::make_unique<InterfaceTable>();
  return table->load(entry, library) ? std::move(table) : nullptr;
}

bool InterfaceTable::load(const ClassEntry& entry, ITypeLib& library) {
  ComPointer<ITypeInfo> dispatch;
  ComPointer<ITypeInfo> type;
  HREFTYPE reference = 0;
  TYPEATTR* attributes = nullptr;
  // A dual interface is listed as what scripts see; -1 leads to its vtable side.
  if (FAILED(library.GetTypeInfoOfGuid(*entry.dispatchInterface, dispatch.out())) ||
      FAILED(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)) ||
      FAILED(dispatch->GetRefTypeInfo(reference, type.out())) || FAILED(type->GetTypeAttr(&attributes))) {
    return false;
  }
  const UINT count = attributes->cFuncs;
  type->ReleaseTypeAttr(attributes);
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    if (FAILED(type->GetFuncDesc(i, &function))) {
      return false;
    }
    const bool added = addMember(*type.get(), *function, entry);
    type->ReleaseFuncDesc(function);
    if (!added) {
      return false;
    }
  }
  std::ranges::sort(names_, isBefore, &Name::name);
  return true;
}

bool InterfaceTable::addMember(ITypeInfo& type, const FUNCDESC& function, const ClassEntry& entry) {
  const std::vector<std::wstring> names = functionNames(type, function.memid);
  const auto count = static_cast<std::size_t>(function.cParams);
  const bool follows = !members_.empty() && members_.back().id == function.memid;
  // Ids count from 1 in the order of the interface, so that they index the table.
  if (names.empty() || count > mostParameters ||
      (!follows && function.memid != static_cast<DISPID>(first_.size()) + 1)) {
    return false;
  }
  Member member;
  member.name = names[0];
  member.id = function.memid;
  member.kind = function.invkind;
  member.slot = static_cast<unsigned>(function.oVft) / static_cast<unsigned>(sizeof(void*));
  member.takesAnyNumber = function.cParamsOpt == -1;
  for (std::size_t i = 0; i < count; ++i) {
    const ELEMDESC& element = function.lprgelemdescParam[i];
    const VARTYPE referred = referredType(type, element.tdesc);
    if (referred == VT_EMPTY) {
      return false;
    }
    if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      member.result = referred;
      continue;
    }
    Parameter parameter;
    // A put's only parameter has no name in the library.
    parameter.name = i + 1 < names.size() ? names[i + 1] : std::wstring();
    parameter.type = referred;
    parameter.keptKind = keepsKind(entry, names[0], parameter.name);
    parameter.optional = (element.paramdesc.wParamFlags & (PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT)) != 0;
    parameter.omitted = defaultNumber(element.paramdesc);
    member.parameters.push_back(std::move(parameter));
  }
  if (!follows) {
    first_.push_back(members_.size());
    names_.push_back({names[0], members_.size()});
  }
  members_.push_back(std::move(member));
  return true;
}

const Member* InterfaceTable::find(DISPID id, WORD flags) const {
  if (id < 1 || static_cast<std::size_t>(id) > first_.size()) {
    return nullptr;
  }
  for (std::size_t i = first_[static_cast<std::size_t>(id) - 1]; i < members_.size() && members_[i].id == id;
       ++i) {
    if ((flags & invocations(members_[i])) != 0) {
      return &members_[i];
    }
  }
  return nullptr;
}

HRESULT InterfaceTable::identify(OLECHAR** names, UINT count, DISPID* ids) const {
  if (names == nullptr || ids == nullptr || count == 0) {
    return E_INVALIDARG;
  }
  std::fill_n(ids, count, DISPID_UNKNOWN);
  const std::wstring_view wanted = names[0] != nullptr ? names[0] : L"";
  const auto found = std::ranges::lower_bound(names_, wanted, isBefore, &Name::name);
  if (found == names_.end() || isBefore(wanted, found->name)) {
    return DISP_E_UNKNOWNNAME;
  }
  const Member& member = members_[found->member];
  ids[0] = member.id;
  HRESULT result = S_OK;
  for (UINT i = 1; i < count; ++i) {
    const auto& parameters = member.parameters;
    const auto parameter =
        std::find_if(parameters.begin(), parameters.end(), [&](const Parameter& candidate) {
          return names[i] != nullptr && sameAsciiName<wchar_t>(candidate.name, names[i]);
        });
    if (parameter == parameters.end()) {
      result = DISP_E_UNKNOWNNAME;
    } else {
      ids[i] = static_cast<DISPID>(parameter - parameters.begin());
    }
  }
  return result;
}

}  // namespace veltrano::server
