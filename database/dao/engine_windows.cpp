#include "database/dao/engine_windows.h"

#include <mutex>

#include "database/dao/object_windows.h"
#include "database/values/field_conversion.h"

namespace veltrano {

namespace {

using dao::Object;
using dao::Variant;

// {00000100-0000-0010-8000-00AA006D2EA4}: DBEngine of DAO 3.6.
constexpr CLSID dao36 = {0x00000100, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};
constexpr const wchar_t* successor = L"DAO.DBEngine.120";
constexpr long dynaset = 2;

/// The types of fields, as DAO numbers them (DataTypeEnum).
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

/// The value in the terms of its field, so that DAO has no text to convert: it would read and write them in
/// the locale of the user, and a number that was read back would become another one where the comma is the
/// decimal separator. What does not convert is left for DAO to refuse.
Value inTermsOf(const Object& field, const Value& value) {
  if (value.isEmpty() || value.isNull()) {
    return value;
  }
  const auto type = field.property(L"Type");
  const bool isText = value.isText();
  switch (type ? type->toNumber().value_or(0) : 0) {
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

  Status moveFirst() override { return method(L"MoveFirst"); }
  Status moveLast() override { return method(L"MoveLast"); }
  Status moveNext() override { return method(L"MoveNext"); }
  Status edit() override { return method(L"Edit"); }
  Status addNew() override { return method(L"AddNew"); }
  Status update() override { return method(L"Update"); }
  Status remove() override { return method(L"Delete"); }
  Status close() override { return method(L"Close"); }

  std::optional<bool> atEnd() override {
    const auto flag = recordset_.property(L"EOF");
    return flag ? flag->toFlag() : std::nullopt;
  }

  Status readText(std::string_view field, std::string& text) override {
    text.clear();
    const auto object = find(field);
    const auto value = object ? object->property(L"Value") : object.status();
    if (!value) {
      return value.status();
    }
    return value->toText(text) ? Status() : Status(Failure::other, "the value has no text");
  }

  Status write(std::string_view field, const Value& value) override {
    if (value.as<Opaque>() != nullptr || value.as<Value::List>() != nullptr ||
        value.as<Value::Doubles>() != nullptr) {
      return {Failure::other, "a value of this kind cannot be assigned"};
    }
    const auto object = find(field);
    if (!object) {
      return object.status();
    }
    const auto assigned = Variant::from(inTermsOf(*object, value));
    return assigned ? object->setProperty(L"Value", *assigned) : Status(Failure::full, "memory is short");
  }

 private:
  Status method(const wchar_t* name) { return recordset_.call(name).status(); }

  /// Fields(name)
  [[nodiscard]] Result<Object> find(std::string_view field) const {
    const auto fields = Object::of(recordset_.property(L"Fields"));
    return fields ? Object::of(fields->item(Variant::text(field))) : fields.status();
  }

  Object recordset_;
};

class DaoDatabase final : public Database {
 public:
  explicit DaoDatabase(Object database) : database_(std::move(database)) {}

  Result<std::unique_ptr<Recordset>> openTable(std::string_view table) override {
    const Variant name = Variant::text(table);
    const Variant type = Variant::number(dynaset);
    auto recordset = Object::of(database_.call(L"OpenRecordset", {&name, &type}));
    if (!recordset) {
      return recordset.status();
    }
    return std::make_unique<DaoRecordset>(*std::move(recordset));
  }

  Status close() override { return database_.call(L"Close").status(); }

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

/// The process has one DBEngine, which belongs to the apartment that made it. The global interface table marshals
/// it to the others; in its own apartment that gives the object itself.
class DaoEngine final : public DatabaseEngine {
 public:
  explicit DaoEngine(const Object& engine) { keep(engine); }
  DaoEngine(const DaoEngine&) = delete;
  DaoEngine& operator=(const DaoEngine&) = delete;
  ~DaoEngine() override { drop(); }

  Result<std::unique_ptr<Database>> openDatabase(std::string_view fileName,
                                                 std::optional<std::string_view> connect) override {
    const Object engine = dbEngine();
    if (!engine) {
      return {Failure::missing, "the DAO engine is gone"};
    }
    const Variant name = Variant::text(fileName);
    const Variant no = Variant::flag(false);
    const Variant missing = Variant::missing();
    const Variant secret = connect ? Variant::text(*connect) : Variant();
    auto database = Object::of(connect ? engine.call(L"OpenDatabase", {&name, &no, &no, &secret})
                                       : engine.call(L"OpenDatabase", {&name, &missing, &missing, &missing}));
    if (!database) {
      return database.status();
    }
    return std::make_unique<DaoDatabase>(*std::move(database));
  }

 private:
  static dao::Owner<IGlobalInterfaceTable> interfaceTable() {
    void* table = nullptr;
    CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER, IID_IGlobalInterfaceTable,
                     &table);
    return dao::Owner<IGlobalInterfaceTable>(static_cast<IGlobalInterfaceTable*>(table));
  }

  Object dbEngine() {
    const std::lock_guard lock(mutex_);
    const auto table = interfaceTable();
    if (!table) {
      return Object();
    }
    void* engine = nullptr;
    if (cookie_ != 0 && SUCCEEDED(table.get()->GetInterfaceFromGlobal(cookie_, IID_IDispatch, &engine)) &&
        engine != nullptr) {
      return Object(static_cast<IDispatch*>(engine));
    }
    // The apartment that made it has ended: another one takes over.
    drop();
    Object made = createDbEngine();
    keep(made);
    return made;
  }

  void keep(const Object& engine) {
    if (const auto table = interfaceTable();
        engine && table &&
        FAILED(table.get()->RegisterInterfaceInGlobal(engine.get(), IID_IDispatch, &cookie_))) {
      cookie_ = 0;
    }
  }

  void drop() {
    if (const auto table = interfaceTable(); cookie_ != 0 && table) {
      table.get()->RevokeInterfaceFromGlobal(cookie_);
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
