#ifndef VELTRANO_BENCHMARKS_PDF_PEERS_H
#define VELTRANO_BENCHMARKS_PDF_PEERS_H

// The same pages made by libharu without compression, and by the least work that gives the same operators
// (one string, numbers printed from rounded hundredths, one write).

#include <filesystem>
#include <string>
#include <string_view>

namespace veltrano::bench {

inline constexpr int stringsPerPage = 60;
inline constexpr int linesPerPage = 20;
inline constexpr int rectanglesPerPage = 10;
inline constexpr int tableRows = 40;
inline constexpr int tableColumns = 6;

/// 80 characters.
inline constexpr std::string_view sentence =
    "The quick brown fox jumps over the lazy dog and then it sleeps for an hour or s.";
inline constexpr std::string_view amount = "12 345.67";

void haruTextPages(const std::filesystem::path& file, int pages);
void haruTablePages(const std::filesystem::path& file, int pages);
void floorTextPages(const std::filesystem::path& file, int pages);
void floorTablePages(const std::filesystem::path& file, int pages);

}  // namespace veltrano::bench

#endif
