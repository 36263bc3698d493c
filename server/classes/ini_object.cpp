#include "server/classes/ini_object.h"

#include "server/com/conversions.h"

namespace veltrano::server {

namespace {

// The texts of this class are as hosts hand them over.

std::u16string_view unicode(const BSTR* text) {
  return text != nullptr ? characters(*text) : std::u16string_view();
}

void answer(BSTR* result, const std::u16string& text) {
  if (result != nullptr) {
    *result =
        SysAllocStringLen(reinterpret_cast<const wchar_t*>(text.data()), static_cast<UINT>(text.size()));
  }
}

}  // namespace

STDMETHODIMP IniObject::GetIniValue(BSTR* filename, BSTR* Key, BSTR* Default, BSTR* result) {
  return run("GetIniValue", result,
             [&] { answer(result, ini_.GetIniValue(path(filename), unicode(Key), unicode(Default))); });
}

STDMETHODIMP IniObject::SetIniValue(BSTR* filename, BSTR* Key, BSTR* Value) {
  return run("SetIniValue", [&] { ini_.SetIniValue(path(filename), unicode(Key), unicode(Value)); });
}

STDMETHODIMP IniObject::ChangeValue(BSTR* xFileBuffer, BSTR* Key, BSTR* Value, BSTR* result) {
  return run("ChangeValue", result,
             [&] { answer(result, ini_.ChangeValue(unicode(xFileBuffer), unicode(Key), unicode(Value))); });
}

STDMETHODIMP IniObject::GetValue(BSTR* xFileBuffer, BSTR* Key, BSTR* Default, BSTR* result) {
  return run("GetValue", result,
             [&] { answer(result, ini_.GetValue(unicode(xFileBuffer), unicode(Key), unicode(Default))); });
}

STDMETHODIMP IniObject::OpenFile(BSTR* xFilename, BSTR* result) {
  return run("OpenFile", result, [&] { answer(result, ini_.OpenFile(path(xFilename))); });
}

STDMETHODIMP IniObject::CloseFile(BSTR* filename, BSTR* xText) {
  return run("CloseFile", [&] { ini_.CloseFile(path(filename), unicode(xText)); });
}

}  // namespace veltrano::server
