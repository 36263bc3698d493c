#include "database/access/table_writer.h"

#include <utility>

namespace veltrano::access {

Result<TableWriter> TableWriter::create(const Table& table) {
  if (!table.pager().writable()) {
    return table.pager().writable();
  }
  auto rows = RowWriter::create(table);
  if (!rows) {
    return rows.status();
  }
  TableWriter writer(table, *std::move(rows));
  if (!table.definition().relations.empty()) {
    auto enforcement = Enforcement::create(table);
    if (!enforcement) {
      return enforcement.status();
    }
    writer.enforcement_ = *std::move(enforcement);
  }
  return writer;
}

template <typename Steps>
Status TableWriter::inTransaction(Steps steps) {
  Transaction transaction(table_->pager());
  if (!transaction.begun()) {
    return transaction.begun();
  }
  Status done = steps();
  return done ? transaction.commit() : done;
}

// After rows_ has made a change.
Status TableWriter::followRelations() {
  return enforcement_ ? enforcement_->follow(rows_.before(), rows_.after()) : Status();
}

Status TableWriter::raiseAutoNumber(std::int32_t number) {
  return inTransaction([&] { return rows_.raiseAutoNumber(number); });
}

Result<RowPointer> TableWriter::insert(std::vector<Draft>& drafts) {
  Result<RowPointer> place = RowPointer();
  Status done = inTransaction([&] {
    place = insertInTransaction(drafts);
    return place.status();
  });
  return done ? place : done;
}

Result<RowPointer> TableWriter::insertInTransaction(std::vector<Draft>& drafts) {
  Result<RowPointer> place = rows_.insert(drafts);
  if (!place) {
    return place;
  }
  Status followed = followRelations();
  return followed ? place : followed;
}

Status TableWriter::update(RowPointer row, const std::vector<Draft>& drafts) {
  return inTransaction([&] {
    Status done = rows_.update(row, drafts);
    return done ? followRelations() : done;
  });
}

Result<std::vector<RowOfTable>> TableWriter::remove(RowPointer row) {
  Status done = inTransaction([&] {
    Status removed = rows_.remove(row);
    return removed ? followRelations() : removed;
  });
  if (!done) {
    return done;
  }
  std::vector<RowOfTable> gone = enforcement_ ? enforcement_->deleted() : std::vector<RowOfTable>();
  gone.push_back({table_->definition().page, row});
  return gone;
}

}  // namespace veltrano::access
