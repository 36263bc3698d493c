#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_BYTES_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_BYTES_H

// Little-endian numbers in pages and rows, and the big-endian ones of index entries. Nothing here checks a
// bound: the caller has compared the length before.

#include <cstdint>
#include <cstring>
#include <span>

namespace veltrano::access {

using Bytes = std::span<const std::uint8_t>;
using MutableBytes = std::span<std::uint8_t>;

inline std::uint16_t load16(const std::uint8_t* p) {
  return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
}
inline std::uint32_t load24(const std::uint8_t* p) {
  return p[0] | (static_cast<std::uint32_t>(p[1]) << 8) | (static_cast<std::uint32_t>(p[2]) << 16);
}
inline std::uint32_t load32(const std::uint8_t* p) {
  return load24(p) | (static_cast<std::uint32_t>(p[3]) << 24);
}
inline std::uint64_t load64(const std::uint8_t* p) {
  return load32(p) | (static_cast<std::uint64_t>(load32(p + 4)) << 32);
}
inline double loadDouble(const std::uint8_t* p) {
  const std::uint64_t bits = load64(p);
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

inline void store16(std::uint8_t* p, std::uint32_t value) {
  p[0] = static_cast<std::uint8_t>(value);
  p[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void store24(std::uint8_t* p, std::uint32_t value) {
  store16(p, value);
  p[2] = static_cast<std::uint8_t>(value >> 16);
}
inline void store32(std::uint8_t* p, std::uint32_t value) {
  store24(p, value);
  p[3] = static_cast<std::uint8_t>(value >> 24);
}
inline void store64(std::uint8_t* p, std::uint64_t value) {
  store32(p, static_cast<std::uint32_t>(value));
  store32(p + 4, static_cast<std::uint32_t>(value >> 32));
}
inline void storeDouble(std::uint8_t* p, double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  store64(p, bits);
}

inline std::uint32_t loadBig24(const std::uint8_t* p) {
  return (static_cast<std::uint32_t>(p[0]) << 16) | (static_cast<std::uint32_t>(p[1]) << 8) | p[2];
}
inline std::uint32_t loadBig32(const std::uint8_t* p) {
  return (loadBig24(p) << 8) | p[3];
}
inline void storeBig24(std::uint8_t* p, std::uint32_t value) {
  p[0] = static_cast<std::uint8_t>(value >> 16);
  p[1] = static_cast<std::uint8_t>(value >> 8);
  p[2] = static_cast<std::uint8_t>(value);
}
inline void storeBig32(std::uint8_t* p, std::uint32_t value) {
  storeBig24(p, value >> 8);
  p[3] = static_cast<std::uint8_t>(value);
}

}  // namespace veltrano::access

#endif
