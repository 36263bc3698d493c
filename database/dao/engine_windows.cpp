#include "database/dao/dao_engine_windows.h"

#include <mutex>

#include "database/dao/automation_windows.h"
#include "database/field_conversion.h"

namespace veltrano {

namespace {

using dao::Object;
using dao::Variant;

// {00000100-0000-0010-8000-00AA006D2EA4}: DBEngine of DAO 3.6.
constexpr CLSID dao36 = {0x00000100, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};
constexpr const wchar_t* successor = L"DAO.DBEngine.120";
constexpr long dynaset = 2;

/// DAO's numbers for the types of fields (DataTypeEnum).
enum FieldType : long {
  dbBoolean = 1,
  dbByte = 2,
  dbInteger = 3,
  dbLong = 4,
  dbCurrency = 5,
  dbSingle = 6,
  dbDouble = 7,
  dbDate = 8,
  dbText = 10,
  dbMemo = 12,
  dbBigInt = 16,
  dbChar = 18,
  dbNumeric = 19,
  dbDecimal = 20,
  dbFloat = 21,
};

template <typename Converted>
Value orAsGiven(const std::optional<Converted>& converted, const Value& value) {
  return converted ? Value(*converted) : value;
}

/// The value in the terms of its field, so that DAO has no text to convert: it would read and write them in the
/// locale of the user, and a number that was read back would become another one where the comma is the decimal
/// separator. What does not convert is left for DAO to refuse.
Value inTermsOf(long fieldType, const Value& value) {
  const bool isText = value.isText();
  switch (fieldType) {
    case dbText:
    case dbMemo:
    case dbChar:
      return value.as<Value::Bytes>() == nullptr ? orAsGiven(toFieldText(value), value) : value;
    case dbBoolean:
      return isText ? orAsGiven(toBoolean(value), value) : value;
    case dbByte:
    case dbInteger:
    case dbLong:
    case dbCurrency:
    case dbBigInt:
    case dbNumeric:
    case dbDecimal:
      return isText ? orAsGiven(toDecimal(value), value) : value;
    case dbSingle:
      return isText ? orAsGiven(toSingle(value), value) : value;
    case dbDouble:
    case dbFloat:
      // A single widened by DAO would show more than its own digits.
      return isText || value.as<float>() != nullptr ? orAsGiven(toReal(value), value) : value;
    case dbDate:
      return isText ? orAsGiven(toDate(value), value) : value;
    default:
      return value;
  }
}

class DaoRecordset final : public Recordset {
 public:
  explicit DaoRecordset(Object recordset) : recordset_(std::move(recordset)) {}

  bool moveFirst() override { return method(L"MoveFirst"); }
  bool moveLast() override { return method(L"MoveLast"); }
  bool moveNext() override { return method(L"MoveNext"); }
  bool edit() override { return method(L"Edit"); }
  bool addNew() override { return method(L"AddNew"); }
  bool update() override { return method(L"Update"); }
  bool remove() override { return method(L"Delete"); }
  bool close() override { return method(L"Close"); }

  std::optional<bool> atEnd() override {
    std::string error;
    const auto flag = recordset_.property(L"EOF", error);
    if (!flag) {
      fail(std::move(error));
      return std::nullopt;
    }
    return flag->toFlag();
  }

  bool readText(std::string_view field, std::string& text) override {
    text.clear();
    std::string error;
    const Object object = find(field, error);
    const auto value = object ? object.property(L"Value", error) : std::nullopt;
    if (!value) {
      return fail(std::move(error));
    }
    return value->toText(text) || fail("the value has no text");
  }

  bool write(std::string_view field, const Value& value) override {
    if (value.as<Opaque>() != nullptr || value.as<Value::List>() != nullptr ||
        value.as<Value::Doubles>() != nullptr) {
      return fail("a value of this kind cannot be assigned");
    }
    std::string error;
    const Object object = find(field, error);
    if (!object) {
      return fail(std::move(error));
    }
    const auto type = value.isEmpty() || value.isNull() ? std::nullopt : object.property(L"Type", error);
    const auto assigned = Variant::from(type ? inTermsOf(type->toNumber().value_or(0), value) : value);
    return (assigned && object.setProperty(L"Value", *assigned, error)) || fail(std::move(error));
  }

 private:
  bool method(const wchar_t* name) {
    std::string error;
    return recordset_.call(name, {}, error) || fail(std::move(error));
  }

