// Every member of every class, as the type library has it, called late and early bound with absurd arguments: nothing
// may crash, hang or leave a count too high.

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "host.h"
#include "server/com/class_table.h"
#include "server/com/dispatch/interface_table.h"

namespace veltrano::tests {

namespace {

using testing::AnyOf;

/// Values that no member waits for.
std::vector<Argument> absurdValues() {
  SAFEARRAYBOUND bounds[] = {{2, 1}, {3, -1}};
  std::vector<Argument> values;
  for (const double number : {-1e-300, 1e300, double{INFINITY}, double{NAN}}) values.emplace_back(number);
  for (const int number : {-1, 0, 1, INT_MIN, INT_MAX}) values.emplace_back(number);
  for (const wchar_t* text : {L"", L"text", L"12", L"#FF", L"<&>\u00e9\u4e00"}) values.emplace_back(text);
  for (const int type :
       {+VT_EMPTY, +VT_NULL, +VT_BSTR, VT_BYREF | VT_VARIANT, VT_BYREF | VT_R8, VT_ARRAY | VT_VARIANT})
    values.push_back(Argument::of(type));
  for (const Argument& other : std::initializer_list<Argument>{
           true, Argument::omitted(), std::wstring(300000, L'x').c_str(),
           Argument::of(VT_BSTR, SysAllocStringLen(L"a\0b\0", 4)), Argument::of(VT_I8, LLONG_MIN),
           Argument::of(VT_ARRAY | VT_VARIANT, SafeArrayCreate(VT_VARIANT, 2, bounds)),
           Argument::array(VT_R8, 0), Argument::array(VT_R8, 3), Argument{L"a", Argument{1}},
           static_cast<IUnknown*>(nullptr), new FakeObject(L"7")})
    values.push_back(other);
  return values;
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

TEST(EveryMember, SurvivesAbsurdArguments) {
  const TemporaryFolder folder;
  std::filesystem::current_path(folder.path());
  const Dll dll;
  ComPointer<ITypeLib> library;
  ASSERT_EQ(S_OK, LoadTypeLibEx(dllFile.c_str(), REGKIND_NONE, library.out()));
  for (const server::ClassEntry& entry : server::classTable()) {
    const auto object = dll.create<IDispatch>(*entry.clsid, *entry.dispatchInterface);
    // The table of the tested DLL's own interface, read as the dispatcher reads it.
    const auto table = server::InterfaceTable::read(entry, *library.get());
    ASSERT_TRUE(table);
    std::vector<Argument> values = absurdValues();
    unsigned slot = 7;
    const auto check = [&](const server::Member& member) {
      EXPECT_EQ(slot++, member.slot);
      // Numbers handed over as addresses cannot be checked, so they are not made up here.
      const bool takesAddresses =
          std::ranges::count(member.parameters, L"ArrayPointer", &server::Parameter::name) != 0;
      const std::size_t count = takesAddresses ? 0 : member.parameters.size();
      for (Argument& value : values) {
        for (const auto& [size, argument] :
             {std::pair(count, value), {count + 1, value}, {count, Argument::reference(*value.get())}}) {
          const std::vector<Argument> arguments(size, argument);
          const auto flags = static_cast<WORD>(member.kind);
          // A success or one of a dispatcher's refusals.
          EXPECT_THAT(callMember(*object.get(), member.id, arguments, flags).status,
                      AnyOf(S_OK, DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, DISP_E_BADPARAMCOUNT,
                            DISP_E_PARAMNOTOPTIONAL, DISP_E_MEMBERNOTFOUND))
              << "member " << member.id << " type " << argument->vt;
        }
      }
      // Zero of any type: the number, the null text, the empty variant, no array, no picture.
      VARIANT zero = {};
      EXPECT_EQ(S_OK, callVtable(*object.get(), member, nullptr)) << "member " << member.id;
      EXPECT_EQ(S_OK, callVtable(*object.get(), member, &zero)) << "member " << member.id;
    };
    for (DISPID id = 1; table->find(id, 0xF) != nullptr; ++id) {
      for (const int flags : {DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT, DISPATCH_METHOD}) {
        const server::Member* member = table->find(id, static_cast<WORD>(flags));
        if (member != nullptr && member->kind == flags) check(*member);
      }
    }
    EXPECT_TRUE(slot > 7 || entry.clsid == &CLSID_VeltranoGIS);
  }
  EXPECT_EQ(S_OK, dll.canUnloadNow()) << "an object is still counted";
  std::filesystem::current_path(folder.path().parent_path());
}

}  // namespace

}  // namespace veltrano::tests
