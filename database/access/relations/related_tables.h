#ifndef VELTRANO_DATABASE_ACCESS_RELATIONS_RELATED_TABLES_H
#define VELTRANO_DATABASE_ACCESS_RELATIONS_RELATED_TABLES_H

// The tables of a file that relations connect, each read when it is first needed.

#include <map>
#include <memory>
#include <vector>

#include "database/access/relations/relation.h"
#include "database/access/rows/row_writer.h"
#include "database/access/schema/table.h"

namespace veltrano::access {

struct RelatedTable {
  explicit RelatedTable(Table ownTable) : table(std::move(ownTable)), writer(RowWriter::create(table)) {}
  RelatedTable(const RelatedTable&) = delete;
  RelatedTable& operator=(const RelatedTable&) = delete;
  ~RelatedTable() = default;

  Table table;
  Result<RowWriter> writer;  ///< or why rows of the table cannot be written
  std::vector<Relation> asParent;
  std::vector<Relation> asChild;
  bool connected = false;  ///< the relations are known
};

class RelatedTables {
 public:
  explicit RelatedTables(Pager& pager) : pager_(&pager) {}

  /// The table whose definition starts at that page, with its relations; it lives as long as this. Fails if it cannot
  /// be read or one of its relations cannot be enforced.
  Result<RelatedTable*> find(PageNumber page);

 private:
  Result<RelatedTable*> read(PageNumber page);
  Status connect(RelatedTable& table);
  Result<Relation> makeRelation(const RelatedTable& table, const RelationSide& side);

  Pager* pager_;
  std::map<PageNumber, std::unique_ptr<RelatedTable>> tables_;
};

}  // namespace veltrano::access

#endif
