#ifndef VELTRANO_TESTS_PDF_OUTSIDE_READERS_H
#define VELTRANO_TESTS_PDF_OUTSIDE_READERS_H

// Readers that others wrote, as programs of the system: native tests only.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

namespace veltrano::tests {

/// What `command` prints; it is run on `file`, with `after` behind it.
inline std::string outputOf(const std::string& command, const std::filesystem::path& file,
                            const std::string& after = "2>&1") {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(
      popen((command + " '" + file.string() + "' " + after).c_str(), "r"), pclose);
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
    output.append(buffer.data(), count);
  }
  return output;
}

inline bool installed(const char* program) {
  return std::system((std::string("command -v ") + program + " >/dev/null").c_str()) ==
         0;  // NOLINT(cert-env33-c)
}

/// The first page at one pixel a point, as poppler paints it without smoothing.
class Picture {
 public:
  explicit Picture(const std::filesystem::path& file)
      : data_(outputOf("pdftoppm -r 72 -f 1 -l 1 -aa no -aaVector no", file, "2>/dev/null")) {
    std::istringstream header(data_);
    std::string magic;
    int most = 0;
    header >> magic >> width_ >> height_ >> most;
    start_ = static_cast<std::size_t>(header.tellg()) + 1;
  }
  [[nodiscard]] bool valid() const {
    return width_ > 0 && data_.size() == start_ + static_cast<std::size_t>(width_ * height_) * 3;
  }
  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  [[nodiscard]] std::string pixel(int x, int y) const {
    return data_.substr(start_ + static_cast<std::size_t>(y * width_ + x) * 3, 3);
  }
  /// Whether anything but white is within the box (right and bottom left out).
  [[nodiscard]] bool hasInk(int left, int top, int right, int bottom) const {
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) {
        if (pixel(x, y) != "\xFF\xFF\xFF") return true;
      }
    }
    return false;
  }

 private:
  std::string data_;
  int width_ = 0;
  int height_ = 0;
  std::size_t start_ = 0;
};

}  // namespace veltrano::tests

#endif
