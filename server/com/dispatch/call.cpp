#include "server/com/dispatch/call.h"

#include <array>
#include <utility>

#include "server/com/dispatch/argument.h"

namespace veltrano::server {

namespace {

constexpr std::size_t most = InterfaceTable::mostParameters;

/// Which of the host's arguments goes to which parameter; null where none was passed.
using Given = std::array<VARIANT*, most>;

void reportWrong(UINT* wrong, const DISPPARAMS& passed, const VARIANT* argument) {
  if (wrong != nullptr && argument != nullptr) {
    *wrong = static_cast<UINT>(argument - passed.rgvarg);
  }
}

HRESULT assign(const Member& member, const DISPPARAMS& passed, UINT* wrong, Given& given) {
  const std::size_t count = member.parameters.size();
  if (passed.cArgs > count) {
    return DISP_E_BADPARAMCOUNT;
  }
  const UINT named = passed.cNamedArgs;
  // Named arguments come first, the others follow from the last to the first.
  for (UINT i = named; i < passed.cArgs; ++i) {
    given[passed.cArgs - 1 - i] = &passed.rgvarg[i];
  }
  for (UINT i = 0; i < named; ++i) {
    DISPID id = passed.rgdispidNamedArgs[i];
    if (id == DISPID_PROPERTYPUT) {
      id = static_cast<DISPID>(count) - 1;
    }
    if (id < 0 || static_cast<std::size_t>(id) >= count || given[static_cast<std::size_t>(id)] != nullptr) {
      reportWrong(wrong, passed, &passed.rgvarg[i]);
      return DISP_E_PARAMNOTFOUND;
    }
    given[static_cast<std::size_t>(id)] = &passed.rgvarg[i];
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (given[i] == nullptr && !member.parameters[i].optional) {
      return DISP_E_BADPARAMCOUNT;
    }
  }
  return S_OK;
}

template <std::size_t>
using Pointer = void*;

template <std::size_t... Index>
HRESULT callWith(void* function, IDispatch* object, Argument* arguments, std::index_sequence<Index...>) {
  using Function = HRESULT(STDMETHODCALLTYPE*)(IDispatch*, Pointer<Index>...);
  return reinterpret_cast<Function>(function)(object, arguments[Index].pointer()...);
}

/// Every parameter of our interfaces is a pointer, so one call for each count is all it takes.
template <std::size_t Count>
HRESULT callSlot(void* function, IDispatch* object, Argument* arguments) {
  return callWith(function, object, arguments, std::make_index_sequence<Count>());
}

template <std::size_t... Count>
constexpr auto slotCalls(std::index_sequence<Count...>) {
  using SlotCall = HRESULT (*)(void*, IDispatch*, Argument*);
  return std::array<SlotCall, sizeof...(Count)>{&callSlot<Count>...};
}

HRESULT callVtable(IDispatch* object, unsigned slot, Argument* arguments, std::size_t count) {
  static constexpr auto calls = slotCalls(std::make_index_sequence<most + 1>());
  void* const* vtable = *reinterpret_cast<void***>(object);
  return calls[count](vtable[slot], object, arguments);
}

HRESULT takeArguments(const Member& member, const Call& call, std::array<Argument, most>& arguments,
                      const VARIANT*& kept) {
  const DISPPARAMS& passed = *call.arguments;
  if (member.takesAnyNumber) {
    return passed.cNamedArgs != 0 ? DISP_E_NONAMEDARGS : arguments[0].takeList(passed.rgvarg, passed.cArgs);
  }
  Given assignment{};
  const HRESULT assigned = assign(member, passed, call.wrongArgument, assignment);
  if (FAILED(assigned)) {
    return assigned;
  }
  for (std::size_t i = 0; i < member.parameters.size(); ++i) {
    const Parameter& parameter = member.parameters[i];
    VARIANT* given = assignment[i];
    HRESULT taken = S_OK;
    if (given == nullptr) {
      taken = arguments[i].takeDefault(parameter);
    } else if (parameter.keptKind) {
      kept = given;
    } else {
      taken = arguments[i].take(*given, parameter, call.locale);
    }
    if (FAILED(taken)) {
      reportWrong(call.wrongArgument, passed, given);
      return taken;
    }
  }
  return S_OK;
}

}  // namespace

HRESULT callMember(const Member& member, const Call& call) {
  const DISPPARAMS& passed = *call.arguments;
  if ((passed.cArgs > 0 && passed.rgvarg == nullptr) || passed.cNamedArgs > passed.cArgs ||
      (passed.cNamedArgs > 0 && passed.rgdispidNamedArgs == nullptr)) {
    return E_INVALIDARG;
  }
  std::array<Argument, most> arguments;
  const VARIANT* kept = nullptr;
  const HRESULT taken = takeArguments(member, call, arguments, kept);
  if (FAILED(taken)) {
    return taken;
  }
  std::size_t count = member.parameters.size();
  Argument* result = nullptr;
  if (member.result != VT_EMPTY) {
    result = &arguments[count++];
    result->makeResult(member.result);
  }
  // Not before: reading a host's object may call back into this one.
  call.kinds->keep(kept);
  const HRESULT called = callVtable(call.object, member.slot, arguments.data(), count);
  // The member may have ended, for want of memory, before it took the variant, which is the host's again now.
  call.kinds->keep(nullptr);
  for (std::size_t i = 0; i < member.parameters.size(); ++i) {
    arguments[i].writeBack(call.locale);
  }
  if (result != nullptr) {
    result->giveResult(call.result);
  }
  return called;
}

}  // namespace veltrano::server
