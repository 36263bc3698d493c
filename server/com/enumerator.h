#ifndef VELTRANO_SERVER_COM_ENUMERATOR_H
#define VELTRANO_SERVER_COM_ENUMERATOR_H

#include <algorithm>
#include <utility>
#include <vector>

#include "server/com/com_object.h"

namespace veltrano::server {

/// An enumerator (IEnumXXX) over a copy of what is enumerated. Element is what the interface hands out; Held keeps one
/// alive, and its element() makes an Element with a reference of its own.
template <class Interface, class Element, class Held>
class Enumerator final : public ComObject<Interface> {
 public:
  explicit Enumerator(std::vector<Held> elements) : elements_(std::move(elements)) {}

  STDMETHODIMP Next(ULONG count, Element* elements, ULONG* fetched) override {
    if (elements == nullptr || (fetched == nullptr && count != 1)) {
      return E_POINTER;
    }
    ULONG done = 0;
    while (done < count && position_ < elements_.size()) {
      elements[done++] = elements_[position_++].element();
    }
    if (fetched != nullptr) {
      *fetched = done;
    }
    return done == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t left = elements_.size() - position_;
    position_ += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    position_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(Interface** result) override {
    return handOver(result, [this] {
      auto* copy = new Enumerator(elements_);
      copy->position_ = position_;
      return copy;
    });
  }

 private:
  std::vector<Held> elements_;
  std::size_t position_ = 0;
};

}  // namespace veltrano::server

#endif
