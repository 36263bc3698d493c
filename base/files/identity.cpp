#include "base/files/identity.h"

#include <utility>

#include "base/files/whole.h"

namespace veltrano {

std::optional<IdentifiedText> readIdentified(const std::filesystem::path& file, std::size_t limit) {
  const auto identity = fileIdentity(file);
  auto text = identity ? readFileStart(file, limit) : std::nullopt;
  return text ? std::optional(IdentifiedText{*identity, *std::move(text)}) : std::nullopt;
}

}  // namespace veltrano
