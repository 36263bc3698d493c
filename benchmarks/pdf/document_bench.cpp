#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "benchmarks/pdf/peers.h"
#include "veltrano/pdf.h"

// Pages per second of whole documents, from the first call to the file on the disk.

namespace veltrano::bench {
namespace {

using Maker = void (*)(const std::filesystem::path& file, int pages);

template <typename DrawPage>
void makeDocument(const std::filesystem::path& file, int pages, DrawPage drawPage) {
  VeltranoPDF pdf;
  pdf.PDFFileName(file);
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFSetFont(FONT_ARIAL, 10);
  pdf.PDFSetLineWidth(0.2);
  pdf.PDFBeginDoc();
  for (int page = 1; page <= pages; ++page) {
    drawPage(pdf);
    if (page == pages) break;
    pdf.PDFEndPage();
    pdf.PDFNewPage();
  }
  pdf.PDFEndDoc();
}

void textPages(const std::filesystem::path& file, int pages) {
  makeDocument(file, pages, [](VeltranoPDF& pdf) {
    pdf.PDFSetTextColor(COLOR_NOIR);
    for (int row = 0; row < stringsPerPage; ++row) pdf.PDFTextOut(sentence, 10, 10 + row * 4.5);
    for (int row = 0; row < linesPerPage; ++row) pdf.PDFDrawLineHor(10, 11 + row * 12.3, 180);
    for (int row = 0; row < rectanglesPerPage; ++row) pdf.PDFDrawRectangle(150, 20 + row * 25.7, 30, 8);
  });
}

void tablePages(const std::filesystem::path& file, int pages) {
  makeDocument(file, pages, [](VeltranoPDF& pdf) {
    pdf.PDFSetAlignement(ALIGN_RIGHT);
    for (int row = 0; row < tableRows; ++row) {
      for (int column = 0; column < tableColumns; ++column) {
        pdf.PDFSetBorder(BORDER_ALL);
        pdf.PDFCell(amount, 15 + column * 30, 10 + row * 6.5, 30, 6.5);
      }
    }
  });
}

std::filesystem::path outputFile() {
  return std::filesystem::temp_directory_path() / ("veltrano_bench_" + std::to_string(getpid()) + ".pdf");
}

void run(benchmark::State& state, Maker make) {
  const auto file = outputFile();
  const auto pages = static_cast<int>(state.range(0));
  std::uintmax_t bytes = 0;
  for (auto _ : state) {
    make(file, pages);
    // The next run writes under a new name, so that deleting the old file is not measured.
    state.PauseTiming();
    bytes = std::filesystem::file_size(file);
    std::filesystem::remove(file);
    state.ResumeTiming();
  }
  state.counters["pages/s"] =
      benchmark::Counter(pages, benchmark::Counter::kIsIterationInvariantRate, benchmark::Counter::kIs1000);
  state.counters["bytes/page"] = static_cast<double>(bytes) / pages;
}

long peakMemory(Maker make, const std::filesystem::path& file, int pages) {
  malloc_trim(0);  // a child could use what earlier documents left
  const pid_t child = fork();
  if (child == 0) {
    make(file, pages);
    _exit(0);
  }
  rusage usage{};
  wait4(child, nullptr, 0, &usage);
  return usage.ru_maxrss * 1024;
}

/// Peak memory of a process that makes one document, minus that of one that makes a single page, as a
/// multiple of the file size.
void memory(benchmark::State& state, Maker make) {
  const auto file = outputFile();
  const auto pages = static_cast<int>(state.range(0));
  double times = 0;
  for (auto _ : state) {
    const long base = peakMemory(make, file, 1);
    times = static_cast<double>(peakMemory(make, file, pages) - base) /
            static_cast<double>(std::filesystem::file_size(file));
  }
  state.counters["memory/file"] = times;
  std::filesystem::remove(file);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK_CAPTURE(memory, text_ours, textPages)->Arg(10000)->Iterations(1);
BENCHMARK_CAPTURE(memory, text_libharu, haruTextPages)->Arg(10000)->Iterations(1);
BENCHMARK_CAPTURE(memory, table_ours, tablePages)->Arg(10000)->Iterations(1);

BENCHMARK_CAPTURE(run, text_ours, textPages)->Apply(sizes);
BENCHMARK_CAPTURE(run, text_floor, floorTextPages)->Apply(sizes);
BENCHMARK_CAPTURE(run, text_libharu, haruTextPages)->Apply(sizes);
BENCHMARK_CAPTURE(run, table_ours, tablePages)->Apply(sizes);
BENCHMARK_CAPTURE(run, table_floor, floorTablePages)->Apply(sizes);
BENCHMARK_CAPTURE(run, table_libharu, haruTablePages)->Apply(sizes);

}  // namespace
}  // namespace veltrano::bench
