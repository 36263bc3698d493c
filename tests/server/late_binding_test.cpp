// Late binding as script hosts do it: variables, literals, omitted and named arguments, and values of the wrong kind.

#include <gmock/gmock.h>

#include <cmath>

#include "host.h"

namespace veltrano::tests {

namespace {

using testing::AllOf;
using testing::HasSubstr;

/// How a member sees values, and values of all kinds that it sees so.
using Coercions = std::vector<std::pair<std::wstring, std::vector<Argument>>>;

class LateBinding : public testing::Test {
 protected:
  Dll dll_;
  TemporaryFolder folder_;
  ComPointer<_VeltranoPDF> pdf_ = dll_.createPdf();
  ComPointer<IDispatch> ini_ = dll_.create(CLSID_VeltranoINI);
  ComPointer<_VeltranoKML> kml_ = dll_.create<_VeltranoKML>(CLSID_VeltranoKML, IID__VeltranoKML);

  /// What the member answers to `before` and the value.
  static void expect(const Coercions& rows, IDispatch& object, const wchar_t* member,
                     std::vector<Argument> before) {
    before.emplace_back();
    for (const auto& [arrives, given] : rows) {
      for (const Argument& value : given) {
        before.back() = value;
        const Outcome outcome = callMethod(object, member, before);
        EXPECT_EQ(arrives,
                  outcome.status == S_OK ? outcome.result.text() : L"error " + std::to_wstring(outcome.wrong))
            << "type " << value->vt << ": " << value.text();
      }
    }
  }
  /// What one call writes into a KML file.
  std::string kml(const wchar_t* member, const std::vector<Argument>& arguments) {
    const std::filesystem::path file = folder_ / L"k.kml";
    callMethod(*kml_.get(), L"CreateKML", {file.c_str(), Argument()});
    const HRESULT status = callMethod(*kml_.get(), member, arguments).status;
    callMethod(*kml_.get(), L"CloseKML");
    return FAILED(status) ? "refused" : readFile(file);
  }
  std::wstring property(const wchar_t* name) { return getProperty(*pdf_.get(), name); }
  /// The result of a call of the PDF class alone.
  HRESULT pdf(const wchar_t* member, const std::vector<Argument>& arguments = {},
              const std::vector<const wchar_t*>& names = {}) {
    return callMethod(*pdf_.get(), member, arguments, names).status;
  }
};

TEST_F(LateBinding, CoercesEveryKindToANumberOrAText) {
  Argument seven = Argument::of(VT_I2, SHORT{7});
  // A script's procedure hands on what it was handed.
  Argument handedOn = Argument::reference(*seven.get());
  // A host's mistake: the reference of a variable to itself.
  VARIANT circle = *handedOn.get();
  circle.pvarVal = &circle;
  const Coercions numbers = {
      {L"0,0,3\r\n", {3}},
      {L"0,0,-1\r\n", {true}},
      {L"0,0,12\r\n", {L"12"}},
      {L"0,0,0\r\n", {Argument()}},
      {L"0,0,2.5\r\n", {2.5, Argument::of(VT_DATE, 2.5)}},
      {L"0,0,7\r\n",
       {Argument::reference(*seven.get()), Argument::of(VT_BYREF | VT_I2, &seven->iVal),
        Argument::reference(*handedOn.get())}},
      {L"error 0",
       {Argument::reference(circle), L"no number", Argument::of(VT_NULL), Argument{1, 2},
        static_cast<IUnknown*>(nullptr)}}};
  expect(numbers, *kml_.get(), L"CreatePathString", {0, 0});
  EXPECT_EQ(VT_I2, seven->vt) << "a variable that the member left alone must keep its type";

  const Argument bytes = Argument::array(VT_UI1, 2);
  std::memcpy(bytes->parray->pvData, "a\xE9", 2);
  const Coercions texts = {{L"k=5", {5}},
                           {L"k=True", {true}},
                           {L"k=", {Argument()}},
                           {L"k=a\u00e9", {bytes}},
                           {L"k=value", {new FakeObject(L"value")}},
                           {L"error 0", {Argument::of(VT_NULL)}}};
  expect(texts, *ini_.get(), L"ChangeValue", {L"k=0", L"k"});
}

TEST_F(LateBinding, GivesDefaultsAndChecksArguments) {
  const auto margins = [this] {
    return property(L"PDFGetTopMargin") + L" " + property(L"PDFGetRightMargin") + L" " +
           property(L"PDFGetBottomMargin");
  };
  EXPECT_EQ(S_OK, pdf(L"PDFSetMargins", {2, 3}));
  EXPECT_EQ(L"3 2 3", margins());
  // The placeholder of an argument left out in the middle, and the default as it is documented.
  EXPECT_EQ(S_OK, pdf(L"PDFSetMargins", {4, 5, Argument::omitted(), 65535}));
  EXPECT_EQ(L"5 4 5", margins());
  EXPECT_EQ(S_OK, pdf(L"PDFSetMargins", {1, 2, 9}, {L"IN_TOP", L"in_bottom"}));
  EXPECT_EQ(L"2 1 9", margins());
  EXPECT_EQ(DISP_E_UNKNOWNNAME, pdf(L"PDFSetMargins", {1}, {L"nothing"}));
  EXPECT_EQ(DISP_E_PARAMNOTFOUND, pdf(L"PDFSetMargins", {1, 2, 3}, {L"in_left"}));
  EXPECT_EQ(DISP_E_OVERFLOW, pdf(L"PDFSetMargins", {70000, 1}));
  EXPECT_EQ(DISP_E_OVERFLOW, pdf(L"PDFSetMargins", {std::nan(""), 1}));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, pdf(L"PDFSetMargins", {1}));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, pdf(L"PDFBeginDoc", {0}));
  EXPECT_EQ(DISP_E_PARAMNOTOPTIONAL, pdf(L"PDFSetMargins", {Argument::omitted(), 1}));
  // Counted from the last one, as Invoke counts.
  EXPECT_EQ(2U, callMethod(*kml_.get(), L"CreatePathString", {L"x", 0, 0}).wrong);
}

