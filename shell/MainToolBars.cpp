// The tool bands of the main window: the bar's model filled with the bands and their tools, the
// dispatcher bound to the window's handlers, the function and option bands rebuilt from the keys
// of the current function, View > Toolbar, the lock, and the bands' places kept per user.
#include "shell/GBRVIEWER_MAIN.h"

#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "platform/UserStore.h"
#include "viewer/LayerCommands.h"
#include "viewer/Measuring.h"
#include "viewer/ToolDispatcher.h"
#include "viewer/widgets/ToolBarView.h"
#include "viewer/widgets/ViewPicture.h"

#include <QAction>
#include <QByteArray>
#include <QIcon>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QToolBar>

namespace tvx {

namespace {

constexpr const char* BandsApplication = "Tarvex";
constexpr const char* BandsSection = "TVNGBRVIEWER";
// The window's own layout of the bands beside the eight numbers of each: it alone can float a band.
constexpr const char* LayoutKey = "Layout";

// The bands that View > Toolbar shows and hides, with their entries.
struct BandEntry {
  const char* band;
  const char* entry;
  const char* caption;
};
constexpr BandEntry BandEntries[] = {
    {"FunctionTools", "M_Functions", "Viewing Function Tools"},
    {"OptionTools", "M_Options", "Viewing Option Tools"},
    {"B_Tools", "M_ToolS", "Tools"},
    {"B_Standard", "M_Standard", "Standard"},
    {"B_Position", "M_Position", "Position"},
    {"", "M_Views", "Board View"},  // the view band of the moment
    {"B_Layer", "M_ViewLayers", "Layers"},
};

}  // namespace

ToolItem GBRVIEWER_MAIN::bandTool(const char* name, ToolKind kind, const std::string& tip,
                                  const std::string& description, const std::string& caption,
                                  const char* rows, bool checkable) {
  ToolItem tool;
  tool.Name = name;
  tool.Kind = kind;
  tool.ToolTip = tip;
  tool.Description = description;
  tool.Caption = caption;
  tool.Rows = rows;
  tool.Checkable = checkable;
  tool.Picture = name;  // a tool's picture bears its name
  return tool;
}

std::string GBRVIEWER_MAIN::bandOf(const char* entryBand) const {
  return *entryBand ? std::string(entryBand) : viewBand_;
}

std::string GBRVIEWER_MAIN::toolText(const char* fallback, const char* id) const {
  return context_.services.LocalMessage(fallback, id);
}

void GBRVIEWER_MAIN::buildToolBars() {
  // The bands are made with the window's first load and kept over later ones.
  if (bar_) {
    refreshBands();
    return;
  }
  bar_ = std::make_unique<ToolBarModel>();
  ToolBarModel& bar = *bar_;
  const auto button = [&](const char* band, const char* name, const std::string& tip,
                          const std::string& description, bool checkable = false,
                          const std::string& caption = {}) {
    bar.addTool(band, bandTool(name, ToolKind::Button, tip, description, caption, "", checkable));
  };
  const auto kind = [&](const char* band, const char* name, ToolKind k, const std::string& tip,
                        const std::string& description, const char* rows = "") {
    bar.addTool(band, bandTool(name, k, tip, description, "", rows));
  };
  const auto t = [this](const char* fallback, const char* id) { return toolText(fallback, id); };

  buildPositionBand(bar);
  bar.addBand("B_Standard", t("Standard", "6254"));
  kind("B_Standard", "ATB_ZoomValue", ToolKind::Combo, t("Precision", "62107"),
       t("Select/display current value for precision", "62108"));
  button("B_Standard", "ATB_ZoomUp", t("Zoom In", "62109"),
         t("Increase current precision", "62110"));
  button("B_Standard", "ATB_ZoomDn", t("Zoom Out", "62111"),
         t("Decrease current precision", "62112"));
  button("B_Standard", "ATB_BlockZoom", t("Block Zoom", "62113"),
         t("Select a block to zoom", "62114"), true);
  kind("B_Standard", "ATB_Redraw", ToolKind::DropDown, t("Redraw", "62115") + " (ALT+W)",
       t("Redraw in currently selected mode", "62116") + " (ALT+W)", "SB_Redraw");
  kind("B_Standard", "ATB_Grid", ToolKind::DropDown, t("Raster On/Off", "62117"),
       t("Select/toggle display of raster", "62118"), "SB_Grid");
  kind("B_Standard", "ATB_GridValue", ToolKind::Combo, t("Raster interval", "62119"),
       t("Select/display current value for raster interval", "62120"));
  bar.addBand("SB_Redraw", "", true);
  button("SB_Redraw", "ATB_Current", "", t("Redraw in current precision", "62124"), true,
         t("Current", "62171"));
  button("SB_Redraw", "ATB_Center", "", t("Redraw and pan to center in current precision", "62125"),
         true, t("Center", "62172"));
  button("SB_Redraw", "ATB_Board", "", t("Redraw to fit and show entire Project", "62126"), true,
         t("Board", "62173"));
  button("SB_Redraw", "ATB_ActlBoard", "", t("Redraw in actual size", "992002"), true,
         t("Actual Size", "992001"));
  bar.addBand("SB_Grid", "", true);
  button("SB_Grid", "ATB_GRID1", "", t("Select line raster", "62121"), true,
         t("Line Grid", "13237"));
  button("SB_Grid", "ATB_GRID2", "", t("Select dot raster", "62122"), true, t("Dot Grid", "13239"));
  button("SB_Grid", "ATB_GRID3", "", t("Select cross raster", "62123"), true,
         t("Cross Grid", "13241"));

  bar.addBand("B_Tools", t("Tools", "62166"));
  button("B_Tools", "ATB_GraphicImports", t("Fabrication Editor", "62170"),
         t("Fabrication Editor", "62170"), true);
  button("B_Tools", "ATB_New", t("New ", "622"),
         t("Discard current layer database and start new one", "62137"));
  button("B_Tools", "ATB_GerberView", t("Import artworks & drilling", "62138"),
         t("Import artworks & drilling", "62138"));
  button("B_Tools", "ATB_FlipXaxis", t("Mirror layer (Y)", "62139"),
         t("Mirror currently edited layer around Y-axis", "62140"));
  button("B_Tools", "ATB_FlipYaxis", t("Mirror layer (X)", "62141"),
         t("Mirror currently edited layer around X-axis", "62142"));
  button("B_Tools", "ATB_ImportCategories", t("Import Categories for editing", "62143"),
         t("Convert imports to categories for editing and reconstruction", "62144"));

  // The view band: B_ViewLayout while function 1 is current, with the layer visibility's tool,
  // else B_View; one place holds whichever is current, and their tools are one.
  bar.addBand("B_ViewLayout", t("PCB Artwork View", "62167"));
  button("B_ViewLayout", "ATB_GIESelCatView", t("Layer visibility", "62145"),
         t("Set layer visibility and display sequence", "62146"));
  button("B_ViewLayout", "ATB_TrueSize", t("True size  ", "62147"),
         t("View artwork elements in true size", "62148"), true);
  button("B_ViewLayout", "ATB_PadPosition", t("Pad positions  ", "62149"),
         t("View pad positions  ", "62150"), true);
  button("B_ViewLayout", "ATB_PadFrames", t("Pad position frames", "62151"),
         t("View pasition frames", "62152"), true);
  button("B_ViewLayout", "ATB_Mirror", t("Mirror", "62153"),
         t("View artworks in mirror(Horizontal flipping) mode", "62154"), true);
  button("B_ViewLayout", "ATB_Monochrome", t("Monochrome", "62155"),
         t("View monochrome for printing", "62156"), true);
  button("B_ViewLayout", "ATB_Ruler", t("Ruler", "62157"),
         t("View ruler in current units", "62158"), true);
  button("B_ViewLayout", "ATB_ToolTip", t("Tool tips", "62159"), t("View tool tips", "62160"),
         true);

  bar.addBand("B_View", t("PCB Artwork View", "62167"));
  button("B_View", "ATB_TrueSize", t("True size  ", "62147"),
         t("View artwork elements in true size", "62148"), true);
  button("B_View", "ATB_PadPosition", t("Pad positions  ", "62149"),
         t("View pad positions  ", "62150"), true);
  button("B_View", "ATB_PadFrames", t("Pad position frames", "62151"),
         t("View pasition frames", "62152"), true);
  button("B_View", "ATB_Mirror", t("Mirror", "62153"),
         t("View artworks in mirror(Horizontal flipping) mode", "62154"), true);
  button("B_View", "ATB_Monochrome", t("Monochrome", "62155"),
         t("View monochrome for printing", "62156"), true);
  button("B_View", "ATB_Ruler", t("Ruler", "62157"), t("View ruler in current units", "62158"),
         true);
  button("B_View", "ATB_ToolTip", t("Tool tips", "62159"), t("View tool tips", "62160"), true);

  bar.addBand("B_Layer", t("Layers", "6257"));
  kind("B_Layer", "ATB_ActiveCategory", ToolKind::DropDown, t("Active layer", "62161"),
       t("Layer currently selected for editing", "62162"), "SB_ActiveCategories");
  button("B_Layer", "ATB_AddLayer", t("Add inner layer", "6228"),
         t("Add inner artwork layer", "62163"));
  button("B_Layer", "ATB_RemoveLayer", t("Remove", "6229"), "");
  bar.addBand("SB_ActiveCategories", "", true);
  for (int32_t n = 1; n <= LayerCount; ++n)
    button("SB_ActiveCategories", std::to_string(n + 31).c_str(), "", "", true);

  // The keys of the function and their options share the second line.
  bar.addBand("FunctionTools", t("Viewing Tools", "62164")).NewLine = true;
  bar.addBand("OptionTools", t("Option Tools", "62165"));

  dispatcher_ = std::make_unique<ToolDispatcher>(bar);
  ToolDispatchHooks& d = dispatcher_->hooks;
  d.busy = [this](bool busy) {
    setEnabled(!busy);
    setBusyPicture(busy ? BusyPicture : IdlePicture);
  };
  d.refreshBands = [this] { refreshBands(); };
  d.named = [this](std::string_view name) { runNamedTool(name); };
  d.functionKey = [this](int32_t key) { keys_->keyToolClicked(key); };
  d.optionRow = [this](int32_t option) {
    if (keys_->optionCommand(option) != 0)
      keys_->RunFunctionCommand(keys_->CurrentKey(), option, false);
    keys_->SetOptionCheck(option);
    keys_->OptionChanged(option);
  };
  d.layerRow = [this](int32_t layer) {
    layerCommands_->M_ActiveCategories_Click(layer);
    syncMenuChecks();
  };

  ToolBarEvents& e = bar.events;
  e.toolClick = [this](const std::string& tool) {
    // Input meanwhile is refused: the window is disabled while a tool runs its action.
    if (isEnabled())
      dispatcher_->ToolClick(tool);
    viewPicture_->setFocus();
  };
  e.comboChange = [this](const std::string& tool) {
    if (tool == "ATB_ZoomValue") {
      view_->PrecisionText = bar_->tool(tool)->ComboText;
      applyViewChange(view_->ATB_RedrawButtonClick(zoommode::Current));
    } else if (tool == "ATB_GridValue") {
      RasterValueChanged();
    }
  };
  e.toolEnter = [this](const std::string& tool) {
    if (isEnabled() && !redraw_->RedrawBusy)
      EditMsgLine(bar_->tool(tool)->Description);
  };
  e.toolLeave = [this](const std::string&) {
    if (isEnabled() && !redraw_->RedrawBusy && currentFunction_ > 0)
      EditMsgLine(functions_[size_t(currentFunction_)].Prompt);
  };
  e.bandMoved = [this](const std::string& band) { BandMoved(band); };
  e.bandClosed = [this](const std::string& band) {
    for (const BandEntry& b : BandEntries)
      if (band == bandOf(b.band))
        if (QAction* entry = menuEntry(b.entry))
          entry->setChecked(false);
  };

  // The view's keys for the tools, shown beside them in the bands' menus.
  for (const auto& [name, keys] : {std::pair{"ATB_ZoomUp", "Shift+U"},
                                   {"ATB_ZoomDn", "Shift+D"},
                                   {"ATB_BlockZoom", "Shift+B"},
                                   {"ATB_DistanceTool", "Shift+M"}})
    if (ToolItem* tool = bar.tool(name))
      tool->Keys = keys;
  // Alt+W presses the redraw tool, as its tip tells.
  auto* redrawKey = new QShortcut(QKeySequence("Alt+W"), this);
  connect(redrawKey, &QShortcut::activated, this, [this] { bar_->events.toolClick("ATB_Redraw"); });

  barView_ = new ToolBarView(bar, *this, QString::fromStdString(appPath_ + "/pictures"),
                             settings_.IMGWIDTH > 0 ? settings_.IMGWIDTH : 16);
  barView_->build();
  // One of the two view bands stands in the bar's place.
  barView_->setBandVisible(viewBand_ == "B_View" ? "B_ViewLayout" : "B_View", false);
  xPosPanel_ = barView_->panel("ATB_XPos");
  yPosPanel_ = barView_->panel("ATB_YPos");
  buildToolbarMenu();
  refreshBands();
}

void GBRVIEWER_MAIN::buildToolbarMenu() {
  QMenu* viewMenu = menuBar()->findChild<QMenu*>("M_View");
  if (!viewMenu)
    return;
  QMenu* toolbars = new QMenu("Toolbar", viewMenu);
  toolbars->menuAction()->setObjectName("M_Tbar");
  toolbars->setObjectName("M_TbarMenu");
  viewMenu->insertMenu(viewMenu->actions().value(0), toolbars);
  for (const BandEntry& b : BandEntries) {
    QAction* entry = toolbars->addAction(b.caption);
    entry->setObjectName(b.entry);
    entry->setCheckable(true);
    entry->setChecked(true);
    connect(entry, &QAction::triggered, this, [this, b](bool on) {
      barView_->setBandVisible(bandOf(b.band), on);
      refreshBands();
    });
  }
  // A band's context menu offers the same entries, so a band can be hidden from where it stands.
  barView_->setContextEntries(toolbars->actions());
  // The tool tips' entry stands before the ruler's, as in the menu's order.
  auto* tips = new QAction("&Tooltip Text", viewMenu);
  viewMenu->insertAction(menuEntry("M_Ruler"), tips);
  tips->setObjectName("M_ToolTip");
  tips->setCheckable(true);
  tips->setChecked(toolTipsOn_);
  connect(tips, &QAction::triggered, this, [this] { M_ToolTip_Click(); });
  if (QMenu* prefs = menuBar()->findChild<QMenu*>("M_Prefs")) {
    QAction* lock = prefs->addAction("&Lock Toolbar");
    lock->setObjectName("M_LockTB");
    lock->setCheckable(true);
    connect(lock, &QAction::triggered, this, [this] { M_LockTB_Click(); });
  }
  // The menus in their order; each was made by the part of the window it serves.
  for (const char* name : {"M_File", "M_OrdEdit", "M_ActiveCategory", "M_Edit", "M_Prefs", "M_View",
                           "M_SetupOptions", "M_Help"})
    if (QMenu* menu = findChild<QMenu*>(name)) {
      menuBar()->removeAction(menu->menuAction());
      menuBar()->addAction(menu->menuAction());
    }
}

void GBRVIEWER_MAIN::M_ToolTip_Click() {
  toolTipsOn_ = !toolTipsOn_;
  barView_->setTipsShown(toolTipsOn_);
  refreshBands();
}

void GBRVIEWER_MAIN::M_LockTB_Click() {
  toolbarsLocked_ = !toolbarsLocked_;
  applyToolbarLock();
}

void GBRVIEWER_MAIN::applyToolbarLock() {
  for (const std::string& band : bar_->bands())
    barView_->setLocked(band, toolbarsLocked_);
  if (QAction* lock = menuEntry("M_LockTB"))
    lock->setChecked(toolbarsLocked_);
}

void GBRVIEWER_MAIN::runNamedTool(std::string_view name) {
  const auto setMode = [this](int32_t mode) {
    view_->ZoomModeFlag = int16_t(mode);
    applyViewChange(view_->ATB_RedrawButtonClick(mode));
  };
  if (name == "ATB_GRID") {
    redraw_->toggleRaster();
  } else if (name == "ATB_GRID1") {
    redraw_->chooseGridMode(2);
  } else if (name == "ATB_GRID2") {
    redraw_->chooseGridMode(1);
  } else if (name == "ATB_GRID3") {
    redraw_->chooseGridMode(3);
  } else if (name == "ATB_ZOOMUP" || name == "ATB_ZOOMDN") {
    applyViewChange(view_->zoomAboutCentre(name == "ATB_ZOOMUP" ? zoomstep::In : zoomstep::Out));
  } else if (name == "ATB_BLOCKZOOM") {
    pointer_->armBlockZoom();
  } else if (name == "ATB_REDRAW") {
    applyViewChange(view_->ATB_RedrawButtonClick(view_->ZoomModeFlag));
  } else if (name == "ATB_CURRENT") {
    setMode(zoommode::Current);
  } else if (name == "ATB_CENTER") {
    setMode(zoommode::Center);
  } else if (name == "ATB_BOARD") {
    setMode(zoommode::Board);
  } else if (name == "ATB_ACTLBOARD") {
    setMode(zoommode::ActualBoard);
  } else if (name == "ATB_INCHES") {
    M_Inches_Click();
  } else if (name == "ATB_MILLIMETERS") {
    M_Mm_Click();
  } else if (name == "ATB_DISTANCE") {
    measuring_->ATB_Distance();
  } else if (name == "ATB_XY") {
    measuring_->ATB_XY();
  } else if (name == "ATB_DISTANCETOOL") {
    if (pointer_->SelectObjectArmed)
      pointer_->disarm();
    else
      pointer_->armSelectObject();
  } else if (name == "ATB_GIESELCATVIEW") {
    M_GIESelCatView_Click();
  } else if (name == "ATB_TRUESIZE") {
    M_TrueSize_Click();
  } else if (name == "ATB_PADPOSITION") {
    M_PadPosition_Click();
  } else if (name == "ATB_PADFRAMES") {
    M_PadFrame_Click();
  } else if (name == "ATB_MIRROR") {
    M_Mirror_Click();
  } else if (name == "ATB_MONOCHROME") {
    M_Mono_Click();
  } else if (name == "ATB_RULER") {
    measuring_->M_Ruler_Click();
  } else if (name == "ATB_TOOLTIP") {
    M_ToolTip_Click();
  } else if (name == "ATB_NEW") {
    M_New_Click();
  } else if (name == "ATB_GERBERVIEW") {
    M_FSIimport_Click();
  } else if (name == "ATB_FLIPXAXIS" || name == "ATB_FLIPYAXIS") {
    M_FlipLayer_Click(name == "ATB_FLIPXAXIS" ? 0 : 1);
  } else if (name == "ATB_IMPORTCATEGORIES") {
    M_ImportCategories_Click();
  } else if (name == "ATB_ADDLAYER") {
    layerCommands_->M_AddLayer_Click();
  } else if (name == "ATB_REMOVELAYER") {
    layerCommands_->M_RemoveLayer_Click();
  } else if (name == "ATB_GRAPHICIMPORTS") {
    M_FSI_Click(1);
  }
  syncMenuChecks();
}

void GBRVIEWER_MAIN::RasterValueChanged() {
  ToolItem* tool = bar_->tool("ATB_GridValue");
  const std::optional<int32_t> step = view_->typedRasterStep(tool->ComboText);
  if (!step) {
    context_.prompts.beep();
  } else {
    redraw_->changeRasterStep(*step);
  }
  refreshBands();
  viewPicture_->setFocus();
}

void GBRVIEWER_MAIN::refreshBands() {
  if (!bar_ || !barView_)
    return;
  ToolBarModel& bar = *bar_;
  const auto set = [&](const char* name, const std::function<void(ToolItem&)>& change) {
    bar.update(name, change);
  };
  const auto check = [&](const char* name, bool on) {
    set(name, [on](ToolItem& t) { t.Checked = on; });
  };
  // Combos.
  set("ATB_ZoomValue", [&](ToolItem& t) {
    t.ComboRows = view_->precisionComboRows();
    t.ComboText = view_->PrecisionText;
  });
  set("ATB_GridValue", [&](ToolItem& t) {
    t.ComboRows = view_->rasterComboRows();
    t.ComboText = view_->lengthText(redraw_->RasterStep);
  });
  // Modes, raster, view options.
  check("ATB_Current", view_->ZoomModeFlag == zoommode::Current);
  check("ATB_Center", view_->ZoomModeFlag == zoommode::Center);
  check("ATB_Board", view_->ZoomModeFlag == zoommode::Board);
  check("ATB_ActlBoard", view_->ZoomModeFlag == zoommode::ActualBoard);
  set("ATB_Redraw", [](ToolItem&) {});
  const int32_t grid = context_.kernel.graphics.G_GetGridMode(cpDcId_);
  check("ATB_GRID", redraw_->GridOn);
  check("ATB_GRID1", grid == 2);
  check("ATB_GRID2", grid == 1);
  check("ATB_GRID3", grid == 3);
  set("ATB_Grid", [](ToolItem&) {});
  check("ATB_BlockZoom", pointer_->BlockZoomArmed);
  check("ATB_DistanceTool", pointer_->SelectObjectArmed);
  check("ATB_Inches", view_->DisplayUnit != displayunit::Millimetre);
  check("ATB_Millimeters", view_->DisplayUnit == displayunit::Millimetre);
  check("ATB_XY", !measuring_->DistanceDisplay);
  check("ATB_Distance", measuring_->DistanceDisplay);
  set("ATB_Units", [](ToolItem&) {});
  set("ATB_Coordinates", [](ToolItem&) {});
  check("ATB_TrueSize", redraw_->isChecked(DisplayOption::TrueSize));
  check("ATB_PadPosition", redraw_->isChecked(DisplayOption::PadPosition));
  check("ATB_PadFrames", redraw_->isChecked(DisplayOption::PadFrame));
  check("ATB_Mirror", redraw_->isChecked(DisplayOption::Mirror));
  check("ATB_Monochrome", redraw_->isChecked(DisplayOption::Mono));
  check("ATB_Ruler", view_->RulerOn);
  check("ATB_ToolTip", toolTipsOn_);
  check("ATB_GraphicImports", currentFunction_ == 1);
  // The layer band follows the layer commands.
  if (layerCommands_) {
    const LayerCommandsState state = layerCommands_->state();
    for (int32_t n = 1; n <= LayerCount; ++n) {
      const LayerEntryState& entry = state.layer(n);
      set(std::to_string(n + 31).c_str(), [&](ToolItem& t) {
        t.Caption = entry.caption;
        t.Visible = entry.visible;
        t.Checked = entry.checked;
        t.Enabled = entry.enabled;
      });
    }
    set("ATB_ActiveCategory", [](ToolItem&) {});
    set("ATB_AddLayer", [&](ToolItem& t) {
      t.Visible = state.addLayer.visible;
      t.Enabled = state.addLayer.enabled;
    });
    set("ATB_RemoveLayer", [&](ToolItem& t) {
      t.ToolTip = state.removeLayer.caption;
      t.Visible = state.removeLayer.visible;
      t.Enabled = state.removeLayer.enabled;
    });
  }
  rebuildKeyBands();
}

void GBRVIEWER_MAIN::rebuildKeyBands() {
  ToolBarModel& bar = *bar_;
  const int16_t function = currentFunction_;
  const bool valid = function >= 0 && function < FunctionCount;
  const int32_t key = keys_->CurrentKey();
  // Rebuilt on a change of function or key; otherwise the checks follow.
  const bool rebuild = function != builtFunction_ || key != builtKey_;
  const std::string shortcut = toolText("Shortcut:", "62103");
  if (function != builtFunction_)
    switchViewBand(function == 1);
  // The bands' own moves while they are emptied and filled are not the user's.
  rebuildingKeyBands_ = true;
  if (rebuild) {
    bar.clearBand("FunctionTools");
    bar.clearBand("OptionTools");
  }
  for (int32_t k = 0; k < KeyCount; ++k) {
    ToolItem tool;
    tool.Name = std::to_string(3000 + k);
    tool.Category = "FSITOOL";
    tool.Checkable = true;
    if (valid) {
      const KeyRecord& record = functions_[size_t(function)].Keys[size_t(k)];
      tool.Visible = record.Shown != 0;
      if (tool.Visible) {
        const std::string tail = " (" + shortcut + " *" + record.Shortcut + ")";
        tool.Caption = record.Caption;
        tool.ToolTip = record.Caption + tail;
        tool.Description = record.Description + tail;
        tool.Checked = record.Checked != 0;
        tool.Picture = "#" + std::to_string(functions_[size_t(function)].FirstPicture + k);
      }
    } else {
      tool.Visible = false;
    }
    if (rebuild)
      bar.addTool("FunctionTools", tool);
    else
      bar.update(tool.Name, [&](ToolItem& t) { t.Checked = tool.Checked; });
  }
  int32_t previousGroup = -1, shown = 0;
  for (int32_t r = 0; r < OptionCount; ++r) {
    ToolItem tool;
    tool.Name = std::to_string(4000 + r);
    tool.Checkable = true;
    tool.Checked = keys_->optionChecked(r);
    tool.Enabled = keys_->optionEnabled(r);
    if (valid && key >= 0 && key < KeyCount) {
      const OptionRecord& row = functions_[size_t(function)].Keys[size_t(key)].Options[size_t(r)];
      tool.Caption = row.Caption;
      tool.Description = row.Description;
      tool.Picture =
          "#" +
          std::to_string(functions_[size_t(function)].Keys[size_t(key)].FirstOptionPicture + r);
      // Row 10 ends the running tool and never shows.
      tool.Visible = row.Shown != 0 && r != OptionCount - 1;
      tool.GroupStart = r > 0 && row.Group != previousGroup && tool.Visible;
      previousGroup = row.Group;
      if (tool.Visible) {
        tool.Number = std::min(27 + shown++, 36);
        tool.Keys = "F" + std::to_string(shown);  // the nth shown option is the nth F-key
      }
    } else {
      tool.Visible = false;
    }
    if (rebuild)
      bar.addTool("OptionTools", tool);
    else
      bar.update(tool.Name, [&](ToolItem& t) {
        t.Checked = tool.Checked;
        t.Enabled = tool.Enabled;
      });
  }
  if (rebuild) {
    if (ToolBand* band = bar.band("FunctionTools"); band && valid) {
      band->Caption = functions_[size_t(function)].Name + " TOOLS";
      std::erase(band->Caption, '&');
      for (char& c : band->Caption)
        c = char(std::toupper(static_cast<unsigned char>(c)));
    }
    bar.bandChanged("FunctionTools");
    bar.bandChanged("OptionTools");
    builtFunction_ = function;
    builtKey_ = key;
    // A floating option band takes back the size the user gave it, as far as its tools allow.
    if (QToolBar* options = barView_->toolBar("OptionTools");
        options && options->isFloating() && OptionBandWidth > 0 && OptionBandHeight > 0)
      options->resize(QSize(OptionBandWidth, OptionBandHeight).expandedTo(options->sizeHint()));
  }
  rebuildingKeyBands_ = false;
}

void GBRVIEWER_MAIN::BandMoved(const std::string& band) {
  if (rebuildingKeyBands_ || !barView_)
    return;
  QToolBar* toolBar = barView_->toolBar(band);
  if (!toolBar)
    return;
  if (band == "OptionTools") {
    OptionBandWidth = toolBar->width();
    OptionBandHeight = toolBar->height();
  }
  // A band shown again (floated or docked by the user, which hides it for a moment) has its
  // entry checked again; the view band's entry follows the band in the bar's place.
  syncBandEntries();
}

void GBRVIEWER_MAIN::saveBands() {
  if (!userStore_ || !bar_ || !barView_)
    return;
  const std::string prefix = "ATV-" + bar_->name() + "-";
  for (const std::string& band : bar_->bands()) {
    QToolBar* toolBar = barView_->toolBar(band);
    if (!toolBar)
      continue;
    // A band hidden since the start was never laid out: it keeps the place it was read with.
    BandPlace place = barView_->placeOf(band);
    if (const auto kept = loadedPlaces_.find(band);
        toolBar->isHidden() && kept != loadedPlaces_.end() && kept->second.Visible == 0)
      place = kept->second;
    userStore_->SaveSetting(BandsApplication, BandsSection, prefix + band, place.text());
  }
  userStore_->SaveSetting(BandsApplication, BandsSection, prefix + LayoutKey,
                          saveState().toBase64().toStdString());
}

void GBRVIEWER_MAIN::loadBands() {
  if (!userStore_ || !bar_ || !barView_)
    return;
  const std::string prefix = "ATV-" + bar_->name() + "-";
  const std::string layout =
      userStore_->GetSetting(BandsApplication, BandsSection, prefix + LayoutKey, "");
  if (!layout.empty())
    restoreState(QByteArray::fromBase64(QByteArray::fromStdString(layout)));
  std::map<std::string, BandPlace> places;
  for (const std::string& band : bar_->bands()) {
    if (!barView_->toolBar(band))
      continue;
    // An empty or malformed value leaves the band where it is built.
    const std::string stored =
        userStore_->GetSetting(BandsApplication, BandsSection, prefix + band, "");
    if (const std::optional<BandPlace> place = BandPlace::parse(stored))
      places[band] = *place;
  }
  // The window's own layout, where kept, has docked the bands already.
  barView_->applyPlaces(places, layout.empty());
  loadedPlaces_ = places;
  syncBandEntries();
}

void GBRVIEWER_MAIN::syncBandEntries() {
  for (const BandEntry& b : BandEntries)
    if (QAction* entry = menuEntry(b.entry))
      if (QToolBar* band = barView_->toolBar(bandOf(b.band)))
        entry->setChecked(!band->isHidden());
}

void GBRVIEWER_MAIN::switchViewBand(bool layout) {
  const std::string to = layout ? "B_ViewLayout" : "B_View";
  if (to == viewBand_)
    return;
  QToolBar* from = barView_->toolBar(viewBand_);
  QToolBar* next = barView_->toolBar(to);
  if (!from || !next)
    return;
  // The place, shown or not, goes over to the other band.
  const bool shown = !from->isHidden();
  if (!from->isFloating())
    insertToolBar(from, next);
  barView_->setBandVisible(viewBand_, false);
  barView_->setBandVisible(to, shown);
  viewBand_ = to;
  syncBandEntries();
}

}  // namespace tvx
