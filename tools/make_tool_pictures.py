#!/usr/bin/env python3
"""Writes the tool pictures of the main window's bands into data/pictures: one SVG per tool, on a
16 by 16 grid, and strip.svg, the strip of cells that the function and option tools of the menu
file number (FirstPicture + key, FirstOptionPicture + row). The output is the same on every run."""

import os

INK = "#2b2b2b"
BLUE = "#2f6fd0"
RED = "#c8322d"
GREEN = "#2c9a3c"
GOLD = "#d29a1e"


def svg(body, width=16, height=16):
    return ('<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" viewBox="0 0 %d %d">'
            '<g fill="none" stroke="%s" stroke-width="1.2" stroke-linecap="round" '
            'stroke-linejoin="round">%s</g></svg>\n' % (width, height, width, height, INK, body))


def lens(inner=""):
    return '<circle cx="6.5" cy="6.5" r="4.5"/><path d="M10 10l4.5 4.5" stroke-width="2"/>' + inner


def grid(kind):
    if kind == "line":
        return ''.join('<path d="M%d 1.5v13M1.5 %dh13"/>' % (v, v) for v in (4, 8, 12))
    if kind == "dot":
        return ''.join('<circle cx="%d" cy="%d" r="0.9" fill="%s" stroke="none"/>' % (x, y, INK)
                       for x in (3, 8, 13) for y in (3, 8, 13))
    return ''.join('<path d="M%d %dh3M%d %dv3"/>' % (x - 1.5, y, x, y - 1.5)
                   for x in (3, 8, 13) for y in (3, 8, 13))


def text(letters, colour=INK, size=7):
    return ('<text x="8" y="11.5" font-family="sans-serif" font-size="%g" font-weight="bold" '
            'text-anchor="middle" fill="%s" stroke="none">%s</text>' % (size, colour, letters))


BOARD = '<rect x="1.5" y="3.5" width="13" height="9" rx="1.5" fill="#e7f0e4" stroke="%s"/>' % GREEN

PICTURES = {
    "ATB_ZoomUp": lens('<path d="M4.5 6.5h4M6.5 4.5v4"/>'),
    "ATB_ZoomDn": lens('<path d="M4.5 6.5h4"/>'),
    "ATB_BlockZoom": '<rect x="1.5" y="1.5" width="9" height="7" stroke-dasharray="2 1.5"/>'
                     '<path d="M8 8l6 6M10.5 14.5h4v-4"/>',
    "ATB_Redraw": '<path d="M13 8a5 5 0 1 1-1.5-3.6"/><path d="M12 1.5v3.5h-3.5"/>',
    "ATB_Current": '<path d="M13 8a5 5 0 1 1-1.5-3.6"/><path d="M12 1.5v3.5h-3.5"/>'
                   '<circle cx="8" cy="8" r="1.3" fill="%s"/>' % INK,
    "ATB_Center": '<path d="M8 1.5v4M8 10.5v4M1.5 8h4M10.5 8h4"/><circle cx="8" cy="8" r="2"/>',
    "ATB_Board": BOARD + '<path d="M1 1h3M1 1v3M15 15h-3M15 15v-3"/>',
    "ATB_ActlBoard": BOARD + text("1:1", INK, 5.5),
    "ATB_Grid": grid("dot"),
    "ATB_GRID1": grid("line"),
    "ATB_GRID2": grid("dot"),
    "ATB_GRID3": grid("cross"),
    "ATB_Inches": text("in", BLUE, 8),
    "ATB_Millimeters": text("mm", BLUE, 7),
    "ATB_XY": text("XY", INK, 7),
    "ATB_Distance": '<path d="M2 12L13 3"/><circle cx="2.5" cy="12" r="1.3"/>'
                    '<circle cx="13" cy="3.5" r="1.3"/>',
    "ATB_DistanceTool": '<path d="M1.5 11.5h13v3h-13z"/><path d="M4 11.5v1.5M7 11.5v2M10 11.5v1.5'
                        'M13 11.5v2"/><path d="M3 7h10M3 7l2-2M3 7l2 2M13 7l-2-2M13 7l-2 2" '
                        'stroke="%s"/>' % BLUE,
    "ATB_GraphicImports": BOARD + '<path d="M5 8h6M8 5v6" stroke="%s"/>' % GREEN,
    "ATB_New": '<path d="M3.5 1.5h6l3 3v10h-9z"/><path d="M9.5 1.5v3h3"/>',
    "ATB_GerberView": '<path d="M3.5 1.5h6l3 3v10h-9z"/><path d="M8 6v6M5.5 9.5L8 12l2.5-2.5" '
                      'stroke="%s"/>' % BLUE,
    "ATB_FlipXaxis": '<path d="M8 1.5v13" stroke-dasharray="1.5 1.5"/>'
                     '<path d="M6 4L2 8l4 4zM10 4l4 4-4 4z" fill="#d7e3f7"/>',
    "ATB_FlipYaxis": '<path d="M1.5 8h13" stroke-dasharray="1.5 1.5"/>'
                     '<path d="M4 6L8 2l4 4zM4 10l4 4 4-4z" fill="#d7e3f7"/>',
    "ATB_ImportCategories": '<rect x="1.5" y="1.5" width="5" height="5" fill="#f3d9a4"/>'
                            '<rect x="9.5" y="1.5" width="5" height="5" fill="#cfe3c9"/>'
                            '<rect x="1.5" y="9.5" width="5" height="5" fill="#d7e3f7"/>'
                            '<rect x="9.5" y="9.5" width="5" height="5" fill="#f2cfcf"/>',
    "ATB_GIESelCatView": '<path d="M8 2l6 3-6 3-6-3z" fill="#d7e3f7"/><path d="M2 8l6 3 6-3"/>'
                         '<path d="M2 11l6 3 6-3"/>',
    "ATB_TrueSize": '<path d="M2 8h12" stroke-width="3.5" stroke="%s"/>' % GOLD,
    "ATB_PadPosition": '<rect x="5" y="5" width="6" height="6" fill="%s" stroke="none"/>' % BLUE +
                       '<path d="M8 1v3M8 12v3M1 8h3M12 8h3"/>',
    "ATB_PadFrames": '<rect x="3.5" y="3.5" width="9" height="9" stroke="%s"/>' % BLUE +
                     '<circle cx="8" cy="8" r="1.5"/>',
    "ATB_Mirror": '<path d="M8 1.5v13" stroke-dasharray="1.5 1.5"/><text x="4.5" y="11.5" '
                  'font-family="sans-serif" font-size="8" font-weight="bold" text-anchor="middle" '
                  'fill="%s" stroke="none">F</text><text x="11.5" y="11.5" font-family="sans-serif" '
                  'font-size="8" font-weight="bold" text-anchor="middle" fill="#9a9a9a" '
                  'stroke="none" transform="translate(23 0) scale(-1 1)">F</text>' % INK,
    "ATB_Monochrome": '<circle cx="8" cy="8" r="6"/><path d="M8 2a6 6 0 0 1 0 12z" fill="%s"/>'
                      % INK,
    "ATB_Ruler": '<path d="M1.5 5.5h13v5h-13z" fill="#f6e7b8"/><path d="M4 5.5v2M7 5.5v3M10 '
                 '5.5v2M13 5.5v3"/>',
    "ATB_ToolTip": '<path d="M2 2.5h12v7.5h-6l-3 3v-3h-3z" fill="#fff8d0"/>',
    "ATB_AddLayer": '<path d="M8 3l6 3-6 3-6-3z" fill="#d7e3f7"/><path d="M2 9.5l6 3 6-3"/>'
                    '<path d="M12.5 10.5v5M10 13h5" stroke="%s" stroke-width="1.6"/>' % GREEN,
    "ATB_RemoveLayer": '<path d="M8 3l6 3-6 3-6-3z" fill="#d7e3f7"/><path d="M2 9.5l6 3 6-3"/>'
                       '<path d="M10 13h5" stroke="%s" stroke-width="1.6"/>' % RED,
    "ATB_ActiveCategory": '<path d="M8 2l6 3-6 3-6-3z" fill="%s" stroke="%s"/>' % (GOLD, INK) +
                          '<path d="M2 8l6 3 6-3M2 11l6 3 6-3"/>',
}

