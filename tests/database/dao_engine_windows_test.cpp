// The DAO engine against an automation object that stands in for DAO: registered for this process under DAO's
// class id, it writes down every call and answers as scripted.

// clang-format off
#include <windows.h>
#include <oleauto.h>
// clang-format on

#include "database/dao/engine_windows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <thread>

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
  std::map<std::string, Value> fields;  ///< what reading a field answers
  bool atEnd = false;
};
Script script;

std::string narrow(const wchar_t* text, std::size_t length) {
  return utf16ToUtf8(std::u16string(text, text + length));
}

std::string describe(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return "empty";
    case VT_NULL:
      return "null";
    case VT_BSTR:
      return "'" + narrow(value.bstrVal, SysStringLen(value.bstrVal)) + "'";
    case VT_BOOL:
      return value.boolVal == VARIANT_TRUE ? "true" : value.boolVal == VARIANT_FALSE ? "false" : "odd flag";
    case VT_I4:
      return "long " + std::to_string(value.lVal);
    case VT_R8:
      return "double " + std::to_string(value.dblVal);
    case VT_R4:
      return "single " + std::to_string(value.fltVal);
    case VT_DATE:
      return "date " + std::to_string(value.date);
    case VT_CY:
      return "currency " + std::to_string(value.cyVal.int64);
    case VT_DECIMAL:
      return "decimal " + std::to_string(value.decVal.Lo64) + "/" + std::to_string(value.decVal.scale);
    case VT_ARRAY | VT_UI1: {
      LONG last = -1;
      SafeArrayGetUBound(value.parray, 1, &last);
      return std::to_string(last + 1) + " bytes";
    }
    case VT_ERROR:
      return value.scode == DISP_E_PARAMNOTFOUND ? "missing" : "error";
    default:
      return "kind " + std::to_string(value.vt);
  }
}

