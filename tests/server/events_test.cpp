// The Error event, with hosts that misbehave in it.

#include <gtest/gtest.h>

#include "base/os/floating_point_windows.h"
#include "fake_objects.h"

namespace veltrano::tests {

namespace {

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
  EXPECT_EQ(S_OK, putProperty(*pdf_.get(), L"PDFSetLayoutMode", 8).status);
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
      EXPECT_EQ(S_OK, putProperty(*borrowed, L"PDFSetUnit", 9).status);
    } else {
      raise();
    }
    EXPECT_EQ(4U, first->messages.size());
    EXPECT_EQ(S_OK, dll_.canUnloadNow());
  }
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
  WNDCLASSW windowClass = {};
  windowClass.lpfnWndProc = noteArithmetic;
  windowClass.lpszClassName = L"veltrano test";
  RegisterClassW(&windowClass);
  const HWND window =
      CreateWindowW(windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  PostMessageW(window, WM_USER, 0, 0);

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
  callMethod(*pdf_.get(), L"PDFImage", {photoFile().c_str(), 1, 1});
  note();
  before.apply();
  EXPECT_LE(4U, seen.size());
  EXPECT_EQ(std::vector<FloatingPointSettings>(seen.size(), unusual), seen);
  EXPECT_EQ(unusual, inProcedure);
  DestroyWindow(window);
}

TEST_F(Events, AreFoundByHostsThatEnumerate) {
  const Connection connection(*pdf_.get());
  const auto container = as<IConnectionPointContainer>(*pdf_.get(), IID_IConnectionPointContainer);
  ComPointer<IEnumConnectionPoints> points;
  ComPointer<IConnectionPoint> point, none;
  ASSERT_EQ(S_OK, container->EnumConnectionPoints(points.out()));
  ASSERT_EQ(S_OK, points->Next(1, point.out(), nullptr));
  EXPECT_EQ(S_FALSE, points->Next(1, none.out(), nullptr));
  IID iid = {}, source = {};
  point->GetConnectionInterface(&iid);
  as<IProvideClassInfo2>(*pdf_.get(), IID_IProvideClassInfo2)
      ->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source);
  EXPECT_TRUE(iid == DIID___VeltranoPDF && source == DIID___VeltranoPDF);
  DWORD cookie = 1;
  EXPECT_EQ(E_POINTER, point->Advise(nullptr, &cookie));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(12345));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container->FindConnectionPoint(IID_IDispatch, none.out()));
}

}  // namespace

}  // namespace veltrano::tests
