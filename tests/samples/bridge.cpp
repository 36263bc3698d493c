// Calls registered classes late bound for a program outside Wine: one request a line, one answer a line.
//   new PROGID                              ->  = NUMBER
//   call NUMBER MEMBER FLAGS [VALUE ...]    ->  = RESULT [VALUE ...]: the arguments as they are after the call
// Fields are separated by tabs. A value is its kind (s text, d double, i 32 bits, h 16 bits, b flag, e empty,
// l list), in upper case if passed by reference, and the text of the value as percent-encoded UTF-8. Events
// come before the answer as "! TEXT", failures are "? HRESULT".

#include <cstdio>
#include <iostream>
#include <list>
#include <memory>
#include <utility>

#include "../server/host.h"
#include "../split.h"

using namespace veltrano::tests;

namespace {

struct Created {
  ComPointer<IDispatch> object;
  std::unique_ptr<Connection> sink;  ///< of the class that has events
};

std::wstring decoded(const std::string& field) {
  std::string bytes;
  for (std::size_t i = 0; i < field.size(); ++i) {
    const bool escaped = field[i] == '%';
    bytes += escaped ? static_cast<char>(std::stoi(field.substr(i + 1, 2), nullptr, 16)) : field[i];
    i += escaped ? 2 : 0;
  }
  return std::filesystem::path(std::u8string(bytes.begin(), bytes.end())).wstring();
}

std::string encoded(const std::wstring& text) {
  std::string field;
  for (const char8_t byte : std::filesystem::path(text).u8string()) {
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02x", unsigned{byte});
    field += escape;
  }
  return field;
}

Argument argumentOf(const std::string& field) {
  if (field[0] == 'l') {  // elements, each followed by a comma
    const std::vector<std::string> elements = split(field.substr(1), ',');
    Argument list = Argument::array(VT_VARIANT, static_cast<ULONG>(elements.size()) - 1);
    for (std::size_t i = 0; i + 1 < elements.size(); ++i)
      VariantCopy(static_cast<VARIANT*>(list->parray->pvData) + i, argumentOf(elements[i]).get());
    return list;
  }
  const std::wstring text = decoded(field.substr(1));
  const char kind = static_cast<char>(field[0] | 0x20);
  if (kind == 's') return text.c_str();
  if (kind == 'd') return std::stod(text);
  if (kind == 'i') return std::stoi(text);
  if (kind == 'h') return Argument::of<short>(VT_I2, static_cast<short>(std::stoi(text)));
  if (kind == 'b') return text == L"True";
  return {};
}

std::string fieldOf(const Argument& value) {
  if ((value->vt & VT_ARRAY) != 0) {
    std::string list = "l";
    LONG last = -1;
    SafeArrayGetUBound(value->parray, 1, &last);
    for (LONG i = 0; i <= last; ++i) {
      Argument element;
      SafeArrayGetElement(value->parray, &i, element.get());
      list += fieldOf(element) + ',';
    }
    return list;
  }
  const char kind = value->vt == VT_BSTR ? 's' : value->vt == VT_R8 ? 'd' : value->vt == VT_BOOL ? 'b' : 'i';
  return value->vt == VT_EMPTY ? "e" : kind + encoded(value.text());
}

std::string call(Created& created, const std::vector<std::string>& fields) {
  std::list<Argument> variables;
  std::vector<Argument> arguments;
  for (std::size_t i = 4; i < fields.size(); ++i) {
    Argument& variable = variables.emplace_back(argumentOf(fields[i]));
    const bool byReference = fields[i][0] >= 'A' && fields[i][0] <= 'Z';
    arguments.push_back(byReference ? Argument::of(VT_BYREF | variable->vt, &variable->llVal) : variable);
  }
  const Outcome outcome = callMethod(*created.object.get(), decoded(fields[2]).c_str(), arguments, {},
                                     static_cast<WORD>(std::stoi(fields[3])));
  if (created.sink != nullptr)
    for (const std::wstring& message : std::exchange((*created.sink)->messages, {}))
      std::cout << "!\t" << encoded(message) << '\n';
  if (FAILED(outcome.status)) return "?\t" + std::to_string(outcome.status);
  std::string answer = "=\t" + fieldOf(outcome.result);
  for (const Argument& variable : variables) answer += '\t' + fieldOf(variable);
  return answer;
}

}  // namespace

int main() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  std::list<Created> objects;
  for (std::string line; std::getline(std::cin, line);) {
    const std::vector<std::string> fields = split(line.substr(0, line.find('\r')), '\t');
    if (fields[0] == "new") {
      Created& created = objects.emplace_back();
      CLSID clsid = {};
      CLSIDFromProgID(decoded(fields[1]).c_str(), &clsid);
      CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                       reinterpret_cast<void**>(created.object.out()));
      if (created.object.get() != nullptr && clsid == CLSID_VeltranoPDF)
        created.sink = std::make_unique<Connection>(*created.object.get());
      std::cout << (created.object.get() != nullptr ? "=\t" + std::to_string(objects.size() - 1) : "?\t0")
                << std::endl;
    } else {
      std::cout << call(*std::next(objects.begin(), std::stoi(fields[1])), fields) << std::endl;
    }
  }
}