# Cells of the strip by number. Keys of function 1 start at 1, their option rows at 20, 31, 42.
STRIP_CELLS = {
    1: '<path d="M8 2l6 3-6 3-6-3z" fill="#d7e3f7"/><path d="M2 8l6 3 6-3M2 11l6 3 6-3"/>',
    3: lens(text("i", BLUE, 6).replace('x="8" y="11.5"', 'x="6.5" y="9"')),
    8: '<path d="M3 3l10 10M13 3L3 13" stroke="%s" stroke-width="2"/>' % RED,
    9: '<circle cx="10" cy="10" r="4"/><path d="M10 5v2M10 13v2M5 10h2M13 10h2"/>'
       '<path d="M1.5 1.5l5 5M6.5 3v3.5H3" stroke="%s"/>' % BLUE,
    10: '<path d="M2.5 2v12M13.5 2v12" stroke-width="2"/><path d="M4.5 8h7M4.5 8l2-2M4.5 8l2 '
        '2M11.5 8l-2-2M11.5 8l-2 2" stroke="%s"/>' % BLUE,
    31: '<rect x="2.5" y="4.5" width="11" height="10" fill="#f2cfcf"/><path d="M1.5 4.5h13M6 '
        '2h4" stroke="%s"/>' % RED,
    42: grid("dot") + '<path d="M3 13L13 3" stroke="%s"/>' % BLUE,
    43: '<circle cx="8" cy="8" r="4.5" fill="#d7e3f7" stroke="%s"/><path d="M8 1v3M8 12v3M1 '
        '8h3M12 8h3"/>' % BLUE,
    44: '<path d="M2 13L14 5"/><circle cx="9" cy="8.3" r="1.6" fill="%s" stroke="none"/>' % RED,
    45: '<path d="M2 12h12"/><path d="M8 9v6" stroke="%s" stroke-width="1.6"/>' % RED,
}
STRIP_LENGTH = 64


def main():
    folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", "pictures")
    os.makedirs(folder, exist_ok=True)
    for name, body in sorted(PICTURES.items()):
        with open(os.path.join(folder, name + ".svg"), "w", newline="\n") as out:
            out.write(svg(body))
    cells = ''.join('<g transform="translate(%d 0)">%s</g>' % (16 * n, body)
                    for n, body in sorted(STRIP_CELLS.items()))
    with open(os.path.join(folder, "strip.svg"), "w", newline="\n") as out:
        out.write(svg(cells, 16 * STRIP_LENGTH, 16))


if __name__ == "__main__":
    main()
