// The DAO engine against an automation object that stands in for DAO: registered for this process under DAO's
// class id, it writes down every call and answers as scripted.

// clang-format off
#include <windows.h>
#include <oleauto.h>
// clang-format on

#include "database/dao/engine_windows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <map>
#include <thread>
#include <tuple>

#include "base/text/code_page.h"
#include "database/shared_engine.h"
#include "database/values/field_conversion.h"
#include "database/values/user_locale_windows.h"
#include "veltrano/mdb.h"

// COM interfaces have no virtual destructor; their objects release themselves.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace veltrano {
namespace {

constexpr CLSID daoClass = {0x00000100, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};

struct Script {
  std::string log;
  int liveObjects = 0;
  int refuseFrom = -1;  ///< the calls from this one on are answered with an exception
  int calls = 0;
  bool atEnd = false;
};
Script script;

std::string narrow(const wchar_t* text) {
  return text == nullptr ? "" : utf16ToUtf8(std::u16string(text, text + std::wcslen(text)));
}

/// The variant as one of this kind, numbers as anybody reads and writes them. Empty if there is no such thing.
VARIANT converted(VARIANT value, VARTYPE kind) {
  VARIANT made{};
  VariantChangeTypeEx(&made, &value, LOCALE_INVARIANT, VARIANT_NOUSEROVERRIDE, kind);
  return made;
}

/// "long 7", "null".
std::string describe(VARIANT value) {
  static const std::map<VARTYPE, const char*> kinds = {
      {VT_EMPTY, "empty"}, {VT_NULL, "null"},     {VT_BSTR, "text"},       {VT_BOOL, "flag"},
      {VT_I4, "long"},     {VT_R8, "double"},     {VT_R4, "single"},       {VT_DATE, "date"},
      {VT_CY, "currency"}, {VT_ERROR, "missing"}, {VT_DECIMAL, "decimal"}, {VT_ARRAY | VT_UI1, "bytes"}};
  EXPECT_TRUE(value.vt != VT_ERROR || value.scode == DISP_E_PARAMNOTFOUND);
  const std::string described = kinds.contains(value.vt) ? kinds.at(value.vt) : "unknown";
  if (value.vt == (VT_ARRAY | VT_UI1)) {
    return described + " " + std::to_string(value.parray->rgsabound[0].cElements);
  }
  value.vt = value.vt == VT_DATE ? VARTYPE{VT_R8} : value.vt;
  VARIANT text = converted(value, VT_BSTR);
  const std::string shown = narrow(text.bstrVal);
  VariantClear(&text);
  return shown.empty() ? described : described + " " + shown;
}

/// A field of the table: its DAO type, and what reading it answers.
struct Field {
  SHORT type;
  VARTYPE kind;
  const wchar_t* text;
};
const std::map<std::string, Field> fields = {
    {"Null", {4, VT_NULL, L""}},
    {"Long", {4, VT_I4, L"-7"}},
    {"Byte", {4, VT_UI1, L"200"}},
    {"Object", {4, VT_DISPATCH, L""}},
    {"Bytes", {4, VT_ARRAY | VT_UI1, L"a\u00e9z"}},
    {"Flag", {1, VT_BOOL, L"-1"}},
    {"Cash", {5, VT_CY, L"1.25"}},
    {"Single", {6, VT_R4, L"0.1"}},
    {"Double", {7, VT_R8, L"0.1"}},
    {"Moment", {8, VT_DATE, L"2000-01-01 12:00:00"}},
    {"Text", {10, VT_BSTR, L"Zo\u00eb"}},
    {"Decimal", {20, VT_DECIMAL, L"-10.50"}},
};

VARIANT valueOf(const Field& field) {
  VARIANT value{};
  value.vt = field.kind;
  const std::size_t size = std::wcslen(field.text);
  if (field.kind == (VT_ARRAY | VT_UI1)) {
    value.parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
    std::copy_n(field.text, size, static_cast<unsigned char*>(value.parray->pvData));
  } else if (size != 0) {
    VARIANT text{};
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(field.text);
    value = converted(text, field.kind);
    VariantClear(&text);
  }
  return value;
}

template <typename Interface>
class Counted : public Interface {
 public:
  virtual ~Counted() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = id == IID_IUnknown || id == __uuidof(Interface);
    *object = known ? this : nullptr;
    return known ? (this->AddRef(), S_OK) : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      delete this;
    }
    return left;
  }

 private:
  ULONG references_ = 1;
};