/// One object of the model: DBEngine, Database, Recordset, Fields or Field, told apart by what they are
/// asked.
class Recorder final : public IDispatch {
 public:
  explicit Recorder(std::string name) : name_(std::move(name)) { ++script.liveObjects; }
  virtual ~Recorder() { --script.liveObjects; }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = id == IID_IUnknown || id == IID_IDispatch;
    *object = known ? this : nullptr;
    return known ? (AddRef(), S_OK) : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      delete this;
    }
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    members_.emplace_back(narrow(*names, std::char_traits<wchar_t>::length(*names)));
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
    const bool reads = kind == DISPATCH_PROPERTYGET;
    if (assigns && (parameters->cNamedArgs != 1 || parameters->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)) {
      return DISP_E_PARAMNOTOPTIONAL;
    }
    script.log += name_ + (member.empty() ? "" : "." + member) +
                  (assigns ? " = " + arguments
                   : reads ? ""
                           : "(" + arguments + ")") +
                  "\n";
    if (script.refuseFrom >= 0 && script.calls++ >= script.refuseFrom) {
      exception->bstrDescription = SysAllocString(L"scripted refusal");
      exception->scode = E_FAIL;
      return DISP_E_EXCEPTION;
    }
    if (result != nullptr) {
      answer(member, *parameters, *result);
    }
    return S_OK;
  }

 private:
  void answer(const std::string& member, const DISPPARAMS& parameters, VARIANT& result) const {
    static const std::map<std::string, std::string> children = {
        {"OpenDatabase", "Database"}, {"OpenRecordset", "Recordset"}, {"Fields", "Fields"}};
    const auto child = children.find(member);
    if (child != children.end() || member.empty()) {
      result.vt = VT_DISPATCH;
      result.pdispVal = new Recorder(
          member.empty() ? narrow(parameters.rgvarg[0].bstrVal, SysStringLen(parameters.rgvarg[0].bstrVal))
                         : child->second);
    } else if (member == "EOF") {
      result.vt = VT_BOOL;
      result.boolVal = script.atEnd ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (member == "MoveNext") {
      script.atEnd = true;
    } else if (member == "Type") {
      const std::map<std::string, int> types = {{"Flag", 1},   {"Cash", 5},  {"Single", 6},  {"Double", 7},
                                                {"Moment", 8}, {"Text", 10}, {"Decimal", 20}};
      const auto type = types.find(name_);
      result.vt = VT_I2;
      result.iVal = static_cast<SHORT>(type != types.end() ? type->second : 4);
    } else if (member == "Value") {
      auto held = values();
      VariantCopy(&result, &held.at(name_));
      for (auto& [name, value] : held) {
        VariantClear(&value);
      }
    }
  }

  /// What the fields hold, each by its name.
  static std::map<std::string, VARIANT> values() {
    std::map<std::string, VARIANT> held;
    const auto add = [&held](const char* name, VARTYPE kind) -> VARIANT& {
      VARIANT& value = held[name];
      VariantInit(&value);
      value.vt = kind;
      return value;
    };
    add("Null", VT_NULL);
    add("Long", VT_I4).lVal = -7;
    add("Byte", VT_UI1).bVal = 200;
    add("Single", VT_R4).fltVal = 0.1F;
    add("Double", VT_R8).dblVal = 0.1;
    add("Flag", VT_BOOL).boolVal = VARIANT_TRUE;
    add("Cash", VT_CY).cyVal.int64 = 12500;
    add("Moment", VT_DATE).date = 36526.5;
    add("Object", VT_DISPATCH).pdispVal = nullptr;
    DECIMAL decimal{};
    decimal.scale = 2;
    decimal.sign = DECIMAL_NEG;
    decimal.Lo64 = 1050;
    VARIANT& number = add("Decimal", VT_DECIMAL);
    number.decVal = decimal;
    number.vt = VT_DECIMAL;  // shares its place with a part of the number
    VARIANT& text = held["Text"];
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(L"Zo\u00eb");
    VARIANT& bytes = held["Bytes"];
    bytes.vt = VT_ARRAY | VT_UI1;
    bytes.parray = SafeArrayCreateVector(VT_UI1, 0, 3);
    void* data = nullptr;
    SafeArrayAccessData(bytes.parray, &data);
    std::memcpy(data, "a\xE9z", 3);
    SafeArrayUnaccessData(bytes.parray);
    return held;
  }

  std::string name_;
  std::vector<std::string> members_;
  ULONG references_ = 1;
};

class Factory final : public IClassFactory {
 public:
  virtual ~Factory() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = id == IID_IUnknown || id == IID_IClassFactory;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
    auto* engine = new Recorder("DBEngine");
    const HRESULT result = engine->QueryInterface(id, object);
    engine->Release();
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

class DaoEngine : public testing::Test {
 protected:
  void SetUp() override {
    script = Script();
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    ASSERT_EQ(
        CoRegisterClassObject(daoClass, &factory_, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_),
        S_OK);
  }
  void TearDown() override {
    CoRevokeClassObject(registration_);
    EXPECT_EQ(script.liveObjects, 0) << "references were kept";
    CoUninitialize();
  }
  /// The calls since the last time.
  static std::string takeLog() { return std::exchange(script.log, {}); }

