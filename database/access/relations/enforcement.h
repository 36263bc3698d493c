#ifndef VELTRANO_DATABASE_ACCESS_RELATIONS_ENFORCEMENT_H
#define VELTRANO_DATABASE_ACCESS_RELATIONS_ENFORCEMENT_H

// What follows from the change of one row through enforced relations: children are deleted or changed as the relations
// say, through as many levels as there are, and then everything that changed is checked. As the checks come last, it
// does not matter in which order a record's relations are followed, and a record may be its own parent.

#include <deque>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "database/access/relations/related_tables.h"

namespace veltrano::access {

/// A row of one of the file's tables.
struct RowOfTable {
  PageNumber table = 0;  ///< page of its definition
  RowPointer row;
};

class Enforcement {
 public:
  /// Fails if the table has relations that cannot be enforced.
  static Result<Enforcement> create(const Table& table);

  /// Follows the change of a row that has just been made in the current transaction, which is to be rolled back if this
  /// fails. `before` of a new row and `after` of a deleted one are not valid.
  Status follow(const RowView& before, const RowView& after);
  /// The rows that the last call of `follow` deleted.
  [[nodiscard]] const std::vector<RowOfTable>& deleted() const { return deleted_; }

 private:
  /// Children that are to follow their parent.
  struct Step {
    const Relation* relation;
    RelationKey key;                           ///< that they have
    std::optional<std::vector<Draft>> fields;  ///< what they get; none: they are deleted
  };
  /// A key that must have a parent if it has children.
  struct Check {
    const Relation* relation;
    RelationKey key;
    Relation::Role changed;  ///< whose row changed
  };

  Enforcement(RelatedTables tables, PageNumber table) : tables_(std::move(tables)), table_(table) {}
  Status note(const RelatedTable& table, const RowView& before, const RowView& after);
  Status noteParent(const Relation& relation, const RowView& before, const RowView& after);
  Status noteChild(const Relation& relation, const RowView& before, const RowView& after);
  void addCheck(const Relation& relation, RelationKey key, Relation::Role changed);
  Status take(const Step& step);
  Status changeChild(RelatedTable& table, RowPointer row, const Step& step);
  bool leadsInACircle(const RelatedTable& table, RowPointer row);
  static Status make(const Check& check);

  RelatedTables tables_;
  PageNumber table_;
  // Of the change that is followed.
  std::deque<Step> steps_;
  std::vector<Check> checks_;
  std::map<std::pair<PageNumber, RowPointer>, int> timesChanged_;
  std::vector<RowOfTable> deleted_;
};

}  // namespace veltrano::access

#endif
