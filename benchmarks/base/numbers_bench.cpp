// Formatting of numbers, the hottest functions of the library, compared with the standard library's for
// similar work.

#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "base/numbers/numbers.h"

namespace {

std::vector<double> pagePositions() {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> points(0, 842);
  std::vector<double> values(1024);
  for (double& value : values) {
    value = points(random);
  }
  return values;
}

// Coordinates with six decimals, as GPS receivers give them.
std::vector<double> degrees() {
  std::mt19937_64 random(2);
  std::uniform_real_distribution<double> range(-180, 180);
  std::vector<double> values(1024);
  for (double& value : values) {
    value = std::round(range(random) * 1e6) / 1e6;
  }
  return values;
}

template <typename Append>
void run(benchmark::State& state, const std::vector<double>& values, Append append) {
  std::string text;
  text.reserve(1U << 16);
  for (auto _ : state) {
    text.clear();
    for (const double value : values) {
      append(text, value);
    }
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

void pdfNumber(benchmark::State& state) {
  run(state, pagePositions(), [](std::string& text, double value) {
    std::array<char, veltrano::longestPdfNumber> digits;
    text.append(digits.data(), veltrano::writePdfNumber(digits.data(), value, 2));
  });
}

void peerToCharsFixed(benchmark::State& state) {
  run(state, pagePositions(), [](std::string& text, double value) {
    std::array<char, 32> digits;
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, 2);
    text.append(digits.data(), end.ptr);
  });
}

void peerSnprintf(benchmark::State& state) {
  run(state, pagePositions(), [](std::string& text, double value) {
    std::array<char, 32> digits;
    const int length = std::snprintf(digits.data(), digits.size(), "%.2f", value);
    text.append(digits.data(), static_cast<std::size_t>(length));
  });
}

void generalNumber(benchmark::State& state) {
  run(state, degrees(),
      [](std::string& text, double value) { text.append(veltrano::generalNumberText(value).view()); });
}

void peerToCharsShortest(benchmark::State& state) {
  run(state, degrees(), [](std::string& text, double value) {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text.append(digits.data(), end.ptr);
  });
}

void peerToChars15(benchmark::State& state) {
  run(state, degrees(), [](std::string& text, double value) {
    std::array<char, 32> digits;
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::general, 15);
    text.append(digits.data(), end.ptr);
  });
}

BENCHMARK(pdfNumber);
BENCHMARK(peerToCharsFixed);
BENCHMARK(peerSnprintf);
BENCHMARK(generalNumber);
BENCHMARK(peerToCharsShortest);
BENCHMARK(peerToChars15);

}  // namespace
