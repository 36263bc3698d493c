#include "veltrano/mdb.h"

#include "base/trace.h"
#include "database/database_engine.h"
#include "database/shared_engine.h"
#include "database/text_matcher.h"

namespace veltrano {

namespace {

constexpr std::int16_t flagTrue = -1;

void traceReason(const char* member, const ErrorReason& source, std::string_view detail = {}) {
  if (traceEnabled()) {
    traceSkipped(member, source.lastError(), detail);
  }
}

void traceClosed(const char* member, const char* what) {
  traceSkipped(member, what);
}

/// Runs one operation of the current recordset, or does nothing without one.
void step(const char* member, Recordset* recordset, bool (Recordset::*operation)()) {
  if (recordset == nullptr) {
    traceClosed(member, "no table is open");
  } else if (!(recordset->*operation)()) {
    traceReason(member, *recordset);
  }
}

}  // namespace

struct VeltranoMDB::Impl {
  DatabaseEngine* engine =
      nullptr;  ///< null: the shared one, made on first use and not with the first object
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
  DatabaseEngine& engine = impl_->engine != nullptr ? *impl_->engine : sharedDatabaseEngine();
  std::optional<std::string> connect;
  if (!Password.empty()) {
    connect = std::string(passwordConnectPrefix) + Password;
  }
  std::string reason;
  auto database = engine.openDatabase(filename, connect, reason);
  if (!database) {
    traceSkipped("OpenDB", reason, filename);
    return false;
  }
  impl_->database = std::move(database);
  return true;
}

bool VeltranoMDB::OpenTable(const std::string& Table) {
  if (!impl_->database) {
    traceClosed("OpenTable", "no database is open");
    return false;
  }
  auto recordset = impl_->database->openTable(Table);
  if (!recordset) {
    traceReason("OpenTable", *impl_->database, Table);
    return false;
  }
  impl_->recordset = std::move(recordset);
  return true;
}

bool VeltranoMDB::WriteRecord(const std::string& Field, const Value& value) {
  if (!impl_->recordset) {
    traceClosed("WriteRecord", "no table is open");
  } else if (!impl_->recordset->write(Field, value)) {
    traceReason("WriteRecord", *impl_->recordset, Field);
  }
  return false;
}

std::string VeltranoMDB::ReadRecord_String(const std::string& xField) {
  std::string text;
  if (!impl_->recordset) {
    traceClosed("ReadRecord_String", "no table is open");
  } else if (!impl_->recordset->readText(xField, text)) {
    traceReason("ReadRecord_String", *impl_->recordset, xField);
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
  if (!impl_->recordset) {
    traceClosed("EOF", "no table is open");
    return false;
  }
  return impl_->recordset->atEnd().value_or(false);
}

bool VeltranoMDB::FindRecord(const std::string& Field, const std::string& Value, std::int16_t CaseSensivite) {
  if (!impl_->recordset) {
    traceClosed("FindRecord", "no table is open");
    return false;
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
  if (!impl_->database) {
    traceClosed("CloseDatabase", "no database is open");
  } else if (!impl_->database->close()) {
    traceReason("CloseDatabase", *impl_->database);
  }
}

}  // namespace veltrano
