// The type library says what hosts are promised: names, order, kinds, types, defaults, enumeration values.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "expected_interface.h"
#include "host.h"
#include "server/classes/class_table.h"
#include "server/com/defaults.h"

namespace veltrano::tests {

namespace {

std::wstring nameOf(ITypeInfo& type) {
  Text name;
  type.GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
  return std::wstring(name.view());
}

std::wstring typeName(ITypeInfo& type, const TYPEDESC& description) {
  if (description.vt != VT_PTR) {
    return L"not by reference";
  }
  const TYPEDESC& target = *description.lptdesc;
  const TYPEDESC& inner = target.vt == VT_PTR ? *target.lptdesc : target;
  switch (inner.vt) {
    case VT_BSTR:
      return L"text";
    case VT_I2:
      return L"short";
    case VT_I4:
      return L"long";
    case VT_I8:
      return L"64-bit";
    case VT_R8:
      return L"double";
    case VT_BOOL:
      return L"flag";
    case VT_VARIANT:
      return L"variant";
    case VT_SAFEARRAY:
      return L"any number";
    case VT_USERDEFINED: {
      ComPointer<ITypeInfo> named;
      type.GetRefTypeInfo(inner.hreftype, named.out());
      const std::wstring name = nameOf(*named.get());
      return name == L"IPictureDisp" || name == L"Picture" ? L"picture" : name;
    }
    default:
      return L"type " + std::to_wstring(inner.vt);
  }
}

/// What the library itself says of a default; empty if it names none.
std::wstring libraryDefault(const PARAMDESC& parameter) {
  if ((parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) == 0) {
    return {};
  }
  Argument value;
  VariantCopy(value.get(), &parameter.pparamdescex->varDefaultValue);
  if (value->vt == VT_BOOL) {
    return std::to_wstring(value->boolVal);
  }
  return value.text();
}

/// What an omitted argument has, by the server's table.
std::wstring tableDefault(REFIID iid, const std::wstring& member, const std::wstring& parameter) {
  for (const server::Default& entry : server::defaultTable()) {
    if (*entry.dispatchInterface == iid && entry.member == member && entry.parameter == parameter) {
      return entry.text != nullptr ? L"'" + std::wstring(entry.text) + L"'" : Argument(entry.number).text();
    }
  }
  return L"no default";
}

std::wstring parameterText(ITypeInfo& type, REFIID iid, const std::wstring& member, const std::wstring& name,
                           const ELEMDESC& element) {
  const std::wstring text = name + L": " + typeName(type, element.tdesc);
  constexpr USHORT mayBeOmitted = PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT;
  if ((element.paramdesc.wParamFlags & mayBeOmitted) == 0) {
    return text;
  }
  const std::wstring value = tableDefault(iid, member, name);
  const std::wstring own = libraryDefault(element.paramdesc);
  if (!value.starts_with(L'\'')) {
    // Texts alone cannot be expressed. Early-bound compilers pass what the library says.
    EXPECT_EQ(value, own) << "the library differs from the table";
  }
  return L"[" + text + L" = " + value + L"]";
}

std::wstring memberText(ITypeInfo& type, REFIID iid, const FUNCDESC& function) {
  std::vector<BSTR> texts(16);
  UINT count = 0;
  type.GetNames(function.memid, texts.data(), static_cast<UINT>(texts.size()), &count);
  std::vector<std::wstring> names;
  for (UINT i = 0; i < count; ++i) {
    names.emplace_back(texts[i]);
    SysFreeString(texts[i]);
  }
  std::wstring parameters;
  std::wstring result;
  for (int i = 0; i < function.cParams; ++i) {
    const ELEMDESC& element = function.lprgelemdescParam[i];
    if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      result = L": " + typeName(type, element.tdesc);
    } else if (function.invkind == INVOKE_PROPERTYPUT) {
      result = L": " + typeName(type, element.tdesc);
    } else {
      parameters += (parameters.empty() ? L"" : L", ") +
                    parameterText(type, iid, names[0], names.at(static_cast<std::size_t>(i) + 1), element);
    }
  }
  switch (function.invkind) {
    case INVOKE_PROPERTYGET:
      return L"get " + names[0] + result;
    case INVOKE_PROPERTYPUT:
      return L"put " + names[0] + result;
    default:
      EXPECT_EQ(function.cParamsOpt == -1, parameters.ends_with(L"any number"));
      return names[0] + L"(" + parameters + L")" + result;
  }
}

/// Addresses are as wide as a pointer.
std::wstring forThisWidth(std::wstring_view expected) {
  std::wstring text(expected);
  const std::wstring address = sizeof(void*) == 8 ? L"64-bit" : L"long";
  for (std::size_t at = text.find(L"address"); at != std::wstring::npos; at = text.find(L"address")) {
    text.replace(at, 7, address);
  }
  return text;
}

class TypeLibrary : public testing::Test {
 protected:
  ComPointer<ITypeInfo> typeNamed(std::wstring_view name) {
    for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
      ComPointer<ITypeInfo> type;
      library_->GetTypeInfo(i, type.out());
      if (nameOf(*type.get()) == name) {
        return type;
      }
    }
    return {};
  }

