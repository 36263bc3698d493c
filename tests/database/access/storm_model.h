#ifndef VELTRANO_TESTS_DATABASE_ACCESS_STORM_MODEL_H
#define VELTRANO_TESTS_DATABASE_ACCESS_STORM_MODEL_H

// The records of a storm (storm.h) in memory: random changes, and what has to come of them.

#include <array>
#include <map>
#include <optional>
#include <random>
#include <string>

#include "database/access/schema/table_definition.h"

namespace veltrano::access {

// All fields of a record but its ID and its parent follow from its version. Those of T have no parent.
enum StormTable : std::size_t { records, followers, loose, held, nested };
inline constexpr std::array<const char*, 5> stormTableNames = {"T", "Followers", "Loose", "Held", "Nested"};

struct StormRelation {
  StormTable parent;
  StormTable child;
  bool cascadeUpdates;
  OnDelete onDelete;
};
inline constexpr std::array<StormRelation, 4> stormRelations = {{
    {records, followers, true, OnDelete::cascade},
    {records, loose, false, OnDelete::setNull},
    {followers, held, true, OnDelete::refuse},
    {nested, nested, true, OnDelete::cascade},
}};

struct StormRow {
  int version = 0;
  std::optional<int> parent;
  bool operator==(const StormRow&) const = default;
};
using StormRows = std::map<int, StormRow>;    // by their IDs
using StormModel = std::array<StormRows, 5>;  // by tables

// One Update or Delete.
struct StormChange {
  enum class Kind { add, edit, rename, remove } kind;
  StormTable table;
  int id;
  StormRow row;
  int newId;
};

/// The model after the change. Empty if it must be refused.
std::optional<StormModel> expected(StormModel model, const StormChange& change);

StormChange drawChange(std::mt19937& random, const StormModel& model);

/// 0 to `limit` - 1.
int below(std::mt19937& random, int limit);

}  // namespace veltrano::access

#endif
