#ifndef VELTRANO_SERVER_COM_CONNECTION_POINT_H
#define VELTRANO_SERVER_COM_CONNECTION_POINT_H

// The event source of a class: one outgoing dispatch interface with any number of sinks.

#include <string_view>
#include <vector>

#include "server/com/automation.h"

namespace veltrano::server {

/// Both the container of the one connection point and the point itself. Lives in its owner, whose reference
/// count it borrows.
class EventSource {
 public:
  EventSource(IUnknown& owner, REFIID eventInterface);

  IConnectionPointContainer* container() { return &container_; }

  /// Calls `Error(xMsg)` of every sink, whatever they answer. A sink may connect or disconnect sinks, change
  /// the text and call the owner meanwhile; whoever fires keeps the owner alive.
  void fireError(std::string_view ansiMessage);

 private:
  struct Sink {
    DWORD cookie;
    ComPointer<IDispatch> target;
  };

  class Container final : public IConnectionPointContainer {
   public:
    explicit Container(EventSource& source) : source_(source) {}
    virtual ~Container() = default;
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;
    Container(Container&&) = delete;
    Container& operator=(Container&&) = delete;
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return source_.owner_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return source_.owner_.Release(); }
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** result) override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** result) override;

   private:
    EventSource& source_;
  };

  class Point final : public IConnectionPoint {
   public:
    explicit Point(EventSource& source) : source_(source) {}
    virtual ~Point() = default;
    Point(const Point&) = delete;
    Point& operator=(const Point&) = delete;
    Point(Point&&) = delete;
    Point& operator=(Point&&) = delete;
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return source_.owner_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return source_.owner_.Release(); }
    STDMETHODIMP GetConnectionInterface(IID* iid) override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** result) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections** result) override;

   private:
    EventSource& source_;
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
