// Calls every member of every class, late and early bound, with plausible and with absurd arguments. Nothing
// may crash, hang or leave a count behind; what comes back is a success or one of a dispatcher's refusals.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "fake_objects.h"
#include "host.h"
#include "server/com/class_table.h"
#include "server/com/dispatch/interface_table.h"

namespace veltrano::tests {

namespace {

bool isExpected(HRESULT status) {
  constexpr HRESULT expected[] = {S_OK,
                                  DISP_E_TYPEMISMATCH,
                                  DISP_E_OVERFLOW,
                                  DISP_E_BADPARAMCOUNT,
                                  DISP_E_PARAMNOTOPTIONAL,
                                  DISP_E_MEMBERNOTFOUND};
  return std::find(std::begin(expected), std::end(expected), status) != std::end(expected);
}

/// Values that no member waits for.
std::vector<Argument> absurdValues() {
  SAFEARRAYBOUND bounds[] = {{2, 1}, {3, -1}};
  return {Argument(),
          Argument::of(VT_NULL),
          Argument::omitted(),
          -1,
          0,
          1,
          std::numeric_limits<int>::max(),
          std::numeric_limits<int>::min(),
          std::numeric_limits<double>::quiet_NaN(),
          std::numeric_limits<double>::infinity(),
          1e300,
          -1e-300,
          true,
          L"",
          L"text",
          L"12",
          L"#FF",
          L"<&>\u00e9\u4e00",
          std::wstring(300000, L'x').c_str(),
          Argument::of(VT_BSTR, SysAllocStringLen(L"a\0b\0", 4)),
          Argument::of(VT_BSTR),
          Argument::of(VT_BYREF | VT_VARIANT),
          Argument::of(VT_BYREF | VT_R8),
          Argument::of(VT_ARRAY | VT_VARIANT),
          Argument::of(VT_I8, std::numeric_limits<LONGLONG>::min()),
          Argument::of(VT_ARRAY | VT_VARIANT, SafeArrayCreate(VT_VARIANT, 2, bounds)),
          Argument::doubles({}),
          Argument::doubles({1, 2, 3}),
          Argument{L"a", Argument{1}},
          static_cast<IUnknown*>(nullptr),
          new FakeObject(L"7"),
          new FakeObject(Argument(), {1, L"x"})};
}

Argument plausible(VARTYPE type, const std::filesystem::path& file) {
  switch (type) {
    case VT_BSTR:
      return Argument(file.c_str());
    case VT_R8:
      return 1.5;
    case VT_BOOL:
      return true;
    case VT_DISPATCH:
      return static_cast<IUnknown*>(nullptr);
    default:
      return 1;
  }
}

HRESULT invoke(IDispatch& object, const server::Member& member, const std::vector<Argument>& arguments) {
  return callMember(object, member.id, arguments, static_cast<WORD>(member.kind)).status;
}

/// Numbers handed over as addresses cannot be checked, so they are not made up here.
bool takesAddresses(const server::Member& member) {
  return std::any_of(member.parameters.begin(), member.parameters.end(),
                     [](const server::Parameter& parameter) { return parameter.name == L"ArrayPointer"; });
}

class EveryMember : public testing::TestWithParam<std::size_t> {
 protected:
  const server::ClassEntry& entry_ = server::classTable()[GetParam()];
  Dll dll_;
  /// The table of the tested DLL's own interface, read as the dispatcher reads it.
  std::vector<server::Member> members() {
    std::vector<server::Member> members;
    const auto table = server::InterfaceTable::read(entry_, *dll_.typeLibrary().get());
    for (DISPID id = 1; table != nullptr; ++id) {
      const std::size_t before = members.size();
      for (const WORD flags :
           {WORD{DISPATCH_PROPERTYGET}, WORD{DISPATCH_PROPERTYPUT}, WORD{DISPATCH_METHOD}}) {
        const server::Member* member = table->find(id, flags);
        if (member != nullptr && (members.empty() || members.back().slot != member->slot)) {
          members.push_back(*member);
        }
      }
      if (members.size() == before) {
        break;
      }
    }
    return members;
  }
};

TEST_P(EveryMember, SurvivesPlausibleArguments) {
  const TemporaryFolder folder;
  const auto object = dll_.create(*entry_.clsid);
  for (const server::Member& member : members()) {
    std::vector<Argument> arguments;
    for (const server::Parameter& parameter : member.parameters) {
      arguments.push_back(takesAddresses(member) ? Argument(0) : plausible(parameter.type, folder / L"file"));
    }
    EXPECT_EQ(S_OK, invoke(*object.get(), member, arguments)) << "member " << member.id;
  }
}

TEST_P(EveryMember, SurvivesAbsurdArguments) {
  const TemporaryFolder folder;
  std::filesystem::current_path(folder.path());
  {
    const auto object = dll_.create(*entry_.clsid);
    std::vector<Argument> values = absurdValues();
    for (const server::Member& member : members()) {
      if (takesAddresses(member)) {
        continue;
      }
      const std::size_t count = member.parameters.size();
      for (Argument& value : values) {
        for (const std::vector<Argument>& arguments :
             {std::vector<Argument>(count, value), std::vector<Argument>(count + 1, value),
              std::vector<Argument>(count, Argument::reference(*value.get()))}) {
          EXPECT_TRUE(isExpected(invoke(*object.get(), member, arguments))) << "member " << member.id;
        }
      }
    }
  }
  std::filesystem::current_path(folder.path().parent_path());
  EXPECT_EQ(S_OK, dll_.canUnloadNow()) << "an object was left behind";
}

/// Early bound, as the system calls it: every parameter is a pointer.
HRESULT callVtable(IDispatch& object, const server::Member& member, void* argument) {
  Argument pointer = Argument::of(sizeof argument == 8 ? VT_I8 : VT_I4, argument);
  const std::size_t count = member.parameters.size() + (member.result != VT_EMPTY ? 1 : 0);
  std::vector<VARTYPE> types(count, pointer->vt);
  std::vector<VARIANT*> arguments(count, pointer.get());
  Argument result;
  const HRESULT called = DispCallFunc(&object, member.slot * sizeof(void*), CC_STDCALL, VT_ERROR,
                                      static_cast<UINT>(count), types.data(), arguments.data(), result.get());
  return FAILED(called) ? called : result->scode;
}

TEST_P(EveryMember, SurvivesNullPointersAndZeroesOnTheVtable) {
  const TemporaryFolder folder;
  std::filesystem::current_path(folder.path());
  const auto object = dll_.create<IDispatch>(*entry_.clsid, *entry_.dispatchInterface);
  for (const server::Member& member : members()) {
    // Zero of any type: the number, the null text, the empty variant, no array, no picture.
    VARIANT zero = {};
    EXPECT_EQ(S_OK, callVtable(*object.get(), member, nullptr)) << "member " << member.id;
    EXPECT_EQ(S_OK, callVtable(*object.get(), member, &zero)) << "member " << member.id;
  }
  std::filesystem::current_path(folder.path().parent_path());
}

INSTANTIATE_TEST_SUITE_P(Classes, EveryMember, testing::Range(std::size_t{0}, std::size_t{9}),
                         [](const auto& parameter) {
                           const std::wstring name = server::classTable()[parameter.param].name;
                           return std::string(name.begin(), name.end());
                         });

}  // namespace

}  // namespace veltrano::tests
