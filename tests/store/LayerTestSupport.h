// What the layer table tests share: a settings file and a language folder of their own, the
// kernel, the tables as start-up builds them, and elements made directly in a layer's symbol.
#pragma once

#include "kernel/Kernel.h"
#include "store/Layers.h"

#include "support/ItemBuilder.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>

namespace tvx::test {

class LayerTablesFixture : public ::testing::Test {
protected:
  void SetUp() override { services.SetIniFile(dir_.filePath("tarvex.ini").toStdString()); }

  void setSetting(const std::string& section, const std::string& key, const std::string& value) {
    int32_t status = -1;
    services.WriteIniString(section, key, value, status);
    ASSERT_EQ(status, 0);
  }
  void useCatalogue(const std::string& lines) {  // "id<tab>text" lines
    std::ofstream(dir_.filePath("GBRVIEWER.MSG").toStdString()) << lines;
    services.loadCatalogue(dir_.path().toStdString());
  }
  void build(bool mono = false) {
    readCategoryGroup(services, k.strings, CategoryGroup::Layout, categories);
    colours.build(k.strings);
    BuildLayerTables(k.store, services, colours, mono, tables);
  }

  // A shown item of type in layer, of colour and style, with a size of 1000 by 500.
  ObjectHandle addItem(int32_t layer, int32_t type, int32_t colour = 3, int32_t style = StyleOpen,
                       int32_t attributes = attr::Shown) {
    Item r = Item(type, attributes).colour(colour).style(style).size(1000, 500);
    r.Text = "T";
    return addItem(layer, r);
  }
  ObjectHandle addItem(int32_t layer, const ItemRecord& r) {
    ObjectHandle item = k.store.I_MakeItem(r);
    EXPECT_GT(k.store.OA_Add(k.store.S_SymbolItemArray(tables.layer(layer).SymbolHandle), item), 0);
    return item;
  }
  // A pad stack under key with one filled circle of radius 5000, and an entry of it at x, y.
  ObjectHandle addPad(int32_t layer, int32_t key, int32_t x, int32_t y, int32_t colour) {
    const SymbolId symbol = tables.layer(layer).SymbolHandle;
    ObjectHandle padStack = k.store.S_MakePadStack();
    k.store.OM_Add(k.store.S_SymbolPadStackMap(symbol), padStack, key);
    ObjectHandle item = k.store.I_MakeItem(Item(ItemCircle, 0).colour(colour).size(5000));
    k.store.OA_Add(k.store.S_PadStackItemArray(padStack), item);
    k.store.S_ChangePadPadStack(symbol, k.store.S_InsertEntry(symbol, -1, x, y), key);
    return item;
  }
  int32_t colourOf(ObjectHandle item) const {
    ItemRecord r;
    k.store.I_ReadItem(item, r);
    return r.Colour;
  }

  QTemporaryDir dir_;
  SystemServices services;
  Kernel k;
  CategoryTable categories;
  ColourSlots colours;
  LayerTables tables;
};

}  // namespace tvx::test
