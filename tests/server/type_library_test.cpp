// The type library says what hosts are promised: names, order, kinds, types, defaults, enumeration values.

#include <gtest/gtest.h>

#include <map>
#include <regex>

#include "expected_interface.h"
#include "host.h"

namespace veltrano::tests {

namespace {

std::wstring typeName(ITypeInfo& type, const TYPEDESC& description) {
  if (description.vt != VT_PTR) {
    return L"not by reference";
  }
  const TYPEDESC& target = *description.lptdesc;
  const TYPEDESC& inner = target.vt == VT_PTR ? *target.lptdesc : target;
  static const std::map<VARTYPE, const wchar_t*> names = {
      {VT_BSTR, L"text"}, {VT_I2, L"short"},  {VT_I4, L"long"},         {VT_I8, L"64-bit"},
      {VT_R8, L"double"}, {VT_BOOL, L"flag"}, {VT_VARIANT, L"variant"}, {VT_SAFEARRAY, L"any number"}};
  if (const auto known = names.find(inner.vt); known != names.end()) {
    return known->second;
  }
  if (inner.vt != VT_USERDEFINED) {
    return L"type " + std::to_wstring(inner.vt);
  }
  ComPointer<ITypeInfo> named;
  type.GetRefTypeInfo(inner.hreftype, named.out());
  const std::wstring name = nameOf(*named.get());
  return name == L"IPictureDisp" || name == L"Picture" ? L"picture" : name;
}

/// Empty if the library names none.
std::wstring defaultText(const PARAMDESC& parameter) {
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

std::wstring parameterText(ITypeInfo& type, const std::wstring& name, const ELEMDESC& element) {
  const std::wstring text = name + L": " + typeName(type, element.tdesc);
  constexpr USHORT mayBeOmitted = PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT;
  if ((element.paramdesc.wParamFlags & mayBeOmitted) == 0) {
    return text;
  }
  const std::wstring value = defaultText(element.paramdesc);
  return L"[" + text + (value.empty() ? L"" : L" = " + value) + L"]";
}

std::wstring memberText(ITypeInfo& type, const FUNCDESC& function) {
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
                    parameterText(type, names.at(static_cast<std::size_t>(i) + 1), element);
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

/// Both sides of a comparison in one form, a member a line. Addresses are as wide as a pointer.
std::string normalised(std::string text) {
  text = std::regex_replace(text, std::regex("\\s+"), " ");
  text = std::regex_replace(text, std::regex("^ | $"), "");
  text = std::regex_replace(text, std::regex("; "), ";\n");
  return std::regex_replace(text, std::regex("address"), sizeof(void*) == 8 ? "64-bit" : "long");
}

std::string narrow(std::wstring_view text) {
  return {text.begin(), text.end()};
}

class TypeLibrary : public testing::Test {
 protected:
  ComPointer<ITypeInfo> typeNamed(std::string_view name) {
    for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
      ComPointer<ITypeInfo> type;
      library_->GetTypeInfo(i, type.out());
      if (narrow(nameOf(*type.get())) == name) {
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
  for (const ExpectedType& expected : expectedInterfaces) {
    const ComPointer<ITypeInfo> dispatch = typeNamed(expected.name);
    ASSERT_TRUE(dispatch) << expected.name;
    HREFTYPE reference = 0;
    ComPointer<ITypeInfo> type;
    ASSERT_EQ(S_OK, dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
    ASSERT_EQ(S_OK, dispatch->GetRefTypeInfo(reference, type.out()));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, type->GetTypeAttr(&attributes));
    EXPECT_TRUE((attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0);
    type->ReleaseTypeAttr(attributes);
    std::wstring members;
    FUNCDESC* function = nullptr;
    for (UINT i = 0; SUCCEEDED(type->GetFuncDesc(i, &function)); ++i) {
      members += (i == 0 ? L"" : L"; ") + memberText(*type.get(), *function);
      EXPECT_EQ((7 + static_cast<int>(i)) * static_cast<int>(sizeof(void*)), function->oVft);
      Text help;
      type->GetDocumentation(function->memid, nullptr, &help, nullptr, nullptr);
      EXPECT_FALSE(help.view().empty()) << "an object browser has nothing to show";
      type->ReleaseFuncDesc(function);
    }
    EXPECT_EQ(normalised(expected.members), normalised(narrow(members))) << expected.name;
  }
}

TEST_F(TypeLibrary, HoldsEveryEnumerationValue) {
  ASSERT_TRUE(library_);
  std::map<std::string, std::wstring> told;
  for (const ExpectedType& expected : expectedEnumerations) {
    const ComPointer<ITypeInfo> type = typeNamed(expected.name);
    ASSERT_TRUE(type);
    std::string values;
    VARDESC* variable = nullptr;
    for (UINT i = 0; SUCCEEDED(type->GetVarDesc(i, &variable)); ++i) {
      Text name;
      Text help;
      type->GetDocumentation(variable->memid, &name, &help, nullptr, nullptr);
      EXPECT_FALSE(help.view().empty()) << narrow(name.view());
      told[narrow(name.view())] = help.view();
      EXPECT_EQ(VT_I4, variable->lpvarValue->vt);
      values += (i == 0 ? "" : ", ") + narrow(name.view()) + "=" + std::to_string(variable->lpvarValue->lVal);
      type->ReleaseVarDesc(variable);
    }
    EXPECT_EQ(expected.members, values);
  }
  EXPECT_EQ(L"Centimetres, as in a new document", told["UNIT_CM"]);
  EXPECT_EQ(L"Not the system's audit failure, which is 16", told["EVENTLOG_AUDIT_FAILURE"]);
}

TEST_F(TypeLibrary, NamesTheLibraryItsClassesAndTheEvent) {
  ASSERT_TRUE(library_);
  Text name;
  library_->GetDocumentation(-1, &name, nullptr, nullptr, nullptr);
  EXPECT_EQ(L"VeltranoFrameWorkDLL", name.view());
  for (const ExpectedType& expected : expectedInterfaces) {
    EXPECT_TRUE(typeNamed(expected.name + 1)) << "the class";
  }
  const ComPointer<ITypeInfo> events = typeNamed("__VeltranoPDF");
  ASSERT_TRUE(events);
  FUNCDESC* function = nullptr;
  ASSERT_EQ(S_OK, events->GetFuncDesc(0, &function));
  EXPECT_EQ(L"Error(xMsg: text)", memberText(*events.get(), *function));
  EXPECT_EQ(FUNC_DISPATCH, function->funckind);
  events->ReleaseFuncDesc(function);
}

}  // namespace

}  // namespace veltrano::tests
