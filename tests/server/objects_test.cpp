// Identity, lifetime and the Error event: what every object owes a host, also to one that misbehaves in the event.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "base/os/floating_point_windows.h"
#include "host.h"
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
        EXPECT_EQ(L"cm", getProperty(*dll.createPdf().get(), L"PDFGetUnit"));
        const auto mdb = dll.create(CLSID_VeltranoMDB);
        EXPECT_EQ(L"False", callMethod(*mdb.get(), L"OpenDB", {dllFile.c_str()}).result.text());
      }
      --busy;
    });
  }
  while (busy > 0) EXPECT_TRUE(SUCCEEDED(dll.canUnloadNow()));
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

class Events : public testing::Test {
 protected:
  void raise() {
    LONG wrong = 9;
    EXPECT_EQ(S_OK, pdf_->put_PDFSetUnit(reinterpret_cast<::PDFUnitStr*>(&wrong)));
  }

  Dll dll_;
  ComPointer<_VeltranoPDF> pdf_ = dll_.createPdf();
};

TEST_F(Events, ReachAllSinksUntilTheyDisconnect) {
  Connection failing(*pdf_.get()), plain(*pdf_.get(), false);
  failing->answer = DISP_E_EXCEPTION;
  raise();
  EXPECT_EQ(S_OK, putProperty(*pdf_.get(), L"PDFSetLayoutMode", 8));
  failing.disconnect();
  plain.disconnect();
  raise();
  for (Connection* connection : {&failing, &plain}) {
    EXPECT_EQ((std::vector<std::wstring>{L"Incorrect Unit", L"Incorrect Layout"}), (*connection)->messages);
    EXPECT_EQ(1U, (*connection)->references);
  }
}

// A handler may call the object, which raises the next event, disconnect any sink, and let the object go.
TEST_F(Events, LetASinkDoWhatItLikes) {
  for (const bool lateBound : {false, true}) {
    pdf_ = dll_.createPdf();
    Connection first(*pdf_.get()), second(*pdf_.get());
    first->inInvoke = [&] {
      if (first->messages.size() < 4) {
        callMethod(*pdf_.get(), L"PDFBeginDoc");
        callMethod(*pdf_.get(), L"PDFSetFont", {99, 10});
        return;
      }
      first.disconnect();
      second.disconnect();
      pdf_ = {};
    };
    _VeltranoPDF* const borrowed = pdf_.get();
    if (lateBound) {
      EXPECT_EQ(S_OK, putProperty(*borrowed, L"PDFSetUnit", 9));
    } else {
      raise();
    }
    EXPECT_EQ(4U, first->messages.size());
    EXPECT_EQ(S_OK, dll_.canUnloadNow());
  }
}

/// When a timer of the host ran out.
FloatingPointSettings inProcedure;
void CALLBACK noteArithmetic(HWND, UINT, UINT_PTR, DWORD) {
  inProcedure = FloatingPointSettings::current();
}

// Events, objects that are asked for their value, and messages: all of it is the host's code.
TEST_F(Events, RunTheCodeOfTheHostWithItsOwnArithmetic) {
  const auto before = FloatingPointSettings::current();
  // A division by zero raises, the stack unit has single precision.
  const FloatingPointSettings unusual = {0x1D80, 0x007B};
  const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, noteArithmetic);
  Sleep(5 * USER_TIMER_MINIMUM);
  std::vector<FloatingPointSettings> seen;
  const auto note = [&] { seen.push_back(FloatingPointSettings::current()); };
  const Connection connection(*pdf_.get());
  connection->inInvoke = [&] {
    note();
    // A call from the event is one from the host.
    callMethod(*pdf_.get(), L"PDFBeginDoc");
    note();
  };
  const ComPointer<FakeObject> colour(new FakeObject(5));
  colour->inInvoke = note;
  unusual.apply();
  raise();
  putProperty(*pdf_.get(), L"PDFSetTextColor", colour.get());
  callMethod(*pdf_.get(), L"PDFImage", {photo.c_str(), 1, 1});
  note();
  before.apply();
  EXPECT_LE(4U, seen.size());
  EXPECT_EQ(std::vector<FloatingPointSettings>(seen.size(), unusual), seen);
  EXPECT_EQ(unusual, inProcedure);
  KillTimer(nullptr, timer);
}

TEST_F(Events, AreFoundByHostsThatEnumerate) {
  const auto container = as<IConnectionPointContainer>(*pdf_.get(), IID_IConnectionPointContainer);
  const auto info = as<IProvideClassInfo2>(*pdf_.get(), IID_IProvideClassInfo2);
  ComPointer<IEnumConnectionPoints> points;
  ComPointer<IConnectionPoint> point, none;
  ASSERT_EQ(S_OK, container->EnumConnectionPoints(points.out()));
  ASSERT_EQ(S_OK, points->Next(1, point.out(), nullptr));
  EXPECT_EQ(S_FALSE, points->Next(1, none.out(), nullptr));
  IID iid = {}, source = {};
  point->GetConnectionInterface(&iid);
  info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source);
  EXPECT_TRUE(iid == DIID___VeltranoPDF && source == DIID___VeltranoPDF);
  EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(12345));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container->FindConnectionPoint(IID_IDispatch, none.out()));
}

}  // namespace

}  // namespace veltrano::tests
