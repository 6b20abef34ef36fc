#include "store/ElementRuns.h"

namespace tvx {

bool FindPolygonRun(const Store& store, ArrayHandle items, int32_t index, int32_t& first,
                    int32_t& last) {
  auto status = [&](int32_t i) { return store.O_GetStatus(store.OA_Object(items, i)); };
  int32_t count = store.OA_GetCount(items);
  if (index < 1 || index > count || !(status(index) & attr::PolygonSide))
    return false;
  first = index;
  while (!(status(first) & attr::PolygonFirst)) {
    if (first == 1 || !(status(first - 1) & attr::PolygonSide) ||
        (status(first - 1) & attr::PolygonLast))
      return false;
    --first;
  }
  last = index;
  while (!(status(last) & attr::PolygonLast)) {
    if (last == count || !(status(last + 1) & attr::PolygonSide) ||
        (status(last + 1) & attr::PolygonFirst))
      return false;
    ++last;
  }
  return true;
}

int32_t DeleteElementRun(Store& store, ArrayHandle items, int32_t index) {
  int32_t first = index, last = index;
  if (!FindPolygonRun(store, items, index, first, last) &&
      store.OA_Object(items, index) == ObjectHandle::None)
    return 0;
  for (int32_t i = last; i >= first; --i)
    store.OA_Delete(items, i);
  return last - first + 1;
}

bool FrameOfSelection(Store& store, SymbolId symbol, const std::vector<int32_t>& indices,
                      FrameRect& frame) {
  ArrayHandle items = store.S_SymbolItemArray(symbol);
  store.OA_MaskAll(items, 0, attr::PolygonFrameMark);
  for (int32_t i : indices)
    store.O_Mask(store.OA_Object(items, i), attr::PolygonFrameMark, attr::PolygonFrameMark);
  store.S_SetCompLocation(0, 0, 0, 0);
  store.S_SetPadLocation(0, 0, 0);
  bool any = store.S_FrameSymbolItems(symbol, attr::PolygonFrameMark, frame) != 0;
  store.OA_MaskAll(items, 0, attr::PolygonFrameMark);
  return any;
}

FrameRect ExtentOfElement(Store& store, const ItemRecord& record) {
  FrameRect frame;
  SymbolId scratch = store.S_CreateSymbol(0, "");
  if (scratch == 0)
    return frame;
  ItemRecord copy = record;
  copy.Attributes |= attr::ElementFrameMark;
  ObjectHandle item = copy.Type == ItemTrueTypeText
                          ? store.I_MakeTTFText(copy, record.Text, record.Face)
                          : store.I_MakeItem(copy);
  if (store.OA_Add(store.S_SymbolItemArray(scratch), item) == 0)
    store.deleteFreeObject(item);
  store.S_SetCompLocation(0, 0, 0, 0);
  store.S_SetPadLocation(0, 0, 0);
  if (!store.S_FrameSymbolItems(scratch, attr::ElementFrameMark, frame))
    frame = FrameRect{};
  store.OM_Delete(store.DB_SymbMap(), scratch);
  return frame;
}

}  // namespace tvx
