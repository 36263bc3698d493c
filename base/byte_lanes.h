#ifndef VELTRANO_BASE_BYTE_LANES_H
#define VELTRANO_BASE_BYTE_LANES_H

// Sixteen bytes looked at in one step, for the few loops over whole files that must run as fast as memory.
// The compilers turn these types into the processor's vector instructions, or into plain code where it has
// none.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veltrano {

class ByteLanes {
 public:
  static constexpr std::size_t count = 16;

  ByteLanes() = default;
  /// The `count` bytes at `bytes`.
  explicit ByteLanes(const char* bytes) { std::memcpy(&lanes_, bytes, count); }

  // Of each lane: all bits if it is so, otherwise none.
  friend ByteLanes operator==(ByteLanes a, char b) { return mask(a.lanes_ == static_cast<unsigned char>(b)); }
  friend ByteLanes operator<(ByteLanes a, char b) { return mask(a.lanes_ < static_cast<unsigned char>(b)); }
  /// Bytes from 0x80 up.
  [[nodiscard]] ByteLanes beyondAscii() const { return mask(lanes_ >= 0x80); }

  friend ByteLanes operator&(ByteLanes a, ByteLanes b) { return ByteLanes(a.lanes_ & b.lanes_); }
  friend ByteLanes operator|(ByteLanes a, ByteLanes b) { return ByteLanes(a.lanes_ | b.lanes_); }
  friend ByteLanes operator|(ByteLanes a, char b) {
    return ByteLanes(a.lanes_ | static_cast<unsigned char>(b));
  }
  friend ByteLanes operator~(ByteLanes a) { return ByteLanes(~a.lanes_); }

  ByteLanes& operator|=(ByteLanes other) {
    lanes_ |= other.lanes_;
    return *this;
  }
  /// Counts, in each lane, how often `hits` had all bits there; up to 31 times, for sum() to be right.
  ByteLanes& countHits(ByteLanes hits) {
    lanes_ -= hits.lanes_;
    return *this;
  }

  /// True when a bit is set.
  [[nodiscard]] bool any() const {
    const Halves halves = split();
    return (halves.low | halves.high) != 0;
  }
  /// Number of the first lane that is not zero; some lane is.
  [[nodiscard]] std::size_t firstHit() const {
    const Halves halves = split();
    const auto lane = [](std::uint64_t half) {
      const int bits =
          std::endian::native == std::endian::little ? std::countr_zero(half) : std::countl_zero(half);
      return static_cast<std::size_t>(bits) / 8;
    };
    return halves.low != 0 ? lane(halves.low) : 8 + lane(halves.high);
  }
  /// Of the lanes' numbers.
  [[nodiscard]] std::size_t sum() const {
    // The product's highest byte is the sum of all bytes.
    constexpr std::uint64_t ones = 0x0101010101010101;
    const Halves halves = split();
    return static_cast<std::size_t>((halves.low * ones) >> 56U) +
           static_cast<std::size_t>((halves.high * ones) >> 56U);
  }

 private:
  using Lanes = unsigned char __attribute__((vector_size(count)));
  struct Halves {
    std::uint64_t low;
    std::uint64_t high;
  };

  explicit ByteLanes(Lanes lanes) : lanes_(lanes) {}

  template <typename Comparison>
  static ByteLanes mask(Comparison comparison) {
    return ByteLanes(reinterpret_cast<Lanes>(comparison));
  }

  [[nodiscard]] Halves split() const {
    Halves halves;
    std::memcpy(&halves, &lanes_, sizeof halves);
    return halves;
  }

  Lanes lanes_ = {};
};

}  // namespace veltrano

#endif
