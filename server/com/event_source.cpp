#include "server/com/event_source.h"

#include <algorithm>
#include <exception>

#include "base/os/floating_point_windows.h"
#include "server/com/conversions.h"
#include "server/com/enumerator.h"

namespace veltrano::server {

namespace {

constexpr DISPID errorEvent = 1;

struct HeldPoint {
  ComPointer<IConnectionPoint> point;
  [[nodiscard]] IConnectionPoint* element() const { return ComPointer(point).detach(); }
};

}  // namespace

EventSource::EventSource(IUnknown& owner, REFIID eventInterface)
    : owner_(owner), eventInterface_(eventInterface) {}

void EventSource::fireError(std::string_view ansiMessage) {
  const HostArithmetic host;
  // A copy: a sink may connect or disconnect sinks while it is called.
  std::vector<ComPointer<IDispatch>> targets;
  targets.reserve(sinks_.size());
  for (const Sink& sink : sinks_) {
    targets.push_back(sink.target);
  }
  for (const ComPointer<IDispatch>& target : targets) {
    BSTR message = newText(ansiMessage, TextForm::ansi);
    VARIANT argument;
    VariantInit(&argument);
    argument.vt = VT_BYREF | VT_BSTR;
    argument.pbstrVal = &message;
    DISPPARAMS arguments = {&argument, nullptr, 1, 0};
    target->Invoke(errorEvent, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &arguments, nullptr, nullptr,
                   nullptr);
    SysFreeString(message);
  }
}

STDMETHODIMP EventSource::Container::QueryInterface(REFIID iid, void** object) {
  return source_.owner_.QueryInterface(iid, object);
}

STDMETHODIMP EventSource::Container::EnumConnectionPoints(IEnumConnectionPoints** result) {
  return handOver(result, [this] {
    return new Enumerator<IEnumConnectionPoints, IConnectionPoint*, HeldPoint>(
        {HeldPoint{ComPointer<IConnectionPoint>(&source_.point_)}});
  });
}

STDMETHODIMP EventSource::Container::FindConnectionPoint(REFIID iid, IConnectionPoint** result) {
  if (result != nullptr && iid != source_.eventInterface_) {
    *result = nullptr;
    return CONNECT_E_NOCONNECTION;
  }
  return handOver(result, [this] { return ComPointer<IConnectionPoint>(&source_.point_).detach(); });
}

STDMETHODIMP EventSource::Point::GetConnectionInterface(IID* iid) {
  if (iid == nullptr) {
    return E_POINTER;
  }
  *iid = source_.eventInterface_;
  return S_OK;
}

STDMETHODIMP EventSource::Point::GetConnectionPointContainer(IConnectionPointContainer** result) {
  return handOver(result,
                  [this] { return ComPointer<IConnectionPointContainer>(&source_.container_).detach(); });
}

STDMETHODIMP EventSource::Point::Advise(IUnknown* sink, DWORD* cookie) {
  if (cookie != nullptr) {
    *cookie = 0;
  }
  if (sink == nullptr || cookie == nullptr) {
    return E_POINTER;
  }
  Sink added{source_.nextCookie_, {}};
  // Hosts with a typed sink answer to the event interface, others to plain dispatch.
  if (FAILED(sink->QueryInterface(source_.eventInterface_, reinterpret_cast<void**>(added.target.out()))) &&
      FAILED(sink->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(added.target.out())))) {
    return CONNECT_E_CANNOTCONNECT;
  }
  try {
    source_.sinks_.push_back(added);
  } catch (const std::exception&) {
    return E_OUTOFMEMORY;
  }
  *cookie = source_.nextCookie_++;
  return S_OK;
}

STDMETHODIMP EventSource::Point::Unadvise(DWORD cookie) {
  const auto found = std::find_if(source_.sinks_.begin(), source_.sinks_.end(),
                                  [&](const Sink& sink) { return sink.cookie == cookie; });
  if (found == source_.sinks_.end()) {
    return CONNECT_E_NOCONNECTION;
  }
  // Out of the list first: letting go of the sink may call back.
  const Sink removed = std::move(*found);
  source_.sinks_.erase(found);
  return S_OK;
}

STDMETHODIMP EventSource::Point::EnumConnections(IEnumConnections** result) {
  return handOver(result,
                  [this] { return new Enumerator<IEnumConnections, CONNECTDATA, Sink>(source_.sinks_); });
}

}  // namespace veltrano::server
