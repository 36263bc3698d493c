#ifndef VELTRANO_DATABASE_ACCESS_RELATIONS_RELATION_H
#define VELTRANO_DATABASE_ACCESS_RELATIONS_RELATION_H

// One enforced relation: which records of a child table depend on which record of a parent table.
//
// Both tables have an index on the columns of the relation. A child depends on the parent whose index has the key that
// the child's values make there, so texts that differ in case or in blanks at their end are the same key. A child whose
// columns are all null depends on nothing; one with some nulls needs a parent with the same nulls.

#include <optional>
#include <string>
#include <vector>

#include "database/access/index/key.h"
#include "database/access/rows/row_writer.h"
#include "database/access/schema/table.h"

namespace veltrano::access {

/// The values by which a row takes part in a relation, as keys of the two indexes.
struct RelationKey {
  struct Side {
    bool possible = false;  ///< the index can have an entry with the key
    std::vector<std::uint8_t> bytes;
    friend bool operator==(const Side&, const Side&) = default;
  };
  bool allNull = false;
  Side parent;
  Side child;
  friend bool operator==(const RelationKey&, const RelationKey&) = default;
};

class Relation {
 public:
  using Role = RelationSide::Role;

  /// Fails if the relation cannot be enforced. The tables must outlive the relation.
  static Result<Relation> create(const Table& parent, const RelationSide& parentSide, const Table& child,
                                 const RelationSide& childSide);

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const Table& parent() const { return *parent_.table; }
  [[nodiscard]] const Table& child() const { return *child_.table; }
  [[nodiscard]] bool cascadesUpdates() const { return cascadesUpdates_; }
  [[nodiscard]] OnDelete onDelete() const { return onDelete_; }

  /// The key of a row of the table that has this role. Empty if the row is damaged.
  [[nodiscard]] std::optional<RelationKey> keyOf(Role role, const RowView& row) const;
  /// Fails if an index is damaged.
  [[nodiscard]] Result<bool> hasParent(const RelationKey& key) const;
  [[nodiscard]] Result<bool> hasChildren(const RelationKey& key) const;
  /// The children with the key.
  [[nodiscard]] Result<std::vector<RowPointer>> children(const RelationKey& key) const;

  /// What makes a child one of the row `parent`, or, without it, of none. Fails if a value does not fit.
  [[nodiscard]] Result<std::vector<Draft>> assignment(const RowView* parent) const;

 private:
  struct Side {
    const Table* table;
    const Index* index;
    std::vector<const Column*> columns;
    IndexKeyMaker maker;
  };
  static Result<Side> makeSide(const Table& table, const RelationSide& side);

  Relation(std::string name, Side parent, Side child, const RelationSide& parentSide)
      : name_(std::move(name)),
        parent_(std::move(parent)),
        child_(std::move(child)),
        cascadesUpdates_(parentSide.cascadesUpdates),
        onDelete_(parentSide.onDelete) {}

  std::string name_;
  Side parent_;
  Side child_;
  bool cascadesUpdates_;
  OnDelete onDelete_;
};

}  // namespace veltrano::access

#endif
