#!/usr/bin/env python3
"""Writes the demo board of samples/: a 40 x 30 mm two-layer board with a DIP-8, two resistors,
two capacitors, a four-pin header, vias and four mounting holes.

    python3 tools/make_demo_board.py [OUTPUT_DIR]      (default: samples/ beside this folder)

All artwork files are RS-274-X in millimetres, format 4.6 with leading zeros omitted; the drill
file is Excellon with a METRIC header; the outline is written again as an HPGL plot and as an
ASCII DXF drawing. The output is the same on every run.
"""

import math
import os
import sys

BOARD_W, BOARD_H, CORNER_R = 40.0, 30.0, 2.0


# --- Gerber writer ---------------------------------------------------------------------------

def num(mm):
    """A length in mm as a 4.6 integer with leading zeros omitted."""
    return str(int(round(mm * 1_000_000)))


class Gerber:
    def __init__(self, title):
        self.lines = ["G04 Demo board - %s*" % title, "%FSLAX46Y46*%", "%MOMM*%", "%LPD*%"]
        self.apertures = {}  # definition text -> D-code
        self.body = []
        self.current = None
        self.macros = []

    def macro(self, name, *lines):
        self.macros.append("%AM" + name + "*" + "".join(l + "*" for l in lines) + "%")

    def aperture(self, shape):
        """The D-code of an aperture such as "C,0.4" or "THERM,2.4X1.8X0.4"."""
        if shape not in self.apertures:
            self.apertures[shape] = 10 + len(self.apertures)
        return self.apertures[shape]

    def use(self, shape):
        code = self.aperture(shape)
        if code != self.current:
            self.body.append("D%d*" % code)
            self.current = code

    def comment(self, text):
        self.body.append("G04 %s*" % text)

    def polarity(self, clear):
        self.body.append("%LPC*%" if clear else "%LPD*%")

    def flash(self, shape, x, y):
        self.use(shape)
        self.body.append("X%sY%sD03*" % (num(x), num(y)))

    def move(self, x, y):
        self.body.append("X%sY%sD02*" % (num(x), num(y)))

    def line_to(self, x, y):
        self.body.append("G01X%sY%sD01*" % (num(x), num(y)))

    def arc_to(self, x, y, cx, cy, ccw, start):
        """An arc from start to (x, y) about (cx, cy), with offsets relative to start."""
        self.body.append("%sX%sY%sI%sJ%sD01*" % ("G03" if ccw else "G02", num(x), num(y),
                                                 num(cx - start[0]), num(cy - start[1])))

    def path(self, shape, points):
        """A track through points; an item ("arc", x, y, cx, cy, ccw) is an arc to (x, y)."""
        self.use(shape)
        self.write_path(points)

    def write_path(self, points):
        here = points[0]
        self.move(*here)
        for p in points[1:]:
            if p[0] == "arc":
                _, x, y, cx, cy, ccw = p
                self.arc_to(x, y, cx, cy, ccw, here)
                here = (x, y)
            else:
                self.line_to(*p)
                here = p

    def region(self, points):
        self.body.append("G36*")
        self.write_path(points)
        self.body.append("G37*")

    def text(self):
        ads = ["%%ADD%d%s*%%" % (code, shape) for shape, code in self.apertures.items()]
        return "\n".join(self.lines + self.macros + ads + ["G75*"] + self.body + ["M02*"]) + "\n"


def rounded_rect(x0, y0, x1, y1, r):
    """A closed counter-clockwise path round a rectangle with corners of radius r."""
    return [(x0 + r, y0), (x1 - r, y0), ("arc", x1, y0 + r, x1 - r, y0 + r, True),
            (x1, y1 - r), ("arc", x1 - r, y1, x1 - r, y1 - r, True),
            (x0 + r, y1), ("arc", x0, y1 - r, x0 + r, y1 - r, True),
            (x0, y0 + r), ("arc", x0 + r, y0, x0 + r, y0 + r, True)]


