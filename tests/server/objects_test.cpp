// Identity and lifetime: what every object owes a host.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "fake_objects.h"
#include "server/com/automation_object.h"
#include "server/com/class_table.h"

namespace veltrano::tests {

namespace {

TEST(Objects, HaveOneIdentityAndTheRightInterfaces) {
  const Dll dll;
  EXPECT_EQ(9U, server::classTable().size());
  for (const server::ClassEntry& entry : server::classTable()) {
    EXPECT_EQ(S_OK, dll.canUnloadNow());
    const auto object = dll.create<IUnknown>(*entry.clsid, IID_IUnknown);
    ASSERT_TRUE(object);
    EXPECT_EQ(S_FALSE, dll.canUnloadNow());
    for (const IID* iid : {&IID_IUnknown, &IID_IDispatch, entry.dispatchInterface, &IID_IProvideClassInfo,
                           &IID_IProvideClassInfo2, &IID_ISupportErrorInfo, &IID_IConnectionPointContainer}) {
      const auto asked = as<IUnknown>(*object.get(), *iid);
      ASSERT_EQ(iid != &IID_IConnectionPointContainer || entry.eventInterface != nullptr, bool{asked});
      EXPECT_TRUE(!asked || object.get() == as<IUnknown>(*asked.get(), IID_IUnknown).get());
    }
    void* denied = &denied;
    EXPECT_EQ(E_NOINTERFACE, object->QueryInterface(IID_IPersist, &denied));
    EXPECT_EQ(nullptr, denied);
    EXPECT_EQ(E_POINTER, object->QueryInterface(IID_IUnknown, nullptr));
    object->AddRef();
    EXPECT_EQ(1U, object->Release());
  }
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

TEST(Objects, DescribeThemselves) {
  const Dll dll;
  for (const server::ClassEntry& entry : server::classTable()) {
    const auto object = dll.create(*entry.clsid);
    UINT count = 0;
    EXPECT_EQ(S_OK, object->GetTypeInfoCount(&count));
    EXPECT_EQ(1U, count);
    ComPointer<ITypeInfo> type;
    ASSERT_EQ(S_OK, object->GetTypeInfo(0, 0, type.out()));
    EXPECT_EQ(L"_" + std::wstring(entry.name), nameOf(*type.get()));
    EXPECT_EQ(DISP_E_BADINDEX, object->GetTypeInfo(1, 0, type.out()));
    ASSERT_EQ(S_OK, as<IProvideClassInfo2>(*object.get(), IID_IProvideClassInfo2)->GetClassInfo(type.out()));
    EXPECT_EQ(entry.name, nameOf(*type.get()));
  }
}

TEST(Objects, ComeFromFactoriesThatRefuseWhatTheyCannotMake) {
  const Dll dll;
  ComPointer<IClassFactory> factory;
  void** const out = reinterpret_cast<void**>(factory.out());
  ASSERT_EQ(S_OK, dll.classObject(CLSID_VeltranoPDF, IID_IClassFactory, out));
  RecordingSink outer;
  void* object = &outer;
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(&outer, IID_IUnknown, &object));
  EXPECT_EQ(nullptr, object);
  EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IPersist, &object));
  EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IUnknown, nullptr));
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, dll.classObject(IID_IUnknown, IID_IClassFactory, &object));
  EXPECT_EQ(E_NOINTERFACE, dll.classObject(CLSID_VeltranoPDF, IID_IPersist, &object));
  for (const BOOL lock : {TRUE, FALSE}) {
    dll.classObject(CLSID_VeltranoPDF, IID_IClassFactory, reinterpret_cast<void**>(factory.out()));
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
  ComPointer<IDispatch> owner;
  auto* const object = new Failing(server::classTable().back());
  *owner.out() = object;
  BSTR result = reinterpret_cast<BSTR>(&owner);  // what an uninitialised variable of the host holds
  EXPECT_EQ(S_OK, object->member(&result));
  EXPECT_EQ(nullptr, result);
  EXPECT_EQ(S_OK, object->member(nullptr));
}

// The system may ask at any moment whether the DLL can go, also between two objects of a busy thread.
TEST(Objects, LiveInSeveralThreadsWhileTheSystemAsksToUnload) {
  const Dll dll;
  std::atomic<int> busy = 4;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
      for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(L"cm", getProperty(*dll.createPdf().get(), L"PDFGetUnit").result.text());
        const auto mdb = dll.create(CLSID_VeltranoMDB);
        EXPECT_EQ(L"False", callMethod(*mdb.get(), L"OpenDB", {dllFile().c_str()}).result.text());
      }
      CoUninitialize();
      --busy;
    });
  }
  while (busy > 0) EXPECT_TRUE(SUCCEEDED(dll.canUnloadNow()));
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

}  // namespace

}  // namespace veltrano::tests
