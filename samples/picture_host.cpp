// A host in C++: loads a picture as any Windows program does, saves it through the library as JPEG and PNG,
// and lets the library paint a JPEG from memory onto a device context.
//   picture_host SAMPLES_FOLDER OUTPUT_FOLDER

#include <windows.h>

#include <ocidl.h>
#include <olectl.h>

#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

struct ReleaseInterface {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using Owned = std::unique_ptr<Interface, ReleaseInterface>;

// A VARIANT that frees its content.
class Argument {
 public:
  Argument() { VariantInit(&value_); }
  Argument(long number) : Argument() {
    value_.vt = VT_I4;
    value_.lVal = number;
  }
  Argument(const std::wstring& text)
      : Argument(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  Argument(BSTR text) : Argument() {
    value_.vt = VT_BSTR;
    value_.bstrVal = text;
  }
  Argument(IDispatch* object) : Argument() {
    value_.vt = VT_DISPATCH;
    value_.pdispVal = object;
    if (object != nullptr) object->AddRef();
  }
  // An address or handle: 64 bits wide in a 64-bit host.
  static Argument address(const void* pointer) {
    Argument argument;
    argument.value_.vt = sizeof(pointer) == 8 ? VT_I8 : VT_I4;
    argument.value_.llVal = static_cast<LONGLONG>(reinterpret_cast<INT_PTR>(pointer));
    return argument;
  }
  Argument(const Argument& other) : Argument() { VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)); }
  Argument(Argument&& other) noexcept : Argument() { std::swap(value_, other.value_); }
  Argument& operator=(Argument other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Argument() { VariantClear(&value_); }

  VARIANT value_;
};

// One of the library's objects, called by name as scripts do.
class Automation {
 public:
  explicit Automation(const wchar_t* progId) {
    CLSID id;
    void* object = nullptr;
    if (SUCCEEDED(CLSIDFromProgID(progId, &id)) &&
        SUCCEEDED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object))) {
      object_.reset(static_cast<IDispatch*>(object));
    }
  }
  explicit operator bool() const { return object_ != nullptr; }

  Argument call(const wchar_t* member, std::initializer_list<Argument> arguments) const {
    return invoke(member, DISPATCH_METHOD, arguments);
  }
  long number(const wchar_t* property) const {
    return invoke(property, DISPATCH_PROPERTYGET, {}).value_.lVal;
  }

 private:
  Argument invoke(const wchar_t* member, WORD kind, std::initializer_list<Argument> arguments) const {
    Argument result;
    std::wstring name(member);
    LPOLESTR names = name.data();
    DISPID id = 0;
    if (FAILED(object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id))) return result;
    std::vector<VARIANT> reversed;
    for (auto it = std::rbegin(arguments); it != std::rend(arguments); ++it) reversed.push_back(it->value_);
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, &result.value_, nullptr, nullptr);
    return result;
  }

  Owned<IDispatch> object_;
};