# --- The board -------------------------------------------------------------------------------

class Pad:
    def __init__(self, name, x, y, shape, drill=None, ground=False, top_only=False):
        self.name, self.x, self.y, self.shape = name, x, y, shape
        self.drill, self.ground, self.top_only = drill, ground, top_only

    def grown(self, by):
        """The pad's aperture with every side pushed out by `by` mm."""
        kind, sizes = self.shape.split(",")
        sizes = [float(s) + 2 * by for s in sizes.split("X")]
        return kind + "," + "X".join("%g" % round(s, 4) for s in sizes)


def pads():
    result = []
    # J1: 1 x 4 header on the left edge; pin 1 square, pin 4 ground.
    for i in range(4):
        y = 11.19 + 2.54 * i
        result.append(Pad("J1.%d" % (i + 1), 5.0, y, "R,1.7X1.7" if i == 0 else "C,1.7", 1.0,
                          ground=(i == 3)))
    # U1: DIP-8 in the middle, pins 1-4 along the lower row, 5-8 back along the upper row.
    for i in range(4):
        x = 16.19 + 2.54 * i
        result.append(Pad("U1.%d" % (i + 1), x, 11.19, "R,1.6X2.0" if i == 0 else "O,1.6X2.0",
                          0.8))
    for i in range(4):
        x = 23.81 - 2.54 * i
        result.append(Pad("U1.%d" % (i + 5), x, 18.81, "O,1.6X2.0", 0.8))
    # R1 lying flat above U1, R2 standing at the right.
    result += [Pad("R1.1", 14.0, 24.19, "C,1.8", 0.9), Pad("R1.2", 24.16, 24.19, "C,1.8", 0.9),
               Pad("R2.1", 31.0, 8.0, "C,1.8", 0.9), Pad("R2.2", 31.0, 18.16, "C,1.8", 0.9)]
    # C1 radial with its second pin on ground; C2 an 0805 on top, its right pad in the pour.
    result += [Pad("C1.1", 15.0, 5.0, "C,1.6", 0.8), Pad("C1.2", 17.54, 5.0, "C,1.6", 0.8,
                                                          ground=True),
               Pad("C2.1", 24.05, 5.5, "R,1.2X1.4", top_only=True),
               Pad("C2.2", 25.95, 5.5, "R,1.2X1.4", ground=True, top_only=True)]
    # Vias and the mounting holes (all four on ground).
    result += [Pad("V1", 10.0, 22.0, "C,0.8", 0.4), Pad("V2", 34.0, 12.0, "C,0.8", 0.4),
               Pad("V3", 12.0, 7.0, "C,0.8", 0.4)]
    for x, y in ((3.5, 3.5), (36.5, 3.5), (3.5, 26.5), (36.5, 26.5)):
        result.append(Pad("MH", x, y, "C,5.0", 3.0, ground=True))
    return result


PADS = pads()

FEED_POINT = (25.95, 5.5)

TOP_TRACKS = [
    # J1.2 to U1.1
    ("C,0.4", [(5.0, 13.73), (11.0, 13.73), (11.0, 11.19), (16.19, 11.19)]),
    # U1.8 round a quarter turn to R1.1
    ("C,0.4", [(16.19, 18.81), (16.19, 22.0), ("arc", 14.0, 24.19, 14.0, 22.0, True)]),
    # R1.2 to R2.2
    ("C,0.4", [(24.16, 24.19), (27.0, 24.19), (27.0, 21.0), (29.84, 18.16), (31.0, 18.16)]),
    # U1.4 to R2.1
    ("C,0.4", [(23.81, 11.19), (27.81, 11.19), (31.0, 8.0)]),
    # U1.3 to C2.1
    ("C,0.4", [(21.27, 11.19), (21.27, 7.5), (23.27, 5.5), (24.05, 5.5)]),
    # C2.2 into the pour (no clearance: it feeds the pour)
    ("C,0.6", [FEED_POINT, (27.5, 5.5)]),
    # V1 to J1.3
    ("C,0.4", [(10.0, 22.0), (7.0, 19.0), (7.0, 17.0), (6.27, 16.27), (5.0, 16.27)]),
]