 private:
  Factory factory_;
  DWORD registration_ = 0;
};

TEST_F(DaoEngine, IsChosenAndCalledAsDocumented) {
  {
    VeltranoMDB mdb;  // the engine of the process: DAO, as the machine has it
    ASSERT_TRUE(mdb.OpenDB("C:\\Donn\u00e9es.mdb", "ignored"));
    EXPECT_EQ(takeLog(), "DBEngine.OpenDatabase('C:\\Donn\u00e9es.mdb', missing, missing, missing)\n");
    ASSERT_TRUE(mdb.OpenDB("b.mdb", "", "p;w\"d "));
    EXPECT_EQ(takeLog(), "DBEngine.OpenDatabase('b.mdb', false, false, 'MS Access;PWD=p;w\"d ')\n");
    ASSERT_TRUE(mdb.OpenTable("People"));
    EXPECT_EQ(takeLog(), "Database.OpenRecordset('People', long 2)\n");
    mdb.AddNew();
    EXPECT_FALSE(mdb.WriteRecord("Age", 41));
    mdb.Update();
    mdb.Edit();
    mdb.Delete();
    mdb.MoveFirst();
    mdb.MoveLast();
    EXPECT_FALSE(mdb.Eof());
    EXPECT_EQ(mdb.ReadRecord_String("Text"), "Zo\u00eb");
    EXPECT_EQ(
        takeLog(),
        "Recordset.AddNew()\nRecordset.Fields\nFields('Age')\nAge.Type\nAge.Value = long "
        "41\nRecordset.Update()\n"
        "Recordset.Edit()\nRecordset.Delete()\nRecordset.MoveFirst()\nRecordset.MoveLast()\nRecordset.EOF\n"
        "Recordset.Fields\nFields('Text')\nText.Value\n");
    mdb.MoveNext();
    EXPECT_TRUE(mdb.Eof());
    takeLog();
    mdb.CloseTable();
    mdb.CloseDatabase();
    EXPECT_EQ(takeLog(), "Recordset.Close()\nDatabase.Close()\n");
  }
  EXPECT_EQ(script.liveObjects, 1) << "the engine alone is kept";
  releaseSharedDatabaseEngine();
}

TEST_F(DaoEngine, ReadsAndAssignsEveryKind) {
  const auto engine = makeDaoEngine();
  ASSERT_TRUE(engine);
  VeltranoMDB mdb(*engine);
  ASSERT_TRUE(mdb.OpenDB("a.mdb") && mdb.OpenTable("T"));
  const std::pair<const char*, const char*> texts[] = {
      {"Null", ""},      {"Long", "-7"},       {"Byte", "200"},      {"Single", "0.1"},
      {"Double", "0.1"}, {"Flag", "True"},     {"Cash", "1.25"},     {"Moment", "2000-01-01 12:00:00"},
      {"Object", ""},    {"Decimal", "-10.5"}, {"Text", "Zo\u00eb"}, {"Bytes", "a\u00e9z"},
  };
  for (const auto& [field, text] : texts) {
    EXPECT_EQ(mdb.ReadRecord_String(field), text) << field;
  }
  const struct {
    const char* field;
    Value value;
    const char* assigned;
  } values[] = {
      {"Long", Value(), "empty"},
      {"Long", Null(), "null"},
      {"Long", true, "true"},
      {"Long", "x", "'x'"},
      {"Long", 1.5, "double 1.500000"},
      {"Long", 0.5F, "single 0.500000"},
      {"Long", std::int64_t{2147483648}, "decimal 2147483648/0"},
      {"Long", Date{2.5}, "date 2.500000"},
      {"Long", Currency{3}, "currency 3"},
      {"Long", Value::Bytes{1, 2}, "2 bytes"},
      // Texts reach DAO in the terms of the field, numbers and dates as texts where the field is one.
      {"Cash", "12345678901234.5678", "decimal 123456789012345678/4"},
      {"Decimal", Decimal{false, {5, 0, 0, 0}, 1}, "decimal 5/1"},
      {"Single", "0.1", "single 0.100000"},
      {"Double", " -1e3", "double -1000.000000"},
      {"Double", 0.5F, "double 0.500000"},
      {"Moment", "1900-01-01 12:00:00", "date 2.500000"},
      {"Flag", "TRUE", "true"},
      {"Text", 0.1F, "'0.1'"},
      {"Text", 12.5, "'12.5'"},
      {"Text", Date{2.5}, "'1900-01-01 12:00:00'"},
      {"Text", "\xED\xA0\xBD", "'\xEF\xBF\xBD'"},  // a lone surrogate, as this test shows it
  };
  for (const auto& [field, value, assigned] : values) {
    takeLog();
    mdb.WriteRecord(field, value);
    const std::string asked = value.isEmpty() || value.isNull() ? "" : std::string(field) + ".Type\n";
    EXPECT_EQ(takeLog(), "Recordset.Fields\nFields('" + std::string(field) + "')\n" + asked + field +
                             ".Value = " + assigned + "\n");
  }
  takeLog();
  mdb.WriteRecord("Long", Opaque());
  EXPECT_EQ(takeLog(), "");
  script.atEnd = false;
  EXPECT_TRUE(mdb.FindRecord("Text", "ZO\u00cb", 0));
  takeLog();
  EXPECT_FALSE(mdb.FindRecord("Text", "zo\u00eb", -1));
  EXPECT_EQ(takeLog(),
            "Recordset.MoveFirst()\nRecordset.EOF\nRecordset.Fields\nFields('Text')\nText.Value\n"
            "Recordset.MoveNext()\nRecordset.EOF\n");
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
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    Factory factory;
    DWORD registration = 0;
    CoRegisterClassObject(daoClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration);
    {
      VeltranoMDB mdb;
      EXPECT_TRUE(mdb.OpenDB("a.mdb"));
    }
    CoRevokeClassObject(registration);
    CoUninitialize();
  }).join();
  {
    VeltranoMDB mdb;
    EXPECT_TRUE(mdb.OpenDB("b.mdb"));
  }
  releaseSharedDatabaseEngine();
}

