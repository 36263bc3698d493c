// A text or a table as a PDF.

#include "base/text/wtf8.h"
#include "database/access/transfer/csv.h"
#include "pdf/sheets/sheets.h"
#include "tools/program.h"
#include "veltrano/text.h"
#include "veltrano/version.h"

namespace veltrano::tools {

namespace {

/// Text that is not UTF-8 is taken to be in the code page.
std::string toAnsi(const std::string& text) {
  return isWtf8(text) ? utf8ToAnsi(text) : text;
}

std::string readText(const std::string& name) {
  std::string text = readInput(name);
  if (text.find('\0') != std::string::npos) throw Problem(name, "UTF-16, or not a text");
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  return toAnsi(text);
}

std::vector<std::vector<std::string>> readTable(const std::string& name) {
  auto reader = orProblem(access::CsvReader::open(pathFromUtf8(name)), name);
  std::vector<std::vector<std::string>> rows;
  std::vector<access::CsvField> fields;
  while (reader.next(fields)) {
    auto& row = rows.emplace_back();
    for (const auto& field : fields) row.push_back(toAnsi(field.text));
    if (reader.read() > mostInput) throw Problem(name, "it has more than 256 MB");
  }
  orProblem(reader.status(), name + ": line " + std::to_string(reader.line()));
  if (rows.empty()) {
    throw Problem(name, "an empty table");
  }
  return rows;
}

}  // namespace

void makePages(const Pages& options) {
  const auto input = pathFromUtf8(options.input);
  const auto kind = input.extension();
  const bool asTable = options.asTable || kind == ".csv" || kind == ".tsv";
  const std::string title = utf8ToAnsi(options.title.empty() ? pathToUtf8(input.stem()) : options.title);
  const auto text = asTable ? std::string() : readText(options.input);
  auto rows = asTable ? readTable(options.input) : std::vector<std::vector<std::string>>();
  Output output(options.output, options.input);
  sheets::Book book(options.letter ? 612 : 595, options.letter ? 792 : 842);
  if (options.landscape) {
    book.turn();
  }
  book.pdf.PDFFileName(output.unfinished());
  book.pdf.PDFCreator(std::string("veltrano ") + versionText);
  Progress progress("drawing");
  const auto tick = [&progress](double done) { progress.at(done); };
  const auto font = options.font == "mono" ? FONT_COURIER : options.font == "sans" ? FONT_ARIAL : FONT_TIMES;
  orProblem(asTable ? makeTableSheets(book, title, std::move(rows), !options.landscape, tick)
                    : makeTextSheets(book, title, text, font, tick),
            options.input);
  // The class does not say whether it could write.
  std::error_code error;
  if (std::filesystem::file_size(output.unfinished(), error) == 0 || error) {
    throw Problem(options.output, "cannot be written");
  }
  output.finish();
}

}  // namespace veltrano::tools
