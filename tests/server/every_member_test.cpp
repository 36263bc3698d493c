// Calls every member of every class, late and early bound, with plausible and with absurd arguments. Nothing
// may crash, hang or leave a count behind; what comes back is a success or one of a dispatcher's refusals.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "fake_objects.h"
#include "host.h"
#include "server/classes/class_table.h"
#include "server/com/interface_table.h"

namespace veltrano::tests {

namespace {

bool isExpected(HRESULT status) {
  switch (status) {
    case S_OK:
    case DISP_E_TYPEMISMATCH:
    case DISP_E_OVERFLOW:
    case DISP_E_BADPARAMCOUNT:
    case DISP_E_PARAMNOTOPTIONAL:
    case DISP_E_MEMBERNOTFOUND:
      return true;
    default:
      return false;
  }
}

Argument multiDimensional() {
  SAFEARRAYBOUND bounds[] = {{2, 1}, {3, -1}};
  Argument argument = Argument::ofType(VT_ARRAY | VT_VARIANT);
  argument->parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  return argument;
}

/// Values that no member waits for. The folder is where files may appear.
std::vector<Argument> absurdValues() {
  std::wstring huge(300000, L'x');
  Argument embeddedZero = Argument::ofType(VT_BSTR);
  embeddedZero->bstrVal = SysAllocStringLen(L"a\0b\0", 4);
  Argument nullText = Argument::ofType(VT_BSTR);
  Argument nullReference = Argument::ofType(VT_BYREF | VT_VARIANT);
  Argument nullTyped = Argument::ofType(VT_BYREF | VT_R8);
  Argument nullArray = Argument::ofType(VT_ARRAY | VT_VARIANT);
  Argument wide = Argument::ofType(VT_I8);
  wide->llVal = std::numeric_limits<LONGLONG>::min();
  std::vector<Argument> values = {
      Argument(),
      Argument::ofType(VT_NULL),
      Argument::omitted(),
      Argument(-1),
      Argument(0),
      Argument(1),
      Argument(std::numeric_limits<int>::max()),
      Argument(std::numeric_limits<int>::min()),
      Argument(std::numeric_limits<double>::quiet_NaN()),
      Argument(std::numeric_limits<double>::infinity()),
      Argument(1e300),
      Argument(-1e-300),
      Argument(true),
      Argument(L""),
      Argument(L"text"),
      Argument(L"12"),
      Argument(L"#FF"),
      Argument(L"<&>\u00e9\u4e00"),
      Argument(huge.c_str()),
      embeddedZero,
      nullText,
      nullReference,
      nullTyped,
      nullArray,
      wide,
      multiDimensional(),
      Argument::doubles({}),
      Argument::doubles({1, 2, 3}),
      {Argument(L"a"), {Argument(1)}},
      Argument(static_cast<IUnknown*>(nullptr)),
      ComPointer<IDispatch>(new FakeObject(Argument(L"7"))).get(),
      ComPointer<IDispatch>(new FakeObject(Argument(), {Argument(1), Argument(L"x")})).get()};
  return values;
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

HRESULT invoke(IDispatch& object, const server::Member& member, std::vector<Argument> arguments) {
  return callMember(object, member.id, arguments, static_cast<WORD>(member.kind)).status;
}

/// Numbers handed over as addresses cannot be checked, so they are not made up here.
bool takesAddresses(const server::ClassEntry& entry, const server::Member& member) {
  return entry.clsid == &CLSID_VeltranoJPG && member.id >= 5 && member.id <= 7;
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
  const Folder folder;
  const auto object = dll_.create<IDispatch>(*entry_.clsid, IID_IDispatch);
  for (const server::Member& member : members()) {
    std::vector<Argument> arguments;
    for (const server::Parameter& parameter : member.parameters) {
      arguments.push_back(takesAddresses(entry_, member) ? Argument(0)
                                                         : plausible(parameter.type, folder / L"file"));
    }
    EXPECT_EQ(S_OK, invoke(*object.get(), member, arguments)) << "member " << member.id;
  }
}

TEST_P(EveryMember, SurvivesAbsurdArguments) {
  const Folder folder;
  std::filesystem::current_path(folder.path());
  {
    const auto object = dll_.create<IDispatch>(*entry_.clsid, IID_IDispatch);
    std::vector<Argument> values = absurdValues();
    for (const server::Member& member : members()) {
      if (takesAddresses(entry_, member)) {
        continue;
      }
      for (Argument& value : values) {
        const std::vector<Argument> same(member.parameters.size(), value);
        EXPECT_TRUE(isExpected(invoke(*object.get(), member, same))) << "member " << member.id;
        std::vector<Argument> references(member.parameters.size(), Argument::reference(*value.get()));
        EXPECT_TRUE(isExpected(invoke(*object.get(), member, references))) << "member " << member.id;
        std::vector<Argument> tooMany(member.parameters.size() + 1, value);
        EXPECT_TRUE(isExpected(invoke(*object.get(), member, tooMany))) << "member " << member.id;
      }
    }
  }
  std::filesystem::current_path(folder.path().parent_path().parent_path());
  EXPECT_EQ(S_OK, dll_.canUnloadNow()) << "an object was left behind";
}

/// Early bound, as the system calls it: every parameter is a pointer.
HRESULT callVtable(IDispatch& object, const server::Member& member, void* argument) {
  Argument pointer = Argument::ofType(sizeof argument == 8 ? VT_I8 : VT_I4);
  pointer->byref = argument;
  const std::size_t count = member.parameters.size() + (member.result != VT_EMPTY ? 1 : 0);
  std::vector<VARTYPE> types(count, pointer->vt);
  std::vector<VARIANT*> arguments(count, pointer.get());
  Argument result;
  const HRESULT called = DispCallFunc(&object, member.slot * sizeof(void*), CC_STDCALL, VT_ERROR,
                                      static_cast<UINT>(count), types.data(), arguments.data(), result.get());
  return FAILED(called) ? called : result->scode;
}

TEST_P(EveryMember, SurvivesNullPointersAndZeroesOnTheVtable) {
  const Folder folder;
  std::filesystem::current_path(folder.path());
  const auto object = dll_.create<IDispatch>(*entry_.clsid, *entry_.dispatchInterface);
  for (const server::Member& member : members()) {
    // Zero of any type: the number, the null text, the empty variant, no array, no picture.
    VARIANT zero = {};
    EXPECT_EQ(S_OK, callVtable(*object.get(), member, nullptr)) << "member " << member.id;
    EXPECT_EQ(S_OK, callVtable(*object.get(), member, &zero)) << "member " << member.id;
  }
  std::filesystem::current_path(folder.path().parent_path().parent_path());
}

INSTANTIATE_TEST_SUITE_P(Classes, EveryMember, testing::Range(std::size_t{0}, std::size_t{9}),
                         [](const auto& parameter) {
                           const std::wstring name = server::classTable()[parameter.param].name;
                           return std::string(name.begin(), name.end());
                         });

}  // namespace

}  // namespace veltrano::tests
