#include "database/veltrano_mdb.h"

#include "base/trace.h"
#include "database/database_engine.h"
#include "database/text_matcher.h"

namespace veltrano {

namespace {

constexpr std::int16_t flagTrue = -1;

void trace(const char* member, const ErrorReason& source, std::string_view detail = {}) {
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
    trace(member, *recordset);
  }
}

}  // namespace

VeltranoMDB::VeltranoMDB() : engine_(nullptr) {}
VeltranoMDB::VeltranoMDB(DatabaseEngine& engine) : engine_(&engine) {}
VeltranoMDB::VeltranoMDB(VeltranoMDB&&) noexcept = default;

VeltranoMDB& VeltranoMDB::operator=(VeltranoMDB&& other) noexcept {
  if (this != &other) {
    recordset_ = std::move(other.recordset_);
    database_ = std::move(other.database_);
    engine_ = other.engine_;
  }
  return *this;
}

// The recordset goes first (it is the last member), then its database.
VeltranoMDB::~VeltranoMDB() = default;

bool VeltranoMDB::OpenDB(const std::string& filename, const std::string& /*Username*/,
                         const std::string& Password) {
  // The shared engine is made on first use, not with the first object.
  DatabaseEngine& engine = engine_ != nullptr ? *engine_ : sharedDatabaseEngine();
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
  database_ = std::move(database);
  return true;
}

bool VeltranoMDB::OpenTable(const std::string& Table) {
  if (!database_) {
    traceClosed("OpenTable", "no database is open");
    return false;
  }
  auto recordset = database_->openTable(Table);
  if (!recordset) {
    trace("OpenTable", *database_, Table);
    return false;
  }
  recordset_ = std::move(recordset);
  return true;
}

bool VeltranoMDB::WriteRecord(const std::string& Field, const Value& value) {
  if (!recordset_) {
    traceClosed("WriteRecord", "no table is open");
  } else if (!recordset_->write(Field, value)) {
    trace("WriteRecord", *recordset_, Field);
  }
  return false;
}

std::string VeltranoMDB::ReadRecord_String(const std::string& xField) {
  std::string text;
  if (!recordset_) {
    traceClosed("ReadRecord_String", "no table is open");
  } else if (!recordset_->readText(xField, text)) {
    trace("ReadRecord_String", *recordset_, xField);
    text.clear();
  }
  return text;
}

void VeltranoMDB::Edit() {
  step("Edit", recordset_.get(), &Recordset::edit);
}
void VeltranoMDB::Delete() {
  step("Delete", recordset_.get(), &Recordset::remove);
}
void VeltranoMDB::MoveFirst() {
  step("MoveFirst", recordset_.get(), &Recordset::moveFirst);
}
void VeltranoMDB::MoveNext() {
  step("MoveNext", recordset_.get(), &Recordset::moveNext);
}
void VeltranoMDB::MoveLast() {
  step("MoveLast", recordset_.get(), &Recordset::moveLast);
}
void VeltranoMDB::AddNew() {
  step("AddNew", recordset_.get(), &Recordset::addNew);
}
void VeltranoMDB::Update() {
  step("Update", recordset_.get(), &Recordset::update);
}

bool VeltranoMDB::Eof() {
  if (!recordset_) {
    traceClosed("EOF", "no table is open");
    return false;
  }
  return recordset_->atEnd().value_or(false);
}

bool VeltranoMDB::FindRecord(const std::string& Field, const std::string& Value, std::int16_t CaseSensivite) {
  if (!recordset_) {
    traceClosed("FindRecord", "no table is open");
    return false;
  }
  MoveFirst();
  // Without an answer the recordset is closed, and no step could leave the loop.
  if (recordset_->atEnd().value_or(true)) {
    return false;
  }
  return recordset_->find(
      Field, TextMatcher(Value, CaseSensivite == flagTrue ? CaseRule::exact : CaseRule::lowered));
}

void VeltranoMDB::CloseTable() {
  step("CloseTable", recordset_.get(), &Recordset::close);
}

void VeltranoMDB::CloseDatabase() {
  if (!database_) {
    traceClosed("CloseDatabase", "no database is open");
  } else if (!database_->close()) {
    trace("CloseDatabase", *database_);
  }
}

}  // namespace veltrano
