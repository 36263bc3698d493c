// Late binding as script hosts do it: variables, literals, omitted and named arguments, and values of the wrong kind.

#include <gtest/gtest.h>

#include <cmath>
#include <span>

#include "fake_objects.h"

namespace veltrano::tests {

namespace {

/// How a member sees values, and values of all kinds that it sees so.
using Coercions = std::pair<const wchar_t*, std::vector<Argument>>;

class LateBinding : public testing::Test {
 protected:
  Dll dll_;
  TemporaryFolder folder_;
  ComPointer<_VeltranoPDF> pdf_ = dll_.createPdf();
  ComPointer<IDispatch> ini_ = dll_.create(CLSID_VeltranoINI);
  ComPointer<_VeltranoKML> kml_ = dll_.create<_VeltranoKML>(CLSID_VeltranoKML, IID__VeltranoKML);

  static std::wstring told(const Outcome& outcome) {
    return outcome.status == S_OK ? outcome.result.text() : L"error " + std::to_wstring(outcome.wrong);
  }
  template <class Seen>
  static void expect(std::span<const Coercions> rows, Seen seen) {
    for (const auto& [arrives, given] : rows)
      for (const Argument& value : given)
        EXPECT_EQ(arrives, std::wstring(seen(value))) << "type " << value->vt << ": " << value.text();
  }
  /// What one call writes between the header of a KML file and its end. "refused" if it is.
  std::string kml(const wchar_t* member, const std::vector<Argument>& arguments) {
    const std::filesystem::path file = folder_ / L"k.kml";
    callMethod(*kml_.get(), L"CreateKML", {file.c_str(), Argument()});
    const HRESULT status = callMethod(*kml_.get(), member, arguments).status;
    callMethod(*kml_.get(), L"CloseKML");
    return FAILED(status) ? "refused" : readFile(file);
  }
  std::wstring property(const wchar_t* name) { return getProperty(*pdf_.get(), name).result.text(); }
  /// The margins as they are after a call that sets them: top, right and bottom.
  std::wstring margins(const std::vector<Argument>& arguments,
                       const std::vector<const wchar_t*>& names = {}) {
    EXPECT_EQ(S_OK, pdf(L"PDFSetMargins", arguments, names));
    return property(L"PDFGetTopMargin") + L" " + property(L"PDFGetRightMargin") + L" " +
           property(L"PDFGetBottomMargin");
  }
  /// The result of a call of the PDF class alone.
  HRESULT pdf(const wchar_t* member, const std::vector<Argument>& arguments = {},
              const std::vector<const wchar_t*>& names = {}) {
    return callMethod(*pdf_.get(), member, arguments, names).status;
  }
};

TEST_F(LateBinding, CoercesEveryKindToANumber) {
  Argument seven = Argument::of(VT_I2, SHORT{7});
  // A script's procedure hands on what it was handed.
  Argument handedOn = Argument::reference(*seven.get());
  // A host's mistake: the reference of a variable to itself.
  VARIANT circle = *handedOn.get();
  circle.pvarVal = &circle;
  const Coercions coercions[] = {
      {L"0,0,3\r\n", {3}},
      {L"0,0,0.5\r\n", {0.5}},
      {L"0,0,-1\r\n", {true}},
      {L"0,0,12\r\n", {L"12"}},
      {L"0,0,0\r\n", {Argument()}},
      {L"0,0,2.5\r\n", {Argument::of(VT_DATE, 2.5)}},
      {L"0,0,1.5\r\n", {Argument::of(VT_CY, LONGLONG{15000})}},
      {L"0,0,7\r\n",
       {Argument::reference(*seven.get()), Argument::of(VT_BYREF | VT_I2, &seven->iVal),
        Argument::reference(*handedOn.get())}},
      {L"error 0",
       {Argument::reference(circle), L"no number", Argument::of(VT_NULL), Argument{1, 2},
        static_cast<IUnknown*>(nullptr)}}};
  expect(coercions, [this](const Argument& value) {
    return told(callMethod(*kml_.get(), L"CreatePathString", {0, 0, value}));
  });
  EXPECT_EQ(VT_I2, seven->vt) << "a variable that the member left alone must keep its type";
}

TEST_F(LateBinding, CoercesEveryKindToAText) {
  SAFEARRAY* bytes = SafeArrayCreateVector(VT_UI1, 0, 2);
  std::memcpy(bytes->pvData, "a\xE9", 2);
  const Coercions coercions[] = {{L"k=5", {5}},
                                 {L"k=True", {true}},
                                 {L"k=", {Argument()}},
                                 {L"k=a\u00e9", {Argument::of(VT_ARRAY | VT_UI1, bytes)}},
                                 {L"k=value", {new FakeObject(L"value")}},
                                 {L"error 0", {Argument::of(VT_NULL)}}};
  expect(coercions, [this](const Argument& value) {
    return told(callMethod(*ini_.get(), L"ChangeValue", {L"k=0", L"k", value}));
  });
}

TEST_F(LateBinding, ChecksArguments) {
  // Counted from the last one, as Invoke counts.
  const Outcome first = callMethod(*kml_.get(), L"CreatePathString", {L"x", 0, 0});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, first.status);
  EXPECT_EQ(2U, first.wrong);
  EXPECT_EQ(DISP_E_OVERFLOW, pdf(L"PDFSetMargins", {70000, 1}));
  EXPECT_EQ(DISP_E_OVERFLOW, pdf(L"PDFSetMargins", {std::nan(""), 1}));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, callMethod(*kml_.get(), L"CreatePathString", {0, 0}).status);
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, pdf(L"PDFBeginDoc", {0}));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, pdf(L"PDFSetMargins"));
  EXPECT_EQ(DISP_E_PARAMNOTOPTIONAL, pdf(L"PDFSetMargins", {Argument::omitted(), 1}));
}