BOTTOM_TRACKS = [
    # Supply: J1.1 to U1.8, wide
    ("C,0.8", [(5.0, 11.19), (8.0, 8.19), (13.0, 8.19), (13.0, 16.0), (15.81, 18.81),
               (16.19, 18.81)]),
    # J1.3 to U1.7
    ("C,0.4", [(5.0, 16.27), (9.23, 20.5), (18.73, 20.5), (18.73, 18.81)]),
    # U1.5 down, a quarter turn, to V2
    ("C,0.4", [(23.81, 18.81), (23.81, 16.0), ("arc", 26.81, 13.0, 26.81, 16.0, True),
               (33.0, 13.0), ("arc", 34.0, 12.0, 33.0, 12.0, False)]),
    # V3 to C1.1
    ("C,0.4", [(12.0, 7.0), (15.0, 5.0)]),
    # V1 to R1.1, bending round clockwise
    ("C,0.4", [(10.0, 22.0), ("arc", 14.0, 24.19, 13.095, 21.095, False)]),
]

CLEARANCE = 0.5  # copper to pour


def copper(title, tracks, top):
    g = Gerber(title)
    g.macro("THERM", "0 thermal relief: outer, inner diameter, gap", "7,0,0,$1,$2,$3,0")
    layer_pads = [p for p in PADS if top or not p.top_only]
    g.comment("ground pour")
    if top:
        g.region(rounded_rect(1.0, 1.0, BOARD_W - 1.0, BOARD_H - 1.0, CORNER_R - 1.0))
    else:
        # The lower right corner only, with one rounded corner and a notch.
        g.region([(19.0, 1.0), (BOARD_W - 2.0, 1.0),
                  ("arc", BOARD_W - 1.0, 2.0, BOARD_W - 2.0, 2.0, True),
                  (BOARD_W - 1.0, 10.0), (28.0, 10.0), ("arc", 24.0, 10.0, 26.0, 10.0, False),
                  (19.0, 10.0), (19.0, 1.0)])
    g.comment("clearances")
    g.polarity(True)
    for p in layer_pads:
        if p.ground and p.name != "C2.2":
            outer = float(p.shape.split(",")[1].split("X")[0]) + 2 * CLEARANCE
            g.flash("THERM,%gX%gX0.4" % (round(outer, 3), round(outer - 0.8, 3)), p.x, p.y)
        elif not p.ground:
            g.flash(p.grown(CLEARANCE), p.x, p.y)
    for shape, points in tracks:
        width = float(shape.split(",")[1])
        if points[0] != FEED_POINT:
            g.path("C,%g" % (width + 2 * CLEARANCE), points)
    g.comment("tracks and pads")
    g.polarity(False)
    for shape, points in tracks:
        g.path(shape, points)
    for p in layer_pads:
        g.flash(p.shape, p.x, p.y)
    return g.text()


def mask_top():
    g = Gerber("solder mask top")
    for p in PADS:
        if p.shape != "C,0.8":  # vias are tented
            g.flash(p.grown(0.1), p.x, p.y)
    return g.text()


def outline():
    g = Gerber("board outline")
    g.path("C,0.15", rounded_rect(0.0, 0.0, BOARD_W, BOARD_H, CORNER_R))
    return g.text()


