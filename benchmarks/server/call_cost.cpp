// The cost of a call to a host: early bound, late bound through the server's dispatcher, and late bound
// through the system's (DispInvoke) on the same interface. Medians of rounds, in nanoseconds a call; names
// are looked up once, as hosts do.

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "host.h"

namespace {

using veltrano::server::ComPointer;
using veltrano::tests::Argument;
using veltrano::tests::Dll;

constexpr int rounds = 41;
constexpr int callsPerRound = 2000;

double now() {
  LARGE_INTEGER ticks;
  LARGE_INTEGER frequency;
  QueryPerformanceCounter(&ticks);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(ticks.QuadPart) * 1e9 / static_cast<double>(frequency.QuadPart);
}

struct Contender {
  const char* name;
  std::function<HRESULT()> call;
  std::vector<double> times;
};

/// The candidates take turns, so that a busy machine slows all of them alike.
void compare(const char* title, _VeltranoPDF& pdf, std::vector<Contender> contenders) {
  for (int round = 0; round < rounds; ++round) {
    for (Contender& contender : contenders) {
      // A new page, so that its growth is not measured.
      pdf.PDFBeginDoc();
      const double start = now();
      for (int i = 0; i < callsPerRound; ++i) {
        if (contender.call() != S_OK) {
          std::printf("%s: the call failed\n", contender.name);
          return;
        }
      }
      contender.times.push_back((now() - start) / callsPerRound);
    }
  }
  std::printf("%s\n", title);
  double stock = 0;
  for (Contender& contender : contenders) {
    std::sort(contender.times.begin(), contender.times.end());
    stock = contender.times[rounds / 2];
  }
  for (const Contender& contender : contenders) {
    const double median = contender.times[rounds / 2];
    std::printf("  %-34s %8.0f ns   %5.2f x of the system's\n", contender.name, median, median / stock);
  }
}

/// A call that can be repeated.
struct PreparedCall {
  DISPID id = 0;
  WORD flags = 0;
  std::vector<VARIANT> arguments;  // from the last to the first

  HRESULT own(IDispatch& object) {
    DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    VARIANT result;
    VariantInit(&result);
    return object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, &result, nullptr, nullptr);
  }
  HRESULT systems(IDispatch& object, ITypeInfo& type) {
    DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    VARIANT result;
    VariantInit(&result);
    return DispInvoke(&object, &type, id, flags, &parameters, &result, nullptr, nullptr);
  }
};

DISPID idOf(IDispatch& object, const wchar_t* member) {
  DISPID id = DISPID_UNKNOWN;
  auto* name = const_cast<OLECHAR*>(member);
  object.GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

VARIANT number(double value) {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = VT_R8;
  variant.dblVal = value;
  return variant;
}

}  // namespace

int main() {
  const Dll dll;
  const ComPointer<_VeltranoPDF> pdf = dll.createPdf();
  ComPointer<ITypeInfo> type;
  if (!pdf || pdf->GetTypeInfo(0, 0, type.out()) != S_OK) {
    std::printf("The DLL cannot be loaded.\n");
    return 1;
  }
  ::PDFFontNme font = static_cast<::PDFFontNme>(0);
  short size = 12;
  ::PDFFontStl style = static_cast<::PDFFontStl>(0);
  pdf->PDFSetFont(&font, &size, &style);

  PreparedCall read;
  read.id = idOf(*pdf.get(), L"PDFGetLeftMargin");
  read.flags = DISPATCH_PROPERTYGET;
  compare(
      "Reading a property (PDFGetLeftMargin)", *pdf.get(),
      {{"early bound",
        [&] {
          double margin = 0;
          return pdf->get_PDFGetLeftMargin(&margin);
        },
        {}},
       {"late bound, this server", [&] { return read.own(*pdf.get()); }, {}},
       {"late bound, the system's DispInvoke", [&] { return read.systems(*pdf.get(), *type.get()); }, {}}});

  Argument text(L"The quick brown fox");
  double x = 3;
  double y = 4;
  PreparedCall write;
  write.id = idOf(*pdf.get(), L"PDFTextOut");
  write.flags = DISPATCH_METHOD;
  write.arguments = {number(y), number(x), *text.get()};
  compare(
      "Writing a text (PDFTextOut)", *pdf.get(),
      {{"early bound", [&] { return pdf->PDFTextOut(&text->bstrVal, &x, &y); }, {}},
       {"late bound, this server", [&] { return write.own(*pdf.get()); }, {}},
       {"late bound, the system's DispInvoke", [&] { return write.systems(*pdf.get(), *type.get()); }, {}}});
  return 0;
}
