// Creates an Access database with a table of contacts and adds the first people.
//   make_contacts FILE.mdb

#include <cstdio>
#include <filesystem>
#include <string>

#include "database/access/authoring/create_database.h"
#include "veltrano/mdb.h"

using veltrano::access::ColumnType;

namespace {

veltrano::Status makeFile(const std::filesystem::path& file) {
  veltrano::access::NewTable contacts;
  contacts.name = "Contacts";
  contacts.columns = {{.name = "ID", .type = ColumnType::longInteger, .autoNumber = true},
                      {.name = "LastName", .type = ColumnType::text, .size = 40, .required = true},
                      {.name = "FirstName", .type = ColumnType::text, .size = 40},
                      {.name = "City", .type = ColumnType::text, .size = 40},
                      {.name = "Born", .type = ColumnType::dateTime},
                      {.name = "Balance", .type = ColumnType::currency},
                      {.name = "Newsletter", .type = ColumnType::boolean},
                      {.name = "Remarks", .type = ColumnType::memo}};
  contacts.indexes = {{.name = "PrimaryKey", .columns = {{.name = "ID"}}, .primary = true},
                      {.name = "ByName", .columns = {{.name = "LastName"}, {.name = "FirstName"}}}};
  return veltrano::access::createDatabase(file, {contacts});
}

struct Person {
  const char* lastName;
  const char* firstName;
  const char* city;
  const char* born;
  double balance;
  bool newsletter;
};

constexpr Person people[] = {
    {"Lef\u00e8vre", "Andr\u00e9", "Besan\u00e7on", "1961-04-12", 125.5, true},
    {"M\u00fcller", "J\u00f6rg", "K\u00f6ln", "1974-11-30", -12.25, false},
    {"Garc\u00eda N\u00fa\u00f1ez", "In\u00e9s", "Le\u00f3n", "1988-02-29", 0, true},
    {"\u017b\u00f3\u0142\u0107", "Micha\u0142", "\u0141\u00f3d\u017a", "1990-07-01", 1999.99, true},
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: make_contacts FILE.mdb\n", stderr);
    return 2;
  }
  const std::filesystem::path file = arguments[1];
  std::error_code ignored;
  std::filesystem::remove(file, ignored);
  if (const auto made = makeFile(file); !made) {
    std::fprintf(stderr, "make_contacts: %s\n", made.reason().c_str());
    return 1;
  }
  const auto name = file.u8string();
  veltrano::VeltranoMDB mdb;
  if (!mdb.OpenDB(std::string(name.begin(), name.end())) || !mdb.OpenTable("Contacts")) {
    std::fputs("make_contacts: the new file does not open\n", stderr);
    return 1;
  }
  for (const Person& person : people) {
    mdb.AddNew();
    mdb.WriteRecord("LastName", person.lastName);
    mdb.WriteRecord("FirstName", person.firstName);
    mdb.WriteRecord("City", person.city);
    mdb.WriteRecord("Born", person.born);
    mdb.WriteRecord("Balance", person.balance);
    mdb.WriteRecord("Newsletter", person.newsletter);
    mdb.Update();
  }
  mdb.CloseTable();
  mdb.CloseDatabase();
  return 0;
}
