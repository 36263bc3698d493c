#ifndef VELTRANO_BASE_BYTE_LANES_H
#define VELTRANO_BASE_BYTE_LANES_H

// Many bytes looked at in one step, for the few loops over whole files that must run as fast as memory. The
// compilers turn these types into the processor's vector instructions, or into plain code where it has none.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veltrano {

/// More than 16 bytes are wider than the instructions that every processor has. A source file that uses them
/// is compiled for the processors that have them, and must hold no other inline function or template that a
/// file compiled for all could have too: the linker would keep either copy.
template <std::size_t width>
class Lanes {
 public:
  static constexpr std::size_t count = width;

  Lanes() = default;
  /// The `count` bytes at `bytes`.
  explicit Lanes(const char* bytes) { std::memcpy(&lanes_, bytes, count); }

  // Of each lane: all bits if it is so, otherwise none.
  friend Lanes operator==(Lanes a, char b) { return mask(a.lanes_ == static_cast<unsigned char>(b)); }
  friend Lanes operator<(Lanes a, char b) { return mask(a.lanes_ < static_cast<unsigned char>(b)); }
  /// As signed numbers: bytes beyond ASCII are the smallest.
  friend Lanes signedLess(Lanes a, char b) { return mask(a.signedLanes() < static_cast<signed char>(b)); }
  /// Bytes from 0x80 up.
  [[nodiscard]] Lanes beyondAscii() const { return mask(lanes_ >= 0x80); }

  friend Lanes operator&(Lanes a, Lanes b) { return Lanes(a.lanes_ & b.lanes_); }
  friend Lanes operator|(Lanes a, Lanes b) { return Lanes(a.lanes_ | b.lanes_); }
  friend Lanes operator|(Lanes a, char b) { return Lanes(a.lanes_ | static_cast<unsigned char>(b)); }
  friend Lanes operator^(Lanes a, Lanes b) { return Lanes(a.lanes_ ^ b.lanes_); }
  friend Lanes operator^(Lanes a, char b) { return Lanes(a.lanes_ ^ static_cast<unsigned char>(b)); }
  friend Lanes operator~(Lanes a) { return Lanes(~a.lanes_); }
  /// Of each lane: the smaller byte.
  friend Lanes smaller(Lanes a, Lanes b) { return Lanes(a.lanes_ < b.lanes_ ? a.lanes_ : b.lanes_); }
  /// Of each lane: the larger byte.
  friend Lanes larger(Lanes a, Lanes b) { return Lanes(a.lanes_ > b.lanes_ ? a.lanes_ : b.lanes_); }

  Lanes& operator|=(Lanes other) {
    lanes_ |= other.lanes_;
    return *this;
  }
  /// Counts, in each lane, how often `hits` had all bits there; up to 255 times.
  Lanes& countHits(Lanes hits) {
    lanes_ -= hits.lanes_;
    return *this;
  }

  /// True when a bit is set.
  [[nodiscard]] bool any() const {
#if defined(__SSE2__)
    return mask(lanes_ != 0).bits() != 0;
#else
    Words words = split();
    if constexpr (wordCount == 2) {  // the compilers make far more of a loop here
      return (words.all[0] | words.all[1]) != 0;
    }
    for (std::size_t half = wordCount / 2; half > 0; half /= 2) {
      for (std::size_t i = 0; i < half; ++i) {
        words.all[i] |= words.all[half + i];
      }
    }
    return words.all[0] != 0;
#endif
  }
  /// The highest bit of each lane, the first lane's being the lowest.
  [[nodiscard]] std::uint64_t bits() const {
#if defined(__SSE2__)
    // The compilers do not find these instructions by themselves.
    if constexpr (width == 64) {
      return __builtin_ia32_cvtb2mask512(characters());
    } else if constexpr (width == 32) {
      return static_cast<std::uint32_t>(__builtin_ia32_pmovmskb256(characters()));
    } else {
      return static_cast<std::uint32_t>(__builtin_ia32_pmovmskb128(characters()));
    }
#else
    // Leaves another bit of each byte; their sum in the product's highest byte holds all of them.
    constexpr bool little = std::endian::native == std::endian::little;
    constexpr std::uint64_t diagonal = little ? 0x8040201008040201 : 0x0102040810204080;
    constexpr std::uint64_t ones = 0x0101010101010101;
    const Words words = beyondAscii().split();
    std::uint64_t result = 0;
    for (std::size_t i = 0; i < wordCount; ++i) {
      result |= (((words.all[i] & diagonal) * ones) >> 56U) << (8 * i);
    }
    return result;
#endif
  }
  /// Number of the first lane that is not zero; some lane is.
  [[nodiscard]] std::size_t firstHit() const {
    const Words words = split();
    std::size_t i = 0;
    while (words.all[i] == 0) {
      ++i;
    }
    constexpr bool little = std::endian::native == std::endian::little;
    const int bits = little ? std::countr_zero(words.all[i]) : std::countl_zero(words.all[i]);
    return 8 * i + static_cast<std::size_t>(bits) / 8;
  }
  /// Of the lanes' numbers.
  [[nodiscard]] std::size_t sum() const {
    // Numbers of two bytes, as the sum may not fit into one; the product's highest one is the sum of all.
    constexpr std::uint64_t evenBytes = 0x00FF00FF00FF00FF;
    constexpr std::uint64_t ones = 0x0001000100010001;
    const Words words = split();
    std::uint64_t sums = 0;
    for (const std::uint64_t word : words.all) {
      sums += (word & evenBytes) + ((word >> 8U) & evenBytes);
    }
    return static_cast<std::size_t>((sums * ones) >> 48U);
  }

 private:
  using Vector [[gnu::vector_size(width)]] = unsigned char;
  static constexpr std::size_t wordCount = width / sizeof(std::uint64_t);
  struct Words {
    std::uint64_t all[wordCount];
  };

  explicit Lanes(Vector lanes) : lanes_(lanes) {}

  template <typename Comparison>
  static Lanes mask(Comparison comparison) {
    return Lanes(reinterpret_cast<Vector>(comparison));
  }

  using CharacterVector [[gnu::vector_size(width)]] = char;
  [[nodiscard]] CharacterVector characters() const {
    return reinterpret_cast<CharacterVector>(lanes_);
  }
  using SignedVector [[gnu::vector_size(width)]] = signed char;
  [[nodiscard]] SignedVector signedLanes() const {
    return reinterpret_cast<SignedVector>(lanes_);
  }

  [[nodiscard]] Words split() const {
    Words words;
    std::memcpy(&words, &lanes_, sizeof words);
    return words;
  }

  Vector lanes_ = {};
};

/// What every processor has.
using ByteLanes = Lanes<16>;

}  // namespace veltrano

#endif