std::vector<char> readFile(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Owned<IPictureDisp> loadPicture(const std::vector<char>& bytes) {
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
  std::copy(bytes.begin(), bytes.end(), static_cast<char*>(GlobalLock(memory)));
  GlobalUnlock(memory);
  IStream* stream = nullptr;
  CreateStreamOnHGlobal(memory, TRUE, &stream);
  const Owned<IStream> owner(stream);
  void* picture = nullptr;
  OleLoadPicture(stream, static_cast<LONG>(bytes.size()), FALSE, IID_IPictureDisp, &picture);
  return Owned<IPictureDisp>(static_cast<IPictureDisp*>(picture));
}

// JPEG bytes as the library passes them: one character a byte, by the ANSI code page.
std::string bytesOf(const Argument& text) {
  if (text.value_.vt != VT_BSTR) return {};
  const int length = static_cast<int>(SysStringLen(text.value_.bstrVal));
  std::string bytes(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.value_.bstrVal, length, bytes.data(), length, nullptr, nullptr);
  return bytes;
}

// A picture object that owns the bitmap.
Owned<IPictureDisp> pictureOf(HBITMAP bitmap) {
  PICTDESC description{};
  description.cbSizeofstruct = sizeof(description);
  description.picType = PICTYPE_BITMAP;
  description.bmp.hbitmap = bitmap;
  void* picture = nullptr;
  OleCreatePictureIndirect(&description, IID_IPictureDisp, TRUE, &picture);
  return Owned<IPictureDisp>(static_cast<IPictureDisp*>(picture));
}

// A contact sheet: the photo large, in a corner, and squeezed.
HBITMAP paintSheet(const Automation& jpg, const std::string& bytes) {
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), 800, 600, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* pixels = nullptr;
  HBITMAP sheet = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
  HDC dc = CreateCompatibleDC(nullptr);
  HGDIOBJ previous = SelectObject(dc, sheet);
  const RECT whole{0, 0, 800, 600};
  HBRUSH paper = CreateSolidBrush(RGB(238, 232, 218));
  FillRect(dc, &whole, paper);
  DeleteObject(paper);
  const Argument target = Argument::address(dc), source = Argument::address(bytes.data());
  const auto size = static_cast<long>(bytes.size());
  jpg.call(L"LoadJPEGFromRAM2Picture", {target, source, size, 180L, 120L});
  std::printf("A JPEG of %ld x %ld pixels from memory\n", jpg.number(L"JPEGWidth"),
              jpg.number(L"JPEGHeight"));
  jpg.call(L"LoadJPEGFromRAM2PictureXY", {target, source, size, 200L, 140L, 570L, 380L});
  jpg.call(L"LoadJPEGFromRAM2PictureXY", {target, source, size, 20L, 140L, 160L, 380L});
  jpg.call(L"LoadJPEGFromRAM2PictureXY", {target, source, size, 200L, 540L, 570L, 40L});
  SelectObject(dc, previous);
  DeleteDC(dc);
  return sheet;
}

int run(const std::string& samples, const std::string& output) {
  const Automation jpg(L"VeltranoFrameWorkDLL.VeltranoJPG"), png(L"VeltranoFrameWorkDLL.VeltranoPNG");
  if (!jpg || !png) return std::fprintf(stderr, "VeltranoFrameWorkDLL is not registered\n"), 1;
  const Owned<IPictureDisp> photo = loadPicture(readFile(samples + "\\photo.jpg"));
  if (!photo) return std::fprintf(stderr, "photo.jpg cannot be loaded\n"), 1;

  const std::wstring folder(output.begin(), output.end());
  jpg.call(L"SaveJPEG", {photo.get(), folder + L"\\host.jpg", 75L, 600L, 400L});
  bool saved = png.call(L"SavePNG", {photo.get(), folder + L"\\host.png"}).value_.boolVal == VARIANT_TRUE;

  const std::string bytes = bytesOf(jpg.call(L"SaveJPEGToMemory", {photo.get(), 70L}));
  const Owned<IPictureDisp> sheet = pictureOf(paintSheet(jpg, bytes));
  saved =
      png.call(L"SavePNG", {sheet.get(), folder + L"\\sheet.png"}).value_.boolVal == VARIANT_TRUE && saved;

  // A picture that is not a bitmap gives False.
  const bool nothing =
      png.call(L"SavePNG", {static_cast<IDispatch*>(nullptr), folder + L"\\nothing.png"}).value_.boolVal != 0;
  std::printf("host.jpg, host.png and sheet.png are written%s\n", nothing ? ", and so is nothing" : "");
  return saved && !nothing ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return std::fprintf(stderr, "usage: picture_host SAMPLES_FOLDER OUTPUT_FOLDER\n"), 2;
  OleInitialize(nullptr);
  const int result = run(argv[1], argv[2]);
  OleUninitialize();
  if (result == 0) std::printf("done\n");
  return result;
}
