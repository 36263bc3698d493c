// The Error event, with hosts that misbehave in it.

#include <gtest/gtest.h>

#include <memory>

#include "base/os/floating_point_windows.h"
#include "fake_objects.h"

namespace veltrano::tests {

namespace {

class Events : public testing::Test {
 protected:
  static void raise(_VeltranoPDF& pdf) {
    LONG wrong = 9;
    EXPECT_EQ(S_OK, pdf.put_PDFSetUnit(reinterpret_cast<::PDFUnitStr*>(&wrong)));
  }

  Dll dll_;
  ComPointer<_VeltranoPDF> pdf_ = dll_.createPdf();
};

TEST_F(Events, ReachAllSinksUntilTheyDisconnect) {
  RecordingSink failing, plain;
  failing.answer = DISP_E_EXCEPTION;
  plain.knowsEventInterface = false;
  {
    const Connection first(*pdf_.get(), failing);
    const Connection second(*pdf_.get(), plain);
    raise(*pdf_.get());
    EXPECT_EQ(S_OK, putProperty(*pdf_.get(), L"PDFSetLayoutMode", 8).status);
  }
  raise(*pdf_.get());
  const std::vector<std::wstring> expected = {L"Incorrect Unit", L"Incorrect Layout"};
  for (const RecordingSink* sink : {&failing, &plain}) {
    EXPECT_EQ(expected, sink->messages);
    EXPECT_EQ(0U, sink->references);
  }
}

TEST_F(Events, LetASinkDisconnectAllInTheEvent) {
  RecordingSink first, second;
  Connection one(*pdf_.get(), first);
  Connection two(*pdf_.get(), second);
  first.inInvoke = [&] {
    one.disconnect();
    two.disconnect();
  };
  raise(*pdf_.get());
  raise(*pdf_.get());
  EXPECT_EQ(1U, first.messages.size());
  EXPECT_LE(second.messages.size(), 1U);
}

TEST_F(Events, LetASinkReleaseTheObjectInTheEvent) {
  for (const bool lateBound : {false, true}) {
    pdf_ = dll_.createPdf();
    RecordingSink sink;
    auto connection = std::make_unique<Connection>(*pdf_.get(), sink);
    sink.inInvoke = [&] {
      connection.reset();
      pdf_ = {};
    };
    _VeltranoPDF* borrowed = pdf_.get();
    if (lateBound) {
      EXPECT_EQ(S_OK, putProperty(*borrowed, L"PDFSetUnit", 9).status);
    } else {
      raise(*borrowed);
    }
    EXPECT_EQ(1U, sink.messages.size());
    EXPECT_EQ(S_OK, dll_.canUnloadNow());
  }
}

TEST_F(Events, LetASinkCallTheObject) {
  RecordingSink sink;
  const Connection connection(*pdf_.get(), sink);
  int depth = 0;
  sink.inInvoke = [&] {
    if (++depth < 5) {
      callMethod(*pdf_.get(), L"PDFInit");
      callMethod(*pdf_.get(), L"PDFBeginDoc");
      callMethod(*pdf_.get(), L"PDFSetFont", {99, 10});
      callMethod(*pdf_.get(), L"PDFEndDoc");
    }
  };
  callMethod(*pdf_.get(), L"PDFDrawRectangle", {1, 1, 1, 1, 5});
  callMethod(*pdf_.get(), L"PDFImage", {L"none", 1, 1});
  EXPECT_GE(sink.messages.size(), 5U);
}

/// A window procedure of the host.
FloatingPointSettings inProcedure;
LRESULT CALLBACK noteArithmetic(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_USER) inProcedure = FloatingPointSettings::current();
  return DefWindowProcW(window, message, first, second);
}

// Events, objects that are asked for their value, and messages: all of it is the host's code.
TEST_F(Events, RunTheCodeOfTheHostWithItsOwnArithmetic) {
  const auto before = FloatingPointSettings::current();
  // A division by zero raises, the stack unit has single precision.
  const FloatingPointSettings unusual = {0x1D80, 0x007B};
  const TemporaryFolder folder;
  writeGreyJpeg(folder / L"i.jpg", 1, 1);
  WNDCLASSW windowClass = {};
  windowClass.lpfnWndProc = noteArithmetic;
  windowClass.lpszClassName = L"veltrano test";
  RegisterClassW(&windowClass);
  const HWND window =
      CreateWindowW(windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  ASSERT_NE(nullptr, window);
  PostMessageW(window, WM_USER, 0, 0);

  std::vector<FloatingPointSettings> seen;
  const auto note = [&] { seen.push_back(FloatingPointSettings::current()); };
  RecordingSink sink;
  sink.inInvoke = [&] {
    note();
    // A call from the event is one from the host.
    callMethod(*pdf_.get(), L"PDFBeginDoc");
    note();
  };
  const ComPointer<FakeObject> colour(new FakeObject(5));
  colour->inInvoke = note;
  const Connection connection(*pdf_.get(), sink);
  unusual.apply();
  raise(*pdf_.get());
  putProperty(*pdf_.get(), L"PDFSetTextColor", colour.get());
  callMethod(*pdf_.get(), L"PDFImage", {(folder / L"i.jpg").c_str(), 1, 1});
  note();
  before.apply();
  EXPECT_LE(4U, seen.size());
  EXPECT_EQ(std::vector<FloatingPointSettings>(seen.size(), unusual), seen);
  EXPECT_EQ(unusual, inProcedure);
  DestroyWindow(window);
}

TEST_F(Events, AreFoundByHostsThatEnumerate) {
  const auto container = as<IConnectionPointContainer>(*pdf_.get(), IID_IConnectionPointContainer);
  ASSERT_TRUE(container);
  ComPointer<IEnumConnectionPoints> points;
  ASSERT_EQ(S_OK, container->EnumConnectionPoints(points.out()));
  ComPointer<IConnectionPoint> point;
  ASSERT_EQ(S_OK, points->Next(1, point.out(), nullptr));
  IID iid = {};
  EXPECT_EQ(S_OK, point->GetConnectionInterface(&iid));
  EXPECT_EQ(DIID___VeltranoPDF, iid);
  ComPointer<IConnectionPoint> none;
  EXPECT_EQ(S_FALSE, points->Next(1, none.out(), nullptr));
  EXPECT_EQ(S_OK, points->Reset());
  EXPECT_EQ(S_FALSE, points->Skip(2));

  RecordingSink sink;
  const Connection connection(*pdf_.get(), sink);
  ComPointer<IEnumConnections> connections, copy;
  ASSERT_EQ(S_OK, point->EnumConnections(connections.out()));
  ASSERT_EQ(S_OK, connections->Clone(copy.out()));
  CONNECTDATA data = {};
  ULONG fetched = 0;
  EXPECT_EQ(S_OK, copy->Next(1, &data, &fetched));
  EXPECT_EQ(static_cast<IUnknown*>(&sink), data.pUnk);
  data.pUnk->Release();

  DWORD cookie = 1;
  EXPECT_EQ(E_POINTER, point->Advise(nullptr, &cookie));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(12345));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container->FindConnectionPoint(IID_IDispatch, none.out()));
  const auto info = as<IProvideClassInfo2>(*pdf_.get(), IID_IProvideClassInfo2);
  EXPECT_EQ(S_OK, info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &iid));
  EXPECT_EQ(DIID___VeltranoPDF, iid);
}

}  // namespace

}  // namespace veltrano::tests
