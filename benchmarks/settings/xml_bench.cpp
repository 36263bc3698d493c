// A store of 200 folders with 500 keys each, compared with the parser alone doing the same.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <pugixml.hpp>
#include <random>

#include "base/files/whole.h"
#include "veltrano/xml.h"

namespace {

constexpr int folderCount = 200;
constexpr int keyCount = 500;
constexpr int lookUps = 100'000;

std::string folderName(int i) {
  return "Folder" + std::to_string(i);
}
std::string keyName(int i) {
  return "Key" + std::to_string(i);
}

/// A saved store; `value` makes the values.
class Store {
 public:
  explicit Store(const char* value) {
    veltrano::VeltranoXML xml;
    xml.XML_Open(file);
    for (int i = 0; i < folderCount; ++i) {
      for (int k = 0; k < keyCount; ++k) {
        xml.XML_SaveSetting(folderName(i), keyName(k), value + std::to_string(i * k));
      }
    }
    xml.XML_Save();
  }
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  ~Store() { std::filesystem::remove(file); }

  const std::filesystem::path file = std::filesystem::temp_directory_path() / "veltrano-bench.xml";
};

/// Plain values, and values with a reference and a letter beyond ASCII, which take the slower path.
constexpr const char* valueKinds[] = {"value ", "\xC3\xA9 & "};

constexpr unsigned everything =
    pugi::parse_default | pugi::parse_comments | pugi::parse_pi | pugi::parse_ws_pcdata;

void load(benchmark::State& state) {
  const Store store(valueKinds[state.range(0)]);
  for ([[maybe_unused]] auto round : state) {
    veltrano::VeltranoXML xml;
    xml.XML_Open(store.file);
  }
}

void loadByPugixml(benchmark::State& state) {
  const Store store(valueKinds[state.range(0)]);
  for ([[maybe_unused]] auto round : state) {
    pugi::xml_document document;
    document.load_file(store.file.c_str(), everything);
  }
}

void save(benchmark::State& state) {
  const Store store(valueKinds[state.range(0)]);
  veltrano::VeltranoXML xml;
  xml.XML_Open(store.file);
  for ([[maybe_unused]] auto round : state) {
    xml.XML_Save();
  }
}

void saveByPugixml(benchmark::State& state) {
  const Store store(valueKinds[state.range(0)]);
  pugi::xml_document document;
  document.load_file(store.file.c_str(), everything);
  for ([[maybe_unused]] auto round : state) {
    document.save_file(store.file.c_str(), "", pugi::format_raw);
  }
}

/// As safe as ours: the new file is on the disk before the old one is replaced.
void saveSafelyByPugixml(benchmark::State& state) {
  struct StringWriter final : pugi::xml_writer {
    std::string text;
    void write(const void* data, std::size_t size) override {
      text.append(static_cast<const char*>(data), size);
    }
  };
  const Store store(valueKinds[state.range(0)]);
  pugi::xml_document document;
  document.load_file(store.file.c_str(), everything);
  for ([[maybe_unused]] auto round : state) {
    StringWriter writer;
    document.save(writer, "", pugi::format_raw);
    veltrano::replaceFile(store.file, writer.text, veltrano::Durability::power);
  }
}

struct Names {
  std::vector<std::string> folders;
  std::vector<std::string> keys;
};

/// Of keys in the first `folders` folders.
Names randomNames(int folders) {
  std::mt19937 random(1);
  Names names;
  for (int i = 0; i < lookUps; ++i) {
    names.folders.push_back(folderName(static_cast<int>(random() % static_cast<unsigned>(folders))));
    names.keys.push_back(keyName(static_cast<int>(random() % keyCount)));
  }
  return names;
}

void getSetting(benchmark::State& state) {
  const Store store(valueKinds[0]);
  const Names names = randomNames(static_cast<int>(state.range(0)));
  veltrano::VeltranoXML xml;
  xml.XML_Open(store.file);
  for ([[maybe_unused]] auto round : state) {
    for (std::size_t i = 0; i < lookUps; ++i) {
      benchmark::DoNotOptimize(xml.XML_GetSetting(names.folders[i], names.keys[i]));
    }
  }
  state.SetItemsProcessed(state.iterations() * lookUps);
}

void getSettingByPugixml(benchmark::State& state) {
  const Store store(valueKinds[0]);
  const Names names = randomNames(static_cast<int>(state.range(0)));
  pugi::xml_document document;
  document.load_file(store.file.c_str(), everything);
  for ([[maybe_unused]] auto round : state) {
    const pugi::xml_node root = document.child("XML");
    for (std::size_t i = 0; i < lookUps; ++i) {
      const std::string value =
          root.child(names.folders[i].c_str()).child(names.keys[i].c_str()).text().get();
      benchmark::DoNotOptimize(value.data());
    }
  }
  state.SetItemsProcessed(state.iterations() * lookUps);
}

BENCHMARK(load)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(loadByPugixml)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(save)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(saveByPugixml)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(saveSafelyByPugixml)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(getSetting)->Arg(1)->Arg(folderCount)->Unit(benchmark::kMillisecond);
BENCHMARK(getSettingByPugixml)->Arg(1)->Arg(folderCount)->Unit(benchmark::kMillisecond);

}  // namespace
