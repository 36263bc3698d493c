#!/usr/bin/env python3
"""Makes the metrics files shipped with the library from the published ones.

    scripts/make_metrics.py <folder of the 14 published AFM files> [<output folder>]

The library measures a text by its Windows-1252 codes and shows it with WinAnsiEncoding, while the published text
fonts carry the codes of StandardEncoding: an accented letter would measure as another glyph or as nothing. So the
text fonts get the codes of WinAnsiEncoding here. Symbol and ZapfDingbats keep their built-in codes. Kerning,
ligatures and glyphs without a code are left out, since nothing reads them.

A developer runs this; the output is committed in data/metrics.
"""

import pathlib
import re
import sys
import unicodedata

BUILT_IN_CODES = {"Symbol", "ZapfDingbats"}

# Other names that the library uses for upright and italic Times.
SECOND_NAMES = {"Times-Italic": "TimesItalic", "Times-Roman": "TimesRoman"}

# Glyph names that do not follow from the character's Unicode name.
GLYPHS = {
    " ": "space", "!": "exclam", '"': "quotedbl", "#": "numbersign", "$": "dollar", "%": "percent",
    "&": "ampersand", "'": "quotesingle", "(": "parenleft", ")": "parenright", "*": "asterisk", "+": "plus",
    ",": "comma", "-": "hyphen", ".": "period", "/": "slash", ":": "colon", ";": "semicolon", "<": "less",
    "=": "equal", ">": "greater", "?": "question", "@": "at", "[": "bracketleft", "\\": "backslash",
    "]": "bracketright", "^": "asciicircum", "_": "underscore", "`": "grave", "{": "braceleft", "|": "bar",
    "}": "braceright", "~": "asciitilde", "€": "Euro", "‚": "quotesinglbase", "ƒ": "florin", "„": "quotedblbase",
    "…": "ellipsis", "†": "dagger", "‡": "daggerdbl", "ˆ": "circumflex", "‰": "perthousand",
    "‹": "guilsinglleft", "Œ": "OE", "‘": "quoteleft", "’": "quoteright", "“": "quotedblleft",
    "”": "quotedblright", "•": "bullet", "–": "endash", "—": "emdash", "˜": "tilde", "™": "trademark",
    "›": "guilsinglright", "œ": "oe", "¡": "exclamdown", "¢": "cent", "£": "sterling", "¤": "currency",
    "¥": "yen", "¦": "brokenbar", "§": "section", "¨": "dieresis", "©": "copyright", "ª": "ordfeminine",
    "«": "guillemotleft", "¬": "logicalnot", "®": "registered", "¯": "macron", "°": "degree",
    "±": "plusminus", "²": "twosuperior", "³": "threesuperior", "´": "acute", "µ": "mu", "¶": "paragraph",
    "·": "periodcentered", "¸": "cedilla", "¹": "onesuperior", "º": "ordmasculine", "»": "guillemotright",
    "¼": "onequarter", "½": "onehalf", "¾": "threequarters", "¿": "questiondown", "Æ": "AE", "Ð": "Eth",
    "×": "multiply", "Ø": "Oslash", "Þ": "Thorn", "ß": "germandbls", "æ": "ae", "ð": "eth", "÷": "divide",
    "ø": "oslash", "þ": "thorn",
    "\N{NO-BREAK SPACE}": "space",
    "\N{SOFT HYPHEN}": "hyphen",
}

ACCENTS = {
    "GRAVE": "grave", "ACUTE": "acute", "CIRCUMFLEX": "circumflex", "TILDE": "tilde", "DIAERESIS": "dieresis",
    "RING ABOVE": "ring", "CEDILLA": "cedilla", "CARON": "caron",
}

DIGITS = ["zero", "one", "two", "three", "four", "five", "six", "seven", "eight", "nine"]


def glyph_name(code: int) -> str:
    """The glyph that WinAnsiEncoding gives to a code."""
    try:
        character = bytes([code]).decode("cp1252")
    except UnicodeDecodeError:
        return "bullet"  # codes without a character of their own show a bullet
    if code == 127:
        return "bullet"
    if character in GLYPHS:
        return GLYPHS[character]
    if character.isascii() and character.isdigit():
        return DIGITS[int(character)]
    if character.isascii() and character.isalpha():
        return character
    letter, accent = unicodedata.name(character).split(" WITH ")
    base = letter.split()[-1]
    return (base if letter.split()[1] == "CAPITAL" else base.lower()) + ACCENTS[accent]


