// Late binding as script hosts do it: variables, literals, omitted and named arguments, and values of the
// wrong kind.

#include <gtest/gtest.h>

#include <cmath>

#include "fake_objects.h"
#include "host.h"

namespace veltrano::tests {

namespace {

class LateBinding : public testing::Test {
 protected:
  Dll dll_;
  ComPointer<_VeltranoPDF> pdf_ = dll_.createPdf();
  ComPointer<_VeltranoINI> ini_ = dll_.create<_VeltranoINI>(CLSID_VeltranoINI, IID__VeltranoINI);
  ComPointer<_VeltranoKML> kml_ = dll_.create<_VeltranoKML>(CLSID_VeltranoKML, IID__VeltranoKML);

  /// What CreatePathString makes of a value for its altitude: shows the double that arrived.
  std::wstring altitude(Argument value) {
    const Outcome outcome =
        callMethod(*kml_.get(), L"CreatePathString", {Argument(0), Argument(0), std::move(value)});
    return outcome.status == S_OK ? outcome.result.text() : L"error " + std::to_wstring(outcome.wrong);
  }
  /// What ChangeValue makes of a value for its text: shows the text that arrived.
  std::wstring text(Argument value) {
    const Outcome outcome =
        callMethod(*ini_.get(), L"ChangeValue", {Argument(L"k=0"), Argument(L"k"), std::move(value)});
    return outcome.status == S_OK ? outcome.result.text() : L"error " + std::to_wstring(outcome.wrong);
  }
};

TEST_F(LateBinding, CoercesEveryKindToANumber) {
  VARIANT variable;
  VariantInit(&variable);
  variable.vt = VT_I2;
  variable.iVal = 7;
  Argument shortReference = Argument::ofType(VT_BYREF | VT_I2);
  shortReference->piVal = &variable.iVal;
  Argument date = Argument::ofType(VT_DATE);
  date->date = 2.5;
  Argument currency = Argument::ofType(VT_CY);
  currency->cyVal.int64 = 15000;
  EXPECT_EQ(L"0,0,3\r\n", altitude(3));
  EXPECT_EQ(L"0,0,0.5\r\n", altitude(0.5));
  EXPECT_EQ(L"0,0,-1\r\n", altitude(true));
  EXPECT_EQ(L"0,0,12\r\n", altitude(L"12"));
  EXPECT_EQ(L"0,0,0\r\n", altitude(Argument()));
  EXPECT_EQ(L"0,0,2.5\r\n", altitude(date));
  EXPECT_EQ(L"0,0,1.5\r\n", altitude(currency));
  EXPECT_EQ(L"0,0,7\r\n", altitude(Argument::reference(variable)));
  EXPECT_EQ(L"0,0,7\r\n", altitude(shortReference));
  // A script's procedure hands on what it was handed.
  Argument handedOn = Argument::reference(variable);
  EXPECT_EQ(L"0,0,7\r\n", altitude(Argument::reference(*handedOn.get())));
  // A host's mistake: the reference of a variable to itself.
  VARIANT circle;
  circle.vt = VT_BYREF | VT_VARIANT;
  circle.pvarVal = &circle;
  EXPECT_EQ(L"error 0", altitude(Argument::reference(circle)));
  EXPECT_EQ(VT_I2, variable.vt) << "a variable that the member left alone must keep its type";
}

TEST_F(LateBinding, CoercesEveryKindToAText) {
  Argument bytes = Argument::ofType(VT_ARRAY | VT_UI1);
  bytes->parray = SafeArrayCreateVector(VT_UI1, 0, 2);
  static_cast<unsigned char*>(bytes->parray->pvData)[0] = 'a';
  static_cast<unsigned char*>(bytes->parray->pvData)[1] = 0xE9;
  EXPECT_EQ(L"k=5", text(5));
  EXPECT_EQ(L"k=True", text(true));
  EXPECT_EQ(L"k=", text(Argument()));
  EXPECT_EQ(L"k=\u4e2d\u0416\xD800", text(L"\u4e2d\u0416\xD800")) << "the code page must not touch it";
  EXPECT_EQ(L"k=a\u00e9", text(bytes));
  EXPECT_EQ(L"k=value", text(ComPointer<IDispatch>(new FakeObject(Argument(L"value"))).get()));
}

TEST_F(LateBinding, SaysWhichArgumentHasNoCoercion) {
  // Counted from the last one, as Invoke counts.
  EXPECT_EQ(L"error 0", altitude(L"no number"));
  EXPECT_EQ(L"error 0", altitude(Argument::ofType(VT_NULL)));
  EXPECT_EQ(L"error 0", altitude({Argument(1), Argument(2)}));
  EXPECT_EQ(L"error 0", altitude(static_cast<IUnknown*>(nullptr)));
  EXPECT_EQ(L"error 0", text(Argument::ofType(VT_NULL)));
  const Outcome first =
      callMethod(*kml_.get(), L"CreatePathString", {Argument(L"x"), Argument(0), Argument(0)});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, first.status);
  EXPECT_EQ(2U, first.wrong);
  EXPECT_EQ(DISP_E_OVERFLOW,
            callMethod(*pdf_.get(), L"PDFSetMargins", {Argument(70000), Argument(1)}).status);
  EXPECT_EQ(DISP_E_OVERFLOW,
            callMethod(*pdf_.get(), L"PDFSetMargins", {Argument(std::nan("")), Argument(1)}).status);
}

TEST_F(LateBinding, ChecksTheNumberOfArguments) {
  EXPECT_EQ(DISP_E_BADPARAMCOUNT,
            callMethod(*kml_.get(), L"CreatePathString", {Argument(0), Argument(0)}).status);
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, callMethod(*kml_.get(), L"ClearPath", {Argument(0)}).status);
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, callMethod(*pdf_.get(), L"PDFSetMargins").status);
  EXPECT_EQ(DISP_E_PARAMNOTOPTIONAL,
            callMethod(*pdf_.get(), L"PDFSetMargins", {Argument::omitted(), Argument(1)}).status);
}