def outline_plt():
    """The board outline as a plotter (HPGL) file: plotter units of 0.025 mm, a 0.15 mm pen
    (WU0 makes PW's unit a millimetre), straight sides drawn with PD and the corners as AA arcs
    of 90 degrees about their centres."""
    def u(mm):
        return int(round(mm / 0.025))

    w, h, r = BOARD_W, BOARD_H, CORNER_R
    lines = ["IN;", "WU0;PW0.15,1;SP1;", "PU%d,%d;" % (u(r), 0)]
    sides = [((w - r, 0), (w - r, r)), ((w, h - r), (w - r, h - r)),
             ((r, h), (r, h - r)), ((0, r), (r, r))]
    for (x, y), (cx, cy) in sides:
        lines.append("PD%d,%d;" % (u(x), u(y)))
        lines.append("AA%d,%d,90;" % (u(cx), u(cy)))
    lines.append("PU;SP0;")
    return "\n".join(lines) + "\n"


MOUNTING_HOLES = [p for p in PADS if p.name == "MH"]

# The mark of the DXF outline: an L whose arms are 1.5 mm along X and 1 mm along Y from its base
# point, with a quarter arc of 0.8 mm between them. It is placed twice: (x, y, rotation).
MARK_PLACES = [(8.0, 3.0, 0.0), (33.0, 26.0, 90.0)]


class Dxf:
    """An ASCII DXF drawing: (code, value) pairs, codes right-aligned in three columns."""

    def __init__(self):
        self.pairs = []
        self.handle = 0x20

    def put(self, *pairs):
        self.pairs += pairs

    @staticmethod
    def real(value):
        """A number with up to 12 decimals and at least one: 38.0, 0.414213562373."""
        text = ("%.12f" % value).rstrip("0")
        return text + "0" if text.endswith(".") else text

    def point(self, code, x, y):
        self.put((code, x), (code + 10, y), (code + 20, 0.0))

    def next_handle(self):
        self.handle += 1
        return "%X" % self.handle

    def entity(self, kind, layer, subclass, paper=False):
        """The groups every entity starts with; paper marks one of paper space."""
        self.put((0, kind), (5, self.next_handle()), (100, "AcDbEntity"))
        if paper:
            self.put((67, 1))
        self.put((8, layer), (100, subclass))

    def text(self):
        out = []
        for code, value in self.pairs:
            out.append("%3d" % code)
            out.append(self.real(value) if isinstance(value, float) else str(value))
        return "\n".join(out) + "\n"


