#include "server/com/dispatch/interface_table.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>

#include "server/com/module.h"

namespace veltrano::server {

namespace {

constexpr std::size_t longestName = 64;

wchar_t lower(wchar_t c) {
  return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

bool sameName(std::wstring_view left, std::wstring_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](wchar_t a, wchar_t b) { return lower(a) == lower(b); });
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

const Default* findDefault(const IID& iid, std::wstring_view member, std::wstring_view parameter) {
  for (const Default& entry : defaultTable()) {
    if (*entry.dispatchInterface == iid && entry.member == member && sameName(entry.parameter, parameter)) {
      return &entry;
    }
  }
  return nullptr;
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
  static std::mutex mutex;
  static std::vector<std::unique_ptr<InterfaceTable>> tables(classTable().size());
  static std::vector<std::atomic<const InterfaceTable*>> made(classTable().size());
  const auto index = static_cast<std::size_t>(&entry - classTable().data());
  // Every late-bound call asks: the lock is for the first one.
  if (const InterfaceTable* const known = made[index]) {
    return known;
  }
  const std::lock_guard lock(mutex);
  if (tables[index] == nullptr) {
    ComPointer<ITypeLib> library;
    if (SUCCEEDED(loadTypeLibrary(library))) {
      tables[index] = read(entry, *library.get());
      made[index] = tables[index].get();
    }
  }
  return tables[index].get();
}

std::unique_ptr<InterfaceTable> InterfaceTable::read(const ClassEntry& entry, ITypeLib& library) {
  auto table = std::make_unique<InterfaceTable>();
  if (FAILED(table->load(entry, library))) {
    table.reset();
  }
  return table;
}

HRESULT InterfaceTable::load(const ClassEntry& entry, ITypeLib& library) {
  ComPointer<ITypeInfo> dispatch;
  ComPointer<ITypeInfo> type;
  HREFTYPE reference = 0;
  HRESULT result = library.GetTypeInfoOfGuid(*entry.dispatchInterface, dispatch.out());
  if (SUCCEEDED(result)) {
    // A dual interface is listed as what scripts see; -1 leads to its vtable side.
    result = dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference);
  }
  if (SUCCEEDED(result)) {
    result = dispatch->GetRefTypeInfo(reference, type.out());
  }
  TYPEATTR* attributes = nullptr;
  if (SUCCEEDED(result)) {
    result = type->GetTypeAttr(&attributes);
  }
  if (FAILED(result)) {
    return result;
  }
  const UINT count = attributes->cFuncs;
  type->ReleaseTypeAttr(attributes);
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    result = type->GetFuncDesc(i, &function);
    if (FAILED(result)) {
      return result;
    }
    const bool added = addMember(*type.get(), *function, entry);
    type->ReleaseFuncDesc(function);
    if (!added) {
      return TYPE_E_BADMODULEKIND;
    }
  }
  std::sort(names_.begin(), names_.end(), [](const Name& a, const Name& b) { return a.lower < b.lower; });
  return S_OK;
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
    parameter.omitted = findDefault(*entry.dispatchInterface, names[0], parameter.name);
    member.required += parameter.omitted == nullptr ? 1U : 0U;
    member.parameters.push_back(std::move(parameter));
  }
  if (!follows) {
    first_.push_back(members_.size());
    Name name{names[0], members_.size()};
    std::transform(name.lower.begin(), name.lower.end(), name.lower.begin(), lower);
    names_.push_back(std::move(name));
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
  std::array<wchar_t, longestName> wanted{};
  std::size_t length = 0;
  const wchar_t* given = names[0];
  for (; given != nullptr && given[length] != L'\0' && length < wanted.size(); ++length) {
    wanted[length] = lower(given[length]);
  }
  const std::wstring_view key(wanted.data(), length);
  const auto found =
      std::lower_bound(names_.begin(), names_.end(), key,
                       [](const Name& name, std::wstring_view text) { return name.lower < text; });
  if (found == names_.end() || found->lower != key) {
    return DISP_E_UNKNOWNNAME;
  }
  const Member& member = members_[found->member];
  ids[0] = member.id;
  HRESULT result = S_OK;
  for (UINT i = 1; i < count; ++i) {
    const auto& parameters = member.parameters;
    const auto parameter =
        std::find_if(parameters.begin(), parameters.end(), [&](const Parameter& candidate) {
          return names[i] != nullptr && sameName(candidate.name, names[i]);
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
