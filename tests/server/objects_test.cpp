// Identity and lifetime: what every object owes a host.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "fake_objects.h"
#include "host.h"
#include "server/classes/class_table.h"
#include "server/com/automation_object.h"

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
    const IID* offered[] = {&IID_IUnknown,          &IID_IDispatch,          entry.dispatchInterface,
                            &IID_IProvideClassInfo, &IID_IProvideClassInfo2, &IID_ISupportErrorInfo};
    for (const IID* iid : offered) {
      ComPointer<IUnknown> asked;
      ComPointer<IUnknown> identity;
      ASSERT_EQ(S_OK, object->QueryInterface(*iid, reinterpret_cast<void**>(asked.out())));
      asked->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(identity.out()));
      EXPECT_EQ(object.get(), identity.get());
    }
    void* denied = &denied;
    EXPECT_EQ(E_NOINTERFACE, object->QueryInterface(IID_IPersist, &denied));
    EXPECT_EQ(nullptr, denied);
    EXPECT_EQ(E_POINTER, object->QueryInterface(IID_IUnknown, nullptr));
    ComPointer<IUnknown> container;
    EXPECT_EQ(
        entry.eventInterface != nullptr ? S_OK : E_NOINTERFACE,
        object->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(container.out())));
    container = {};
    object->AddRef();
    EXPECT_EQ(1U, object->Release());
  }
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

TEST(Objects, DescribeThemselves) {
  const Dll dll;
  for (const server::ClassEntry& entry : server::classTable()) {
    const auto object = dll.create<IDispatch>(*entry.clsid, IID_IDispatch);
    UINT count = 0;
    EXPECT_EQ(S_OK, object->GetTypeInfoCount(&count));
    EXPECT_EQ(1U, count);
    ComPointer<ITypeInfo> type;
    ASSERT_EQ(S_OK, object->GetTypeInfo(0, 0, type.out()));
    Text name;
    type->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
    EXPECT_EQ(L"_" + std::wstring(entry.name), name.view());
    EXPECT_EQ(DISP_E_BADINDEX, object->GetTypeInfo(1, 0, type.out()));
    ComPointer<IProvideClassInfo2> info;
    object->QueryInterface(IID_IProvideClassInfo2, reinterpret_cast<void**>(info.out()));
    ASSERT_EQ(S_OK, info->GetClassInfo(type.out()));
    Text className;
    type->GetDocumentation(MEMBERID_NIL, &className, nullptr, nullptr, nullptr);
    EXPECT_EQ(entry.name, className.view());
  }
}

TEST(Objects, RefuseAggregationAndUnknownClasses) {
  const Dll dll;
  ComPointer<IClassFactory> factory;
  ASSERT_EQ(S_OK,
            dll.classObject(CLSID_VeltranoPDF, IID_IClassFactory, reinterpret_cast<void**>(factory.out())));
  RecordingSink outer;
  void* object = &outer;
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(&outer, IID_IUnknown, &object));
  EXPECT_EQ(nullptr, object);
  EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IPersist, &object));
  EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IUnknown, nullptr));
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, dll.classObject(IID_IUnknown, IID_IClassFactory, &object));
  EXPECT_EQ(E_NOINTERFACE, dll.classObject(CLSID_VeltranoPDF, IID_IPersist, &object));
  factory->LockServer(TRUE);
  factory = {};
  EXPECT_EQ(S_FALSE, dll.canUnloadNow());
  dll.classObject(CLSID_VeltranoPDF, IID_IClassFactory, reinterpret_cast<void**>(factory.out()));
  factory->LockServer(FALSE);
  factory = {};
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

/// A member for which the memory is not enough.
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
TEST(Objects, OpenDatabasesWhileTheSystemAsksToUnload) {
  const Dll dll;
  std::atomic<bool> stop = false;
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&] {
      while (!stop) {
        EXPECT_TRUE(SUCCEEDED(dll.canUnloadNow()));
      }
    });
  }
  const ULONGLONG start = GetTickCount64();
  while (GetTickCount64() - start < 2000) {
    const auto mdb = dll.create<IDispatch>(CLSID_VeltranoMDB, IID_IDispatch);
    EXPECT_EQ(L"False", callMethod(*mdb.get(), L"OpenDB", {Argument(dllFile().c_str())}).result.text());
  }
  stop = true;
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST(Objects, LiveInSeveralThreadsAtOnce) {
  const Dll dll;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
      for (int i = 0; i < 200; ++i) {
        const auto pdf = dll.createPdf();
        EXPECT_EQ(L"cm", getProperty(*pdf.get(), L"PDFGetUnit").result.text());
      }
      CoUninitialize();
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

}  // namespace

}  // namespace veltrano::tests
