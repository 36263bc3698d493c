#ifndef VELTRANO_SERVER_CLASSES_MDB_OBJECT_H
#define VELTRANO_SERVER_CLASSES_MDB_OBJECT_H

#include "server/com/automation_object.h"
#include "veltrano/mdb.h"

// A member of the interface; the C library has made a macro of its name.
#undef EOF

namespace veltrano::server {

/// VeltranoMDB as hosts see it.
class MdbObject final : public AutomationObject<_VeltranoMDB> {
 public:
  using AutomationObject::AutomationObject;

  // The members of _VeltranoMDB, in interface order.
  STDMETHODIMP OpenDB(BSTR* filename, BSTR* Username, BSTR* Password, VARIANT_BOOL* result) override;
  STDMETHODIMP OpenTable(BSTR* Table, VARIANT_BOOL* result) override;
  STDMETHODIMP WriteRecord(BSTR* Field, VARIANT* Value, VARIANT_BOOL* result) override;
  STDMETHODIMP ReadRecord_String(BSTR* xField, BSTR* result) override;
  STDMETHODIMP Edit() override;
  STDMETHODIMP Delete() override;
  STDMETHODIMP MoveFirst() override;
  STDMETHODIMP MoveNext() override;
  STDMETHODIMP MoveLast() override;
  STDMETHODIMP AddNew() override;
  STDMETHODIMP EOF(VARIANT_BOOL* result) override;
  STDMETHODIMP Update() override;
  STDMETHODIMP FindRecord(BSTR* Field, BSTR* Value, VARIANT_BOOL* CaseSensivite,
                          VARIANT_BOOL* result) override;
  STDMETHODIMP CloseTable() override;
  STDMETHODIMP CloseDatabase() override;

 private:
  VeltranoMDB mdb_;
};

}  // namespace veltrano::server

#endif