def character_lines(lines: list[str], font: str) -> list[str]:
    """The lines between StartCharMetrics and EndCharMetrics that have a code, in code order."""
    glyphs = {}
    own_codes = []
    for line in lines:
        found = re.match(r"C\s+(-?\d+)\s*;\s*(WX\s+\S+)\s*;\s*(N\s+(\S+))\s*;\s*(B[^;]*?)\s*;", line)
        if not found:
            raise SystemExit(f"{font}: not a character line: {line}")
        code, width, name, glyph, box = found.groups()
        glyphs[glyph] = f"{width} ; {name} ; {box} ;"
        own_codes.append((int(code), glyph))
    if font in BUILT_IN_CODES:
        codes = sorted(pair for pair in own_codes if pair[0] >= 0)
    else:
        codes = [(code, glyph_name(code)) for code in range(32, 256)]
    return [f"C {code} ; {glyphs[glyph]}" for code, glyph in codes]


def remake(text: str, font: str, name: str) -> str:
    lines = text.splitlines()
    start = next(i for i, line in enumerate(lines) if line.startswith("StartCharMetrics"))
    end = next(i for i, line in enumerate(lines) if line.startswith("EndCharMetrics"))
    characters = character_lines(lines[start + 1:end], font)

    note = ["Comment MODIFIED from the published file of " + font + " (see NOTICE.txt):"]
    if font in BUILT_IN_CODES:
        note.append("Comment MODIFIED: glyphs without a code are left out.")
    else:
        note.append("Comment MODIFIED: codes are those of WinAnsiEncoding; glyphs without a code, ligatures")
        note.append("Comment MODIFIED: and kerning are left out.")
    if name != font:
        note.append("Comment MODIFIED: FontName is " + name + ".")

    header = []
    for line in lines[1:start]:
        line = line.rstrip()
        if line.startswith("FontName "):
            line = "FontName " + name
        elif line.startswith("EncodingScheme ") and font not in BUILT_IN_CODES:
            line = "EncodingScheme WinAnsiEncoding"
        header.append(line)
    made = [lines[0].rstrip(), *note, *header, f"StartCharMetrics {len(characters)}", *characters,
            "EndCharMetrics", "EndFontMetrics"]
    return "\r\n".join(made) + "\r\n"


def notice(readme: str) -> str:
    """The notice, word for word and on one line, since its authors require it to be unmodified."""
    paragraph = re.search(r'"(This file and the 14.*?files\.)"', readme, re.DOTALL)
    if not paragraph:
        raise SystemExit("README.md of the published files: no notice found")
    return " ".join(paragraph.group(1).split())


def main() -> None:
    if len(sys.argv) not in (2, 3):
        raise SystemExit(__doc__)
    published = pathlib.Path(sys.argv[1])
    default = pathlib.Path(__file__).resolve().parent.parent / "data" / "metrics"
    target = pathlib.Path(sys.argv[2]) if len(sys.argv) == 3 else default
    target.mkdir(parents=True, exist_ok=True)

    files = sorted(published.glob("*.afm"))
    if len(files) != 14:
        raise SystemExit(f"{published}: expected 14 AFM files, found {len(files)}")
    for file in files:
        text = file.read_text("latin-1")
        for name in {file.stem, SECOND_NAMES.get(file.stem, file.stem)}:
            (target / (name + ".afm")).write_bytes(remake(text, file.stem, name).encode("latin-1"))
    readme = (published / "README.md").read_text("utf-8")
    (target / "NOTICE.txt").write_bytes(
        ("Font metrics of the 14 standard Type 1 fonts\r\n\r\n" + notice(readme) + "\r\n\r\n"
         "MODIFIED: every metrics file in this folder differs from the published one. The files of the text fonts\r\n"
         "carry the codes of WinAnsiEncoding; glyphs without a code, ligatures and kerning are left out.\r\n"
         "TimesItalic.afm and TimesRoman.afm are Times-Italic.afm and Times-Roman.afm under a second name. Each\r\n"
         "file says so in its first lines. scripts/make_metrics.py of the sources made them.\r\n").encode("ascii"))


if __name__ == "__main__":
    main()
