#ifndef VELTRANO_SERVER_COM_DISPATCH_DEFAULTS_H
#define VELTRANO_SERVER_COM_DISPATCH_DEFAULTS_H

// The values of omitted arguments. The type library's compiler cannot express texts for parameters by reference, so all
// of them stand in one table: for the dispatcher, for the documentation, and for the test that compares it with what the
// type library does express.

#include <span>
#include <string_view>

#include "server/com/automation.h"

namespace veltrano::server {

struct Default {
  const IID* dispatchInterface;
  std::wstring_view member;
  std::wstring_view parameter;
  int number;           ///< the value of a number or flag
  const wchar_t* text;  ///< the value of a text, null for a number
};

std::span<const Default> defaultTable();

}  // namespace veltrano::server

#endif
