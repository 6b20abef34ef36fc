#include "store/AddElement.h"

namespace tvx {

void AddElement(Store& store, int32_t& status, int32_t place, const SymbolId& symbol,
                const ItemRecord& record, const std::string& text, int32_t& index,
                const std::string& face) {
  status = 1;
  index = 0;
  if (record.Type == ItemPadEntry) {
    int32_t entry = store.S_InsertEntry(symbol, -1, record.X, record.Y);
    if (entry <= 0)
      return;
    store.S_ChangePadRotation(symbol, entry, record.Angle);
    store.S_ChangePadPadStack(symbol, entry, record.Link);
    store.O_Mask(store.S_Entry(symbol, entry), record.Attributes, record.Attributes);
    index = entry;
    status = 0;
    return;
  }

  ArrayHandle array = ArrayHandle::None;
  switch (place) {
  case PlaceSymbolItems:
    array = store.S_SymbolItemArray(symbol);
    break;
  case PlaceCompText:
    array = store.C_CompTextArray(symbol);
    break;
  case PlaceLayoutCompText:
    array = store.L_CompTextArray(symbol);
    break;
  case PlaceLayoutText:
    array = store.DB_LayoutTextArray();
    break;
  case PlaceBranchText:
    array = store.B_BranchTextArray(symbol);
    break;
  default:
    break;
  }

  int32_t added = 0;
  if (record.Type == ItemVectorText || record.Type == ItemTrueTypeText) {
    ObjectHandle item = ObjectHandle::None;
    if (record.Type == ItemVectorText) {
      item = store.I_MakeText(record.X, record.Y, record.Angle, record.Width, record.Height, text,
                              record.Attributes, record.Colour, record.LineWidth);
      store.O_Mask(item, attr::Text, attr::Text);
      if (record.Style & 32)
        store.I_ChangeItemAttr(item, record.Attributes, record.Colour, 32, record.LineWidth);
    } else {
      item = store.I_MakeTTFText(record, text, face);
      store.O_Mask(item, attr::Text, attr::Text);
    }
    if (item == ObjectHandle::None)
      return;
    store.I_ChangeItemLink(item, record.Link);
    store.I_ChangeItemGap(item, record.Gap);
    added = store.OA_Add(array, item);
    if (added == 0) {
      store.deleteFreeObject(item);  // nobody would own it
      return;
    }
  } else {
    // Every other element is made straight in its array, in one step.
    added = store.OA_AddNewItem(array, record);
    if (added == 0)
      return;
  }
  if (place == PlaceLayoutCompText || place == PlaceLayoutText)
    store.O_Mask(store.OA_Object(array, added), attr::Text, attr::Text);
  index = added;
  status = 0;
}

}  // namespace tvx
