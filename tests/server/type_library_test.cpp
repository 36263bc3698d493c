// The type library in the DLL says what the reference pages promise to hosts: names, order, kinds, types and
// defaults. The values of its enumerations are compared with the stubs.

#include <gtest/gtest.h>

#include <map>
#include <regex>

#include "host.h"
#include "server/com/class_table.h"

namespace veltrano::tests {

namespace {

std::string narrow(std::wstring_view text) {
  return {text.begin(), text.end()};
}

std::string page(const std::string& className) {
  return readFile(std::filesystem::path("Z:" REFERENCE_FOLDER) / (className + ".md"));
}

/// The declarations of all members on a page, after its introduction, each ended by a line feed. A text that
/// may be omitted has its default in the class alone, so that it is left out here; addresses are as wide as a
/// pointer.
std::string declarationsOn(const std::string& page) {
  constexpr std::string_view opening = "```vbnet\n";
  std::string all;
  for (auto at = page.find("\n## "); (at = page.find(opening, at)) != std::string::npos;) {
    at += opening.size();
    all += page.substr(at, page.find("```", at) - at);
  }
  all = std::regex_replace(all, std::regex(" = \"[^\"]*\""), "");
  return std::regex_replace(all, std::regex("LongPtr"), sizeof(void*) == 8 ? "LongPtr" : "Long");
}

std::string typeName(ITypeInfo& type, const TYPEDESC& description) {
  if (description.vt != VT_PTR) return "not by reference";
  const TYPEDESC& target = *description.lptdesc;
  const TYPEDESC& inner = target.vt == VT_PTR ? *target.lptdesc : target;
  static const std::map<VARTYPE, const char*> names = {
      {VT_BSTR, "String"}, {VT_I2, "Integer"},   {VT_I4, "Long"},        {VT_I8, "LongPtr"},
      {VT_R8, "Double"},   {VT_BOOL, "Boolean"}, {VT_VARIANT, "Variant"}};
  if (const auto known = names.find(inner.vt); known != names.end()) return known->second;
  if (inner.vt != VT_USERDEFINED) return "type " + std::to_string(inner.vt);
  ComPointer<ITypeInfo> named;
  type.GetRefTypeInfo(inner.hreftype, named.out());
  const std::string name = narrow(nameOf(*named.get()));
  return name == "Picture" ? "IPictureDisp" : name;
}

std::string parameterText(ITypeInfo& type, const std::string& name, const ELEMDESC& element) {
  const PARAMDESC& parameter = element.paramdesc;
  std::string text = name + " As " + typeName(type, element.tdesc);
  if ((parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
    Argument value;
    VariantCopy(value.get(), &parameter.pparamdescex->varDefaultValue);
    text += " = " + narrow(value.text());
  }
  return (parameter.wParamFlags & (PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT)) == 0 ? text : "[" + text + "]";
}

/// The declaration of a member, as a page has it.
std::string declaration(ITypeInfo& type, const FUNCDESC& function) {
  BSTR texts[16] = {};
  UINT count = 0;
  type.GetNames(function.memid, texts, 16, &count);
  std::vector<std::string> names;
  for (UINT i = 0; i < count; ++i) {
    names.push_back(narrow(texts[i]));
    SysFreeString(texts[i]);
  }
  std::string parameters, result;
  for (int i = 0; i < function.cParams; ++i) {
    const ELEMDESC& element = function.lprgelemdescParam[i];
    const std::string name =
        function.invkind == INVOKE_PROPERTYPUT ? "value" : names.at(static_cast<std::size_t>(i) + 1);
    if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      result = " As " + typeName(type, element.tdesc);
    } else if (function.cParamsOpt == -1 && i == function.cParams - 1) {
      parameters += "ParamArray " + name + "() As Variant";
    } else {
      parameters += (parameters.empty() ? "" : ", ") + parameterText(type, name, element);
    }
  }
  const char* kind = function.funckind == FUNC_DISPATCH       ? "Event "
                     : function.invkind == INVOKE_PROPERTYGET ? "Property Get "
                     : function.invkind == INVOKE_PROPERTYPUT ? "Property Let "
                     : result.empty()                         ? "Sub "
                                                              : "Function ";
  return kind + names[0] + "(" + parameters + ")" + result + "\n";
}

class TypeLibrary : public testing::Test {
 protected:
  ComPointer<ITypeInfo> typeNamed(const std::string& name) {
    for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
      ComPointer<ITypeInfo> type;
      library_->GetTypeInfo(i, type.out());
      if (narrow(nameOf(*type.get())) == name) return type;
    }
    return {};
  }

  Dll dll_;
  ComPointer<ITypeLib> library_ = dll_.typeLibrary();
};

TEST_F(TypeLibrary, HoldsEveryMemberInOrder) {
  ASSERT_TRUE(library_);
  Text libraryName;
  library_->GetDocumentation(-1, &libraryName, nullptr, nullptr, nullptr);
  EXPECT_EQ(L"VeltranoFrameWorkDLL", libraryName.view());
  for (const server::ClassEntry& entry : server::classTable()) {
    const std::string name = narrow(entry.name);
    EXPECT_TRUE(typeNamed(name)) << "the class";
    std::string declarations;
    FUNCDESC* function = nullptr;
    if (const ComPointer<ITypeInfo> events = typeNamed("__" + name)) {
      ASSERT_EQ(S_OK, events->GetFuncDesc(0, &function));
      declarations = declaration(*events.get(), *function);
      events->ReleaseFuncDesc(function);
    }
    HREFTYPE reference = 0;
    ComPointer<ITypeInfo> type;
    const ComPointer<ITypeInfo> dispatch = typeNamed("_" + name);
    ASSERT_TRUE(dispatch) << name;
    ASSERT_EQ(S_OK, dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)) << "not dual";
    ASSERT_EQ(S_OK, dispatch->GetRefTypeInfo(reference, type.out()));
    for (UINT i = 0; SUCCEEDED(type->GetFuncDesc(i, &function)); ++i) {
      declarations += declaration(*type.get(), *function);
      EXPECT_EQ((7 + static_cast<int>(i)) * static_cast<int>(sizeof(void*)), function->oVft);
      Text help;
      type->GetDocumentation(function->memid, nullptr, &help, nullptr, nullptr);
      EXPECT_FALSE(help.view().empty()) << "an object browser has nothing to show";
      type->ReleaseFuncDesc(function);
    }
    ASSERT_NE("", page(name)) << name;
    EXPECT_EQ(declarationsOn(page(name)), declarations) << name;
  }
}

}  // namespace

}  // namespace veltrano::tests
