#!/usr/bin/env python3
"""Writes the manifest for winget, three files in FOLDER/winget.

  make_winget_manifest.py VERSION DOWNLOADS DATE FOLDER

FOLDER holds the installers and SHA256SUMS; DOWNLOADS is the address of the folder from where winget downloads them. The codes
are read from the installers.
"""

import subprocess
import sys
from pathlib import Path

PACKAGE = "Veltrano.FrameWork"
SCHEMA = "1.6.0"


def properties(installer):
    """Those of an installer package."""
    lines = subprocess.run(["msiinfo", "export", installer, "Property"], check=True, capture_output=True, text=True).stdout.splitlines()
    return dict(line.split("\t", 1) for line in lines[3:])


def quoted(text):
    """A YAML scalar that is a text whatever it looks like."""
    return "'" + text.replace("'", "''") + "'"


def manifest(kind, version, lines):
    head = [f"# yaml-language-server: $schema=https://aka.ms/winget-manifest.{kind}.{SCHEMA}.schema.json",
            f"PackageIdentifier: {PACKAGE}", f"PackageVersion: {quoted(version)}"]
    return "\n".join([*head, *lines, f"ManifestType: {kind}", f"ManifestVersion: {SCHEMA}", ""])


def installers(version, downloads, date, folder):
    sums = dict(reversed(line.split("  ", 1)) for line in (folder / "SHA256SUMS").read_text().splitlines())
    # winget's own switch for the folder is TARGETDIR, which these installers do not use.
    yield from ("InstallerType: msi", "Scope: machine", "UpgradeBehavior: install", f"ReleaseDate: {date}", "InstallerSwitches:",
                "  InstallLocation: 'INSTALLDIR=\"<INSTALLPATH>\"'", "Installers:")
    for architecture in ("x64", "x86"):
        name = f"VeltranoFrameWork-{version}-{architecture}.msi"
        known = properties(folder / name)
        yield from (f"- Architecture: {architecture}",
                    f"  InstallerUrl: {quoted(downloads + '/' + name)}",
                    f"  InstallerSha256: {quoted(sums[name].upper())}",
                    f"  ProductCode: {quoted(known['ProductCode'])}",
                    # It refuses to run there.
                    *(["  UnsupportedOSArchitectures:", "  - x64", "  - arm64"] if architecture == "x86" else []),
                    "  AppsAndFeaturesEntries:",
                    f"  - DisplayName: {quoted(known['ProductName'])}",
                    f"    Publisher: {quoted(known['Manufacturer'])}",
                    f"    DisplayVersion: {quoted(known['ProductVersion'])}",
                    f"    ProductCode: {quoted(known['ProductCode'])}",
                    f"    UpgradeCode: {quoted(known['UpgradeCode'])}")


def main():
    version, downloads, date, folder = sys.argv[1:]
    folder = Path(folder)
    known = properties(folder / f"VeltranoFrameWork-{version}-x64.msi")
    files = {
        "": ("version", ["DefaultLocale: en-US"]),
        ".installer": ("installer", installers(version, downloads, date, folder)),
        ".locale.en-US": ("defaultLocale", [
            "PackageLocale: en-US", f"Publisher: {quoted(known['Manufacturer'])}", f"PackageName: {quoted(known['ProductName'])}",
            "License: MIT", f"ShortDescription: {quoted(known['ARPCOMMENTS'])}", f"PackageUrl: {quoted(downloads)}", "Tags:",
            *(f"- {tag}" for tag in ("access-database", "automation", "com", "kml", "pdf", "vbscript"))]),
    }
    (folder / "winget").mkdir()
    for ending, (kind, lines) in files.items():
        (folder / "winget" / f"{PACKAGE}{ending}.yaml").write_text(manifest(kind, version, lines))


if __name__ == "__main__":
    main()
