"""A stand-in for pywin32: its calling rules over our type information, with the classes called through a bridge under Wine.

The rules, as pywin32 has them for a class whose type library it has read:
 - Arguments are converted to the declared type; text is not made of other values.
 - An omitted argument is what the type library says, which cannot express texts: those are empty.
 - A call answers the result and, after it, every argument by reference as it is after the call: nothing of this is None, a
   single value is answered as it is, several as a tuple.
 - A method without parentheses is an object, which counts as true. Assigning to an unknown name is an AttributeError.
 - A parameter list of any length (ParamArray) answers the result alone.
The command that starts the bridge is in VELTRANO_BRIDGE.
"""

import os
import subprocess
import sys
from pathlib import Path
from urllib.parse import quote, unquote

sys.path.insert(0, str(Path(__file__).resolve().parents[4] / "scripts"))
from type_library_source import read_library  # noqa: E402

_classes, _enumerations = read_library()
_METHOD, _GET, _PUT = 1, 2, 4
_KINDS = {"String": "s", "Integer": "h", "Long": "i", "LongPtr": "i", "Double": "d", "Boolean": "b", "Variant": "v"}


class com_error(Exception):  # noqa: N801: pywin32's name
    pass


class _Bridge:
    def __init__(self):
        self.process = subprocess.Popen(os.environ["VELTRANO_BRIDGE"].split("|"), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, text=True)

    def ask(self, on_event, *fields):
        self.process.stdin.write("\t".join(map(str, fields)) + "\n")
        self.process.stdin.flush()
        while True:
            kind, *answer = self.process.stdout.readline().rstrip("\r\n").split("\t")
            if kind == "=":
                return answer
            if kind != "!":
                raise com_error(f"{fields}: {answer}")
            on_event(unquote(answer[0]))


_bridge = _Bridge()


def _field(value, kind, by_reference):
    if kind == "v" and isinstance(value, (list, tuple)):
        return "l" + "".join(_field(element, "v", False) + "," for element in value)
    if kind == "v":
        kind = {str: "s", bool: "b", int: "i", float: "d", type(None): "e"}[type(value)]
    if kind == "s" and not isinstance(value, str):
        raise TypeError(f"{value!r} is not a string")
    converted = {"h": int, "i": int, "d": float, "b": bool}.get(kind, lambda same: same)(value)
    return (kind.upper() if by_reference else kind) + quote(str(converted), safe="")


def _value(field):
    kind, text = field[0], field[1:]
    if kind == "l":
        return tuple(_value(element) for element in text.split(",")[:-1])
    text = unquote(text)
    return {"s": str, "d": float, "i": int, "b": lambda flag: flag == "True", "e": lambda _: None}[kind](text)


class _Object:
    def __init__(self, program_id):
        cls = _classes[program_id.removeprefix("VeltranoFrameWorkDLL.")]
        self.__dict__.update(_members={member.name: member for member in cls.members},
                             _number=_bridge.ask(None, "new", program_id)[0])

    def _ask(self, name, flags, fields=()):
        return [_value(field) for field in _bridge.ask(lambda text: self.OnError(text), "call", self._number, name, flags, *fields)]

    def __getattr__(self, name):
        member = self._members.get(name)
        if member is None:
            raise AttributeError(name)
        if "propget" in member.kinds:
            return self._ask(name, _GET)[0]
        if "propput" in member.kinds:
            raise AttributeError(name)
        return lambda *arguments: self._call(member, arguments)

    def __setattr__(self, name, value):
        member = self._members.get(name)
        if member is None or "propput" not in member.kinds:
            raise AttributeError(f"Property '{name}' can not be set.")
        self._ask(name, _PUT, [_field(value, _KINDS.get(member.value_type(), "i"), False)])

    def _call(self, member, arguments):
        parameters = member.parameters
        if any(parameter.many for parameter in parameters):
            return self._ask(member.name, _METHOD, [_field(value, "v", False) for value in arguments])[0]
        required = sum(parameter.default is None for parameter in parameters)
        if not required <= len(arguments) <= len(parameters):
            raise TypeError(f"{member.name} takes {required} to {len(parameters)} arguments, not {len(arguments)}")
        fields = []
        for index, parameter in enumerate(parameters):
            kind = _KINDS.get(parameter.kind, "i")
            omitted = "" if kind == "s" else 0 if parameter.default in (None, "False") else float(parameter.default)
            fields.append(_field(arguments[index] if index < len(arguments) else omitted, kind, kind != "v"))
        result, *after = self._ask(member.name, _METHOD, fields)
        answer = ([result] if member.result else []) + after
        return tuple(answer) if len(answer) > 1 else answer[0] if answer else None


def Dispatch(program_id):  # noqa: N802: pywin32's name
    return _Object(program_id)


def DispatchWithEvents(program_id, handler):  # noqa: N802: pywin32's name
    return type("COMEventClass", (_Object, handler), {})(program_id)


class gencache:  # noqa: N801: pywin32's name
    EnsureDispatch = staticmethod(Dispatch)


class constants:  # noqa: N801: pywin32's name
    pass


for _, _rows in _enumerations.values():
    for _name, _number, _ in _rows:
        setattr(constants, _name, int(_number))
