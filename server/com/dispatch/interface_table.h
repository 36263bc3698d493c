#ifndef VELTRANO_SERVER_COM_DISPATCH_INTERFACE_TABLE_H
#define VELTRANO_SERVER_COM_DISPATCH_INTERFACE_TABLE_H

// What the dispatcher needs to know of a dual interface, read from the type library once: late binding is derived from
// the interface, so that the two cannot disagree.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "server/com/class_table.h"

namespace veltrano::server {

struct Parameter {
  std::wstring name;
  /// Of what the parameter refers to. VT_ARRAY: the list of a member with any number of arguments. VT_DISPATCH: a
  /// picture.
  VARTYPE type = VT_EMPTY;
  bool keptKind = false;
  bool optional = false;
  double omitted = 0;  ///< the default of an optional number or flag; a text is null
};

struct Member {
  std::wstring name;
  DISPID id = DISPID_UNKNOWN;
  INVOKEKIND kind = INVOKE_FUNC;
  unsigned slot = 0;  ///< in the vtable
  std::vector<Parameter> parameters;
  VARTYPE result = VT_EMPTY;
  bool takesAnyNumber = false;
};

class InterfaceTable {
 public:
  /// The most arguments that a member takes, its result included.
  static constexpr std::size_t mostParameters = 12;

  /// The table of a class of this DLL, which lives as long as the DLL. Null if the type library cannot be read.
  static const InterfaceTable* of(const ClassEntry& entry);
  /// A table of its own, from another copy of the type library.
  static std::unique_ptr<InterfaceTable> read(const ClassEntry& entry, ITypeLib& library);

  /// The member that an Invoke with these flags means. Null if there is no such member.
  [[nodiscard]] const Member* find(DISPID id, WORD flags) const;
  /// Names in any case: the first is a member's, the others are those of its parameters.
  HRESULT identify(OLECHAR** names, UINT count, DISPID* ids) const;

 private:
  struct Name {
    std::wstring name;
    std::size_t member;
  };
  /// False if the library is damaged or memory is short: then nothing can be called.
  bool load(const ClassEntry& entry, ITypeLib& library);
  bool addMember(ITypeInfo& type, const FUNCDESC& function, const ClassEntry& entry);

  std::vector<Member> members_;     ///< by id; a property's get and put are neighbours
  std::vector<std::size_t> first_;  ///< index of the first member with an id, by id - 1
  std::vector<Name> names_;         ///< sorted, whatever their case
};

}  // namespace veltrano::server

#endif
