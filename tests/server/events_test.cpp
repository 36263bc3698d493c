// The Error event, with hosts that misbehave in it.

#include <gtest/gtest.h>

#include "fake_objects.h"
#include "host.h"

namespace veltrano::tests {

namespace {

class Events : public testing::Test {
 protected:
  void raise(_VeltranoPDF& pdf) {
    LONG wrong = 9;
    EXPECT_EQ(S_OK, pdf.put_PDFSetUnit(reinterpret_cast<::PDFUnitStr*>(&wrong)));
  }

  Dll dll_;
  ComPointer<_VeltranoPDF> pdf_ = dll_.createPdf();
};

TEST_F(Events, ReachTypedAndPlainSinksUntilTheyDisconnect) {
  RecordingSink typed;
  RecordingSink plain;
  plain.knowsEventInterface = false;
  {
    const Connection first(*pdf_.get(), typed);
    const Connection second(*pdf_.get(), plain);
    raise(*pdf_.get());
    EXPECT_EQ(S_OK, putProperty(*pdf_.get(), L"PDFSetLayoutMode", Argument(8)).status);
  }
  raise(*pdf_.get());
  const std::vector<std::wstring> expected = {L"Incorrect Unit", L"Incorrect Layout"};
  EXPECT_EQ(expected, typed.messages);
  EXPECT_EQ(expected, plain.messages);
  EXPECT_EQ(0U, typed.references);
  EXPECT_EQ(0U, plain.references);
}

TEST_F(Events, GoOnWhenASinkFails) {
  RecordingSink failing;
  RecordingSink after;
  failing.answer = DISP_E_EXCEPTION;
  const Connection first(*pdf_.get(), failing);
  const Connection second(*pdf_.get(), after);
  raise(*pdf_.get());
  EXPECT_EQ(L"Incorrect Unit", after.last());
}

TEST_F(Events, LetASinkDisconnectAllInTheEvent) {
  RecordingSink first;
  RecordingSink second;
  Connection one(*pdf_.get(), first);
  Connection two(*pdf_.get(), second);
  first.inEvent = [&] {
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
    sink.inEvent = [&] {
      connection.reset();
      pdf_ = {};
    };
    _VeltranoPDF* borrowed = pdf_.get();
    if (lateBound) {
      EXPECT_EQ(S_OK, putProperty(*borrowed, L"PDFSetUnit", Argument(9)).status);
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
  sink.inEvent = [&] {
    if (++depth < 5) {
      callMethod(*pdf_.get(), L"PDFInit");
      callMethod(*pdf_.get(), L"PDFBeginDoc");
      callMethod(*pdf_.get(), L"PDFSetFont", {Argument(99), Argument(10)});
      callMethod(*pdf_.get(), L"PDFEndDoc");
    }
  };
  callMethod(*pdf_.get(), L"PDFDrawRectangle",
             {Argument(1), Argument(1), Argument(1), Argument(1), Argument(5)});
  callMethod(*pdf_.get(), L"PDFImage", {Argument(L"none"), Argument(1), Argument(1)});
  EXPECT_GE(sink.messages.size(), 5U);
}

/// A window of the host, which looks at the arithmetic in its procedure.
ArithmeticOfHost::Settings inProcedure;
LRESULT CALLBACK lookAtArithmetic(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_USER) {
    inProcedure = ArithmeticOfHost::now();
  }
  return DefWindowProcW(window, message, first, second);
}

// Events, objects that are asked for their value, and messages: all of it is the host's code.
TEST_F(Events, RunTheCodeOfTheHostWithItsOwnArithmetic) {
  const ArithmeticOfHost arithmetic;
  std::vector<ArithmeticOfHost::Settings> seen;
  const auto look = [&] { seen.push_back(ArithmeticOfHost::now()); };
  RecordingSink sink;
  sink.inEvent = [&] {
    look();
    // A call from the event is one from the host.
    callMethod(*pdf_.get(), L"PDFBeginDoc");
    look();
  };
  const ComPointer<FakeObject> colour(new FakeObject(Argument(5)));
  colour->inInvoke = look;
  const Connection connection(*pdf_.get(), sink);
  raise(*pdf_.get());
  putProperty(*pdf_.get(), L"PDFSetTextColor", Argument(colour.get()));
  look();
  EXPECT_LE(4U, seen.size());
  EXPECT_EQ(std::vector<ArithmeticOfHost::Settings>(seen.size(), ArithmeticOfHost::unusual), seen);

  const Folder folder;
  writeGreyJpeg(folder / L"i.jpg", 1, 1);
  WNDCLASSW windowClass = {};
  windowClass.lpfnWndProc = lookAtArithmetic;
  windowClass.lpszClassName = L"veltrano test";
  RegisterClassW(&windowClass);
  const HWND window =
      CreateWindowW(windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  ASSERT_NE(nullptr, window);
  PostMessageW(window, WM_USER, 0, 0);
  callMethod(*pdf_.get(), L"PDFImage", {Argument((folder / L"i.jpg").c_str()), Argument(1), Argument(1)});
  EXPECT_EQ(ArithmeticOfHost::unusual, inProcedure);
  DestroyWindow(window);
}

TEST_F(Events, AreFoundByHostsThatEnumerate) {
  ComPointer<IConnectionPointContainer> container;
  ASSERT_EQ(S_OK,
            pdf_->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(container.out())));
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
  ComPointer<IEnumConnections> connections;
  ASSERT_EQ(S_OK, point->EnumConnections(connections.out()));
  ComPointer<IEnumConnections> copy;
  ASSERT_EQ(S_OK, connections->Clone(copy.out()));
  CONNECTDATA data = {};
  ULONG fetched = 0;
  EXPECT_EQ(S_OK, copy->Next(1, &data, &fetched));
  EXPECT_EQ(static_cast<IUnknown*>(&sink), data.pUnk);
  data.pUnk->Release();

  EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(12345));
  DWORD cookie = 1;
  EXPECT_EQ(E_POINTER, point->Advise(nullptr, &cookie));
  ComPointer<IConnectionPoint> other;
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container->FindConnectionPoint(IID_IDispatch, other.out()));
  ComPointer<IProvideClassInfo2> info;
  ASSERT_EQ(S_OK, pdf_->QueryInterface(IID_IProvideClassInfo2, reinterpret_cast<void**>(info.out())));
  EXPECT_EQ(S_OK, info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &iid));
  EXPECT_EQ(DIID___VeltranoPDF, iid);
}

}  // namespace

}  // namespace veltrano::tests
