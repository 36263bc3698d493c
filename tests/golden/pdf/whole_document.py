#!/usr/bin/env python3
"""Works out whole_document.txt: the document that whole_document_test.cpp draws, by the rules of the members and of the
file, in exact decimal arithmetic. It knows nothing of the library's code; where a rule leaves a choice open (which blank a
line is broken at, where a link's text stands), what the document shows is stated here. With --write it writes the file.
"""
import sys
from decimal import ROUND_HALF_EVEN, ROUND_HALF_UP, Decimal as D
from pathlib import Path

HERE = Path(__file__).resolve().parent
METRICS = HERE.parents[2] / "data" / "metrics"
FONTS = [path.stem for path in sorted(METRICS.glob("*.afm"), key=lambda path: path.name.encode())]
WIDTHS = {}
for row in (METRICS / "Helvetica.afm").read_text("ascii").splitlines():
    if row.startswith("C ") and not row.startswith("C -1"):
        WIDTHS[int(row.split()[1])] = int(row.split()[4])
FONT = f"/F{FONTS.index('Helvetica') + 1}"
RED, ORANGE, BLUE = "1.000 0.000 0.000", "1.000 0.502 0.000", "0.000 0.000 1.000"
BLACK, WHITE = "0.000 0.000 0.000", "1.000 1.000 1.000"
MARGIN, LINE_WIDTH = 3, D("0.5")


def n(value, decimals=2):
    text = str(D(value).quantize(D(1).scaleb(-decimals), ROUND_HALF_UP))
    return text[1:] if text.startswith("-") and not text.strip("-0.") else text


def whole(value):
    return D(value).quantize(D(1), ROUND_HALF_EVEN)


def width(text, size):
    return D(sum(WIDTHS.get(code, 0) for code in text.encode("cp1252"))) * size / 1000