/// One object of the model: DBEngine, Database, Recordset, Fields or Field, told apart by what they are
/// asked.
class Recorder final : public Counted<IDispatch> {
 public:
  explicit Recorder(std::string name) : name_(std::move(name)) { ++script.liveObjects; }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  ~Recorder() override { --script.liveObjects; }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    members_.emplace_back(narrow(*names));
    *ids = static_cast<DISPID>(members_.size());  // 0 is the default member
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override {
    const std::string member = id == DISPID_VALUE ? "" : members_.at(static_cast<std::size_t>(id) - 1);
    std::string arguments;
    for (UINT i = parameters->cArgs; i-- > 0;) {
      arguments += (arguments.empty() ? "" : ", ") + describe(parameters->rgvarg[i]);
    }
    const bool assigns = (kind & DISPATCH_PROPERTYPUT) != 0;
    if (assigns && (parameters->cNamedArgs != 1 || parameters->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)) {
      return DISP_E_PARAMNOTOPTIONAL;
    }
    script.log += name_ + (member.empty() ? "" : "." + member);
    script.log += assigns ? " = " + arguments : kind == DISPATCH_PROPERTYGET ? "" : "(" + arguments + ")";
    script.log += "; ";
    if (script.refuseFrom >= 0 && script.calls++ >= script.refuseFrom) {
      exception->bstrDescription = SysAllocString(L"scripted refusal");
      exception->scode = E_FAIL;
      return DISP_E_EXCEPTION;
    }
    script.atEnd = script.atEnd || member == "MoveNext";
    if (result != nullptr) {
      *result = answer(member, *parameters);
    }
    return S_OK;
  }

 private:
  [[nodiscard]] VARIANT answer(const std::string& member, const DISPPARAMS& parameters) const {
    static const std::map<std::string, std::string> children = {
        {"OpenDatabase", "Database"}, {"OpenRecordset", "Recordset"}, {"Fields", "Fields"}};
    VARIANT result{};
    if (member.empty() || children.contains(member)) {
      result.vt = VT_DISPATCH;
      result.pdispVal =
          new Recorder(member.empty() ? narrow(parameters.rgvarg[0].bstrVal) : children.at(member));
    } else if (member == "EOF") {
      result.vt = VT_BOOL;
      result.boolVal = script.atEnd ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (member == "Type") {
      result.vt = VT_I2;
      result.iVal = fields.at(name_).type;
    } else if (member == "Value") {
      result = valueOf(fields.at(name_));
    }
    return result;
  }

  std::string name_;
  std::vector<std::string> members_;
};

class Factory final : public Counted<IClassFactory> {
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
    auto* engine = new Recorder("DBEngine");
    const HRESULT result = engine->QueryInterface(id, object);
    engine->Release();
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

/// DAO's class, in a thread that may use it.
class Registration {
 public:
  Registration() {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    auto* factory = new Factory;
    EXPECT_EQ(CoRegisterClassObject(daoClass, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &number_),
              S_OK);
    factory->Release();
  }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration() {
    CoRevokeClassObject(number_);
    CoUninitialize();
  }

 private:
  DWORD number_ = 0;
};

class DaoEngine : public testing::Test {
 protected:
  void SetUp() override { script = Script(); }
  void TearDown() override { EXPECT_EQ(script.liveObjects, 0) << "references were kept"; }
  /// Writes a value to a field. The last call that this made.
  static std::string assigned(VeltranoMDB& mdb, const char* field, const Value& value) {
    mdb.WriteRecord(field, value);
    const std::string calls = std::exchange(script.log, {});
    return calls.substr(std::min(calls.find(".Value = "), calls.size()));
  }

