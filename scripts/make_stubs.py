#!/usr/bin/env python3
"""Makes from the type library's source what hosts without access to it need: its constants, and stubs for editors and compilers.

  scripts/make_stubs.py FOLDER

  veltrano_constants.vbs, .js, .ps1, .py    the constants
  veltrano.pyi                              classes as pywin32 presents them, for editors and type checkers
  Veltrano.cs                               enumerations, classes and interfaces
"""

import sys
from pathlib import Path

from type_library_source import read_library

MADE = "Made from the type library of VeltranoFrameWorkDLL: do not edit."
# The arguments into which a member writes something that the caller did not know.
WRITTEN_BACK = {("PDFImage", "w"), ("PDFImage", "h")}


def constants(enumerations, remark, line):
    """The constants, one a line, with their meanings as remarks."""
    yield f"{remark} {MADE}"
    for name, (help_text, rows) in enumerations.items():
        yield from ("", f"{remark} {name}: {help_text}")
        for constant, value, meaning in rows:
            yield f"{line.format(name=constant, value=value):<42}{remark} {meaning}"


PYTHON = {"String": "str", "Integer": "int", "Long": "int", "LongPtr": "int", "Double": "float", "Boolean": "bool",
          "Variant": "Any", "IPictureDisp": "Any", None: "None"}


def python_type(kind):
    return PYTHON.get(kind, "int")


def python_member(member):
    """pywin32 answers the result followed by every argument by reference, and only a single value is not a tuple."""
    if "propget" in member.kinds or "propput" in member.kinds:
        yield f"    {member.name}: {python_type(member.result or member.parameters[-1].kind)}"
        return
    many = any(parameter.many for parameter in member.parameters)
    arguments = ["self"]
    for parameter in member.parameters:
        star = "*" if parameter.many else ""
        default = " = ..." if parameter.default is not None else ""
        arguments.append(f"{star}{parameter.name}: {python_type(parameter.kind)}{default}")
    answers = [member.result] if member.result else []
    if not many:
        answers += [parameter.kind for parameter in member.parameters]
    types = ", ".join(map(python_type, answers))
    answer = types or "None" if len(answers) < 2 else f"tuple[{types}]"
    yield f"    def {member.name}({', '.join(arguments)}) -> {answer}: ..."


def python_stub(classes):
    yield from (f"# {MADE}", "# Classes as pywin32 presents them.", "from typing import Any")
    for cls in classes.values():
        yield from ("", f"class {cls.name}:", f'    """{cls.help}."""')
        for member in cls.members:
            yield from python_member(member)
        if cls.events:
            yield from ("", f"class {cls.name}Events:")
            yield from (f"    def On{event.name}(self, xMsg: str) -> str | None: ..." for event in cls.events)


CSHARP = {"String": "string", "Integer": "short", "Long": "int", "LongPtr": "long", "Double": "double", "Boolean": "bool",
          "Variant": "object", "IPictureDisp": "[MarshalAs(UnmanagedType.IDispatch)] object", None: "void"}


def csharp_parameter(member, parameter, optional):
    kind = CSHARP.get(parameter.kind, parameter.kind)
    if (member.name, parameter.name) in WRITTEN_BACK or "event" in member.kinds:
        return f"ref {kind} {parameter.name}"
    if parameter.default is None or not optional:
        return f"{kind} {parameter.name}"
    default = {"True": "true", "False": "false"}.get(parameter.default, parameter.default)
    if parameter.kind not in CSHARP:
        default = f"({kind}){default}"
    return f"{kind} {parameter.name} = {default}"


def csharp_parameters(member):
    """C# lets no required argument follow an optional one, and one by reference cannot be optional."""
    parameters = member.parameters
    last_required = max((index for index, parameter in enumerate(parameters) if (member.name, parameter.name) in WRITTEN_BACK),
                        default=-1)
    return ", ".join(csharp_parameter(member, parameter, index > last_required) for index, parameter in enumerate(parameters))


def csharp_member(member):
    if any(parameter.many for parameter in member.parameters):
        yield f"    // {member.name} takes any number of arguments: call it through dynamic."
        return
    result = CSHARP.get(member.result, member.result)
    yield f"    /// <summary>{member.help.replace('&', '&amp;').replace('<', '&lt;')}</summary>"
    if "propget" in member.kinds or "propput" in member.kinds:
        kind = result if member.result else CSHARP.get(member.value_type(), member.value_type())
        accessors = " ".join(text for key, text in (("propget", "get;"), ("propput", "set;")) if key in member.kinds)
        yield f"    [DispId({member.dispatch_id})] {kind} {member.name} {{ {accessors} }}"
    else:
        of_result = "[return: MarshalAs(UnmanagedType.IDispatch)] " if member.result == "IPictureDisp" else ""
        result = "object" if of_result else result
        yield f"    [DispId({member.dispatch_id})] {of_result}{result} {member.name}({csharp_parameters(member)});"


def csharp_interface(name, guid, members):
    yield from ("", f'[ComImport, Guid("{guid}"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]')
    yield from (f"public interface {name}", "{")
    for member in members:
        yield from csharp_member(member)
    yield "}"


def csharp_stub(classes, enumerations):
    yield from (f"// {MADE}", "// Calls go through IDispatch, so arguments are passed by value and optional ones can be left out.",
                "using System.Runtime.InteropServices;", "", "namespace Veltrano", "{")
    for name, (help_text, rows) in enumerations.items():
        yield from ("", f"/// <summary>{help_text}</summary>", f"public enum {name}", "{")
        yield from (f"    {constant} = {value}, // {meaning}" for constant, value, meaning in rows)
        yield "}"
    for cls in classes.values():
        identifiers = cls.identifiers
        yield from csharp_interface("_" + cls.name, identifiers["_" + cls.name], cls.members)
        if cls.events:
            yield from csharp_interface(f"__{cls.name}", identifiers["__" + cls.name], cls.events)
        # "new VeltranoPDF()" creates the class and asks it for its interface.
        yield from ("", f'[ComImport, Guid("{identifiers["_" + cls.name]}"), CoClass(typeof({cls.name}Class))]',
                    f"public interface {cls.name} : _{cls.name} {{ }}", "",
                    f'[ComImport, Guid("{identifiers[cls.name]}")]', f"public class {cls.name}Class {{ }}")
    yield "}"


def files(classes, enumerations):
    yield "veltrano_constants.vbs", constants(enumerations, "'", "Const {name} = {value}")
    yield "veltrano_constants.js", constants(enumerations, "//", "var {name} = {value};")
    yield "veltrano_constants.ps1", constants(enumerations, "#", "${name} = {value}")
    yield "veltrano_constants.py", constants(enumerations, "#", "{name} = {value}")
    yield "veltrano.pyi", python_stub(classes)
    yield "Veltrano.cs", csharp_stub(classes, enumerations)


def main():
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for name, lines in files(*read_library()):
        (folder / name).write_text("\n".join(lines) + "\n", newline="\n")


if __name__ == "__main__":
    main()
