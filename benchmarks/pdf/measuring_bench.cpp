// Measuring a text, looking at a metrics file, parsing one, and breaking a paragraph into lines.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "pdf/fonts/afm_file.h"
#include "pdf/fonts/metrics_folder.h"
#include "pdf/text/line_breaking.h"
#include "veltrano/pdf.h"

namespace veltrano {
namespace {

const std::string eightyCharacters =
    "The quick brown fox jumps over the lazy dog while 1234567890 clocks tick loudly.";

/// A folder with Helvetica.afm followed by kerning, 74 KB in all, as fonts are published.
class FontFolder {
 public:
  FontFolder() : path_(std::filesystem::temp_directory_path() / "veltrano-measuring-bench") {
    std::filesystem::create_directories(path_);
    std::ifstream shipped(std::filesystem::path(VELTRANO_METRICS_FOLDER) / "Helvetica.afm", std::ios::binary);
    std::stringstream text;
    text << shipped.rdbuf() << "StartKernData\r\n";
    while (text.tellp() < 74 * 1024) {
      text << "KPX A quoteright -70\r\n";
    }
    std::ofstream(path_ / "Helvetica.afm", std::ios::binary) << text.str();
  }
  ~FontFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  FontFolder(const FontFolder&) = delete;
  FontFolder& operator=(const FontFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

void unchangedFile(benchmark::State& state) {
  VeltranoPDF pdf;
  pdf.PDFPathConfiguration(VELTRANO_METRICS_FOLDER);
  pdf.PDFSetFont(FONT_ARIAL, 10);
  for (auto _ : state) {
    benchmark::DoNotOptimize(pdf.PDFGetStringWidth(eightyCharacters, {}, 10));
  }
}
BENCHMARK(unchangedFile);

/// What setting a font and beginning a page cost: the file's times, not its content.
void lookingAtAFile(benchmark::State& state) {
  MetricsFolder folder;
  folder.setPath(VELTRANO_METRICS_FOLDER);
  for (auto _ : state) {
    benchmark::DoNotOptimize(folder.look("Helvetica"));
  }
}
BENCHMARK(lookingAtAFile);

void parsing(benchmark::State& state) {
  const FontFolder folder;
  const auto file = readIdentified(folder.path() / "Helvetica.afm", std::size_t{12} << 10);
  for (auto _ : state) {
    benchmark::DoNotOptimize(parseAfm(file->text, false));
  }
}
BENCHMARK(parsing);

/// The least that asking for a width can cost: opening the file and reading its metrics.
void readingAlone(benchmark::State& state) {
  const FontFolder folder;
  const auto file = folder.path() / "Helvetica.afm";
  for (auto _ : state) {
    benchmark::DoNotOptimize(readIdentified(file, std::size_t{12} << 10));
  }
}
BENCHMARK(readingAlone);

void breakingParagraph(benchmark::State& state) {
  MetricsFolder folder;
  folder.setPath(VELTRANO_METRICS_FOLDER);
  const auto metrics = folder.read("Helvetica");
  std::string text;
  while (text.size() < std::size_t{1} << 20) {
    text += eightyCharacters + ' ';
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(breakText(text, {*metrics, 10, 300}));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}
BENCHMARK(breakingParagraph);

}  // namespace
}  // namespace veltrano