TEST_F(LateBinding, GivesOmittedArgumentsTheirDefaults) {
  EXPECT_EQ(S_OK, callMethod(*pdf_.get(), L"PDFSetMargins", {Argument(2), Argument(3)}).status);
  EXPECT_EQ(L"2", getProperty(*pdf_.get(), L"PDFGetRightMargin").result.text());
  EXPECT_EQ(L"3", getProperty(*pdf_.get(), L"PDFGetBottomMargin").result.text());
  // The placeholder of an argument left out in the middle, and the default as it is documented.
  EXPECT_EQ(S_OK, callMethod(*pdf_.get(), L"PDFSetMargins",
                             {Argument(4), Argument(5), Argument::omitted(), Argument(65535)})
                      .status);
  EXPECT_EQ(L"4", getProperty(*pdf_.get(), L"PDFGetRightMargin").result.text());
  EXPECT_EQ(L"5", getProperty(*pdf_.get(), L"PDFGetBottomMargin").result.text());
  EXPECT_EQ(L"", callMethod(*ini_.get(), L"GetValue", {Argument(L""), Argument(L"k")}).result.text());
}

// An early-bound host hands over null for a text that it leaves out: an empty element is no valid KML.
TEST_F(LateBinding, GivesNullTextsTheirDefaultsOnTheVtable) {
  Folder folder;
  Text file((folder / L"k.kml").wstring());
  Text text(L"t");
  Text empty;
  BSTR null = nullptr;
  double number = 1;
  VARIANT nothing = {};
  kml_->CreateKML(&file, &nothing, nullptr, nullptr);
  kml_->CreateCameraOverlay(&text, &number, &number, &number, &text, &null, nullptr);
  kml_->CreateStreetView(&text, &number, &number, &number, &text, &text, &null, nullptr);
  kml_->CreateCameraOverlay(&text, &number, &number, &number, &text, &empty, &empty);
  kml_->CloseKML();
  std::string told;
  const std::string kml = readFile(folder / L"k.kml");
  for (const char* element : {"<visibility>", "<shape>"}) {
    for (std::size_t at = 0; (at = kml.find(element, at)) != std::string::npos; ++at) {
      told += kml.substr(at, kml.find('/', at) - at);
    }
  }
  EXPECT_EQ("<visibility>0<<visibility><<shape>rectangle<<shape>rectangle<<shape><", told);
}