  Dll dll_;
  ComPointer<ITypeLib> library_ = dll_.typeLibrary();
};

TEST_F(TypeLibrary, HoldsEveryMemberInOrder) {
  ASSERT_TRUE(library_);
  for (const ExpectedInterface& expected : expectedInterfaces) {
    const ComPointer<ITypeInfo> dispatch = typeNamed(expected.name);
    ASSERT_TRUE(dispatch) << expected.name.size();
    HREFTYPE reference = 0;
    ComPointer<ITypeInfo> type;
    ASSERT_EQ(S_OK, dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
    ASSERT_EQ(S_OK, dispatch->GetRefTypeInfo(reference, type.out()));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, type->GetTypeAttr(&attributes));
    const IID iid = attributes->guid;
    EXPECT_TRUE((attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0);
    ASSERT_EQ(expected.members.size(), attributes->cFuncs);
    type->ReleaseTypeAttr(attributes);
    for (UINT i = 0; i < expected.members.size(); ++i) {
      FUNCDESC* function = nullptr;
      ASSERT_EQ(S_OK, type->GetFuncDesc(i, &function));
      EXPECT_EQ(forThisWidth(expected.members[i]), memberText(*type.get(), iid, *function));
      EXPECT_EQ((7 + static_cast<int>(i)) * static_cast<int>(sizeof(void*)), function->oVft);
      Text help;
      type->GetDocumentation(function->memid, nullptr, &help, nullptr, nullptr);
      EXPECT_FALSE(help.isNull()) << "an object browser has nothing to show";
      type->ReleaseFuncDesc(function);
    }
  }
}

TEST_F(TypeLibrary, HoldsEveryEnumerationValue) {
  ASSERT_TRUE(library_);
  std::map<std::wstring, std::wstring> told;
  for (const ExpectedEnumeration& expected : expectedEnumerations) {
    const ComPointer<ITypeInfo> type = typeNamed(expected.name);
    ASSERT_TRUE(type);
    std::vector<std::wstring> values;
    VARDESC* variable = nullptr;
    for (UINT i = 0; SUCCEEDED(type->GetVarDesc(i, &variable)); ++i) {
      Text name;
      Text help;
      type->GetDocumentation(variable->memid, &name, &help, nullptr, nullptr);
      EXPECT_FALSE(help.view().empty());
      told[std::wstring(name.view())] = help.view();
      EXPECT_EQ(VT_I4, variable->lpvarValue->vt);
      values.push_back(std::wstring(name.view()) + L"=" + std::to_wstring(variable->lpvarValue->lVal));
      type->ReleaseVarDesc(variable);
    }
    EXPECT_EQ(std::vector<std::wstring>(expected.values.begin(), expected.values.end()), values);
  }
  EXPECT_EQ(L"Centimetres, as in a new document", told[L"UNIT_CM"]);
  EXPECT_EQ(L"10, not the system's audit failure (16); kept as it is", told[L"EVENTLOG_AUDIT_FAILURE"]);
}

TEST_F(TypeLibrary, NamesTheLibraryItsClassesAndTheEvent) {
  ASSERT_TRUE(library_);
  Text name;
  library_->GetDocumentation(-1, &name, nullptr, nullptr, nullptr);
  EXPECT_EQ(L"VeltranoFrameWorkDLL", name.view());
  for (const ExpectedInterface& expected : expectedInterfaces) {
    EXPECT_TRUE(typeNamed(expected.name.substr(1)));
  }
  const ComPointer<ITypeInfo> events = typeNamed(L"__VeltranoPDF");
  ASSERT_TRUE(events);
  FUNCDESC* function = nullptr;
  // Behind the members of IDispatch, which a dispatch interface lists in memory but not in its own.
  ASSERT_EQ(S_OK, events->GetFuncDesc(0, &function));
  EXPECT_EQ(L"Error(xMsg: text)", memberText(*events.get(), IID_NULL, *function));
  EXPECT_EQ(FUNC_DISPATCH, function->funckind);
  events->ReleaseFuncDesc(function);
}

}  // namespace

}  // namespace veltrano::tests