TEST_F(LateBinding, GivesOmittedArgumentsTheirDefaults) {
  EXPECT_EQ(L"3 2 3", margins({2, 3}));
  // The placeholder of an argument left out in the middle, and the default as it is documented.
  EXPECT_EQ(L"5 4 5", margins({4, 5, Argument::omitted(), 65535}));
  EXPECT_EQ(L"", callMethod(*ini_.get(), L"GetValue", {L"", L"k"}).result.text());
  for (const wchar_t* overlay : {L"CreateCameraOverlay", L"CreateStreetView"}) {
    std::vector<Argument> arguments = {L"", 0, 0, 0, L""};
    arguments.resize(overlay[6] == L'C' ? 5 : 6, L"");
    EXPECT_NE(std::string::npos, kml(overlay, arguments).find("<shape>rectangle<")) << overlay;
  }
}

TEST_F(LateBinding, TakesNamedArguments) {
  EXPECT_EQ(L"2 1 9", margins({1, 2, 9}, {L"IN_TOP", L"in_bottom"}));
  EXPECT_EQ(DISP_E_UNKNOWNNAME, pdf(L"PDFSetMargins", {1}, {L"nothing"}));
  EXPECT_EQ(DISP_E_PARAMNOTFOUND, pdf(L"PDFSetMargins", {1, 2, 3}, {L"in_left"}));
}

// An early-bound host passes null for a text that it leaves out: an empty element would not be valid KML.
TEST_F(LateBinding, TellsEmptyTextsFromOmittedOnes) {
  const auto visibility = [&](const Argument& given) {
    const std::string file = kml(L"CreateCameraOverlay", {L"", 0, 0, 0, L"", given});
    const std::size_t start = file.find("<visibility>") + 12;
    return file.substr(start, file.find('<', start) - start);
  };
  Argument null = Argument::of(VT_BSTR);
  EXPECT_EQ("0", visibility(Argument::omitted()));
  for (const Argument& empty :
       {Argument(L""), null, Argument::reference(*null.get()),
        Argument::of(VT_BYREF | VT_BSTR, &null->bstrVal), Argument(), Argument::of(VT_NULL)})
    EXPECT_EQ("", visibility(empty)) << "type " << empty->vt;
  Text file((folder_ / L"v.kml").wstring());
  Text text;
  VARIANT nothing = {};
  double number = 1;
  kml_->CreateKML(&file, &nothing, nullptr, nullptr);
  kml_->CreateCameraOverlay(&text, &number, &number, &number, &text, &null->bstrVal, nullptr);
  kml_->CreateCameraOverlay(&text, &number, &number, &number, &text, nullptr, &text);
  kml_->CloseKML();
  const std::string early = readFile(folder_ / L"v.kml");
  EXPECT_NE(std::string::npos, early.find("<visibility>0<", early.find("<visibility>0<") + 1));
  EXPECT_NE(std::string::npos, early.find("<shape>rectangle<"));
  EXPECT_NE(std::string::npos, early.find("<shape><"));
}

TEST_F(LateBinding, TakesMinusOneAndTheWordTrueForATrueFlag) {
  SHORT number = -32768;
  const Coercions flags[] = {{L"true", {true, -1, -1.0, Argument::of(VT_I8, LONGLONG{-1}), L"tRUE", L"-1"}},
                             {L"false",
                              {false, 1, Argument::of(VT_BYREF | VT_I2, &number), 40000, 65535, 0.5, -0.6,
                               1e300, std::nan(""), Argument(), L"FALSE", L"1"}},
                             {L"refused", {L"yes?", L""}}};
  expect(flags, [this](const Argument& value) {
    const std::string file = kml(L"CreatePathFromString", {1, L"ff", L"1,2,3\r\n", L"n", value});
    return file == "refused" ? L"refused" : file.find("<extrude>") != std::string::npos ? L"true" : L"false";
  });
}

