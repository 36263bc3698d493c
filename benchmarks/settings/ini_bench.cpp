// Reads and changes the last of many keys, compared with the speed of memory, a line-by-line scan and two INI
// libraries.

#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <iniparser/iniparser.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "base/files/whole.h"
#include "veltrano/ini.h"

namespace {

constexpr std::size_t tenMegabytes = 10'000'000;
constexpr const char* lastKey = "LastKey";

/// Lines of about 30 characters, then the last key.
std::string iniText(std::size_t size) {
  std::string text;
  text.reserve(size + 100);
  for (int i = 0; text.size() < size; ++i) {
    text += "Setting" + std::to_string(i) + "=some value " + std::to_string(i % 1000) + "\r\n";
  }
  return text + lastKey + "=1\r\n";
}

std::u16string wide(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

void getValue(benchmark::State& state, const char* key) {
  const std::u16string text = wide(iniText(tenMegabytes));
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(veltrano::VeltranoINI().GetValue(text, wide(key)));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void memchrScan(benchmark::State& state) {
  const std::string text = iniText(tenMegabytes);
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(std::memchr(text.data(), '\0', text.size()));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void memchrLineScan(benchmark::State& state) {
  const std::string text = iniText(tenMegabytes);
  const std::size_t size = std::strlen(lastKey);
  for ([[maybe_unused]] auto round : state) {
    const char* line = text.data();
    const char* const end = line + text.size();
    while (line != nullptr && std::memcmp(line, lastKey, size) != 0) {
      line = static_cast<const char*>(std::memchr(line, '\n', static_cast<std::size_t>(end - line)));
      line = line == nullptr ? nullptr : line + 1;
    }
    benchmark::DoNotOptimize(line);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void changeValue(benchmark::State& state) {
  const std::u16string text = wide(iniText(tenMegabytes));
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(veltrano::VeltranoINI().ChangeValue(text, wide(lastKey), u"2"));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void copy(benchmark::State& state) {
  const std::string text = iniText(tenMegabytes);
  for ([[maybe_unused]] auto round : state) {
    std::string copied = text;
    benchmark::DoNotOptimize(copied.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

/// A file with that many lines, the last one with the key.
class IniFile {
 public:
  explicit IniFile(std::size_t lines) {
    std::string text = "[main]\r\n" + iniText(lines * 31);
    veltrano::replaceFile(path, text);
  }
  IniFile(const IniFile&) = delete;
  IniFile& operator=(const IniFile&) = delete;
  ~IniFile() { std::filesystem::remove(path); }

  const std::filesystem::path path = std::filesystem::temp_directory_path() / "veltrano-bench.ini";
};

void getIniValue(benchmark::State& state) {
  const IniFile file(static_cast<std::size_t>(state.range(0)));
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(veltrano::VeltranoINI().GetIniValue(file.path, wide(lastKey), u""));
  }
}

void getBySimpleIni(benchmark::State& state) {
  const IniFile file(static_cast<std::size_t>(state.range(0)));
  for ([[maybe_unused]] auto round : state) {
    CSimpleIniA ini;
    ini.LoadFile(file.path.c_str());
    benchmark::DoNotOptimize(ini.GetValue("main", lastKey, ""));
  }
}

void getByIniparser(benchmark::State& state) {
  const IniFile file(static_cast<std::size_t>(state.range(0)));
  for ([[maybe_unused]] auto round : state) {
    dictionary* const ini = iniparser_load(file.path.c_str());
    benchmark::DoNotOptimize(iniparser_getstring(ini, "main:lastkey", ""));
    iniparser_freedict(ini);
  }
}

BENCHMARK_CAPTURE(getValue, lastKey, lastKey)->Unit(benchmark::kMicrosecond);
/// Ends like one line in a hundred, so that many lines pass the first check.
BENCHMARK_CAPTURE(getValue, alikeKey, "Settinx99")->Unit(benchmark::kMicrosecond);
BENCHMARK(memchrScan)->Unit(benchmark::kMicrosecond);
BENCHMARK(memchrLineScan)->Unit(benchmark::kMicrosecond);
BENCHMARK(changeValue)->Unit(benchmark::kMicrosecond);
BENCHMARK(copy)->Unit(benchmark::kMicrosecond);
BENCHMARK(getIniValue)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(getBySimpleIni)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
/// Its time grows with the square of the lines.
BENCHMARK(getByIniparser)->Arg(10'000)->Unit(benchmark::kMicrosecond);

}  // namespace
