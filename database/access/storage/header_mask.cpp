#include "database/access/storage/header_mask.h"

#include <array>

#include "database/access/storage/encryption/primitives.h"

namespace veltrano::access {

void maskHeader(MutableBytes header, Version version) {
  constexpr std::size_t maskStart = 0x18;
  constexpr std::array<std::uint8_t, 4> maskKey = {0xC7, 0xDA, 0x39, 0x6B};
  rc4(maskKey, header.subspan(maskStart, isJet3(version) ? 126 : 128));
}

}  // namespace veltrano::access