def outline_dxf():
    """The board outline as an ASCII DXF drawing in millimetres, as R2000 writes it: one closed
    LWPOLYLINE with a bulge of tan(90 / 4 degrees) for each corner (positive: the path runs
    counter-clockwise), the rims of the mounting holes as CIRCLEs, and the block MARK (two LINEs
    and an ARC) inserted twice, the second time turned by 90 degrees."""
    w, h, r = BOARD_W, BOARD_H, CORNER_R
    bulge = math.tan(math.radians(90.0) / 4)
    d = Dxf()
    d.put((0, "SECTION"), (2, "TABLES"))
    tables = [("LTYPE", ["CONTINUOUS"]), ("LAYER", ["0", "BOARD", "HOLES", "MARKS"]),
              ("BLOCK_RECORD", ["*Model_Space", "*Paper_Space", "MARK"])]
    record_class = {"LTYPE": "AcDbLinetypeTableRecord", "LAYER": "AcDbLayerTableRecord",
                    "BLOCK_RECORD": "AcDbBlockTableRecord"}
    for table, names in tables:
        d.put((0, "TABLE"), (2, table), (5, d.next_handle()), (100, "AcDbSymbolTable"),
              (70, len(names)))
        for name in names:
            d.put((0, table), (5, d.next_handle()), (100, "AcDbSymbolTableRecord"),
                  (100, record_class[table]), (2, name))
            if table == "LTYPE":
                d.put((70, 0), (3, "Solid line"), (72, 65), (73, 0), (40, 0.0))
            elif table == "LAYER":
                d.put((70, 0), (62, 7), (6, "CONTINUOUS"))
        d.put((0, "ENDTAB"))
    d.put((0, "ENDSEC"), (0, "SECTION"), (2, "BLOCKS"))
    for name, paper in (("*Model_Space", False), ("*Paper_Space", True), ("MARK", False)):
        d.entity("BLOCK", "0", "AcDbBlockBegin", paper)
        d.put((2, name), (70, 0))
        d.point(10, 0.0, 0.0)
        d.put((3, name), (1, ""))
        if name == "MARK":
            for x, y in ((1.5, 0.0), (0.0, 1.0)):
                d.entity("LINE", "0", "AcDbLine")
                d.point(10, 0.0, 0.0)
                d.point(11, x, y)
            d.entity("ARC", "0", "AcDbCircle")
            d.point(10, 0.0, 0.0)
            d.put((40, 0.8), (100, "AcDbArc"), (50, 0.0), (51, 90.0))
        d.entity("ENDBLK", "0", "AcDbBlockEnd")
    d.put((0, "ENDSEC"), (0, "SECTION"), (2, "ENTITIES"))
    # The vertices counter-clockwise from the lower edge's left end; each corner's arc starts at
    # the vertex that carries its bulge.
    corners = [((r, 0), 0), ((w - r, 0), bulge), ((w, r), 0), ((w, h - r), bulge),
               ((w - r, h), 0), ((r, h), bulge), ((0, h - r), 0), ((0, r), bulge)]
    d.entity("LWPOLYLINE", "BOARD", "AcDbPolyline")
    d.put((90, len(corners)), (70, 1), (43, 0.15))
    for (x, y), b in corners:
        d.put((10, float(x)), (20, float(y)))
        if b:
            d.put((42, b))
    for hole in MOUNTING_HOLES:
        d.entity("CIRCLE", "HOLES", "AcDbCircle")
        d.point(10, hole.x, hole.y)
        d.put((40, hole.drill / 2))
    for x, y, turn in MARK_PLACES:
        d.entity("INSERT", "MARKS", "AcDbBlockReference")
        d.put((2, "MARK"))
        d.point(10, x, y)
        if turn:
            d.put((50, turn))
    d.put((0, "ENDSEC"), (0, "EOF"))
    # The header goes first but is made last: $HANDSEED is the handle after all others.
    body = d.pairs
    d.pairs = [(999, "Demo board - board outline"), (0, "SECTION"), (2, "HEADER"),
               (9, "$ACADVER"), (1, "AC1015"), (9, "$HANDSEED"), (5, d.next_handle()),
               (9, "$INSUNITS"), (70, 4), (9, "$MEASUREMENT"), (70, 1), (9, "$EXTMIN")]
    d.point(10, 0.0, 0.0)
    d.put((9, "$EXTMAX"))
    d.point(10, w, h)
    d.put((0, "ENDSEC"))
    d.pairs += body
    return d.text()


# Stroke letters on a grid 4 wide and 6 high; each entry is one polyline.
FONT = {
    "0": [[(0, 0), (4, 0), (4, 6), (0, 6), (0, 0), (4, 6)]],
    "1": [[(1, 5), (2, 6), (2, 0)], [(1, 0), (3, 0)]],
    "2": [[(0, 6), (4, 6), (4, 3), (0, 3), (0, 0), (4, 0)]],
    "3": [[(0, 6), (4, 6), (4, 0), (0, 0)], [(1, 3), (4, 3)]],
    "C": [[(4, 6), (0, 6), (0, 0), (4, 0)]],
    "D": [[(0, 0), (0, 6), (3, 6), (4, 5), (4, 1), (3, 0), (0, 0)]],
    "E": [[(4, 6), (0, 6), (0, 0), (4, 0)], [(0, 3), (3, 3)]],
    "J": [[(4, 6), (4, 1), (3, 0), (1, 0), (0, 1)]],
    "M": [[(0, 0), (0, 6), (2, 3), (4, 6), (4, 0)]],
    "O": [[(0, 0), (4, 0), (4, 6), (0, 6), (0, 0)]],
    "R": [[(0, 0), (0, 6), (4, 6), (4, 3), (0, 3), (4, 0)]],
    "U": [[(0, 6), (0, 0), (4, 0), (4, 6)]],
    "V": [[(0, 6), (2, 0), (4, 6)]],
    "+": [[(2, 1), (2, 5)], [(0, 3), (4, 3)]],
    "-": [[(0, 3), (4, 3)]],
}


