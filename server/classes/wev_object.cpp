#include "server/classes/wev_object.h"

#include "server/com/conversions.h"

namespace veltrano::server {

STDMETHODIMP WevObject::LogNTEvent(BSTR* sString, ::EventTypes* iLogType, long* iEventID, BSTR* AppSource) {
  return run("LogNTEvent",
             [&] { wev_.LogNTEvent(ansi(sString), number(iLogType), number(iEventID), ansi(AppSource)); });
}

}  // namespace veltrano::server
