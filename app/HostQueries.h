// The host's own commands, "TARVEX,<QUERY>[,<argument>]": they let a script that drives the viewer
// see what the user sees. Each answers with lines "TARVEX<TAB>...":
//   SAVEVIEW,<file>  the view's picture as PNG: "SAVEVIEW,OK" or "SAVEVIEW,FAILED".
//   GRABSCREEN,<file>  the whole screen, dialogs included, as PNG: "GRABSCREEN,OK" or ",FAILED".
//   MSGLINE          the main window's message line: "MSGLINE<TAB><text>".
//   CLIPBOARD        the size of the picture on the clipboard: "CLIPBOARD,<width>,<height>"
//                    (0,0 without one).
//   VIEWSTATE        "VIEWSTATE,<precision>,<centre X>,<centre Y negated>,<tool code><TAB><message
//                    line>"; "VIEWSTATE,NONE" without the window.
//   IMPORTROWS       the import window's grid as shown: per row "IMPORTROW<TAB><caption><TAB>
//                    <value>", then "IMPORTMSG<TAB><its message line>" and
//                    "IMPORTROWS,<rows>,<rows shown whole>"; "IMPORTROWS,NONE" without the window.
//   CELL,<caption>   where the value cell of the first row with that caption is on the screen:
//                    "CELL,<x>,<y>,<width>,<height>" or "CELL,NONE".
//   TOOL,<name>      a tool of the bands: "TOOL,<name>,checked|-,enabled|disabled,shown|hidden
//                    <TAB><caption><TAB><combo text>", or "TOOL,<name>,NONE".
//   CATEGORIES       per board category n (1 to 15) "CATEGORY,<n>,<items>,<pads>", or
//                    "CATEGORY,<n>,NONE" while it has no symbol; then "CATEGORIES,15".
//   RUN,<module>     marks a sibling module as running, so that commands to it are sent:
//                    "RUN,<module>".
//   PLACE,<name>     where the visible widget of that object name is on the screen:
//                    "PLACE,<name>,<x>,<y>,<width>,<height>" or "PLACE,<name>,NONE".
//   MENU,<name>      the entries of the menu of that object name, brought up to date as when it
//                    opens: per entry "MENUITEM<TAB><name><TAB><caption><TAB>shown|hidden<TAB>
//                    checked|-<TAB>enabled|disabled<TAB><x>,<y>,<width>,<height>" (the place
//                    "NONE" while the menu is closed), then "MENU,<name>,<entries>";
//                    "MENU,<name>,NONE" without it.
//   GRID,<window>    the property grid of the shown window of that object name: per row
//                    "GRIDROW<TAB><caption><TAB><value>", then "GRID,<window>,<rows>";
//                    "GRID,<window>,NONE" without it.
//   GRIDCELL,<window>,<caption>  as CELL, in that window's property grid: "GRIDCELL,<x>,<y>,
//                    <width>,<height>" or "GRIDCELL,NONE".
//   TABLE,<name>     the visible table of that object name: per row "TABLEROW<TAB><row><TAB>
//                    <cell>..." (rows from 0), then "TABLE,<name>,<rows>,enabled|disabled";
//                    "TABLE,<name>,NONE" without it.
//   TABLECELL,<name>,<row>,<column>  where that cell is: "TABLECELL,<name>,<x>,<y>,<width>,
//                    <height>", or the arguments and ",NONE".
//   PREVIEW          the print preview: "PREVIEW,<sheets>,<across>,<down>,<scale>,<thumbnails
//                    shown>,<selected sheet><TAB><status panel 1><TAB><status panel 2>", or
//                    "PREVIEW,NONE".
//   PAUSE            the longest time the window did not answer since the last PAUSE (or the
//                    start): "PAUSE,<milliseconds>"; "PAUSE,NONE" unless the host was started with
//                    TVX_MEASURE_PAUSES set (app/PauseMeter.h).
//   LAYER,<number>   what the layer holds: "LAYER,<number>,<items>,<min X>,<min Y>,<max X>,
//                    <max Y>,<widest line>" in store units, or "LAYER,<number>,NONE".
#pragma once

#include <string>

namespace tvx {

class GBRVIEWER_MAIN;

// The prefix of the host's own commands.
inline constexpr const char* HostName = "TARVEX";

// Answers line when it is one of the host's commands, and tells whether it was.
bool answerHostQuery(const std::string& line, GBRVIEWER_MAIN* window, std::string& answer);

}  // namespace tvx
