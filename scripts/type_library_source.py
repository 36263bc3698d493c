"""Reads classes, members and enumerations from the type library's source, server/veltrano.idl."""

import re
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent

TYPES = {
    "BSTR": "String",
    "short": "Integer",
    "long": "Long",
    "double": "Double",
    "VARIANT": "Variant",
    "VARIANT_BOOL": "Boolean",
    "IPictureDisp": "IPictureDisp",
    "SAFEARRAY(VARIANT)": "Variant",
    "ADDRESS_NUMBER": "LongPtr",
}


class Parameter:
    def __init__(self, name, kind, default, many):
        self.name, self.kind, self.default, self.many = name, kind, default, many

    def declaration(self):
        if self.many:
            return f"ParamArray {self.name}() As {self.kind}"
        text = f"{self.name} As {self.kind}"
        return text if self.default is None else f"[{text} = {self.default}]"


class Member:
    def __init__(self, name, help_text, dispatch_id):
        self.name, self.help, self.dispatch_id = name, help_text, dispatch_id
        self.kinds, self.parameters, self.result = [], [], None

    def declarations(self):
        for kind in self.kinds:
            if kind == "propput":
                yield f"Property Let {self.name}(value As {self.value_type()})"
            elif kind == "propget":
                yield f"Property Get {self.name}() As {self.result}"
            elif kind == "event":
                yield f"Event {self.name}({self.arguments()})"
            elif self.result:
                yield f"Function {self.name}({self.arguments()}) As {self.result}"
            else:
                yield f"Sub {self.name}({self.arguments()})"

    def arguments(self):
        return ", ".join(parameter.declaration() for parameter in self.parameters)

    def value_type(self):
        return next(parameter.kind for parameter in self.parameters if parameter.name == "value")


class Class:
    """Has the identifiers of its coclass, its interface and, if it has one, its event interface by their names."""

    def __init__(self, name, help_text):
        self.name, self.help, self.members, self.events, self.identifiers = name, help_text, [], [], {}


def attribute_block(text, start):
    """The text within the brackets that open at `start`, and the position after them."""
    depth, quoted, position = 0, False, start
    while True:
        character = text[position]
        if character == '"' and text[position - 1] != "\\":
            quoted = not quoted
        elif not quoted and character == "[":
            depth += 1
        elif not quoted and character == "]":
            depth -= 1
            if depth == 0:
                return text[start + 1 : position], position + 1
        position += 1


def split_parameters(text):
    """Splits at the commas outside brackets and parentheses."""
    depth, part = 0, ""
    for character in text:
        depth += character in "[("
        depth -= character in "])"
        if character == "," and depth == 0:
            yield part.strip()
            part = ""
        else:
            part += character
    if part.strip():
        yield part.strip()


def help_string(attributes):
    found = re.search(r'helpstring\("((?:[^"\\]|\\.)*)"\)', attributes)
    return found.group(1).replace('\\"', '"') if found else ""


def read_default(attributes, constants):
    """As the documentation shows it; None for a parameter that is required."""
    found = re.search(r"OMITTED(?:_TEXT)?\((.*?)\)", attributes)
    if found:
        return constants.get(found.group(1), found.group(1))
    return '""' if "optional" in attributes else None


def read_parameter(text, constants):
    """(Parameter, True) for a result, (Parameter, False) for an argument."""
    attributes, end = attribute_block(text, 0)
    found = re.match(r"\s*(.+?)\s*(\**)\s*(\w+)$", text[end:])
    kind = TYPES.get(found.group(1), found.group(1))
    name = "value" if found.group(3) == "newValue" else found.group(3)
    default = read_default(attributes, constants)
    if kind == "Boolean" and default is not None:
        default = "True" if default == "-1" else "False"
    return Parameter(name, kind, default, "SAFEARRAY" in found.group(1)), "retval" in attributes


def read_members(body, constants, event=False):
    members, position = [], 0
    while (start := body.find("[id(", position)) >= 0:
        attributes, end = attribute_block(body, start)
        position = body.index(";", end)
        declaration = " ".join(body[end:position].split())
        name, arguments = re.match(r"\w+ (\w+)\((.*)\)$", declaration).groups()
        # A property that can be read and set is declared twice.
        member = next((known for known in members if known.name == name), None)
        if member is None:
            member = Member(name, help_string(attributes), int(re.match(r"id\((\d+)\)", attributes).group(1)))
            members.append(member)
        kind = re.search(r"\b(propget|propput)\b", attributes)
        member.kinds.append("event" if event else kind.group(1) if kind else "method")
        for text in split_parameters(arguments):
            parameter, is_result = read_parameter(text, constants)
            if is_result:
                member.result = parameter.kind
            else:
                member.parameters.append(parameter)
    return members


def read_library():
    """Classes by name, and enumerations as name: (help text, [(constant, value, meaning)])."""
    text = (ROOT / "server/veltrano.idl").read_text()
    enumerations = {}
    for attributes, name, body in re.findall(r"typedef \[(.*?)\]\s*enum (\w+) \{(.*?)\}", text, re.S):
        rows = re.findall(r"^\s*(\w+) = (\d+),?\s*//\s*(.*)$", body, re.M)
        enumerations[name] = (help_string(attributes), rows)
    code = re.sub(r"^\s*//.*$", "", text, flags=re.M)
    constants = {name: value for _, rows in enumerations.values() for name, value, *_ in rows}
    classes = {}
    for attributes, name in re.findall(r"\[([^\[\]]*?)\]\s*coclass (\w+)", code):
        classes[name] = Class(name, help_string(attributes))
    for found in re.finditer(r"(?:dispinterface|interface) (_+)(\w+)(?: : IDispatch)?\s*\{(.*?)\n    \};", code, re.S):
        underscores, name, body = found.groups()
        members = read_members(body, constants, event=underscores == "__")
        if underscores == "__":
            classes[name].events = members
        else:
            classes[name].members = members
    for guid, name in re.findall(r"uuid\(([\w-]+)\)[^\[\]]*?\]\s*(?:coclass|interface|dispinterface) (\w+)", code):
        classes[name.lstrip("_")].identifiers[name] = guid
    return classes, enumerations
