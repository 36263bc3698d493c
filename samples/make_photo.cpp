// Draws photo.jpg, an evening at a lake, for the samples that place and resize pictures.
//   make_photo FILE

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "imaging/jpeg/intel_jpeg_library.h"
#include "veltrano/dib_section.h"

namespace {

struct Colour {
  double red, green, blue;
};

Colour operator*(Colour c, double f) {
  return {c.red * f, c.green * f, c.blue * f};
}
Colour operator+(Colour a, Colour b) {
  return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}
Colour mix(Colour a, Colour b, double t) {
  return a * (1 - t) + b * t;
}
double smooth(double from, double to, double x) {
  const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

double lattice(int x, int y) {
  auto n = static_cast<std::uint32_t>(x) * 374761393U + static_cast<std::uint32_t>(y) * 668265263U;
  n = (n ^ (n >> 13)) * 1274126177U;
  return static_cast<double>((n ^ (n >> 16)) & 0xFFFF) / 65535.0;
}

double valueNoise(double x, double y) {
  const int left = static_cast<int>(std::floor(x)), top = static_cast<int>(std::floor(y));
  const double u = smooth(0, 1, x - left), v = smooth(0, 1, y - top);
  return (lattice(left, top) * (1 - u) + lattice(left + 1, top) * u) * (1 - v) +
         (lattice(left, top + 1) * (1 - u) + lattice(left + 1, top + 1) * u) * v;
}

// Noise in octaves, 0 to 1.
double fractal(double x, double y, int octaves) {
  double sum = 0, weight = 0.5;
  for (int i = 0; i < octaves; ++i, weight /= 2, x = x * 2 + 17, y = y * 2 + 5)
    sum += valueNoise(x, y) * weight;
  return sum;
}

// All lengths are in picture heights; x runs to the right from 0 to 1.5, y down from 0 to 1.
constexpr double horizon = 0.60;
constexpr double sunX = 1.02, sunY = 0.475;
constexpr Colour ember{255, 176, 84};

Colour sky(double x, double y) {
  const double t = y / horizon;
  Colour colour = mix({38, 66, 132}, {112, 118, 178}, smooth(0, 0.45, t));
  colour = mix(colour, {246, 150, 108}, smooth(0.35, 0.85, t));
  colour = mix(colour, {255, 214, 138}, smooth(0.75, 1.0, t));
  const double distance = std::hypot(x - sunX, y - sunY);
  colour = mix(colour, {255, 222, 150}, 0.75 * std::exp(-distance * 6));
  // Clouds: long streaks, lit from below, thinner towards the zenith.
  const double cloud = smooth(0.50, 0.72, fractal(x * 2.2 + 3, y * 8 + 1, 6)) * smooth(0.0, 0.25, t);
  const Colour lit = mix({214, 120, 128}, {255, 196, 128}, std::exp(-distance * 2.2));
  colour = mix(colour, lit, 0.75 * cloud);
  return mix({255, 250, 226}, colour, smooth(0.034, 0.040, distance));
}

// The ridges from the farthest to the nearest.
Colour land(double x, double y, Colour behind) {
  struct Ridge {
    double height, frequency, roughness;
    Colour colour;
  };
  static constexpr Ridge ridges[] = {{0.16, 1.9, 0.20, {196, 126, 128}},
                                     {0.105, 2.8, 0.17, {138, 88, 116}},
                                     {0.06, 4.1, 0.11, {84, 62, 98}},
                                     {0.022, 7.0, 0.05, {40, 44, 62}}};
  Colour colour = behind;
  double seed = 11;
  for (const Ridge& ridge : ridges) {
    const double profile = fractal(x * ridge.frequency + seed, seed, 7) - 0.5;
    const double top = horizon - ridge.height - profile * ridge.roughness * 2;
    if (y > top) {
      // Haze gathers at the foot, light catches the crest.
      const double depth = std::min(1.0, (y - top) / 0.12);
      const double texture = 0.9 + 0.2 * fractal(x * 40 + seed, y * 60, 4);
      colour = mix(ridge.colour * texture, mix(ridge.colour, ember, 0.28), depth);
      if (y - top < 0.004) colour = mix(colour, ember, 0.25);
    }
    seed += 23;
  }
  return colour;
}

Colour boat(double x, double y, Colour behind) {
  const double bx = x - 0.52, by = y - 0.70;
  if (by > 0 && by < 0.013 && std::abs(bx) < 0.045 - by) return {92, 34, 30};
  if (by <= 0 && by > -0.1 && bx > 0.002 && bx < 0.036 * (1 + by / 0.1)) return {250, 236, 214};
  if (by <= 0 && by > -0.085 && bx < -0.002 && bx > -0.026 * (1 + by / 0.085)) return {216, 74, 58};
  if (by <= 0 && by > -0.105 && std::abs(bx) <= 0.0015) return {60, 40, 36};
  return behind;
}

Colour scenery(double x, double y) {
  return land(x, y, sky(x, std::min(y, horizon)));
}

Colour water(double x, double y) {
  const double depth = (y - horizon) / (1 - horizon);
  // Ripples grow towards the viewer.
  const double wave = fractal(x * 14 / (0.25 + depth), 60 / (0.12 + depth), 5) - 0.5;
  const double mirrored = std::max(0.02, 2 * horizon - y * 1.02 + 0.012 + wave * 0.10 * (0.25 + depth));
  Colour colour = mix(scenery(x + wave * 0.03, mirrored) * 0.80, {26, 52, 86}, 0.18 + 0.30 * depth);
  // The reflection of the sun.
  const double road = std::exp(-std::pow((x - sunX + wave * 0.10) / (0.045 + 0.07 * depth), 2));
  colour = mix(colour, {255, 214, 140}, 0.85 * road * smooth(0.05, 0.22, wave + 0.16));
  // The boat's reflection, broken by the ripples.
  const double by = 2 * 0.713 - y;
  if (y > 0.713) colour = mix(colour, boat(x + wave * 0.05, by, colour), 0.45);
  return colour;
}

bool pine(double x, double y, double root, double foot, double size) {
  const double up = (foot - y) / size;
  if (up < 0 || up > 1) return false;
  const double tier = 1 - std::fmod(up * 7, 1.0);
  const double width = 0.20 * size * (1 - up) * (0.55 + 0.45 * tier) + 0.004 * size;
  return std::abs(x - root) < width * (0.8 + 0.5 * valueNoise(x * 400, y * 400));
}

Colour foreground(double x, double y, Colour behind) {
  const double shore =
      0.965 - 0.10 * smooth(0.55, 0.0, x) - 0.06 * smooth(1.1, 1.5, x) - 0.02 * fractal(x * 9, 3, 5);
  static constexpr double trees[][2] = {{0.05, 0.52}, {0.15, 0.40}, {0.235, 0.30}, {0.31, 0.20},
                                        {1.47, 0.36}, {1.39, 0.25}, {1.33, 0.16}};
  for (const auto& [root, size] : trees) {
    if (pine(x, y, root, shore + 0.03, size))
      return Colour{16, 30, 30} * (0.7 + 0.7 * fractal(x * 90, y * 120, 3));
  }
  if (y < shore) return behind;
  const double grass = fractal(x * 160, y * 50, 4);
  return mix({22, 30, 24}, {98, 72, 34}, 0.7 * grass * smooth(shore + 0.09, shore, y));
}

Colour pixel(double x, double y) {
  Colour colour = y < horizon ? scenery(x, y) : water(x, y);
  colour = boat(x, y, colour);
  colour = foreground(x, y, colour);
  return colour * (1 - 0.28 * std::pow(std::hypot((x - 0.75) / 0.75, (y - 0.5) / 0.5) / 1.42, 3));  // lens
}

void render(veltrano::cDIBSection& dib) {
  const double height = dib.Height();
  constexpr int samples = 3;  // in each direction, against jagged edges
  for (int row = 0; row < dib.Height(); ++row) {
    std::uint8_t* out =
        dib.DIBSectionBitsPtr() + static_cast<std::int64_t>(dib.Height() - 1 - row) * dib.BytesPerScanLine();
    for (int column = 0; column < dib.Width(); ++column) {
      Colour sum{0, 0, 0};
      for (int i = 0; i < samples * samples; ++i) {
        const int down = i / samples;
        sum = sum + pixel((column + (i % samples + 0.5) / samples) / height,
                          (row + (down + 0.5) / samples) / height);
      }
      const double grain = (lattice(column, row) - 0.5) * 5;
      for (const double channel : {sum.blue, sum.green, sum.red}) {
        *out++ = static_cast<std::uint8_t>(std::clamp(channel / (samples * samples) + grain, 0.0, 255.0));
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_photo FILE\n");
    return 2;
  }
  veltrano::cDIBSection dib;
  if (!dib.Create(1200, 800)) return 1;
  render(dib);
  return veltrano::mIntelJPEGLibrary::saveDibToJpegFile(dib, argv[1], 82) ? 0 : 1;
}
