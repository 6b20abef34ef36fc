#include "app/HostQueries.h"

#include "app/PauseMeter.h"

#include "common/widgets/PropertyGrid.h"
#include "import/readers/window/widgets/GBRVIEWER_IMPORT.h"
#include "kernel/Kernel.h"
#include "print/widgets/TvxPreview.h"
#include "shell/GBRVIEWER_MAIN.h"
#include "store/LayerCatalogue.h"
#include "store/Layers.h"
#include "viewer/ToolBarModel.h"
#include "viewer/widgets/ViewPicture.h"

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QMenu>
#include <QRect>
#include <QScreen>
#include <QTableWidget>
#include <QWidget>

#include <algorithm>
#include <cstdlib>

namespace tvx {

namespace {

std::string line(const std::string& text) { return std::string(HostName) + "\t" + text + "\n"; }

std::string rectText(const QRect& r) {
  return std::to_string(r.x()) + "," + std::to_string(r.y()) + "," + std::to_string(r.width()) +
         "," + std::to_string(r.height());
}

// Per row of a property grid "<prefix><TAB><caption><TAB><value>".
std::string gridRowLines(const PropertyGrid& grid, const std::string& prefix) {
  std::string out;
  for (int row = 0; row < grid.rowCount(); ++row) {
    const QTableWidgetItem* caption = grid.item(row, 0);
    out += line(prefix + "\t" + (caption ? caption->text().toStdString() : std::string()) + "\t" +
                grid.shownValue(row).toStdString());
  }
  return out;
}

// The screen place of the value cell of the first row with that caption, or "NONE".
std::string captionCell(const PropertyGrid& grid, const std::string& caption) {
  for (int row = 0; row < grid.rowCount(); ++row)
    if (const QTableWidgetItem* cell = grid.item(row, 0);
        cell && cell->text().toStdString() == caption)
      return rectText(grid.valueCellOnScreen(row));
  return "NONE";
}

std::string importRows(GBRVIEWER_MAIN* window) {
  GBRVIEWER_IMPORT* import = window ? window->importWindow() : nullptr;
  if (!import || !import->isVisible())
    return line("IMPORTROWS,NONE");
  PropertyGrid& grid = import->grid();
  std::string out = gridRowLines(grid, "IMPORTROW");
  out += line("IMPORTMSG\t" + import->model().stages().messageLine);
  return out + line("IMPORTROWS," + std::to_string(grid.rowCount()) + "," +
                    std::to_string(grid.wholeRowsShown()));
}

std::string cellPlace(GBRVIEWER_MAIN* window, const std::string& caption) {
  GBRVIEWER_IMPORT* import = window ? window->importWindow() : nullptr;
  return line("CELL," +
              (import && import->isVisible() ? captionCell(import->grid(), caption) : "NONE"));
}

// The visible widget of a type and object name in any shown window.
template <typename Widget> Widget* visibleWidget(const std::string& name) {
  for (QWidget* top : QApplication::topLevelWidgets()) {
    if (!top->isVisible())
      continue;
    QList<Widget*> found = top->findChildren<Widget*>(QString::fromStdString(name));
    if (auto* self = qobject_cast<Widget*>(top); self && top->objectName().toStdString() == name)
      found.prepend(self);
    for (Widget* widget : found)
      if (widget->isVisible())
        return widget;
  }
  return nullptr;
}

// The property grid of a shown window by the window's object name.
PropertyGrid* gridOfWindow(const std::string& name) {
  QWidget* window = visibleWidget<QWidget>(name);
  return window ? window->findChild<PropertyGrid*>() : nullptr;
}

std::string gridRows(const std::string& name) {
  const PropertyGrid* grid = gridOfWindow(name);
  if (!grid || !grid->isVisible())
    return line("GRID," + name + ",NONE");
  return gridRowLines(*grid, "GRIDROW") +
         line("GRID," + name + "," + std::to_string(grid->rowCount()));
}

std::string gridCell(const std::string& argument) {
  const auto comma = argument.find(',');
  const PropertyGrid* grid =
      comma == std::string::npos ? nullptr : gridOfWindow(argument.substr(0, comma));
  return line("GRIDCELL," + (grid && grid->isVisible()
                                 ? captionCell(*grid, argument.substr(comma + 1))
                                 : std::string("NONE")));
}

// A table's cells as shown: per row "TABLEROW<TAB><row><TAB><cell 0><TAB>...", then
// "TABLE,<name>,<rows>,enabled|disabled".
std::string tableRows(const std::string& name) {
  const QTableWidget* table = visibleWidget<QTableWidget>(name);
  if (!table)
    return line("TABLE," + name + ",NONE");
  std::string out;
  for (int row = 0; row < table->rowCount(); ++row) {
    std::string cells = "TABLEROW\t" + std::to_string(row);
    for (int column = 0; column < table->columnCount(); ++column) {
      const QTableWidgetItem* item = table->item(row, column);
      cells += "\t" + (item ? item->text().toStdString() : std::string());
    }
    out += line(cells);
  }
  return out + line("TABLE," + name + "," + std::to_string(table->rowCount()) + "," +
                    (table->isEnabled() ? "enabled" : "disabled"));
}

// Where a table's cell is on the screen: "TABLECELL,<name>,<x>,<y>,<width>,<height>".
std::string tableCell(const std::string& argument) {
  const QStringList parts = QString::fromStdString(argument).split(',');
  const QTableWidget* table =
      parts.size() == 3 ? visibleWidget<QTableWidget>(parts[0].toStdString()) : nullptr;
  const int row = parts.value(1).toInt();
  const int column = parts.value(2).toInt();
  if (!table || !table->item(row, column))
    return line("TABLECELL," + argument + ",NONE");
  const QRect cell = table->visualItemRect(table->item(row, column));
  return line("TABLECELL," + parts[0].toStdString() + "," +
              rectText({table->viewport()->mapToGlobal(cell.topLeft()), cell.size()}));
}

// A tool of the bands as the model holds it.
std::string toolState(GBRVIEWER_MAIN* window, const std::string& name) {
  const ToolItem* tool = window && window->toolBar() ? window->toolBar()->tool(name) : nullptr;
  if (!tool)
    return line("TOOL," + name + ",NONE");
  return line("TOOL," + name + "," + (tool->Checked ? "checked" : "-") + "," +
              (tool->Enabled ? "enabled" : "disabled") + "," +
              (tool->Visible ? "shown" : "hidden") + "\t" + tool->Caption + "\t" + tool->ComboText);
}

// What each board category holds: its items and its pads (without the dead entry).
std::string categoryContents(GBRVIEWER_MAIN* window) {
  if (!window)
    return line("CATEGORIES,NONE");
  Store& store = window->context().kernel.store;
  std::string out;
  for (int32_t number = 1; number <= 15; ++number) {
    const SymbolId symbol = CategorySymbolBase - number;
    if (store.S_Symbol(symbol) == ObjectHandle::None) {
      out += line("CATEGORY," + std::to_string(number) + ",NONE");
      continue;
    }
    const int32_t entries = store.OA_GetCount(store.S_SymbolEntryArray(symbol));
    out += line("CATEGORY," + std::to_string(number) + "," +
                std::to_string(store.OA_GetCount(store.S_SymbolItemArray(symbol))) + "," +
                std::to_string(std::max(0, entries - 1)));
  }
  return out + line("CATEGORIES,15");
}

std::string widgetPlace(const std::string& name) {
  if (const QWidget* widget = visibleWidget<QWidget>(name))
    return line("PLACE," + name + "," +
                rectText({widget->mapToGlobal(QPoint(0, 0)), widget->size()}));
  return line("PLACE," + name + ",NONE");
}

// What a layer holds: its items, their frame and the widest line among them.
std::string layerContents(GBRVIEWER_MAIN* window, const std::string& number) {
  const int n = std::atoi(number.c_str());
  if (!window || n < 1 || n > LayerCount)
    return line("LAYER," + number + ",NONE");
  Store& store = window->context().kernel.store;
  const SymbolId symbol = window->layerTables().layer(n).SymbolHandle;
  const ArrayHandle items = store.S_SymbolItemArray(symbol);
  int32_t widest = 0;
  for (int32_t i = 1; i <= store.OA_GetCount(items); ++i) {
    ItemRecord item;
    if (store.I_ReadItem(store.OA_Object(items, i), item) != 0)
      widest = std::max(widest, item.LineWidth);
  }
  FrameRect frame;
  store.S_FrameSymbolItems(symbol, -1, frame);
  return line("LAYER," + number + "," + std::to_string(store.OA_GetCount(items)) + "," +
              std::to_string(frame.MinX) + "," + std::to_string(frame.MinY) + "," +
              std::to_string(frame.MaxX) + "," + std::to_string(frame.MaxY) + "," +
              std::to_string(widest));
}

// The entries of a menu as the user sees them when it opens.
std::string menuEntries(GBRVIEWER_MAIN* window, const std::string& name) {
  QMenu* menu = window ? window->findChild<QMenu*>(QString::fromStdString(name)) : nullptr;
  if (!menu)
    return line("MENU," + name + ",NONE");
  emit menu->aboutToShow();  // the menus bring their entries up to date as they open
  std::string out;
  int count = 0;
  for (const QAction* action : menu->actions()) {
    if (action->isSeparator())
      continue;
    out += line(
        "MENUITEM\t" + action->objectName().toStdString() + "\t" + action->text().toStdString() +
        "\t" + (action->isVisible() ? "shown" : "hidden") + "\t" +
        (action->isChecked() ? "checked" : "-") + "\t" +
        (action->isEnabled() ? "enabled" : "disabled") + "\t" +
        (menu->isVisible()
             ? rectText(QRect(
                   menu->mapToGlobal(menu->actionGeometry(const_cast<QAction*>(action)).topLeft()),
                   menu->actionGeometry(const_cast<QAction*>(action)).size()))
             : std::string("NONE")));
    ++count;
  }
  return out + line("MENU," + name + "," + std::to_string(count));
}

// The print preview as shown: its sheets, the grid of thumbnails and the scale, the thumbnails
// on the screen and the selected sheet, then panels 1 and 2 of its status bar.
std::string previewState(GBRVIEWER_MAIN* window) {
  TvxPreview* preview = window ? window->previewWindow() : nullptr;
  if (!preview || !preview->isVisible())
    return line("PREVIEW,NONE");
  const PreviewModel& model = preview->model();
  int shown = 0;
  for (const ViewPicture* picture : preview->findChildren<ViewPicture*>())
    shown += picture->isVisible() ? 1 : 0;
  return line("PREVIEW," + std::to_string(model.PageCount) + "," +
              std::to_string(model.PagesAcross) + "," + std::to_string(model.PagesDown) + "," +
              model.ScaleText() + "," + std::to_string(shown) + "," +
              std::to_string(model.CurrentPage) + "\t" + preview->panelText(1) + "\t" +
              preview->panelText(2));
}

}  // namespace

bool answerHostQuery(const std::string& command, GBRVIEWER_MAIN* window, std::string& answer) {
  const std::string prefix = std::string(HostName) + ",";
  if (command.rfind(prefix, 0) != 0)
    return false;
  const std::string query = command.substr(prefix.size());
  const auto argumentOf = [&query](const std::string& name) { return query.substr(name.size()); };
  if (query.rfind("SAVEVIEW,", 0) == 0) {
    const bool saved = window && window->saveViewPicture(argumentOf("SAVEVIEW,"));
    answer = line(std::string("SAVEVIEW,") + (saved ? "OK" : "FAILED"));
  } else if (query == "VIEWSTATE") {
    answer = line(window ? "VIEWSTATE," + std::to_string(window->view().m_Precision) + "," +
                               std::to_string(window->view().ViewCenterX) + "," +
                               std::to_string(window->view().ViewCenterY) + "," +
                               std::to_string(window->pointerTools().ToolCode) + "\t" +
                               window->MessageLine() + "\t" + window->positionText(false) + "\t" +
                               window->positionText(true)
                         : std::string("VIEWSTATE,NONE"));
  } else if (query == "CLIPBOARD") {
    const QImage image = QGuiApplication::clipboard()->image();
    answer =
        line("CLIPBOARD," + std::to_string(image.width()) + "," + std::to_string(image.height()));
  } else if (query == "MSGLINE") {
    answer = line("MSGLINE\t" + (window ? window->MessageLine() : std::string()));
  } else if (query == "IMPORTROWS") {
    answer = importRows(window);
  } else if (query.rfind("CELL,", 0) == 0) {
    answer = cellPlace(window, argumentOf("CELL,"));
  } else if (query.rfind("MENU,", 0) == 0) {
    answer = menuEntries(window, argumentOf("MENU,"));
  } else if (query.rfind("LAYER,", 0) == 0) {
    answer = layerContents(window, argumentOf("LAYER,"));
  } else if (query.rfind("GRABSCREEN,", 0) == 0) {
    // The whole screen as the user sees it, dialogs and menus included.
    QScreen* screen = QGuiApplication::primaryScreen();
    const bool saved = screen && screen->grabWindow(0).save(
                                     QString::fromStdString(argumentOf("GRABSCREEN,")), "PNG");
    answer = line(std::string("GRABSCREEN,") + (saved ? "OK" : "FAILED"));
  } else if (query.rfind("TOOL,", 0) == 0) {
    answer = toolState(window, argumentOf("TOOL,"));
  } else if (query == "PREVIEW") {
    answer = previewState(window);
  } else if (query == "CATEGORIES") {
    answer = categoryContents(window);
  } else if (query.rfind("RUN,", 0) == 0 && window) {
    // A sibling module that runs: commands to it are sent from now on.
    window->context().kernel.strings.E_SetString(argumentOf("RUN,"), "RUNNING");
    answer = line("RUN," + argumentOf("RUN,"));
  } else if (query.rfind("GRID,", 0) == 0) {
    answer = gridRows(argumentOf("GRID,"));
  } else if (query.rfind("GRIDCELL,", 0) == 0) {
    answer = gridCell(argumentOf("GRIDCELL,"));
  } else if (query.rfind("TABLE,", 0) == 0) {
    answer = tableRows(argumentOf("TABLE,"));
  } else if (query.rfind("TABLECELL,", 0) == 0) {
    answer = tableCell(argumentOf("TABLECELL,"));
  } else if (query.rfind("PLACE,", 0) == 0) {
    answer = widgetPlace(argumentOf("PLACE,"));
  } else if (query == "PAUSE") {
    PauseMeter* meter = PauseMeter::running();
    answer =
        line(meter ? "PAUSE," + std::to_string(meter->takeLongest()) : std::string("PAUSE,NONE"));
  } else {
    return false;
  }
  return true;
}

}  // namespace tvx