class Page:
    def __init__(self, page_width, page_height, points_per_unit):
        self.size, self.height, self.k = (page_width, page_height), D(page_height), points_per_unit
        self.lines, self.links, self.pen = [], [], n(LINE_WIDTH * points_per_unit)

    def add(self, *lines):
        self.lines += lines

    def xy(self, x, y):
        return f"{n(x * self.k)} {n(self.height - y * self.k)}"

    def straight(self, kind, dash, start, end):
        self.add(f"%DEBUT_{kind}/%", *([dash] if dash else []), self.xy(*start) + " m", self.xy(*end) + " l", RED + " RG",
                 self.pen + " w S", f"%FIN_{kind}/%")

    def dash(self, *lengths):
        return "[" + "".join(f"{int(length * self.k)} " for length in lengths) + "] 0 d"

    def rectangle(self, x, y, w, h, colours, operator, target=None):
        self.add("%DEBUT_RECT/%", *colours, "[] 0 d", f"{self.xy(x, y)} {n(w * self.k)} {n(-h * self.k)} re {operator}",
                 self.pen + " w S")
        if target:
            self.link(x, y, w, h, target, WHITE, (x + 5, y + h // 2))
        self.add("%FIN_RECT/%")

    def ellipse(self, x, y, w, h, colours, operator):
        self.add(*colours, "[] 0 d", RED + " RG", self.pen + " w ")
        half_w, half_h, t = D(w) * self.k / 2, D(h) * self.k / 2, D("0.55")

        def at(dx, dy):
            return f"{n(x * self.k + half_w + dx * half_w)} {n(self.height - y * self.k - half_h + dy * half_h)}"
        self.add(at(1, 0) + " m", f"{at(1, t)} {at(t, 1)} {at(0, 1)} c", f"{at(-t, 1)} {at(-1, t)} {at(-1, 0)} c",
                 f"{at(-1, -t)} {at(-t, -1)} {at(0, -1)} c", f"{at(t, -1)} {at(1, -t)} {at(1, 0)} c", operator)

    def polygon(self, points, colours, operators):
        corners = (self.xy(*point) + (" l" if i else " m") for i, point in enumerate(points))
        self.add("%DEBUT_POLY/%", "[] 0 d", *colours, self.pen + " w ", *corners, *operators, "%FIN_POLY/%")

    def text(self, text, x, y, size, colour, turn=None, underlined=False):
        """`turn` is cosine and sine."""
        for plain, escaped in (("\\", "\\" * 4), ("(", "\\("), (")", "\\)")):
            shown = (text if plain == "\\" else shown).replace(plain, escaped)
        place = self.xy(x, y)
        matrix = "" if turn is None else " ".join(n(v, 3) for v in (turn[0], turn[1], -turn[1], turn[0]))
        bottom, thick = D(-100 - 25) * size / 1000, D(50) * size / 1000  # the underline is centred at -100, 50 thick
        bar = f"{n(width(text, size))} {n(thick)} re f"
        self.add(f"q {colour} rg ", "%DEBUT_TEXT/%", "BT", f"{matrix} {place} Tm" if turn else place + " Td",
                 f"{FONT} {size} Tf", f"({shown}) Tj", "ET")
        if underlined:
            self.add(f"q {matrix} {place} cm 0.00 {n(bottom)} {bar} Q" if turn else f"{self.xy(x, y - bottom)} {bar}")
        self.add("Q", "%FIN_TEXT/%")

    def link(self, x, y, w, h, target, colour, place):
        self.add("%DEBUT_LINK/%")
        self.text("", *place, 10, colour)
        self.add("%FIN_LINK/%")
        left, top = x * self.k, self.height - y * self.k
        self.annotate(left, top - h * self.k, left + w * self.k, top, target)

    def annotate(self, left, bottom, right, top, target):
        self.links.append(f"<</Type /Annot /Subtype /Link /Rect [{n(left)} {n(bottom)} {n(right)} {n(top)}] "
                          f"/Border [0 0 0] /A <</S /URI /URI ({target})>>>>")

    def cell(self, texts, x, y, w, h, align, box=None, edges=False, target=None):
        """In points, at size 10. `texts` are the lines; of justified ones all but the last are stretched."""
        left, top, size = D(x), self.height - y, 10
        leading = min(max(D(h) / len(texts), D(10)), D(12))
        first = (h - leading * len(texts)) / 2
        self.add("%DEBUT_CELL/%")
        for i, text in enumerate(texts):
            self.add(BLUE + " rg")
            if box and i == 0:
                self.add(f"{n(left)} {n(top - h)} {n(w)} {n(h)} re {box}\r")
            elif box == "B":  # below the line before, down to the middle of the rest, a quarter in from the sides
                above = first + leading * (i - 1) + leading / 2 + 6
                rest = (h - above) / 2
                self.add(f"{n(left + D(w) / 4)} {n(top - above - rest)} {n(D(w) / 2)} {n(rest)} re f\r")
            if edges:
                t, b, l, r, half = top, top - h, left, left + w, LINE_WIDTH / 2
                for x1, y1, x2, y2 in ((l, t + half, l, b - half), (l - half, t, r + half, t), (r, t + half, r, b - half),
                                       (l - half, b, r + half, b)):
                    self.add(f"{n(LINE_WIDTH)} w {n(x1)} {n(y1)} m {n(x2)} {n(y2)} l S")
            long = width(text, size)
            offset = {"R": whole(w - MARGIN - long), "C": whole((w - whole(long)) / 2)}.get(align, D(2 * MARGIN))
            if align == "FJ":
                last = i + 1 == len(texts)
                self.add(n(0 if last else (w - MARGIN - offset - long) / text.count(" ")) + " Tw")
            base = top - first - leading * i - leading / 2 - 3
            shown = text.replace("(", "\\(").replace(")", "\\)")
            self.add(f"q {BLACK} rg ", "BT", f"{n(left + offset)} {n(base)} Td", f"{FONT} 10 Tf", f"({shown}) Tj", "ET")
            if target:
                self.add(f"{n(left + offset)} {n(base - D('1.25'))} {n(long)} 0.50 re f")
            self.add("Q")
        self.add(*(["0 Tw"] if align == "FJ" else []), "%FIN_CELL/%")
        if target:
            self.link(x, y, w, h, target, BLACK, (x, y))


def shapes():
    page = Page("595.28", "841.89", D(72) / D("25.4"))
    page.straight("LNH", page.dash(16, 8), (10, 20), (110, 20))
    page.straight("LNV", page.dash(8, 7, 2, 7), (15, 25), (15, 65))
    page.straight("LN", None, (20, 30), (60, 55))
    both = (ORANGE + " rg", RED + " RG")
    page.rectangle(70, 30, 40, 25, [RED + " RG"], "s")
    page.rectangle(120, 30, 40, 25, [RED + " rg"], "f")
    page.rectangle(70, 60, 40, 25, both, "B")
    page.ellipse(120, 60, 40, 25, both, "B")
    page.polygon(((30, 80), (60, 110), (25, 120)), both, ("h", "B"))
    return page


def texts_and_links():
    page = Page(842, 595, D(1))
    page.text("a\\(b)", 100, 200, 12, WHITE, underlined=True)
    page.text("next", 100 + width("a\\(b)", 12), 212, 12, WHITE)
    page.text("up", 300, 300, 12, WHITE, (D(0), D(1)), underlined=True)
    page.add("%DEBUT_LINK/%")
    cosine, sine = D(3).sqrt() / 2, D("-0.5")
    page.text("here", 300, 300, 12, WHITE, (cosine, sine), underlined=True)
    corners = [(300 + a * cosine - u * sine, 295 + a * sine + u * cosine)
               for a in (0, width("here", 12)) for u in (D(-207) * 12 / 1000, D(793) * 12 / 1000)]
    page.annotate(min(x for x, _ in corners), min(y for _, y in corners), max(x for x, _ in corners),
                  max(y for _, y in corners), "http://x/a\\(b\\)\\\\c")
    page.add("%FIN_LINK/%")
    page.cell(["Hello"], 100, 300, 80, 20, "R", box="S")
    page.cell(["\xC9t\xE9 (a)"], 200, 300, 80, 20, "L", edges=True)
    page.cell(["aaa aaa", "aaa"], 300, 300, 50, 40, "FJ")
    page.cell(["one", "two"], 400, 300, 60, 40, "C", box="B", target="c")
    page.add("q", f"40.00 0 0 30.00 {page.xy(500, 130)} cm /ImgJPEG1 Do Q")
    page.link(500, 100, 40, 30, "i", BLUE, (500, 100))
    page.rectangle(600, 100, 50, 20, [RED + " RG"], "s", "r")
    page.ellipse(700, 100, 50, 50, [BLUE + " rg"], "h f")
    page.link(700, 100, 50, 50, "e", WHITE, (705, 125))
    points = ((10, 10), (20, 10), (15, D("20.5")))
    page.polygon(points, [BLUE + " rg"], ["h f"])
    page.polygon(points, [RED + " RG"], ["s"])
    page.straight("LNH", "[] 0 d", (1, 45), (3, 45))
    return page


def document(pages):
    objects = [["<<", "/Producer (p)", "/Author (a\xE9)", "/CreationDate (D:YYYYMMDDHHmmSS)", "/Creator (c)",
                "/Keywords (k)", "/Subject (s)", "/Title (unescaped ()", "/ModDate ()", ">>"]]
    for page in pages:
        content = "".join(line + "\r\n" for line in page.lines)
        objects.append([f"<< /Length {len(objects) + 2} 0 R", " >>", "stream", *page.lines, "endstream"])
        objects.append([str(len(content) + 12)])  # counted so by design
    fonts = range(len(objects) + 1, len(objects) + 1 + len(FONTS))
    for i, name in enumerate(FONTS, 1):
        objects.append(["<< /Type /Font", "/Subtype /Type1", f"/Name /F{i}", f"/BaseFont /{name}",
                        "/Encoding /WinAnsiEncoding", ">>"])
    tree = len(objects) + 1
    first_page = tree + 3  # after the resources and the image
    objects.append(["<< /Type /Pages", "/Kids [", *(f"{first_page + i} 0 R" for i in range(3)), "]", "/Count 3", ">>"])
    objects.append(["<< /ProcSet [ /PDF /Text /ImageC]", "/XObject << ", f"/ImgJPEG1 {tree + 2} 0 R", ">>", "/Font << ",
                    *(f"/F{i} {number} 0 R " for i, number in enumerate(fonts, 1)), ">>", ">>"])
    objects.append(["<</Type /XObject", "/Subtype /Image", "/Filter [/DCTDecode ]", "/Width 400", "/Height 300",
                    "/ColorSpace /DeviceRGB", "/BitsPerComponent 8", "/Length 400", "/Name /ImgJPEG1>>", "stream",
                    "(the bytes of the file)", "endstream"])
    for i, page in enumerate(pages):
        annotations = ["/Annots [", *page.links, "]"] if page.links else []
        objects.append(["<< /Type /Page", f"/Parent {tree} 0 R", f"/MediaBox [ 0 0 {n(page.size[0])} {n(page.size[1])}]",
                        f"/Resources {tree + 1} 0 R", *annotations, f"/Contents {2 + 2 * i} 0 R", ">>"])
    item, root = len(objects) + 1, len(objects) + 4

    def bookmark(title, parent, links, page, y):
        destination = f"/Dest [{first_page + page} 0 R /XYZ 0 {n(pages[page].height - y)} null]"
        objects.append([f"<</Title ({title})", f"/Parent {parent} 0 R", *links, destination, "/Count 0>>"])
    bookmark("Drawing (", root, [f"/Next {item + 2} 0 R", f"/First {item + 1} 0 R", f"/Last {item + 1} 0 R"], 0, 0)
    bookmark("Below", item, [], 1, 100)
    bookmark("Last", root, [f"/Prev {item} 0 R"], 1, 45)
    objects.append([f"<</Type /Outlines /First {item} 0 R", f"/Last {item + 2} 0 R>>"])
    objects.append(["<<", "/Type /Catalog", f"/Pages {tree} 0 R", "/OpenAction [3 0 R /XYZ null null 1.50]",
                    "/PageLayout /TwoColumnLeft", "/PageMode /UseThumbs", f"/Outlines {root} 0 R",
                    "/PageMode /UseOutlines", "/ViewerPreferences<<", "/HideMenubar true", "/HideToolbar true", ">>", ">>"])

    text, position, table = "%PDF-1.0\r\n", 8, ["0000000000 65535 f"]
    for number, lines in enumerate(objects, 1):
        whole_object = ["%DEBUT_OBJ/%", f"{number} 0 obj", *lines, "endobj", "%FIN_OBJ/%"]
        table.append(f"{position:010} 00000 n")
        body = "".join(line + "\r\n" for line in whole_object)
        text += body + "\r\n"
        # The image's bytes stand for 400; the line end after each object is not counted, by design.
        position += len(body) + (400 - len("(the bytes of the file)") if "/Width 400" in lines else 0)
    trailer = ["xref", f"0 {len(objects) + 1}", *table, "trailer", f"<< /Size {len(objects) + 1}",
               f"/Root {len(objects)} 0 R", "/Info 1 0 R", ">>", "startxref", str(position), "%%EOF"]
    return (text + "".join(line + "\r\n" for line in trailer)).encode("cp1252")


result = document([shapes(), texts_and_links(), Page(612, 792, D(1))])
golden = HERE / "whole_document.txt"
if "--write" in sys.argv:
    golden.write_bytes(result)
elif golden.read_bytes() != result:
    sys.exit("whole_document.txt is not what comes out")
