#include "server/classes/ini_object.h"

#include "server/com/conversions.h"

namespace veltrano::server {

namespace {

// The texts of this class end in an ANSI file.
void answer(BSTR* result, const std::string& text) {
  server::answer(result, text, TextForm::ansi);
}

}  // namespace

STDMETHODIMP IniObject::GetIniValue(BSTR* filename, BSTR* Key, BSTR* Default, BSTR* result) {
  return run("GetIniValue", result,
             [&] { answer(result, ini_.GetIniValue(path(filename), ansi(Key), ansi(Default))); });
}

STDMETHODIMP IniObject::SetIniValue(BSTR* filename, BSTR* Key, BSTR* Value) {
  return run("SetIniValue", [&] { ini_.SetIniValue(path(filename), ansi(Key), ansi(Value)); });
}

STDMETHODIMP IniObject::ChangeValue(BSTR* xFileBuffer, BSTR* Key, BSTR* Value, BSTR* result) {
  return run("ChangeValue", result,
             [&] { answer(result, ini_.ChangeValue(ansi(xFileBuffer), ansi(Key), ansi(Value))); });
}

STDMETHODIMP IniObject::GetValue(BSTR* xFileBuffer, BSTR* Key, BSTR* Default, BSTR* result) {
  return run("GetValue", result,
             [&] { answer(result, ini_.GetValue(ansi(xFileBuffer), ansi(Key), ansi(Default))); });
}

STDMETHODIMP IniObject::OpenFile(BSTR* xFilename, BSTR* result) {
  return run("OpenFile", result, [&] { answer(result, ini_.OpenFile(path(xFilename))); });
}

STDMETHODIMP IniObject::CloseFile(BSTR* filename, BSTR* xText) {
  return run("CloseFile", [&] { ini_.CloseFile(path(filename), ansi(xText)); });
}

}  // namespace veltrano::server
