// Calls every member of every class, late and early bound, with absurd arguments. Nothing may crash, hang or
// leave a count behind; what comes back is a success or one of a dispatcher's refusals.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "fake_objects.h"
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
  return std::ranges::count(expected, status) != 0;
}

/// Values that no member waits for.
std::vector<Argument> absurdValues() {
  SAFEARRAYBOUND bounds[] = {{2, 1}, {3, -1}};
  std::vector<Argument> values;
  for (const double number : {-1e-300, 1e300, double{INFINITY}, double{NAN}}) values.emplace_back(number);
  for (const int number : {-1, 0, 1, INT_MIN, INT_MAX}) values.emplace_back(number);
  for (const wchar_t* text : {L"", L"text", L"12", L"#FF", L"<&>\u00e9\u4e00"}) values.emplace_back(text);
  for (const int type : std::initializer_list<int>{VT_EMPTY, VT_NULL, VT_BSTR, VT_BYREF | VT_VARIANT,
                                                   VT_BYREF | VT_R8, VT_ARRAY | VT_VARIANT})
    values.push_back(Argument::of(type));
  for (const Argument& other : std::initializer_list<Argument>{
           true, Argument::omitted(), std::wstring(300000, L'x').c_str(),
           Argument::of(VT_BSTR, SysAllocStringLen(L"a\0b\0", 4)), Argument::of(VT_I8, LLONG_MIN),
           Argument::of(VT_ARRAY | VT_VARIANT, SafeArrayCreate(VT_VARIANT, 2, bounds)), Argument::doubles({}),
           Argument::doubles({1, 2, 3}), Argument{L"a", Argument{1}}, static_cast<IUnknown*>(nullptr),
           new FakeObject(L"7"), new FakeObject(Argument(), {1, L"x"})})
    values.push_back(other);
  return values;
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
  void SetUp() override { std::filesystem::current_path(folder_.path()); }
  void TearDown() override { std::filesystem::current_path(folder_.path().parent_path()); }

  const server::ClassEntry& entry_ = server::classTable()[GetParam()];
  Dll dll_;
  TemporaryFolder folder_;
  /// The table of the tested DLL's own interface, read as the dispatcher reads it.
  std::vector<server::Member> members() {
    std::vector<server::Member> members;
    const auto table = server::InterfaceTable::read(entry_, *dll_.typeLibrary().get());
    for (DISPID id = 1; table != nullptr; ++id) {
      const std::size_t before = members.size();
      for (const int flags : {DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT, DISPATCH_METHOD}) {
        const server::Member* member = table->find(id, static_cast<WORD>(flags));
        if (member != nullptr && (members.empty() || members.back().slot != member->slot))
          members.push_back(*member);
      }
      if (members.size() == before) break;
    }
    return members;
  }
};

TEST_P(EveryMember, SurvivesAbsurdArguments) {
  {
    const auto object = dll_.create(*entry_.clsid);
    std::vector<Argument> values = absurdValues();
    for (const server::Member& member : members()) {
      if (takesAddresses(member)) continue;
      const std::size_t count = member.parameters.size();
      for (Argument& value : values) {
        for (const auto& [size, argument] :
             {std::pair(count, value), {count + 1, value}, {count, Argument::reference(*value.get())}})
          EXPECT_TRUE(isExpected(invoke(*object.get(), member, std::vector<Argument>(size, argument))))
              << "member " << member.id;
      }
    }
  }
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
  const auto object = dll_.create<IDispatch>(*entry_.clsid, *entry_.dispatchInterface);
  for (const server::Member& member : members()) {
    // Zero of any type: the number, the null text, the empty variant, no array, no picture.
    VARIANT zero = {};
    EXPECT_EQ(S_OK, callVtable(*object.get(), member, nullptr)) << "member " << member.id;
    EXPECT_EQ(S_OK, callVtable(*object.get(), member, &zero)) << "member " << member.id;
  }
}

INSTANTIATE_TEST_SUITE_P(Classes, EveryMember, testing::Range(std::size_t{0}, std::size_t{9}),
                         [](const auto& parameter) {
                           const std::wstring name = server::classTable()[parameter.param].name;
                           return std::string(name.begin(), name.end());
                         });

}  // namespace

}  // namespace veltrano::tests
