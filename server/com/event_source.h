#ifndef VELTRANO_SERVER_COM_EVENT_SOURCE_H
#define VELTRANO_SERVER_COM_EVENT_SOURCE_H

#include <string_view>
#include <vector>

#include "server/com/com_object.h"

namespace veltrano::server {

/// The events of a class: its connection point container with the one connection point, for one outgoing dispatch
/// interface with any number of sinks. Lives in its owner, whose reference count both borrow.
class EventSource {
 public:
  EventSource(IUnknown& owner, REFIID eventInterface);

  IConnectionPointContainer* container() { return &container_; }

  /// Calls `Error(xMsg)` of every sink, whatever they answer. A sink may connect or disconnect sinks, change the text
  /// and call the owner meanwhile; the caller keeps the owner alive.
  void fireError(std::string_view ansiMessage);

 private:
  struct Sink {
    DWORD cookie;
    ComPointer<IDispatch> target;
    [[nodiscard]] CONNECTDATA element() const { return {ComPointer(target).detach(), cookie}; }
  };

  /// A part of the owner: its references are the owner's.
  template <class Interface>
  class Part : public Unknown<Interface> {
   public:
    explicit Part(EventSource& source) : source_(source) {}
    STDMETHODIMP_(ULONG) AddRef() override { return source_.owner_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return source_.owner_.Release(); }

   protected:
    EventSource& source_;
  };

  /// An interface of the owner's own identity.
  class Container final : public Part<IConnectionPointContainer> {
   public:
    using Part::Part;
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** result) override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** result) override;
  };

  /// An object of its own to hosts.
  class Point final : public Part<IConnectionPoint> {
   public:
    using Part::Part;
    STDMETHODIMP GetConnectionInterface(IID* iid) override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** result) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections** result) override;
  };

  IUnknown& owner_;
  const IID& eventInterface_;
  Container container_{*this};
  Point point_{*this};
  std::vector<Sink> sinks_;
  DWORD nextCookie_ = 1;
};

}  // namespace veltrano::server

#endif