def letters(g, text, x, y, height):
    """Text with its lower left corner at (x, y)."""
    unit = height / 6.0
    for ch in text:
        for stroke in FONT.get(ch, []):
            g.path("C,0.15", [(x + px * unit, y + py * unit) for px, py in stroke])
        x += 6 * unit


def circle(g, cx, cy, r):
    g.path("C,0.15", [(cx + r, cy), ("arc", cx + r, cy, cx, cy, True)])


def rect(g, x0, y0, x1, y1):
    g.path("C,0.15", [(x0, y0), (x1, y0), (x1, y1), (x0, y1), (x0, y0)])


def silk_top():
    g = Gerber("silkscreen top")
    g.comment("component outlines")
    # U1 with the notch of pin 1 at its left end
    g.path("C,0.15", [(15.0, 14.0), (15.0, 12.5), (25.0, 12.5), (25.0, 17.5), (15.0, 17.5),
                      (15.0, 16.0), ("arc", 15.0, 14.0, 15.0, 15.0, False)])
    rect(g, 3.6, 9.8, 6.4, 20.2)                       # J1
    rect(g, 16.0, 23.3, 22.2, 25.1)                    # R1
    rect(g, 30.1, 10.0, 31.9, 16.2)                    # R2
    circle(g, 16.27, 5.0, 2.6)                         # C1
    rect(g, 23.1, 4.5, 26.9, 6.5)                      # C2
    for x, y in ((3.5, 3.5), (36.5, 3.5), (3.5, 26.5), (36.5, 26.5)):
        circle(g, x, y, 2.9)
    g.comment("names")
    letters(g, "J1", 4.0, 21.0, 1.2)
    letters(g, "U1", 19.0, 14.4, 1.2)
    letters(g, "R1", 18.0, 21.6, 1.0)
    letters(g, "R2", 32.5, 14.5, 1.0)
    letters(g, "C1", 15.0, 8.0, 1.0)
    letters(g, "C2", 24.0, 7.0, 1.0)
    letters(g, "+", 11.8, 4.4, 1.0)
    letters(g, "DEMO-1", 18.5, 26.5, 1.5)
    return g.text()


def drill():
    tools = sorted({p.drill for p in PADS if p.drill})
    out = ["M48", "; demo board, plated holes", "METRIC,LZ,000.000"]
    out += ["T%02dC%.3f" % (i + 1, d) for i, d in enumerate(tools)]
    out += ["%", "G90", "G05"]
    for i, d in enumerate(tools):
        out.append("T%02d" % (i + 1))
        for p in PADS:
            if p.drill == d:
                out.append("X%06dY%06d" % (round(p.x * 1000), round(p.y * 1000)))
    out.append("M30")
    return "\n".join(out) + "\n"


FILES = {
    "demo-top.gbr": lambda: copper("top copper", TOP_TRACKS, True),
    "demo-bottom.gbr": lambda: copper("bottom copper", BOTTOM_TRACKS, False),
    "demo-silk-top.gbr": silk_top,
    "demo-mask-top.gbr": mask_top,
    "demo-outline.gbr": outline,
    "demo-outline.plt": outline_plt,
    "demo-outline.dxf": outline_dxf,
    "demo.drl": drill,
}


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "samples")
    os.makedirs(folder, exist_ok=True)
    for name, make in FILES.items():
        with open(os.path.join(folder, name), "w", newline="\n") as f:
            f.write(make())
    print("wrote %d files to %s" % (len(FILES), os.path.normpath(folder)))


if __name__ == "__main__":
    main()
