// The tool bar model shown as QToolBars in the main window's areas: buttons as actions, drop-downs
// as menu buttons over their rows' actions, combos as editable combo boxes, panels as read-only
// fields. A band's context menu holds the same actions as the band, so a twin cannot drift. The
// user's acts go back to the model's events.
#pragma once

#include "viewer/ToolBarModel.h"

#include <QIcon>
#include <QList>
#include <QObject>
#include <QString>

#include <map>
#include <string>
#include <vector>

class QAction;
class QComboBox;
class QLineEdit;
class QMainWindow;
class QMenu;
class QToolBar;
class QToolButton;

namespace tvx {

class ToolBarView : public QObject {
  Q_OBJECT

public:
  // pictures is the folder of the tool pictures (name.svg, and strip.svg whose cells of 16 units
  // the function and option tools number); size their side in pixels.
  ToolBarView(ToolBarModel& model, QMainWindow& window, QString pictures, int pictureSize);

  // Makes a QToolBar for each band of the bar that has none yet, and fills every band.
  void build();
  // Fills one band again from the model (its tools, their order and groups).
  void fillBand(const std::string& band);
  // Shows a tool's properties as the model holds them.
  void showTool(const std::string& tool);

  QToolBar* toolBar(const std::string& band) const;
  QAction* action(const std::string& tool) const;
  QComboBox* combo(const std::string& tool) const;
  QLineEdit* panel(const std::string& tool) const;

  // Shows or hides a band as the program asks, without a "closed" event.
  void setBandVisible(const std::string& band, bool visible);
  void setLocked(const std::string& band, bool locked);
  // With tips off no tool shows one.
  void setTipsShown(bool shown);
  // Entries shown under a band's own tools in its context menu (the window's band toggles).
  void setContextEntries(QList<QAction*> entries) { contextEntries_ = std::move(entries); }
  // Shows keys beside an action in menus without binding them anywhere the view has the focus.
  static void showKeys(QAction& action, const std::string& keys);
  // The band's place as it stands on the screen.
  BandPlace placeOf(const std::string& band) const;
  // Docks the bands by their places: each area's bands by line, then offset; shown or hidden as
  // they were. A band that floats (by the window's restored layout) is kept on the desktop.
  // Without dock only the visibility and the desktop rule apply.
  void applyPlaces(const std::map<std::string, BandPlace>& places, bool dock = true);

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  QAction* makeAction(const ToolItem& tool, QObject* parent, const std::string& band);
  // Keeps an action of a tool made while band was filled.
  void keep(const std::string& tool, QAction* action, const std::string& band);
  // A tool picture by its name, or "#n" for cell n of the strip; none for an unknown one.
  QIcon pictureOf(const std::string& picture);
  QMenu* contextMenu(const std::string& band);
  void comboDone(const std::string& tool);

  ToolBarModel& model_;
  QMainWindow& window_;
  QString pictures_;
  int pictureSize_;
  std::map<std::string, QToolBar*> bars_;                 // by band name
  std::map<std::string, std::vector<QAction*>> actions_;  // by tool name: a tool on two bands
  std::map<std::string, std::vector<QAction*>> made_;     // by the band they were made for
  std::map<std::string, QComboBox*> combos_;
  std::map<std::string, QLineEdit*> panels_;
  std::map<std::string, QToolButton*> dropDowns_;
  std::map<QObject*, std::string> hoverOf_;  // a tool's widget to its name
  std::map<std::string, bool> comboEdited_;
  std::map<std::string, QIcon> pictureCache_;
  QList<QAction*> contextEntries_;
  bool ownChange_ = false;
  bool tipsShown_ = true;
};

}  // namespace tvx
