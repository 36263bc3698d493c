#ifndef VELTRANO_SERVER_COM_CONVERSIONS_H
#define VELTRANO_SERVER_COM_CONVERSIONS_H

// Between what automation passes and what the features take: the one place where UTF-16 becomes another encoding.
//
// Reading takes a pointer that may be null, as parameters by reference may be on the vtable: it stands for the empty
// text, zero, false or the empty value. Answering drops the answer if the pointer is null. Both throw std::bad_alloc
// and nothing else.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "server/com/automation.h"
#include "veltrano/value.h"

namespace veltrano::server {

/// How a class holds its texts. wtf8 (base/text/wtf8.h) is for texts that must come back whatever they hold.
enum class TextForm { ansi, utf8, wtf8 };

/// The characters of a text, embedded zeros included; empty if it is null.
std::u16string_view characters(BSTR text);

std::string ansi(const BSTR* text);
/// The same with a default that is not empty. A null text counts as omitted: early-bound hosts pass one for an argument
/// left out, since the type library cannot name the default of a text by reference.
std::string ansi(const BSTR* text, const char* omitted);
std::string utf8(const BSTR* text);
std::string wtf8(const BSTR* text);
std::filesystem::path path(const BSTR* text);

template <class Number>
Number number(const Number* value, Number missing = Number{}) {
  return value != nullptr ? *value : missing;
}
/// True for every value but 0, as hosts test flags.
inline bool flag(const VARIANT_BOOL* value) {
  return value != nullptr && *value != VARIANT_FALSE;
}

/// The value of a variant of any type; whatever has no counterpart is Opaque. References are followed,
/// objects stand for their default property or, if they are script lists, for their elements; a script's date
/// object is a date. An array of two and more dimensions is a list of lists.
Value value(const VARIANT* variant, TextForm form);
/// The same, but an object stays an object (Opaque): for members that check the kind.
Value valueAsItIs(const VARIANT* variant, TextForm form);
/// The elements of an array of variants. Empty if the pointer is null.
Value::List list(SAFEARRAY* const* array, TextForm form);

/// A new BSTR; null if memory is short.
BSTR newText(std::string_view text, TextForm form);

template <class Number>
void answer(Number* result, Number value) {
  if (result != nullptr) {
    *result = value;
  }
}
/// True is -1.
inline void answer(VARIANT_BOOL* result, bool flag) {
  answer(result, static_cast<VARIANT_BOOL>(flag ? VARIANT_TRUE : VARIANT_FALSE));
}
void answer(BSTR* result, std::string_view text, TextForm form);
/// Lists become arrays of variants, the only ones that script hosts can read; one without elements has the bounds 0 and
/// -1.
void answer(VARIANT* result, const Value& value, TextForm form);

}  // namespace veltrano::server

#endif
