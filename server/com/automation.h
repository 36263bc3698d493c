#ifndef VELTRANO_SERVER_COM_AUTOMATION_H
#define VELTRANO_SERVER_COM_AUTOMATION_H

// Windows' automation headers, the interfaces generated from veltrano.idl, and owners of what they hand out.

#include <windows.h>

#include <oaidl.h>
#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>

#include <exception>
#include <utility>

#include "veltrano.h"  // made from veltrano.idl

// Objects are released, never deleted through an interface, and no interface has a virtual destructor.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace veltrano::server {

/// The body's result. No C++ exception may reach the host; the only reason for one is a lack of memory.
template <class Body>
HRESULT guarded(Body&& body) {
  try {
    return body();
  } catch (const std::exception&) {
    return E_OUTOFMEMORY;
  }
}

/// A reference to a COM object; copies share it.
template <class Interface>
class ComPointer {
 public:
  ComPointer() = default;
  /// Adds a reference.
  explicit ComPointer(Interface* object) : object_(object) {
    if (object_ != nullptr) {
      object_->AddRef();
    }
  }
  ComPointer(const ComPointer& other) : ComPointer(other.object_) {}
  ComPointer(ComPointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPointer& operator=(const ComPointer& other) { return *this = ComPointer(other); }
  ComPointer& operator=(ComPointer&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPointer() {
    if (object_ != nullptr) {
      object_->Release();
    }
  }

  [[nodiscard]] Interface* get() const { return object_; }
  Interface* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  /// Where a call puts a reference; the one held is released first.
  Interface** out() {
    *this = ComPointer();
    return &object_;
  }
  /// Hands the reference over.
  Interface* detach() { return std::exchange(object_, nullptr); }

 private:
  Interface* object_ = nullptr;
};

/// A variant that is cleared with its scope.
class OwnedVariant {
 public:
  OwnedVariant() { VariantInit(&value_); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { VariantClear(&value_); }

  VARIANT* get() { return &value_; }
  VARIANT* operator->() { return &value_; }

 private:
  VARIANT value_;
};

}  // namespace veltrano::server

#endif