TEST_F(LateBinding, TakesNamedArguments) {
  const Outcome margins = callNamed(*pdf_.get(), L"PDFSetMargins", {Argument(1), Argument(2), Argument(9)},
                                    {L"IN_TOP", L"in_bottom"});
  EXPECT_EQ(S_OK, margins.status);
  EXPECT_EQ(L"2", getProperty(*pdf_.get(), L"PDFGetTopMargin").result.text());
  EXPECT_EQ(L"1", getProperty(*pdf_.get(), L"PDFGetRightMargin").result.text());
  EXPECT_EQ(L"9", getProperty(*pdf_.get(), L"PDFGetBottomMargin").result.text());
  EXPECT_EQ(DISP_E_UNKNOWNNAME, callNamed(*pdf_.get(), L"PDFSetMargins", {Argument(1)}, {L"nothing"}).status);
  EXPECT_EQ(
      DISP_E_PARAMNOTFOUND,
      callNamed(*pdf_.get(), L"PDFSetMargins", {Argument(1), Argument(2), Argument(3)}, {L"in_left"}).status);
}

TEST_F(LateBinding, FindsMembersInAnyCaseAndOnlyThose) {
  OLECHAR known[] = L"pdfTITLE";
  OLECHAR unknown[] = L"PDFTitel";
  OLECHAR* names[] = {known};
  DISPID id = 0;
  EXPECT_EQ(S_OK, pdf_->GetIDsOfNames(IID_NULL, names, 1, 0, &id));
  EXPECT_EQ(21, id);
  names[0] = unknown;
  EXPECT_EQ(DISP_E_UNKNOWNNAME, pdf_->GetIDsOfNames(IID_NULL, names, 1, 0, &id));
  EXPECT_EQ(DISPID_UNKNOWN, id);
  DISPPARAMS none = {};
  for (const DISPID wrong : {DISPID{DISPID_VALUE}, DISPID{-4}, DISPID{80}, DISPID{0x7FFFFFFF}}) {
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
              pdf_->Invoke(wrong, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
  }
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, getProperty(*pdf_.get(), L"PDFTitle").status);
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
            pdf_->Invoke(id, IID_IUnknown, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
  EXPECT_EQ(E_INVALIDARG, pdf_->Invoke(47, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(LateBinding, LetsMembersSeeTheKindOfZoomAndLinks) {
  RecordingSink sink;
  const Connection connection(*pdf_.get(), sink);
  EXPECT_EQ(S_OK, putProperty(*pdf_.get(), L"PDFSetZoomMode", Argument(L"2")).status);
  EXPECT_EQ(L"Zoom mode incorrect.", sink.last());
  sink.clear();
  EXPECT_EQ(S_OK, putProperty(*pdf_.get(), L"PDFSetZoomMode", Argument(75)).status);
  EXPECT_EQ(L"", sink.last());
  EXPECT_EQ(L"75", getProperty(*pdf_.get(), L"PDFGetZoomMode").result.text());
  const auto rectangle = [&](Argument link) {
    sink.clear();
    EXPECT_EQ(S_OK, callMethod(*pdf_.get(), L"PDFDrawRectangle",
                               {Argument(1), Argument(1), Argument(1), Argument(1), std::move(link)})
                        .status);
    return sink.last();
  };
  EXPECT_EQ(L"Unable to include this link", rectangle(Argument(5)));
  EXPECT_EQ(L"Unable to include this link",
            rectangle(ComPointer<IDispatch>(new FakeObject(Argument(L"http://x"))).get()));
  EXPECT_EQ(L"", rectangle(Argument(L"http://x")));
  EXPECT_EQ(L"", rectangle(Argument()));
  EXPECT_EQ(L"", rectangle(Argument::omitted()));
}

TEST_F(LateBinding, TakesArraysOfArraysAndScriptLists) {
  Folder folder;
  const auto polygon = [&](std::vector<Argument> points) {
    callMethod(*pdf_.get(), L"PDFInit");
    putProperty(*pdf_.get(), L"PDFFileName", Argument((folder / L"p.pdf").c_str()));
    callMethod(*pdf_.get(), L"PDFBeginDoc");
    EXPECT_EQ(S_OK, callMethod(*pdf_.get(), L"PDFDrawPolygon", std::move(points)).status);
    callMethod(*pdf_.get(), L"PDFEndDoc");
    const std::string file = readFile(folder / L"p.pdf");
    return file.substr(std::min(file.find("%DEBUT_POLY/%"), file.size()),
                       file.find("%FIN_POLY/%") - file.find("%DEBUT_POLY/%"));
  };
  const std::string arrays =
      polygon({{Argument(1), Argument(2)}, Argument::doubles({3, 4}), {Argument(5), Argument(6)}});
  EXPECT_NE(std::string::npos, arrays.find("85.04 728.50 l")) << arrays;
  const ComPointer<IDispatch> list(new FakeObject(Argument(L"3,4"), {Argument(3), Argument(4)}));
  EXPECT_EQ(arrays, polygon({{Argument(1), Argument(2)}, list.get(), {Argument(5), Argument(6)}}));
}

TEST_F(LateBinding, WritesResultsBackToTheVariablesOfTheHost) {
  Folder folder;
  const std::filesystem::path image = folder / L"i.jpg";
  writeGreyJpeg(image, 40, 20);
  putProperty(*pdf_.get(), L"PDFSetUnit", Argument(0));
  callMethod(*pdf_.get(), L"PDFBeginDoc");
  const auto place = [&](Argument w, Argument h) {
    EXPECT_EQ(S_OK,
              callMethod(*pdf_.get(), L"PDFImage",
                         {Argument(image.c_str()), Argument(1), Argument(1), std::move(w), std::move(h)})
                  .status);
  };
  Argument width(10);
  Argument height;
  place(Argument::reference(*width.get()), Argument::reference(*height.get()));
  EXPECT_EQ(L"5", height.text());
  EXPECT_EQ(VT_I4, width->vt) << "given, so not computed";
  SHORT typed = 0;
  Argument typedReference = Argument::ofType(VT_BYREF | VT_I2);
  typedReference->piVal = &typed;
  double same = 0;
  Argument sameReference = Argument::ofType(VT_BYREF | VT_R8);
  sameReference->pdblVal = &same;
  place(typedReference, sameReference);
  EXPECT_EQ(40, typed);
  EXPECT_EQ(20, same);
}

TEST_F(LateBinding, KeepsTheValueOfANumberGivenForAFlag) {
  Folder folder;
  const auto tessellated = [&](Argument line3D) {
    callMethod(*kml_.get(), L"CreateKML", {Argument((folder / L"k.kml").c_str()), Argument()});
    callMethod(*kml_.get(), L"CreatePathFromString",
               {Argument(1), Argument(L"ff"), Argument(L"1,2,3\r\n"), Argument(L"n"), std::move(line3D)});
    callMethod(*kml_.get(), L"CloseKML");
    return readFile(folder / L"k.kml").find("<extrude>") == std::string::npos;
  };
  EXPECT_TRUE(tessellated(Argument(1)));
  EXPECT_FALSE(tessellated(Argument(true)));
  EXPECT_FALSE(tessellated(Argument(-1)));
  EXPECT_FALSE(tessellated(Argument(L"True")));
}

TEST_F(LateBinding, PutsObjectsByReferenceToo) {
  EXPECT_EQ(S_OK, putProperty(*pdf_.get(), L"PDFTitle", Argument(L"t"), DISPATCH_PROPERTYPUTREF).status);
}

}  // namespace

}  // namespace veltrano::tests
