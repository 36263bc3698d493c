#!/usr/bin/env python3
"""Prints the source of an installer package for wixl.

  make_installer_source.py x86|x64 VERSION FOLDER

FOLDER is the unpacked zip for Windows. The x64 package has both DLLs, each registered for the hosts of its word size;
the x86 package is for a 32-bit Windows and refuses to run on another. The installer writes and removes the registry rows
that the DLL's own registration (server/com/registration.cpp) writes; scripts/try-package.sh compares the two.
"""

import hashlib
import re
import sys
import uuid
from pathlib import Path
from xml.sax.saxutils import quoteattr

ROOT = Path(__file__).resolve().parent.parent.parent
# Never changes: it tells Windows that one version replaces another.
UPGRADE_CODES = {"x86": "8ff4b051-3a61-43c1-827f-8b33f3e94e90", "x64": "d1db014a-5bd0-4ae8-84d3-4c67653bf765"}
# Of interfaces that a type library describes, and of plain dispatch interfaces, which the events are.
TYPE_LIBRARY_MARSHALLER = "{00020424-0000-0000-C000-000000000046}"
DISPATCH_MARSHALLER = "{00020420-0000-0000-C000-000000000046}"
LIBRARY_VERSION = "1.0"
FOLDERS_KEY = "Software\\VeltranoFrameWork\\Setup"
DESCRIPTION = "PDF, KML, settings, pictures, databases and event log for automation hosts"


def braced(text):
    return "{" + text.upper() + "}"


def derived(*parts):
    """An identifier that is the same for the same parts."""
    return braced(str(uuid.uuid5(uuid.UUID(UPGRADE_CODES["x64"]), "/".join(parts))))


class Contract:
    """The identifiers of the type library and the classes of the server."""

    def __init__(self):
        text = re.sub(r"^\s*//.*$", "", (ROOT / "server/veltrano.idl").read_text(), flags=re.M)
        head = r"\[[^\[\]]*?uuid\(([\w-]+)\)[^\[\]]*?"
        self.library = braced(re.search(head + r"\]\s*library", text).group(1))
        identifiers = {name: braced(guid) for guid, name in re.findall(head + r"\]\s*coclass (\w+)", text)}
        interfaces = {name: braced(guid) for guid, name in re.findall(head + r"\]\s*(?:disp)?interface (_\w+)", text)}
        table = re.findall(r'&CLSID_(\w+).*?L"\w+",\s*L"([^"]*)"', (ROOT / "server/classes/class_table.cpp").read_text(),
                           flags=re.S)
        if {name for name, _ in table} != set(identifiers):
            raise SystemExit("make_installer_source: server/classes/class_table.cpp and server/veltrano.idl name other classes")
        self.classes = [(identifiers[name], name, description) for name, description in table]
        self.interfaces = [(interfaces[face], face) for _, name, _ in self.classes
                           for face in ("_" + name, "__" + name) if face in interfaces]

    def entries(self, architecture, dll):
        """(key, value name or None, text) for every entry that the registration of one DLL writes."""
        for clsid, name, description in self.classes:
            program = f"VeltranoFrameWorkDLL.{name}"
            for key in (program, f"{program}.1"):
                yield key, None, description
                yield f"{key}\\CLSID", None, clsid
            yield f"{program}\\CurVer", None, f"{program}.1"
            key = f"CLSID\\{clsid}"
            yield key, None, description
            yield f"{key}\\InprocServer32", None, dll
            yield f"{key}\\InprocServer32", "ThreadingModel", "Apartment"
            yield f"{key}\\ProgID", None, f"{program}.1"
            yield f"{key}\\VersionIndependentProgID", None, program
            yield f"{key}\\TypeLib", None, self.library
            yield f"{key}\\Version", None, LIBRARY_VERSION
            yield f"{key}\\Programmable", None, ""
        for iid, name in self.interfaces:
            key = f"Interface\\{iid}"
            yield key, None, name
            yield f"{key}\\ProxyStubClsid32", None, DISPATCH_MARSHALLER if name.startswith("__") else TYPE_LIBRARY_MARSHALLER
            yield f"{key}\\TypeLib", None, self.library
            yield f"{key}\\TypeLib", "Version", LIBRARY_VERSION
        key = f"TypeLib\\{self.library}\\{LIBRARY_VERSION}"
        yield key, None, "Veltrano FrameWork"
        yield f"{key}\\0\\{'win64' if architecture == 'x64' else 'win32'}", None, dll
        yield f"{key}\\FLAGS", None, "0"


def identifier(path):
    return re.sub(r"\W", "_", f"f_{path}")


