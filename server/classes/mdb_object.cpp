#include "server/classes/mdb_object.h"

#include "server/com/conversions.h"

#undef EOF

namespace veltrano::server {

STDMETHODIMP MdbObject::OpenDB(BSTR* filename, BSTR* Username, BSTR* Password, VARIANT_BOOL* result) {
  return run("OpenDB", result,
             [&] { answer(result, mdb_.OpenDB(utf8(filename), utf8(Username), utf8(Password))); });
}

STDMETHODIMP MdbObject::OpenTable(BSTR* Table, VARIANT_BOOL* result) {
  return run("OpenTable", result, [&] { answer(result, mdb_.OpenTable(utf8(Table))); });
}

STDMETHODIMP MdbObject::WriteRecord(BSTR* Field, VARIANT* Value, VARIANT_BOOL* result) {
  return run("WriteRecord", result,
             [&] { answer(result, mdb_.WriteRecord(utf8(Field), value(Value, TextForm::wtf8))); });
}

STDMETHODIMP MdbObject::ReadRecord_String(BSTR* xField, BSTR* result) {
  return run("ReadRecord_String", result,
             [&] { answer(result, mdb_.ReadRecord_String(utf8(xField)), TextForm::wtf8); });
}

STDMETHODIMP MdbObject::Edit() {
  return run("Edit", [&] { mdb_.Edit(); });
}

STDMETHODIMP MdbObject::Delete() {
  return run("Delete", [&] { mdb_.Delete(); });
}

STDMETHODIMP MdbObject::MoveFirst() {
  return run("MoveFirst", [&] { mdb_.MoveFirst(); });
}

STDMETHODIMP MdbObject::MoveNext() {
  return run("MoveNext", [&] { mdb_.MoveNext(); });
}

STDMETHODIMP MdbObject::MoveLast() {
  return run("MoveLast", [&] { mdb_.MoveLast(); });
}

STDMETHODIMP MdbObject::AddNew() {
  return run("AddNew", [&] { mdb_.AddNew(); });
}

STDMETHODIMP MdbObject::EOF(VARIANT_BOOL* result) {
  return run("EOF", result, [&] { answer(result, mdb_.Eof()); });
}

STDMETHODIMP MdbObject::Update() {
  return run("Update", [&] { mdb_.Update(); });
}

STDMETHODIMP MdbObject::FindRecord(BSTR* Field, BSTR* Value, VARIANT_BOOL* CaseSensivite,
                                   VARIANT_BOOL* result) {
  return run("FindRecord", result,
             [&] { answer(result, mdb_.FindRecord(utf8(Field), wtf8(Value), number(CaseSensivite))); });
}

STDMETHODIMP MdbObject::CloseTable() {
  return run("CloseTable", [&] { mdb_.CloseTable(); });
}

STDMETHODIMP MdbObject::CloseDatabase() {
  return run("CloseDatabase", [&] { mdb_.CloseDatabase(); });
}

}  // namespace veltrano::server
