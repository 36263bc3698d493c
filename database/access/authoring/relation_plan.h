#ifndef VELTRANO_DATABASE_ACCESS_AUTHORING_RELATION_PLAN_H
#define VELTRANO_DATABASE_ACCESS_AUTHORING_RELATION_PLAN_H

// Tables that are about to be made, with what relations add to their definitions.

#include <vector>

#include "database/access/authoring/create_database.h"

namespace veltrano::access {

struct TablePlan {
  NewTable table;  ///< an index without a name serves relations alone
  PageNumber page = 0;
  std::vector<RelationSide> relations;
};

/// Adds a relation to the plans of its two tables, which have their pages. Fails if it is not valid.
Status planRelation(const NewRelation& relation, std::vector<TablePlan>& plans);

}  // namespace veltrano::access

#endif
