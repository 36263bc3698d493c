// veltrano: the library on the command line. Results go to standard output, everything else to the
// error output. Exit codes: 0 done, 1 not done or something is wrong, 2 wrong use.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <new>

#include "base/text/excerpt.h"
#include "database/access/authoring/schema_text.h"
#include "tools/program.h"
#include "veltrano/version.h"

namespace {

using namespace veltrano::tools;

constexpr const char* examples = R"(Examples:
  veltrano doctor
  veltrano mdb create contacts.mdb contacts.txt
  veltrano mdb export contacts.mdb People -o people.csv
  veltrano mdb import contacts.mdb People people.csv
  veltrano pdf people.csv -o people.pdf --title "All people"

Exit codes: 0 if all is well, 1 if something could not be done or is wrong, 2 for wrong use.)";

/// Everything that arguments can say.
struct Arguments {
  DatabaseFile database;
  std::string schema, csv, table;
  bool asSchema = false;
  Export exported;
  Pages pages;
  bool well = true;
};

void addDatabaseCommands(CLI::App& program, Arguments& given) {
  CLI::App& mdb = *program.add_subcommand("mdb", "Access databases: create, list, export, import, check");
  mdb.require_subcommand(1);
  const auto command = [&](const char* name, const char* what) {
    CLI::App* added = mdb.add_subcommand(name, what);
    added->add_option("FILE", given.database.name, "The database, .mdb or .accdb")->required();
    added->add_option("--password", given.database.password, "Its password")->envname("VELTRANO_PASSWORD");
    return added;
  };
  CLI::App* create = command("create", "Make a database of the 2000 format from a description of its tables");
  create->add_option("SCHEMA", given.schema, "The description")->required();
  create->footer(veltrano::access::schemaForm);
  create->callback([&given] { createDatabaseFrom(given.database, given.schema); });

  CLI::App* tables = command("tables", "List the tables, a name a line");
  tables->add_flag("--schema", given.asSchema, "Describe them in the form that \"create\" reads");
  tables->callback([&given] { listTables(given.database, given.asSchema); });

  CLI::App* out = command("export", "Write the records of a table as CSV or JSON lines, in UTF-8");
  out->add_option("TABLE", given.exported.table, "The table")->required();
  out->add_option("-o,--output", given.exported.output, "A file instead of standard output");
  out->add_flag("--json", given.exported.asJson, "A JSON object a line instead of CSV");
  out->add_flag("--rescue", given.exported.rescue, "Leave out what is damaged");
  out->footer("In CSV a null is nothing and an empty text is \"\". Bytes are hexadecimal digits.");
  out->callback([&given] { exportTable(given.database, given.exported); });

  CLI::App* in = command("import", "Add the records of a CSV file to a table: all of them or none");
  in->add_option("TABLE", given.table, "The table")->required();
  in->add_option("CSV", given.csv, "The records, in UTF-8; the first line names the fields")->required();
  in->footer("No text is a null, \"\" an empty text. With one field an empty line is a null.");
  in->callback([&given] { importTable(given.database, given.table, given.csv); });

  command("check", "Check a whole file")->callback([&given] { given.well = checkFile(given.database); });
}

void addPdfCommand(CLI::App& program, Arguments& given) {
  Pages& pages = given.pages;
  CLI::App* pdf = program.add_subcommand("pdf", "Make a PDF of a text or of a table (.csv, .tsv)");
  pdf->add_option("INPUT", pages.input, "The text or table, in UTF-8 or the code page")->required();
  pdf->add_option("-o,--output", pages.output, "The PDF")->required();
  pdf->add_option("--title", pages.title, "Above the first page; the name of the input without it");
  pdf->add_option("--font", pages.font, "Of a text: mono, sans or serif")
      ->default_str("mono")
      ->check(CLI::IsMember({"mono", "sans", "serif"}));
  pdf->add_flag("--letter", pages.letter, "Letter paper instead of A4");
  pdf->add_flag("--landscape", pages.landscape, "Pages across; tables turn by themselves if they must");
  pdf->add_flag("--table", pages.asTable, "The input is a table, whatever its name");
  pdf->callback([&pages] { makePages(pages); });
}

int run(std::vector<std::string> arguments) {
  CLI::App program("Documents, Access databases and the state of an installation of VeltranoFrameWorkDLL.",
                   "veltrano");
  Arguments given;
  program.footer(examples);
  program.set_version_flag("--version", std::string("veltrano ") + veltrano::versionText);
  program.set_help_all_flag("--help-all", "Print the help of every command and exit");
  program.require_subcommand(1);
  program.add_subcommand("doctor", "Say what an installation consists of and what to do about what is wrong")
      ->callback([&given] { given.well = diagnose(); });
  addDatabaseCommands(program, given);
  addPdfCommand(program, given);
  try {
    std::ranges::reverse(arguments);  // as the parser wants them
    program.parse(arguments);
  } catch (const CLI::ParseError& error) {
    const int code = program.exit(error);
    return code != 0 ? 2 : std::cout.flush() ? 0 : 1;
  }
  return given.well ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return run(prepare(count, arguments));
  } catch (const std::bad_alloc&) {
    std::fputs("veltrano: not enough memory\n", stderr);
  } catch (const std::exception& problem) {
    if (veltrano::interrupted()) veltrano::endInterrupted();
    std::fprintf(stderr, "veltrano: %s\n", veltrano::printable(problem.what()).c_str());
  }
  return 1;
}
