#ifndef VELTRANO_DATABASE_DAO_OBJECT_WINDOWS_H
#define VELTRANO_DATABASE_DAO_OBJECT_WINDOWS_H

// Automation objects whose members are called by name.

#include <initializer_list>

#include "base/os/owned.h"
#include "base/status.h"
#include "database/dao/variant_windows.h"

namespace veltrano::dao {

template <typename Interface>
void releaseReference(Interface* object) {
  object->Release();
}
/// Owns a reference to a COM object.
template <typename Interface>
using Owner = Owned<Interface*, releaseReference<Interface>>;

/// A reference to an automation object.
class Object {
 public:
  Object() = default;
  /// Takes over the caller's reference.
  explicit Object(IDispatch* owned) : dispatch_(owned) {}

  /// The object that an answer holds.
  static Result<Object> of(const Result<Variant>& answer);

  explicit operator bool() const { return static_cast<bool>(dispatch_); }
  [[nodiscard]] IDispatch* get() const { return dispatch_.get(); }

  using Arguments = std::initializer_list<const Variant*>;  ///< in their written order, four at most

  [[nodiscard]] Result<Variant> call(const wchar_t* method, Arguments arguments = {}) const;
  [[nodiscard]] Result<Variant> property(const wchar_t* name) const;
  Status setProperty(const wchar_t* name, const Variant& value) const;
  /// The default member with one argument: an item of a collection.
  [[nodiscard]] Result<Variant> item(const Variant& key) const;

 private:
  [[nodiscard]] Result<Variant> invoke(const wchar_t* member, WORD kind, Arguments arguments) const;
  [[nodiscard]] Result<Variant> invoke(DISPID member, WORD kind, Arguments arguments) const;

  Owner<IDispatch> dispatch_;
};

}  // namespace veltrano::dao

#endif