class Source:
    def __init__(self, package, folder):
        self.package, self.folder, self.contract = package, folder, Contract()
        self.components = []

    def component(self, name, win64, indent, lines):
        self.components.append(name)
        attribute = ' Win64="yes"' if win64 else ""
        yield f'{indent}<Component Id="{name}" Guid="{derived(self.package, name)}"{attribute}>'
        yield from lines
        yield f"{indent}</Component>"

    def files(self, folder, indent):
        """Every file below a folder of the zip, one component for each folder; that of the DLL has its registration."""
        relative = folder.relative_to(self.folder).as_posix()
        lines = []
        for number, path in enumerate(sorted(path for path in folder.iterdir() if path.is_file())):
            key = ' KeyPath="yes"' if number == 0 else ""
            lines.append(f'{indent}  <File Id="{identifier(path.relative_to(self.folder))}" Name={quoteattr(path.name)} '
                         f"Source={quoteattr(str(path.relative_to(self.folder)))}{key}/>")
        if relative in ("x86", "x64"):
            lines += self.registration(relative, indent + "  ")
        if relative == "manual":
            lines += self.manual_entries(indent + "  ")
        if lines:
            win64 = self.package == "x64" and folder.relative_to(self.folder).parts[0] != "x86"
            yield from self.component(identifier("c_" + relative), win64, indent, lines)
        for child in sorted(path for path in folder.iterdir() if path.is_dir()):
            yield f'{indent}<Directory Id="{identifier("d_" + relative + "_" + child.name)}" Name={quoteattr(child.name)}>'
            yield from self.files(child, indent + "  ")
            yield f"{indent}</Directory>"

    def manual_entries(self, indent):
        """The manual in the Start menu."""
        yield (f'{indent}<Shortcut Id="manual" Directory="ProgramMenuFolder" Name="Veltrano FrameWork manual" '
               f'Target="[#{identifier("manual/index.html")}]"/>')

    def registration(self, architecture, indent):
        dll = f"[#{identifier(architecture + '/VeltranoFrameWorkDLL.dll')}]"
        for key, name, value in self.contract.entries(architecture, dll):
            named = f"Name={quoteattr(name)} " if name else ""
            yield (f"{indent}<RegistryValue Root=\"HKLM\" Key={quoteattr('Software' + chr(92) + 'Classes' + chr(92) + key)} "
                   f'{named}Type="string" Value={quoteattr(value)}/>')

    def directory(self, root, name, folders):
        yield f'      <Directory Id="{root}">'
        yield f'        <Directory Id="{name}" Name="VeltranoFrameWork">'
        if "." not in folders:
            # Without files in it, the folder would not be removed.
            lines = [f'            <RemoveFolder Id="r_{name}" On="uninstall"/>']
            yield from self.component("c_" + name, False, "          ", lines)
        for folder in folders:
            if folder == ".":
                files = [path for path in sorted(self.folder.iterdir()) if path.is_file()]
                lines = [f'            <File Id="{identifier(path.name)}" Name={quoteattr(path.name)} '
                         f'Source={quoteattr(str(path.relative_to(self.folder)))}{" KeyPath=" + chr(34) + "yes" + chr(34) if number == 0 else ""}/>'
                         for number, path in enumerate(files)]
                lines += [f'            <RegistryValue Root="HKLM" Key="{FOLDERS_KEY}" Name="{value}" Type="string" Value="[{name}]"/>'
                          for name, value in self.folders().items()]
                yield from self.component("c_top", self.package == "x64", "          ", lines)
            else:
                yield f'          <Directory Id="{identifier("d_" + folder)}" Name="{folder}">'
                yield from self.files(self.folder / folder, "            ")
                yield "          </Directory>"
        yield "        </Directory>"
        yield "      </Directory>"

    def shared(self):
        return [path.name for path in sorted(self.folder.iterdir()) if path.is_dir() and path.name not in ("x86", "x64")]

    def entry(self):
        """The entry in the list of installed programs, with what depends on the folder; without an icon, as there is none."""
        yield '    <Property Id="ARPNOMODIFY" Value="1"/>'
        yield f'    <Property Id="ARPCOMMENTS" Value="{DESCRIPTION}"/>'
        size = sum(path.stat().st_size for path in self.folder.rglob("*")
                   if path.is_file() and (self.package == "x64" or path.relative_to(self.folder).parts[0] != "x64"))
        yield f'    <Property Id="ARPSIZE" Value="{size // 1024}"/>'
        texts = {"ARPINSTALLLOCATION": "[INSTALLDIR]", "ARPREADME": f'[#{identifier("README.txt")}]',
                 "ARPHELPLINK": f'file:///[#{identifier("manual/index.html")}]'}
        for name, value in texts.items():
            yield f'    <CustomAction Id="{name}" Property="{name}" Value="{value}"/>'
        yield "    <InstallExecuteSequence>"
        for number, name in enumerate(texts, 1010):
            yield f'      <Custom Action="{name}" Sequence="{number}"/>'
        yield "    </InstallExecuteSequence>"

    def rules(self):
        """When the package installs and what it replaces."""
        condition = ("VersionNT64", "This is a 32-bit Windows: use the x86 package.") if self.package == "x64" else (
            "NOT VersionNT64", "This is a 64-bit Windows: use the x64 package, which brings both DLLs.")
        yield '    <MajorUpgrade DowngradeErrorMessage="A newer version of Veltrano FrameWork is installed: remove it first."/>'
        yield f'    <Condition Message={quoteattr(condition[1])}>{condition[0]}</Condition>'
        # An upgrade decides which files to write before it removes the old version: without "a" it would leave out those
        # that look newer, and the removal would then delete them.
        yield '    <Property Id="REINSTALLMODE" Value="amus"/>'

    def folders(self):
        """Property of a folder -> value of the registry that remembers it."""
        return {"INSTALLDIR": "Folder", "INSTALLDIR32": "Folder32"} if self.package == "x64" else {"INSTALLDIR": "Folder"}

    def remembered(self):
        """An upgrade, a repair and a removal use the folders of the installation unless they are given others."""
        win64 = ' Win64="yes"' if self.package == "x64" else ""
        for name, value in self.folders().items():
            yield f'    <Property Id="PREVIOUS{name}">'
            yield (f'      <RegistrySearch Id="s_{name}" Root="HKLM" Key="{FOLDERS_KEY}" Name="{value}" Type="raw"{win64}/>')
            yield "    </Property>"
            yield f'    <CustomAction Id="KEEP{name}" Property="{name}" Value="[PREVIOUS{name}]"/>'
        yield "    <InstallExecuteSequence>"
        for number, name in enumerate(self.folders(), 410):
            yield f'      <Custom Action="KEEP{name}" Sequence="{number}">PREVIOUS{name} AND NOT {name}</Custom>'
        yield "    </InstallExecuteSequence>"

    def body(self):
        yield '    <Media Id="1" Cabinet="files.cab" EmbedCab="yes"/>'
        yield from self.rules()
        yield from self.remembered()
        yield from self.entry()
        yield '    <Directory Id="TARGETDIR" Name="SourceDir">'
        yield '      <Directory Id="ProgramMenuFolder" Name="Programs"/>'
        if self.package == "x64":
            yield from self.directory("ProgramFiles64Folder", "INSTALLDIR", [".", "x64", *self.shared()])
            yield from self.directory("ProgramFilesFolder", "INSTALLDIR32", ["x86"])
        else:
            yield from self.directory("ProgramFilesFolder", "INSTALLDIR", [".", "x86", *self.shared()])
        yield "    </Directory>"
        yield '    <Feature Id="Complete" Level="1" Title="Veltrano FrameWork">'
        for component in self.components:
            yield f'      <ComponentRef Id="{component}"/>'
        yield "    </Feature>"

    def package_code(self, version, body):
        """Windows takes packages of the same code for the same file, so it follows from all that is in the package."""
        digest = hashlib.sha256("\n".join(body).encode())
        for path in sorted(path for path in self.folder.rglob("*") if path.is_file()):
            digest.update(hashlib.sha256(path.read_bytes()).digest())
        return derived(self.package, version, digest.hexdigest())

    def text(self, version):
        body = list(self.body())
        yield '<?xml version="1.0" encoding="utf-8"?>'
        yield '<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">'
        yield (f'  <Product Id="{derived(self.package, version, "product")}" UpgradeCode="{braced(UPGRADE_CODES[self.package])}" '
               f'Name="Veltrano FrameWork" Version="{version}" Manufacturer="VELTRANO Software Technologies" Language="1033">')
        yield (f'    <Package Id="{self.package_code(version, body)}" InstallerVersion="200" Compressed="yes" '
               f'InstallScope="perMachine" Description="{DESCRIPTION}"/>')
        yield from body
        yield "  </Product>"
        yield "</Wix>"


def main():
    package, version, folder = sys.argv[1:]
    print("\n".join(Source(package, Path(folder).resolve()).text(version)))


if __name__ == "__main__":
    main()