/// The user's settings, changed for a while.
class UserSetting {
 public:
  UserSetting(LCTYPE type, const wchar_t* value) : type_(type) {
    GetLocaleInfoW(LOCALE_USER_DEFAULT, type, before_, ARRAYSIZE(before_));
    set(value);
  }
  UserSetting(const UserSetting&) = delete;
  UserSetting& operator=(const UserSetting&) = delete;
  ~UserSetting() { set(before_); }

 private:
  void set(const wchar_t* value) const { EXPECT_TRUE(SetLocaleInfoW(LOCALE_USER_DEFAULT, type_, value)); }

  LCTYPE type_;
  wchar_t before_[80] = {};
};

TEST_F(DaoEngine, ReadsTextsAsTheUserWritesThem) {
  constexpr unsigned long german =
      0x407;  // Wine reads numbers by the locale alone, not by the user's own settings
  const std::pair<const char*, std::optional<std::string>> numbers[] = {
      {"12,75", "12.75"},       {"-12.345.678.901.234,5678", "-12345678901234.5678"},
      {"1,5E-300", "1.5e-300"}, {"0,0", "0"},
      {"zw\u00f6lf", {}},       {"", {}},
  };
  for (const auto& [text, expected] : numbers) {
    EXPECT_EQ(ownFormOfNumber(text, german), expected) << text;
  }
  EXPECT_EQ(toReal("1,234.5"), 1234.5) << "in the locale of these tests";
  const UserSetting date(LOCALE_SSHORTDATE, L"dd/MM/yyyy");
  EXPECT_EQ(toDate("3/4/2026"), Date{46115}) << "the third of April";
  EXPECT_EQ(toDate("2026-04-03"), Date{46115});
  // What was read back goes in again as it is, through either engine.
  const auto engine = makeDaoEngine();
  VeltranoMDB mdb(*engine);
  ASSERT_TRUE(mdb.OpenDB("a.mdb") && mdb.OpenTable("T"));
  for (const auto& [field, assigned] : {std::pair{"Double", "double 0.100000"},
                                        {"Single", "single 0.100000"},
                                        {"Cash", "decimal 125/2"},
                                        {"Moment", "date 36526.500000"},
                                        {"Flag", "true"}}) {
    const std::string text = mdb.ReadRecord_String(field);
    takeLog();
    mdb.WriteRecord(field, text);
    EXPECT_NE(takeLog().find(std::string("Value = ") + assigned + "\n"), std::string::npos)
        << field << ' ' << text;
  }
}

}  // namespace
}  // namespace veltrano
