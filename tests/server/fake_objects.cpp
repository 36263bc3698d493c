#include "fake_objects.h"

#include <fstream>

namespace veltrano::tests {

constexpr DISPID lengthId = 1000;

STDMETHODIMP_(ULONG) DispatchFake::Release() {
  const ULONG left = --references;
  if (left == 0 && onHeap) delete this;
  return left;
}

STDMETHODIMP FakeObject::GetIDsOfNames(REFIID, OLECHAR** names, UINT, LCID, DISPID* ids) {
  const std::wstring name = names[0];
  if (elements_.empty()) return DISP_E_UNKNOWNNAME;
  ids[0] = name == L"length" ? lengthId : static_cast<DISPID>(std::stoi(name)) + 1;
  return S_OK;
}

STDMETHODIMP FakeObject::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                UINT*) {
  inInvoke();
  if (id == DISPID_VALUE) return VariantCopy(result, value_.get());
  if (id == lengthId) return VariantCopy(result, Argument(static_cast<int>(elements_.size())).get());
  return VariantCopy(result, elements_.at(static_cast<std::size_t>(id) - 1).get());
}

void* RecordingSink::find(REFIID iid) {
  return DispatchFake::find(knowsEventInterface && iid == DIID___VeltranoPDF ? IID_IDispatch : iid);
}

STDMETHODIMP RecordingSink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                                   UINT*) {
  if (id == 1 && arguments->cArgs == 1 && arguments->rgvarg[0].vt == (VT_BYREF | VT_BSTR)) {
    messages.emplace_back(*arguments->rgvarg[0].pbstrVal);
    // Hosts may assign to a parameter by reference.
    SysReAllocString(arguments->rgvarg[0].pbstrVal, L"assigned by the host");
  }
  inInvoke();
  return answer;
}

Connection::Connection(IUnknown& object, IUnknown& sink) {
  const auto container = as<IConnectionPointContainer>(object, IID_IConnectionPointContainer);
  if (container && SUCCEEDED(container->FindConnectionPoint(DIID___VeltranoPDF, point_.out())))
    point_->Advise(&sink, &cookie_);
}

void Connection::disconnect() {
  if (cookie_ != 0) {
    point_->Unadvise(cookie_);
    cookie_ = 0;
  }
  point_ = {};
}

void writeGreyJpeg(const std::filesystem::path& file, int width, int height) {
  std::string bytes("\xFF\xD8\xFF\xC0\0\x0B\x08", 7);
  for (const int part : {height / 256, height % 256, width / 256, width % 256})
    bytes += static_cast<char>(part);
  bytes += std::string("\x01\x01\x11\0", 4);
  // A comment segment that fills the file up to a size that is looked at.
  bytes += std::string("\xFF\xFE\x01\0", 4) + std::string(254, ' ') + "\xFF\xD9";
  std::ofstream(file, std::ios::binary) << bytes;
}

}  // namespace veltrano::tests