  /// Fields(name)
  Object find(std::string_view field, std::string& error) const {
    const auto fields = recordset_.property(L"Fields", error);
    const Object collection = fields ? Object::of(*fields) : Object();
    const auto item = collection ? collection.item(Variant::text(field), error) : std::nullopt;
    return item ? Object::of(*item) : Object();
  }

  Object recordset_;
};

class DaoDatabase final : public Database {
 public:
  explicit DaoDatabase(Object database) : database_(std::move(database)) {}

  std::unique_ptr<Recordset> openTable(std::string_view table) override {
    const Variant name = Variant::text(table);
    const Variant type = Variant::number(dynaset);
    std::string error = "no recordset came back";
    const auto result = database_.call(L"OpenRecordset", {&name, &type}, error);
    Object recordset = result ? Object::of(*result) : Object();
    if (!recordset) {
      fail(std::move(error));
      return nullptr;
    }
    return std::make_unique<DaoRecordset>(std::move(recordset));
  }

  bool close() override {
    std::string error;
    return database_.call(L"Close", {}, error) || fail(std::move(error));
  }

 private:
  Object database_;
};

Object createDbEngine() {
  void* engine = nullptr;
  if (SUCCEEDED(CoCreateInstance(dao36, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &engine))) {
    return Object(static_cast<IDispatch*>(engine));
  }
  CLSID id{};
  if (SUCCEEDED(CLSIDFromProgID(successor, &id)) &&
      SUCCEEDED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &engine))) {
    return Object(static_cast<IDispatch*>(engine));
  }
  return Object();
}

/// The process has one DBEngine, which belongs to the apartment that made it. The system's table of
/// interfaces hands it to the others; in its own apartment that is the object itself.
class DaoEngine final : public DatabaseEngine {
 public:
  explicit DaoEngine(const Object& engine) { keep(engine); }
  DaoEngine(const DaoEngine&) = delete;
  DaoEngine& operator=(const DaoEngine&) = delete;
  ~DaoEngine() override { drop(); }

  std::unique_ptr<Database> openDatabase(std::string_view fileName, std::optional<std::string_view> connect,
                                         std::string& reason) override {
    const Object engine = dbEngine();
    if (!engine) {
      reason = "the DAO engine is gone";
      return nullptr;
    }
    const Variant name = Variant::text(fileName);
    const Variant no = Variant::flag(false);
    const Variant missing = Variant::missing();
    const Variant secret = connect ? Variant::text(*connect) : Variant();
    reason = "no database came back";
    const auto result = connect ? engine.call(L"OpenDatabase", {&name, &no, &no, &secret}, reason)
                                : engine.call(L"OpenDatabase", {&name, &missing, &missing, &missing}, reason);
    Object database = result ? Object::of(*result) : Object();
    return database ? std::make_unique<DaoDatabase>(std::move(database)) : nullptr;
  }

 private:
  static IGlobalInterfaceTable* interfaceTable() {
    void* table = nullptr;
    const HRESULT code = CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                          IID_IGlobalInterfaceTable, &table);
    return SUCCEEDED(code) ? static_cast<IGlobalInterfaceTable*>(table) : nullptr;
  }

  Object dbEngine() {
    const std::lock_guard lock(mutex_);
    IGlobalInterfaceTable* table = interfaceTable();
    if (table == nullptr) {
      return Object();
    }
    void* engine = nullptr;
    const bool known = cookie_ != 0 &&
                       SUCCEEDED(table->GetInterfaceFromGlobal(cookie_, IID_IDispatch, &engine)) &&
                       engine != nullptr;
    table->Release();
    if (known) {
      return Object(static_cast<IDispatch*>(engine));
    }
    // The apartment that made it has ended: another one takes over.
    drop();
    Object made = createDbEngine();
    keep(made);
    return made;
  }

  void keep(const Object& engine) {
    IGlobalInterfaceTable* table = engine ? interfaceTable() : nullptr;
    if (table != nullptr) {
      if (FAILED(table->RegisterInterfaceInGlobal(engine.get(), IID_IDispatch, &cookie_))) {
        cookie_ = 0;
      }
      table->Release();
    }
  }

  void drop() {
    IGlobalInterfaceTable* table = cookie_ != 0 ? interfaceTable() : nullptr;
    if (table != nullptr) {
      table->RevokeInterfaceFromGlobal(cookie_);
      table->Release();
    }
    cookie_ = 0;
  }

  std::recursive_mutex mutex_;
  DWORD cookie_ = 0;
};

}  // namespace

std::unique_ptr<DatabaseEngine> makeDaoEngine() {
  const Object engine = createDbEngine();
  return engine ? std::make_unique<DaoEngine>(engine) : nullptr;
}

}  // namespace veltrano
