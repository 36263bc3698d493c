// Identity and lifetime: what every object owes a host.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "fake_objects.h"
#include "server/com/automation_object.h"
#include "server/com/class_table.h"

namespace veltrano::tests {

namespace {

std::wstring nameOf(ITypeInfo& type) {
  Argument name = Argument::of(VT_BSTR);
  type.GetDocumentation(MEMBERID_NIL, &name->bstrVal, nullptr, nullptr, nullptr);
  return name.text();
}

TEST(Objects, HaveOneIdentityTheRightInterfacesAndTheirTypes) {
  const Dll dll;
  EXPECT_EQ(9U, server::classTable().size());
  for (const server::ClassEntry& entry : server::classTable()) {
    EXPECT_EQ(S_OK, dll.canUnloadNow());
    const auto object = dll.create(*entry.clsid);
    ASSERT_TRUE(object);
    EXPECT_EQ(S_FALSE, dll.canUnloadNow());
    const auto identity = as<IUnknown>(*object.get(), IID_IUnknown);
    for (const IID* iid : {&IID_IDispatch, entry.dispatchInterface, &IID_IProvideClassInfo,
                           &IID_IProvideClassInfo2, &IID_ISupportErrorInfo, &IID_IConnectionPointContainer}) {
      const auto asked = as<IUnknown>(*object.get(), *iid);
      ASSERT_EQ(iid != &IID_IConnectionPointContainer || entry.eventInterface != nullptr, bool{asked});
      EXPECT_TRUE(!asked || identity.get() == as<IUnknown>(*asked.get(), IID_IUnknown).get());
    }
    void* denied = &denied;
    EXPECT_EQ(E_NOINTERFACE, object->QueryInterface(IID_IPersist, &denied));
    EXPECT_EQ(nullptr, denied);
    ComPointer<ITypeInfo> type;
    ASSERT_EQ(S_OK, object->GetTypeInfo(0, 0, type.out()));
    EXPECT_EQ(L"_" + std::wstring(entry.name), nameOf(*type.get()));
    EXPECT_EQ(DISP_E_BADINDEX, object->GetTypeInfo(1, 0, type.out()));
    ASSERT_EQ(S_OK, as<IProvideClassInfo2>(*object.get(), IID_IProvideClassInfo2)->GetClassInfo(type.out()));
    EXPECT_EQ(entry.name, nameOf(*type.get()));
  }
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

TEST(Objects, ComeFromFactoriesThatRefuseWhatTheyCannotMake) {
  const Dll dll;
  ComPointer<IClassFactory> factory, none;
  ASSERT_EQ(S_OK, dll.classObject(CLSID_VeltranoPDF, IID_IClassFactory, factory));
  const ComPointer<FakeObject> outer(new FakeObject);
  void* object = &object;
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(outer.get(), IID_IUnknown, &object));
  EXPECT_EQ(nullptr, object);
  EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IPersist, &object));
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, dll.classObject(IID_IUnknown, IID_IClassFactory, none));
  EXPECT_EQ(E_NOINTERFACE, dll.classObject(CLSID_VeltranoPDF, IID_IPersist, none));
  for (const BOOL lock : {TRUE, FALSE}) {
    dll.classObject(CLSID_VeltranoPDF, IID_IClassFactory, factory);
    factory->LockServer(lock);
    factory = {};
    EXPECT_EQ(lock ? S_FALSE : S_OK, dll.canUnloadNow());
  }
}

/// A member that runs out of memory.
class Failing final : public server::AutomationObject<_VeltranoGIS> {
 public:
  using AutomationObject::AutomationObject;
  HRESULT member(BSTR* result) {
    return run("Failing", result, [] { throw std::bad_alloc(); });
  }
};

TEST(Objects, AnswerEmptyWhenTheyFail) {
  auto* const object = new Failing(server::classTable().back());
  BSTR result = reinterpret_cast<BSTR>(&result);  // what an uninitialised variable of the host holds
  EXPECT_EQ(S_OK, object->member(&result));
  EXPECT_EQ(nullptr, result);
  object->Release();
}

// The system may ask at any moment whether the DLL can go, also between two objects of a busy thread.
TEST(Objects, LiveInSeveralThreadsWhileTheSystemAsksToUnload) {
  const Dll dll;
  std::atomic<int> busy = 4;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(L"cm", getProperty(*dll.createPdf().get(), L"PDFGetUnit").result.text());
        const auto mdb = dll.create(CLSID_VeltranoMDB);
        EXPECT_EQ(L"False", callMethod(*mdb.get(), L"OpenDB", {dllFile().c_str()}).result.text());
      }
      --busy;
    });
  }
  while (busy > 0) EXPECT_TRUE(SUCCEEDED(dll.canUnloadNow()));
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

}  // namespace

}  // namespace veltrano::tests
