// Placemarks a second: this library, a peer, and the least work known that gives the same file: to_chars into a buffer,
// written when it holds 64 KB, and written after each placemark, as the library has to. Names and coordinates are
// made beforehand and look like those of a GPS receiver.

#include <benchmark/benchmark.h>
#include <kml/dom.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "veltrano/kml.h"

namespace {

struct Place {
  std::string name;
  double latitude;
  double longitude;
  double altitude;
};

const std::vector<Place>& places() {
  static const std::vector<Place> all = [] {
    std::vector<Place> made;
    unsigned random = 1;
    for (int i = 0; i < 1'000'000; ++i) {
      random = random * 1664525U + 1013904223U;
      made.push_back({"Place " + std::to_string(i), 48 + (random >> 12) / 1e6, 2 + (random >> 13) / 1e6,
                      (random >> 20) / 10.0});
    }
    return made;
  }();
  return all;
}

std::filesystem::path target() {
  return std::filesystem::temp_directory_path() / "veltrano-bench.kml";
}

void report(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(target()));
  std::filesystem::remove(target());
}

void placeMarks(benchmark::State& state) {
  for ([[maybe_unused]] auto round : state) {
    veltrano::VeltranoKML kml;
    kml.CreateKML(target(), {});
    for (std::size_t i = 0; i < static_cast<std::size_t>(state.range(0)); ++i) {
      const Place& place = places()[i];
      kml.CreatePlaceMark(place.latitude, place.longitude, place.altitude, place.name, "");
    }
    kml.CloseKML();
  }
  report(state);
}

class Buffer {
 public:
  explicit Buffer(std::FILE* file) : file_(file) {}
  void put(const char* text, std::size_t size) {
    if (size > sizeof bytes_ - used_) {
      flush();
    }
    __builtin_memcpy(bytes_ + used_, text, size);
    used_ += size;
  }
  void put(std::string_view text) { put(text.data(), text.size()); }
  void flush() {
    std::fwrite(bytes_, 1, used_, file_);
    used_ = 0;
  }

 private:
  std::FILE* file_;
  std::size_t used_ = 0;
  char bytes_[65536];
};

void leastWork(benchmark::State& state, bool writeEach) {
  for ([[maybe_unused]] auto round : state) {
    std::FILE* file = std::fopen(target().c_str(), "wb");
    std::setvbuf(file, nullptr, _IONBF, 0);
    Buffer buffer(file);
    std::string path;
    for (std::size_t i = 0; i < static_cast<std::size_t>(state.range(0)); ++i) {
      const Place& place = places()[i];
      char point[100];
      char* end = std::to_chars(point, point + 30, place.longitude).ptr;
      *end++ = ',';
      end = std::to_chars(end, end + 30, place.latitude).ptr;
      *end++ = ',';
      end = std::to_chars(end, end + 30, place.altitude).ptr;
      const std::string_view triple(point, static_cast<std::size_t>(end - point));
      buffer.put("  <Placemark>\r\n      <name>");
      buffer.put(place.name);
      buffer.put("</name>\r\n      \r\n      <Point>\r\n          <coordinates>");
      buffer.put(triple);
      buffer.put("</coordinates>\r\n      </Point>\r\n  </Placemark>\r\n");
      path.append(triple).append("\r\n");
      if (writeEach) {
        buffer.flush();
      }
    }
    buffer.flush();
    std::fclose(file);
    benchmark::DoNotOptimize(path.data());
  }
  report(state);
}

void flushedLines(benchmark::State& state) {
  for ([[maybe_unused]] auto round : state) {
    std::ofstream file(target());
    file.precision(15);
    for (std::size_t i = 0; i < static_cast<std::size_t>(state.range(0)); ++i) {
      const Place& place = places()[i];
      file << "  <Placemark>" << std::endl << "      <name>" << place.name << "</name>" << std::endl;
      file << "      <Point>" << std::endl << "          <coordinates>" << place.longitude << ",";
      file << place.latitude << "," << place.altitude << "</coordinates>" << std::endl;
      file << "      </Point>" << std::endl << "  </Placemark>" << std::endl;
    }
  }
  report(state);
}

void libkml(benchmark::State& state) {
  for ([[maybe_unused]] auto round : state) {
    auto* factory = kmldom::KmlFactory::GetFactory();
    kmldom::DocumentPtr document = factory->CreateDocument();
    for (std::size_t i = 0; i < static_cast<std::size_t>(state.range(0)); ++i) {
      const Place& place = places()[i];
      kmldom::CoordinatesPtr coordinates = factory->CreateCoordinates();
      coordinates->add_latlngalt(place.latitude, place.longitude, place.altitude);
      kmldom::PointPtr point = factory->CreatePoint();
      point->set_coordinates(coordinates);
      kmldom::PlacemarkPtr mark = factory->CreatePlacemark();
      mark->set_name(place.name);
      mark->set_geometry(point);
      document->add_feature(mark);
    }
    kmldom::KmlPtr kml = factory->CreateKml();
    kml->set_feature(document);
    std::ofstream(target()) << kmldom::SerializePretty(kml);
  }
  report(state);
}

BENCHMARK(placeMarks)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(leastWork, in_pieces, false)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(leastWork, each_written, true)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(flushedLines)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(libkml)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