// An early-bound host passes null for a text that it leaves out: an empty element would not be valid KML.
TEST_F(LateBinding, TellsEmptyTextsFromOmittedOnes) {
  const auto overlay = [&](const Argument& visibility) {
    return kml(L"CreateCameraOverlay", {L"", 0, 0, 0, L"", visibility});
  };
  Argument null = Argument::of(VT_BSTR);
  EXPECT_THAT(overlay(Argument::omitted()),
              AllOf(HasSubstr("<visibility>0<"), HasSubstr("<shape>rectangle<")));
  for (const Argument& empty :
       {Argument(L""), null, Argument::reference(*null.get()),
        Argument::of(VT_BYREF | VT_BSTR, &null->bstrVal), Argument(), Argument::of(VT_NULL)})
    EXPECT_THAT(overlay(empty), HasSubstr("<visibility><")) << "type " << empty->vt;
  Argument file((folder_ / L"v.kml").c_str()), text(L"");
  VARIANT nothing = {};
  double number = 1;
  kml_->CreateKML(&file->bstrVal, &nothing, nullptr, nullptr);
  kml_->CreateCameraOverlay(&text->bstrVal, &number, &number, &number, &text->bstrVal, &null->bstrVal,
                            &text->bstrVal);
  kml_->CloseKML();
  EXPECT_THAT(readFile(folder_ / L"v.kml"), AllOf(HasSubstr("<visibility>0<"), HasSubstr("<shape><")));
}

TEST_F(LateBinding, TakesMinusOneAndTheWordTrueForATrueFlag) {
  SHORT number = -32768;
  const Coercions flags = {{L"true", {true, -1, -1.0, Argument::of(VT_I8, LONGLONG{-1}), L"tRUE", L"-1"}},
                           {L"false",
                            {false, 1, Argument::of(VT_BYREF | VT_I2, &number), 40000, 65535, -0.6, 1e300,
                             std::nan(""), Argument(), L"FALSE", L"1"}},
                           {L"refused", {L"yes?", L""}}};
  for (const auto& [arrives, given] : flags) {
    for (const Argument& value : given) {
      const std::string file = kml(L"CreatePathFromString", {1, L"ff", L"1,2,3\r\n", L"n", value});
      const bool extruded = file.find("<extrude>") != std::string::npos;
      EXPECT_EQ(arrives, file == "refused" ? L"refused" : extruded ? L"true" : L"false") << value.text();
    }
  }
}

