#!/usr/bin/env python3
"""Checks the winget manifest of the packages; prints what is wrong with it and exits 1.

  check_winget_manifest.py OUT REGISTRY_X64 REGISTRY_X86

The files named REGISTRY list the registry after the installation of each installer, one value a line.
"""

import re
import sys
from pathlib import Path

import yaml

# What winget's schemas 1.6 demand of each kind of file.
REQUIRED = {
    "version": {"DefaultLocale"},
    "installer": {"Installers"},
    "defaultLocale": {"PackageLocale", "Publisher", "PackageName", "License", "ShortDescription"},
}
ALWAYS = {"PackageIdentifier", "PackageVersion", "ManifestType", "ManifestVersion"}
TYPES = {"PackageVersion": str, "PackageIdentifier": str, "ManifestVersion": str}


def faults(out, registries):
    sums = dict(reversed(line.split("  ", 1)) for line in (out / "SHA256SUMS").read_text().splitlines())
    files = {}
    for path in sorted((out / "winget").glob("*.yaml")):
        content = yaml.safe_load(path.read_text())
        files[content.get("ManifestType")] = content
        for name in sorted((ALWAYS | REQUIRED.get(content.get("ManifestType"), set())) - set(content)):
            yield f"{path.name}: no {name}"
        for name, kind in TYPES.items():
            if not isinstance(content.get(name), kind):
                yield f"{path.name}: {name} is {content.get(name)!r}"
        if content.get("ManifestVersion") != "1.6.0" or not path.name.startswith(content["PackageIdentifier"] + "."):
            yield f"{path.name}: not of version 1.6.0, or named for another package"
    if set(files) != set(REQUIRED):
        yield f"files of the kinds {sorted(map(str, files))}"
        return
    if len({(content["PackageIdentifier"], content["PackageVersion"]) for content in files.values()}) != 1:
        yield "the files are of different packages"
    if {installer["Architecture"] for installer in files["installer"]["Installers"]} != set(registries):
        yield "other word sizes than the installers have"
    for installer in files["installer"]["Installers"]:
        name = installer["InstallerUrl"].rsplit("/", 1)[1]
        if installer["InstallerSha256"].lower() != sums.get(name):
            yield f"{name}: not the checksum of SHA256SUMS"
        yield from entry_faults(name, installer, registries[installer["Architecture"]].read_text())


def entry_faults(name, installer, registry):
    """The entry in the list of installed programs by which winget recognises the package."""
    seen = dict(re.findall(r'^\[[^\]]*\\Uninstall\\\\' + re.escape(installer["ProductCode"]) + r'\] "(\w+)"="(.*)"$', registry, flags=re.M))
    entry = installer["AppsAndFeaturesEntries"][0]
    for value in ("DisplayName", "Publisher", "DisplayVersion"):
        if seen.get(value) != entry[value]:
            yield f"{name}: {value} is {seen.get(value)!r} after the installation"


def main():
    out, x64, x86 = map(Path, sys.argv[1:])
    found = list(faults(out, {"x64": x64, "x86": x86}))
    print("\n".join(found), end="")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
