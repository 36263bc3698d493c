#include "veltrano/mdb.h"

#include "base/trace.h"
#include "database/database_engine.h"
#include "database/shared_engine.h"
#include "database/values/text_matcher.h"

namespace veltrano {

namespace {

/// Names the member in the trace.
struct Member : TracedMember {
  explicit Member(const char* name) : TracedMember("VeltranoMDB", name) {}
};

constexpr std::int16_t flagTrue = -1;

Status noDatabase() {
  return {Failure::missing, "no database is open"};
}
Status noTable() {
  return {Failure::missing, "no table is open"};
}

/// Whether a step succeeded; the trace says why not, and for which table or field.
bool succeeded(const Status& done, std::string_view name = {}) {
  if (done) {
    return true;
  }
  trace("Refused", name.empty() ? "" : " for \"", name, name.empty() ? "" : "\"", ": ", done, ".");
  return false;
}

/// Runs one operation of the current recordset, or does nothing without one.
void step(const char* name, Recordset* recordset, Status (Recordset::*operation)()) {
  const Member member(name);
  succeeded(recordset != nullptr ? (recordset->*operation)() : noTable());
}

}  // namespace

struct VeltranoMDB::Impl {
  /// Null for the shared one, which is made on first use and not with the first object.
  DatabaseEngine* engine = nullptr;
  std::unique_ptr<Database> database;
  std::unique_ptr<Recordset> recordset;  // goes first
};

VeltranoMDB::VeltranoMDB() : impl_(std::make_unique<Impl>()) {}
VeltranoMDB::VeltranoMDB(DatabaseEngine& engine) : VeltranoMDB() {
  impl_->engine = &engine;
}
VeltranoMDB::VeltranoMDB(VeltranoMDB&&) noexcept = default;
VeltranoMDB& VeltranoMDB::operator=(VeltranoMDB&&) noexcept = default;
VeltranoMDB::~VeltranoMDB() = default;

bool VeltranoMDB::OpenDB(const std::string& filename, const std::string& /*Username*/,
                         const std::string& Password) {
  const Member member("OpenDB");
  DatabaseEngine& engine = impl_->engine != nullptr ? *impl_->engine : sharedDatabaseEngine();
  std::optional<std::string> connect;
  if (!Password.empty()) {
    connect = std::string(passwordConnectPrefix) + Password;
  }
  auto database = engine.openDatabase(filename, connect);
  if (!succeeded(database.status(), filename)) {
    return false;
  }
  impl_->database = *std::move(database);
  return true;
}

bool VeltranoMDB::OpenTable(const std::string& Table) {
  const Member member("OpenTable");
  auto recordset = impl_->database ? impl_->database->openTable(Table) : noDatabase();
  if (!succeeded(recordset.status(), Table)) {
    return false;
  }
  impl_->recordset = *std::move(recordset);
  return true;
}

bool VeltranoMDB::WriteRecord(const std::string& Field, const Value& value) {
  const Member member("WriteRecord");
  succeeded(impl_->recordset ? impl_->recordset->write(Field, value) : noTable(), Field);
  return false;
}

std::string VeltranoMDB::ReadRecord_String(const std::string& xField) {
  const Member member("ReadRecord_String");
  std::string text;
  if (!succeeded(impl_->recordset ? impl_->recordset->readText(xField, text) : noTable(), xField)) {
    text.clear();
  }
  return text;
}

void VeltranoMDB::Edit() {
  step("Edit", impl_->recordset.get(), &Recordset::edit);
}
void VeltranoMDB::Delete() {
  step("Delete", impl_->recordset.get(), &Recordset::remove);
}
void VeltranoMDB::MoveFirst() {
  step("MoveFirst", impl_->recordset.get(), &Recordset::moveFirst);
}
void VeltranoMDB::MoveNext() {
  step("MoveNext", impl_->recordset.get(), &Recordset::moveNext);
}
void VeltranoMDB::MoveLast() {
  step("MoveLast", impl_->recordset.get(), &Recordset::moveLast);
}
void VeltranoMDB::AddNew() {
  step("AddNew", impl_->recordset.get(), &Recordset::addNew);
}
void VeltranoMDB::Update() {
  step("Update", impl_->recordset.get(), &Recordset::update);
}

bool VeltranoMDB::Eof() {
  const Member member("EOF");
  if (!impl_->recordset) {
    return succeeded(noTable());
  }
  return impl_->recordset->atEnd().value_or(false);
}

bool VeltranoMDB::FindRecord(const std::string& Field, const std::string& Value, std::int16_t CaseSensivite) {
  const Member member("FindRecord");
  if (!impl_->recordset) {
    return succeeded(noTable());
  }
  MoveFirst();
  // Without an answer the recordset is closed, and no step could leave the loop.
  if (impl_->recordset->atEnd().value_or(true)) {
    return false;
  }
  return impl_->recordset->find(
      Field, TextMatcher(Value, CaseSensivite == flagTrue ? CaseRule::exact : CaseRule::lowered));
}

void VeltranoMDB::CloseTable() {
  step("CloseTable", impl_->recordset.get(), &Recordset::close);
}

void VeltranoMDB::CloseDatabase() {
  const Member member("CloseDatabase");
  succeeded(impl_->database ? impl_->database->close() : noDatabase());
}

}  // namespace veltrano