TEST_F(LateBinding, FindsMembersInAnyCaseAndOnlyThose) {
  EXPECT_EQ(DISP_E_UNKNOWNNAME, pdf(L"PDFTitel"));
  DISPPARAMS none = {};
  const auto invoke = [&](DISPID member, REFIID iid, DISPPARAMS* arguments) {
    return pdf_->Invoke(member, iid, 0, DISPATCH_METHOD, arguments, nullptr, nullptr, nullptr);
  };
  for (const DISPID wrong : {DISPID{DISPID_VALUE}, DISPID{-4}, DISPID{80}, DISPID{0x7FFFFFFF}})
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(wrong, IID_NULL, &none));
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, invoke(1, IID_IUnknown, &none));
  EXPECT_EQ(E_INVALIDARG, invoke(47, IID_NULL, nullptr));
  // Set to an object; only set; read like properties, but with a parameter or without a result.
  const std::vector<Argument> title(1, L"t");
  EXPECT_EQ(S_OK, callMethod(*pdf_.get(), L"pdfTITLE", title, {}, DISPATCH_PROPERTYPUTREF).status);
  for (const wchar_t* member : {L"PDFTitle", L"PDFGetStringWidth", L"PDFEndPage"})
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, callMethod(*pdf_.get(), member, {}, {}, DISPATCH_PROPERTYGET).status);
}

TEST_F(LateBinding, LetsMembersSeeTheKindOfZoomAndLinks) {
  const Connection connection(*pdf_.get());
  const auto refuses = [&](const wchar_t* member, const std::vector<Argument>& arguments, WORD flags) {
    EXPECT_EQ(S_OK, callMethod(*pdf_.get(), member, arguments, {}, flags).status);
    return !std::exchange(connection->messages, {}).empty();
  };
  EXPECT_TRUE(refuses(L"PDFSetZoomMode", std::vector<Argument>(1, L"2"), DISPATCH_PROPERTYPUT));
  EXPECT_FALSE(refuses(L"PDFSetZoomMode", std::vector<Argument>(1, 75), DISPATCH_PROPERTYPUT));
  EXPECT_EQ(L"75", property(L"PDFGetZoomMode"));
  for (const Argument& link : {Argument(5), Argument(new FakeObject(L"http://x")), Argument(L"http://x"),
                               Argument(), Argument::omitted()})
    EXPECT_EQ(link->vt == VT_I4 || link->vt == VT_UNKNOWN,
              refuses(L"PDFDrawRectangle", {1, 1, 1, 1, link}, DISPATCH_METHOD));
}

TEST_F(LateBinding, WritesResultsBackToTheVariablesOfTheHost) {
  putProperty(*pdf_.get(), L"PDFSetUnit", 0);
  pdf(L"PDFBeginDoc");
  for (const int type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT, VT_I8, VT_UI8, VT_R4,
                         VT_R8, VT_CY, VT_DATE, VT_DECIMAL, VT_BSTR, VT_BOOL}) {
    Argument typed;
    VariantChangeType(typed.get(), Argument(0).get(), 0, static_cast<VARTYPE>(type));
    void* const target = type == VT_DECIMAL ? static_cast<void*>(&typed->decVal) : &typed->llVal;
    EXPECT_EQ(S_OK, pdf(L"PDFImage", {photo.c_str(), 1, 1, Argument::of(VT_BYREF | type, target), 20}));
    typed->vt = static_cast<VARTYPE>(type);
    Argument number;
    EXPECT_EQ(S_OK, VariantChangeType(number.get(), typed.get(), 0, VT_R8));
    EXPECT_EQ(type == VT_BOOL ? -1 : 30, number->dblVal) << "type " << type;
  }
}

}  // namespace

}  // namespace veltrano::tests