 private:
  Registration registration_;
};

TEST_F(DaoEngine, IsChosenAndCalledAsDocumented) {
  {
    VeltranoMDB mdb;  // the engine of the process: DAO, as the machine has it
    ASSERT_TRUE(mdb.OpenDB("C:\\Donn\u00e9es.mdb", "ignored"));
    ASSERT_TRUE(mdb.OpenDB("b.mdb", "", "p;w\"d "));
    ASSERT_TRUE(mdb.OpenTable("People"));
    mdb.AddNew();
    EXPECT_FALSE(mdb.WriteRecord("Long", 41));
    mdb.Update();
    mdb.Edit();
    mdb.Delete();
    mdb.MoveFirst();
    mdb.MoveLast();
    EXPECT_FALSE(mdb.Eof());
    EXPECT_EQ(mdb.ReadRecord_String("Text"), "Zo\u00eb");
    mdb.MoveNext();
    EXPECT_TRUE(mdb.Eof());
    mdb.CloseTable();
    mdb.CloseDatabase();
  }
  EXPECT_EQ(
      script.log,
      "DBEngine.OpenDatabase(text C:\\Donn\u00e9es.mdb, missing, missing, missing); "
      "DBEngine.OpenDatabase(text b.mdb, flag 0, flag 0, text MS Access;PWD=p;w\"d ); "
      "Database.OpenRecordset(text People, long 2); Recordset.AddNew(); Recordset.Fields; Fields(text Long); "
      "Long.Type; Long.Value = long 41; Recordset.Update(); Recordset.Edit(); Recordset.Delete(); "
      "Recordset.MoveFirst(); Recordset.MoveLast(); Recordset.EOF; Recordset.Fields; Fields(text Text); "
      "Text.Value; Recordset.MoveNext(); Recordset.EOF; Recordset.Close(); Database.Close(); ");
  EXPECT_EQ(script.liveObjects, 1) << "the engine alone is kept";
  releaseSharedDatabaseEngine();
}

TEST_F(DaoEngine, ReadsAndAssignsEveryKind) {
  const auto engine = makeDaoEngine();
  ASSERT_TRUE(engine);
  VeltranoMDB mdb(*engine);
  ASSERT_TRUE(mdb.OpenDB("a.mdb") && mdb.OpenTable("T"));
  std::string texts;
  for (const auto& [field, answer] : fields) {
    texts += mdb.ReadRecord_String(field) + "|";
  }
  EXPECT_EQ(texts, "200|a\u00e9z|1.25|-10.5|0.1|True|-7|2000-01-01 12:00:00|||0.1|Zo\u00eb|");
  // Texts reach DAO in the terms of the field, numbers and dates as texts where the field is one.
  const std::tuple<const char*, Value, const char*> values[] = {
      {"Long", Value(), "empty"},
      {"Long", Null(), "null"},
      {"Long", true, "flag -1"},
      {"Long", "x", "text x"},
      {"Long", 1.5, "double 1.5"},
      {"Long", 0.5F, "single 0.5"},
      {"Long", Date{2.5}, "date 2.5"},
      {"Long", Currency{3}, "currency 0.0003"},
      {"Long", std::int64_t{2147483648}, "decimal 2147483648"},
      {"Long", Value::Bytes{1, 2}, "bytes 2"},
      {"Cash", "12345678901234.5678", "decimal 12345678901234.5678"},
      {"Decimal", Decimal{false, {5, 0, 0, 0}, 1}, "decimal 0.5"},
      {"Single", "0.1", "single 0.1"},
      {"Double", " -1e3", "double -1000"},
      {"Double", 0.5F, "double 0.5"},
      {"Moment", "1900-01-01 12:00:00", "date 2.5"},
      {"Flag", "TRUE", "flag -1"},
      {"Text", 0.1F, "text 0.1"},
      {"Text", Date{2.5}, "text 1900-01-01 12:00:00"},
      {"Text", "\xED\xA0\xBD", "text \xEF\xBF\xBD"},  // a lone surrogate, as this test shows it
  };
  script.log.clear();
  for (const auto& [field, value, expected] : values) {
    EXPECT_EQ(assigned(mdb, field, value), std::string(".Value = ") + expected + "; ") << field;
  }
  mdb.WriteRecord("Long", Opaque());
  EXPECT_EQ(script.log, "");
  EXPECT_TRUE(mdb.FindRecord("Text", "ZO\u00cb", 0));
  script.log.clear();
  EXPECT_FALSE(mdb.FindRecord("Text", "zo\u00eb", -1));
  EXPECT_EQ(script.log,
            "Recordset.MoveFirst(); Recordset.EOF; Recordset.Fields; Fields(text Text); Text.Value; "
            "Recordset.MoveNext(); Recordset.EOF; ");
}

TEST_F(DaoEngine, SurvivesRefusalsAtEveryStep) {
  const auto engine = makeDaoEngine();
  ASSERT_TRUE(engine);
  for (int step = 0; step < 15; ++step) {
    script.refuseFrom = step;
    script.calls = 0;
    VeltranoMDB mdb(*engine);
    EXPECT_EQ(mdb.OpenDB("a.mdb", "", "p"), step > 0);
    EXPECT_EQ(mdb.OpenTable("T"), step > 1);
    mdb.AddNew();
    mdb.WriteRecord("Long", 1);
    EXPECT_EQ(mdb.ReadRecord_String("Long"), step > 9 ? "-7" : "") << step;
    mdb.Update();
    EXPECT_FALSE(mdb.FindRecord("Long", "8", -1));
    mdb.CloseTable();
    mdb.CloseDatabase();
  }
}

TEST_F(DaoEngine, OutlivesTheApartmentThatMadeIt) {
  std::thread([] {
    const Registration registration;
    VeltranoMDB mdb;
    EXPECT_TRUE(mdb.OpenDB("a.mdb"));
  }).join();
  {
    VeltranoMDB mdb;
    EXPECT_TRUE(mdb.OpenDB("b.mdb"));
  }
  releaseSharedDatabaseEngine();
}

TEST_F(DaoEngine, ReadsTextsAsTheUserWritesThem) {
  // Wine reads numbers by the locale alone, not by the user's own settings.
  constexpr unsigned long german = 0x407;
  const std::pair<const char*, std::optional<std::string>> numbers[] = {
      {"12,75", "12.75"},       {"-12.345.678.901.234,5678", "-12345678901234.5678"},
      {"1,5E-300", "1.5e-300"}, {"0,0", "0"},
      {"zw\u00f6lf", {}},       {"", {}},
  };
  for (const auto& [text, expected] : numbers) {
    EXPECT_EQ(ownFormOfNumber(text, german), expected) << text;
  }
  EXPECT_EQ(toReal("1,234.5"), 1234.5) << "in the locale of these tests";
  wchar_t before[80] = {};
  GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, before, ARRAYSIZE(before));
  EXPECT_TRUE(SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, L"dd/MM/yyyy"));
  EXPECT_EQ(toDate("3/4/2026"), Date{46115}) << "the third of April";
  EXPECT_EQ(toDate("2026-04-03"), Date{46115});
  // What was read back goes in again as it is, through either engine.
  const auto engine = makeDaoEngine();
  VeltranoMDB mdb(*engine);
  EXPECT_TRUE(mdb.OpenDB("a.mdb") && mdb.OpenTable("T"));
  for (const auto& [field, expected] : {std::pair{"Double", "double 0.1"},
                                        {"Single", "single 0.1"},
                                        {"Cash", "decimal 1.25"},
                                        {"Moment", "date 36526.5"},
                                        {"Flag", "flag -1"}}) {
    const std::string text = mdb.ReadRecord_String(field);
    script.log.clear();
    EXPECT_EQ(assigned(mdb, field, text), std::string(".Value = ") + expected + "; ") << field << ' ' << text;
  }
  EXPECT_TRUE(SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, before));
}

}  // namespace
}  // namespace veltrano
