#include "database/access/storage/journal/format.h"

#include <algorithm>

namespace veltrano::access {

namespace {

constexpr std::array<std::uint8_t, 8> magic = {'V', 'M', 'D', 'B', 'J', 'N', 'L', '2'};
constexpr std::size_t identityAt = 8;
constexpr std::size_t lengthAt = 16;
constexpr std::size_t nonceAt = 24;
constexpr std::size_t headHashAt = 32;

constexpr std::size_t changesSizeAt = 8;
constexpr std::size_t recordLengthAt = 16;
constexpr std::size_t mayReachAt = 24;

}  // namespace

std::uint64_t mixHash(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
  return hash ^ (hash >> 29);
}

std::uint64_t hashBytes(Bytes bytes) {
  std::uint64_t hash = bytes.size();
  std::size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    hash = mixHash(hash, load64(bytes.data() + i));
  }
  std::array<std::uint8_t, 8> tail = {};
  std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(i), bytes.end(), tail.begin());
  return mixHash(hash, load64(tail.data()));
}

std::uint64_t JournalHead::hash() const {
  return mixHash(mixHash(mixHash(1, identity), length), nonce);
}

void JournalHead::store(std::uint8_t* bytes) const {
  std::copy(magic.begin(), magic.end(), bytes);
  store64(bytes + identityAt, identity);
  store64(bytes + lengthAt, length);
  store64(bytes + nonceAt, nonce);
  store64(bytes + headHashAt, hash());
}

std::optional<JournalHead> JournalHead::load(const Stored& bytes) {
  const JournalHead head = {load64(bytes.data() + identityAt), load64(bytes.data() + lengthAt),
                            load64(bytes.data() + nonceAt)};
  const bool valid = std::equal(magic.begin(), magic.end(), bytes.begin()) &&
                     load64(bytes.data() + headHashAt) == head.hash();
  return valid ? std::optional(head) : std::nullopt;
}

std::uint64_t RecordHead::hashWith(std::uint64_t changesHash) const {
  return mixHash(mixHash(mixHash(changesHash, changesSize), length), mayReach);
}

void RecordHead::store(std::uint8_t* bytes) const {
  store64(bytes, hash);
  store64(bytes + changesSizeAt, changesSize);
  store64(bytes + recordLengthAt, length);
  store64(bytes + mayReachAt, mayReach);
}

RecordHead RecordHead::load(const std::uint8_t* bytes) {
  return {load64(bytes), load64(bytes + changesSizeAt), load64(bytes + recordLengthAt),
          load64(bytes + mayReachAt)};
}

std::optional<Change> Change::take(Bytes& rest, Bytes& all) {
  if (rest.size() < headSize) {
    return std::nullopt;
  }
  const std::uint32_t word = load32(rest.data() + 8);
  const std::size_t length = word & ~withoutOldBytes;
  const std::size_t oldLength = (word & withoutOldBytes) != 0 ? 0 : length;
  if (length > rest.size() || oldLength > rest.size() || headSize + oldLength + length > rest.size()) {
    return std::nullopt;
  }
  const Change change = {load64(rest.data()), rest.subspan(headSize, oldLength),
                         rest.subspan(headSize + oldLength, length)};
  all = rest.first(headSize + oldLength + length);
  rest = rest.subspan(all.size());
  return change;
}

}  // namespace veltrano::access
