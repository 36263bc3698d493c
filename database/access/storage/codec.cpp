#include "database/access/storage/codec.h"

#include <array>
#include <utility>

namespace veltrano::access {

// Both masks are key streams of RC4, each with a stream of its own:
//
//   what           from    length                 key, 4 bytes
//   header         0x18    126 (Jet 3), 128       C7 DA 39 6B; stream begins B5 6F 03 62 61 08 C2 55
//   page p > 0     0       the page               key of the header XOR p, little-endian

namespace {

class Rc4 {
 public:
  explicit Rc4(std::uint32_t key) {
    for (std::size_t i = 0; i < state_.size(); ++i) {
      state_[i] = static_cast<std::uint8_t>(i);
    }
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state_.size(); ++i) {
      const auto keyByte = static_cast<std::uint8_t>(key >> (8 * (i % 4)));
      j = static_cast<std::uint8_t>(j + state_[i] + keyByte);
      std::swap(state_[i], state_[j]);
    }
  }

  void apply(MutableBytes bytes) {
    for (std::uint8_t& byte : bytes) {
      ++i_;
      j_ = static_cast<std::uint8_t>(j_ + state_[i_]);
      std::swap(state_[i_], state_[j_]);
      byte ^= state_[static_cast<std::uint8_t>(state_[i_] + state_[j_])];
    }
  }

 private:
  std::array<std::uint8_t, 256> state_;
  std::uint8_t i_ = 0;
  std::uint8_t j_ = 0;
};

constexpr std::size_t maskStart = 0x18;
constexpr std::uint32_t maskKey = 0x6B39DAC7;

}  // namespace

void maskHeader(MutableBytes header, Version version) {
  Rc4(maskKey).apply(header.subspan(maskStart, isJet3(version) ? 126 : 128));
}

void PageCodec::apply(PageNumber page, MutableBytes bytes) const {
  if (key_ != 0 && page != 0) {
    Rc4(key_ ^ page).apply(bytes);
  }
}

}  // namespace veltrano::access
