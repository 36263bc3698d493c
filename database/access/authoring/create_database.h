#ifndef VELTRANO_DATABASE_ACCESS_AUTHORING_CREATE_DATABASE_H
#define VELTRANO_DATABASE_ACCESS_AUTHORING_CREATE_DATABASE_H

// Makes Access 2000 databases (.mdb) and tables in them, without any other program. Not part of the automation
// interface: for tests, samples and tools.
//
//   using namespace veltrano::access;
//   createDatabase("contacts.mdb",
//                  {{.name = "People",
//                    .columns = {{.name = "ID", .type = ColumnType::longInteger, .autoNumber = true},
//                                {.name = "Name", .type = ColumnType::text, .size = 40}},
//                    .indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true}}}});

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "database/access/schema/table_definition.h"

namespace veltrano::access {

/// An enforced relation: a record of the child needs one of the parent with the same values in these columns.
struct NewRelation {
  std::string name = {};
  std::string parent = {};
  std::vector<std::string> parentColumns = {};  ///< those of a unique index of the parent, in its order
  std::string child = {};
  std::vector<std::string> childColumns = {};  ///< an index on them is made if there is none
  bool cascadeUpdates = false;
  OnDelete onDelete = OnDelete::refuse;
};

struct NewDatabase {
  std::string password = {};                ///< UTF-8, up to 20 characters; empty for none
  std::uint32_t pageKey = 0;                ///< other than 0: the pages are encoded under this key
  std::vector<NewRelation> relations = {};  ///< between the tables
  double created = 0;                       ///< automation date of the creation; 0 for the current time
  FileSystem* files = nullptr;              ///< where the file is made; the system's files if null
};

struct NewColumn {
  std::string name = {};  ///< UTF-8
  ColumnType type = ColumnType::text;
  std::uint16_t size = 255;  ///< text: characters (up to 255); binary: bytes (up to 510)
  std::uint8_t precision = 18;
  std::uint8_t scale = 0;
  bool autoNumber = false;  ///< a long integer that counts, or a GUID drawn at random
  bool compressed = true;   ///< text that allows it is stored one byte a character
  bool required = false;
  bool allowZeroLength = true;
  std::string defaultValue = {};    ///< "0", "\"none\"", "True", "Now()", "Date()"
  std::string validationRule = {};  ///< ">=0 And <150"; rules/parser.h says more
};

struct NewIndexColumn {
  std::string name = {};
  bool ascending = true;
};

struct NewIndex {
  std::string name = {};
  std::vector<NewIndexColumn> columns = {};
  bool primary = false;  ///< unique and required, too
  bool unique = false;
  bool ignoreNulls = false;
  bool required = false;
};

struct NewTable {
  std::string name = {};
  std::vector<NewColumn> columns = {};
  std::vector<NewIndex> indexes = {};
  std::string validationRule = {};  ///< of a whole record: "[Until]>=[From]"
};

/// Makes a database with these tables. Fails if the file exists (it is left alone) or cannot be written, or if
/// the description of a table is not valid; no file is made then.
Status createDatabase(const std::filesystem::path& file, const std::vector<NewTable>& tables,
                      const NewDatabase& options = {});

/// Adds tables, with relations between them, to an open database. Fails, with nothing changed, if a description is not
/// valid or the file cannot be written.
Status createTables(Pager& pager, const std::vector<NewTable>& tables,
                    const std::vector<NewRelation>& relations = {});

}  // namespace veltrano::access

#endif