TEST_F(LateBinding, FindsMembersInAnyCaseAndOnlyThose) {
  DISPID id = 0;
  for (const auto& [name, status, found] :
       {std::tuple{L"pdfTITLE", S_OK, DISPID{21}}, {L"PDFTitel", DISP_E_UNKNOWNNAME, DISPID_UNKNOWN}}) {
    auto* text = const_cast<OLECHAR*>(name);
    EXPECT_EQ(status, pdf_->GetIDsOfNames(IID_NULL, &text, 1, 0, &id));
    EXPECT_EQ(found, id);
  }
  DISPPARAMS none = {};
  const auto invoke = [&](DISPID member, REFIID iid, DISPPARAMS* arguments) {
    return pdf_->Invoke(member, iid, 0, DISPATCH_METHOD, arguments, nullptr, nullptr, nullptr);
  };
  for (const DISPID wrong : {DISPID{DISPID_VALUE}, DISPID{-4}, DISPID{80}, DISPID{0x7FFFFFFF}})
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(wrong, IID_NULL, &none));
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, invoke(1, IID_IUnknown, &none));
  EXPECT_EQ(E_INVALIDARG, invoke(47, IID_NULL, nullptr));
  // Only set; set to an object.
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, getProperty(*pdf_.get(), L"PDFTitle").status);
  EXPECT_EQ(S_OK, putProperty(*pdf_.get(), L"PDFTitle", L"t", DISPATCH_PROPERTYPUTREF).status);
}

// JScript writes a call without arguments like that: `mdb.EOF`.
TEST_F(LateBinding, ReadsParameterlessFunctionsLikeProperties) {
  const auto mdb = dll_.create(CLSID_VeltranoMDB);
  EXPECT_EQ(L"False", getProperty(*mdb.get(), L"EOF").result.text());
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, getProperty(*mdb.get(), L"CloseTable").status) << "it has no result";
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, getProperty(*mdb.get(), L"OpenTable").status) << "it has a parameter";
}

TEST_F(LateBinding, LeavesObjectsAloneThatNoMemberUses) {
  const ComPointer<FakeObject> description(new FakeObject(L"unused"));
  description->inInvoke = [] { FAIL() << "asked for its value"; };
  callMethod(*kml_.get(), L"CreateKML", {(folder_ / L"k.kml").c_str(), description.get()});
}

TEST_F(LateBinding, LetsMembersSeeTheKindOfZoomAndLinks) {
  RecordingSink sink;
  const Connection connection(*pdf_.get(), sink);
  const auto refused = [&](HRESULT status) {
    EXPECT_EQ(S_OK, status);
    return !std::exchange(sink.messages, {}).empty();
  };
  for (const Argument& zoom : {Argument(L"2"), Argument(75)})
    EXPECT_EQ(zoom->vt != VT_I4, refused(putProperty(*pdf_.get(), L"PDFSetZoomMode", zoom).status));
  EXPECT_EQ(L"75", property(L"PDFGetZoomMode"));
  const auto link = [&](const Argument& value) {
    return refused(pdf(L"PDFDrawRectangle", {1, 1, 1, 1, value}));
  };
  EXPECT_TRUE(link(5) && link(new FakeObject(L"http://x")));
  EXPECT_FALSE(link(L"http://x") || link(Argument()) || link(Argument::omitted()));
}

TEST_F(LateBinding, WritesResultsBackToTheVariablesOfTheHost) {
  const std::filesystem::path image = folder_ / L"i.jpg";
  writeGreyJpeg(image, 40, 20);
  putProperty(*pdf_.get(), L"PDFSetUnit", 0);
  pdf(L"PDFBeginDoc");
  const auto place = [&](const Argument& w, const Argument& h) {
    EXPECT_EQ(S_OK, pdf(L"PDFImage", {image.c_str(), 1, 1, w, h}));
  };
  Argument width(10);
  Argument height;
  place(Argument::reference(*width.get()), Argument::reference(*height.get()));
  EXPECT_EQ(L"5", height.text());
  EXPECT_EQ(VT_I4, width->vt) << "given, so not computed";
  for (const int type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT, VT_I8, VT_UI8, VT_R4,
                         VT_R8, VT_CY, VT_DATE, VT_DECIMAL, VT_BSTR, VT_BOOL}) {
    Argument typed;
    EXPECT_EQ(S_OK, VariantChangeType(typed.get(), Argument(0).get(), 0, static_cast<VARTYPE>(type)));
    void* const target = type == VT_DECIMAL ? static_cast<void*>(&typed->decVal) : &typed->llVal;
    place(Argument::of(VT_BYREF | type, target), 20);
    typed->vt = static_cast<VARTYPE>(type);
    Argument number;
    EXPECT_EQ(S_OK, VariantChangeType(number.get(), typed.get(), 0, VT_R8));
    EXPECT_EQ(type == VT_BOOL ? -1 : 40, number->dblVal) << "type " << type;
  }
}

}  // namespace

}  // namespace veltrano::tests
