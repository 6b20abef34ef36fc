// What the redraw and pointer tests share: a kernel with the default categories' colours and the
// 31 layers, a view over a widget's shadow picture, and the redraw over them.
#pragma once

#include "support/WidgetTestApplication.h"

#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/LayerCatalogue.h"
#include "store/Layers.h"
#include "viewer/Redraw.h"
#include "viewer/ViewState.h"

#include <QWidget>

namespace tvx::test {

struct RedrawWorld {
  // The picture's size in pixels and its store units per pixel, centred on 0, 0.
  void build(int width, int height, int32_t precision) {
    target.resize(width, height);
    CategoryTable categories;
    readCategoryGroup(services, kernel.strings, CategoryGroup::Layout, categories);
    colours.build(kernel.strings);
    BuildLayerTables(kernel.store, services, colours, false, tables);
    view.setDevice(kernel.graphics.G_GetDC(&target));
    view.setPictureSize(width, height);
    view.m_Precision = precision;
  }

  // The application comes before the first widget.
  QApplication& application = widgetTestApplication();
  Kernel kernel;
  ScriptedPrompts prompts;
  SystemServices services{&prompts};
  QWidget target;
  ColourSlots colours;
  LayerTables tables;
  ViewState view{kernel.graphics, services};
  ViewRedraw redraw{kernel, services, prompts, view, tables, colours};
};

}  // namespace tvx::test
