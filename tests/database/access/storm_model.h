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

// A record of T has a version, from which all its fields follow; those of the other tables only a parent.
enum StormTable : std::size_t { records, followers, loose, held };
inline constexpr std::array<const char*, 4> stormTableNames = {"T", "Followers", "Loose", "Held"};

struct StormRelation {
  StormTable parent;
  StormTable child;
  bool cascadeUpdates;
  OnDelete onDelete;
};
inline constexpr std::array<StormRelation, 3> stormRelations = {{
    {records, followers, true, OnDelete::cascade},
    {records, loose, false, OnDelete::setNull},
    {followers, held, true, OnDelete::refuse},
}};

struct StormRow {
  int version = 0;
  std::optional<int> parent;
  bool operator==(const StormRow&) const = default;
};
using StormRows = std::map<int, StormRow>;    // by their IDs
using StormModel = std::array<StormRows, 4>;  // by tables

// One Update or Delete. `parent` of a record of T is not used, `version` of the others neither.
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

/// For messages.
std::string describe(const StormModel& model);

}  // namespace veltrano::access

#endif
