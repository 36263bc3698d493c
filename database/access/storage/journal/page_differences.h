#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_PAGE_DIFFERENCES_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_PAGE_DIFFERENCES_H

// Where two versions of a page differ.

#include <cstddef>
#include <cstring>

#include "database/access/storage/bytes.h"

namespace veltrano::access {

/// Stretches of differing bytes that lie closer than this are one.
inline constexpr std::size_t differenceGap = 16;

/// Calls action(begin, end) for every stretch where the two differ, in words of 8 bytes. Both have one length, a
/// multiple of 8.
template <typename Action>
void forEachDifference(Bytes before, Bytes after, Action action) {
  constexpr std::size_t word = 8;
  std::size_t begin = 0;
  std::size_t end = 0;  // of the current stretch; none if equal to begin
  for (std::size_t i = 0; i < before.size(); i += word) {
    if (std::memcmp(before.data() + i, after.data() + i, word) == 0) {
      continue;
    }
    if (end != begin && i - end > differenceGap) {
      action(begin, end);
      begin = end = i;
    }
    if (end == begin) {
      begin = i;
    }
    end = i + word;
  }
  if (end != begin) {
    action(begin, end);
  }
}

}  // namespace veltrano::access

#endif
