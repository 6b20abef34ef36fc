// Items: making, reading, framing and changing single elements.
#include "kernel/StoreImpl.h"

namespace tvx {

namespace {
// Applies a change to an item, keeping its array's index and caches in step.
template <class Change> int32_t changeItem(Store::Impl& s, ObjectHandle item, Change&& change) {
  ItemData* d = s.item(item);
  if (!d)
    return 0;
  ArrayData* a = d->owner ? s.array(d->owner) : nullptr;
  if (a)
    s.unindexMember(*a, item);
  change(*d);
  if (a) {
    s.indexMember(*a, item);
    s.touchArray(d->owner);
  }
  return 1;
}
}  // namespace

ObjectHandle Store::I_MakeItem(const ItemRecord& record) {
  ItemFields f = record;
  f.Link = 0;  // Link and Gap are set through their own operations
  f.Gap = 0;
  bool text = f.Type == ItemVectorText || f.Type == ItemTrueTypeText;
  return objectHandle(
      impl_->makeItem(f, text ? &record.Text : nullptr, text ? &record.Face : nullptr));
}

ObjectHandle Store::I_MakeText(int32_t x, int32_t y, int32_t angle, int32_t size1, int32_t size2,
                               const std::string& text, int32_t attributes, int32_t colour,
                               int32_t lineWidth) {
  ItemFields f;
  f.Type = ItemVectorText;
  f.X = x;
  f.Y = y;
  f.Angle = angle;
  f.Width = size1;
  f.Height = size2;
  f.Attributes = attributes;
  f.Colour = uint8_t(colour);
  f.LineWidth = lineWidth;
  return objectHandle(impl_->makeItem(f, &text, nullptr));
}

ObjectHandle Store::I_MakeTTFText(const ItemRecord& record, const std::string& text,
                                  const std::string& face) {
  ItemFields f = record;
  f.Type = ItemTrueTypeText;
  f.Link = 0;
  f.Gap = 0;
  return objectHandle(impl_->makeItem(f, &text, &face));
}

int32_t Store::I_ReadItem(ObjectHandle item, ItemRecord& record) const {
  ItemData* d = impl_->item(item);
  if (!d)
    return 0;
  record = ItemRecord{d->f};
  auto it = impl_->itemTexts.find(impl_->table.find(tableEntry(item), ObjectKind::Item));
  if (it != impl_->itemTexts.end()) {
    record.Text = it->second.text;
    record.Face = it->second.face;
  }
  return d->f.Type;
}

void Store::reserveItems(size_t count) {
  auto& pool = impl_->items;
  reserveMore(pool.data, count > pool.freeIndices.size() ? count - pool.freeIndices.size() : 0);
  impl_->table.reserve(count);
}

const ItemFields* Store::itemFields(ObjectHandle item, const std::string** text,
                                    const std::string** face) const {
  ItemData* d = impl_->item(item);
  if (!d)
    return nullptr;
  if (text || face) {
    const ItemText* t = nullptr;
    if (d->f.Type == ItemVectorText || d->f.Type == ItemTrueTypeText) {
      auto it = impl_->itemTexts.find(impl_->table.find(tableEntry(item), ObjectKind::Item));
      if (it != impl_->itemTexts.end())
        t = &it->second;
    }
    if (text)
      *text = t ? &t->text : nullptr;
    if (face)
      *face = t ? &t->face : nullptr;
  }
  return &d->f;
}

int32_t Store::I_ReadItemAbs(ObjectHandle item, ItemRecord& record) const {
  int32_t type = I_ReadItem(item, record);
  if (!type)
    return 0;
  placeItem(record, impl_->padLocation);
  placeItem(record, impl_->compLocation);
  return type;
}

int32_t Store::I_FrameItem(ObjectHandle item, FrameRect& frame) const {
  ItemData* d = impl_->item(item);
  if (!d)
    return 0;
  frame = toFrameRect(itemFrame(d->f, impl_->textLength(*d)));
  return 1;
}

int32_t Store::I_ChangeItemAttr(ObjectHandle item, int32_t attributes, int32_t colour,
                                int32_t style, int32_t lineWidth) {
  ItemData* d = impl_->item(item);
  if (!d)
    return 0;
  if (d->f.LineWidth != lineWidth) {
    // The pen changes the item's extent: its place in the spatial index follows.
    return changeItem(*impl_, item, [&](ItemData& t) {
      t.f.Attributes = attributes;
      t.f.Colour = uint8_t(colour);
      t.f.Style = uint8_t(style);
      t.f.LineWidth = lineWidth;
    });
  }
  // A new colour alone changes no frame, run or index: the mono view recolours whole layers.
  bool shapeOrMarks = d->f.Attributes != attributes || d->f.Style != uint8_t(style);
  d->f.Attributes = attributes;
  d->f.Colour = uint8_t(colour);
  d->f.Style = uint8_t(style);
  if (shapeOrMarks && d->owner)
    impl_->touchMarks(d->owner);
  return 1;
}

int32_t Store::I_ChangeItemLink(ObjectHandle item, int32_t link) {
  ItemData* d = impl_->item(item);
  if (!d)
    return 0;
  d->f.Link = link;
  return 1;
}

int32_t Store::I_ChangeItemGap(ObjectHandle item, int32_t gap) {
  ItemData* d = impl_->item(item);
  if (!d)
    return 0;
  d->f.Gap = gap;
  return 1;
}

int32_t Store::I_ChangeItemXY(ObjectHandle item, const ItemRecord& record) {
  return changeItem(*impl_, item, [&](ItemData& d) {
    d.f.X = record.X;
    d.f.Y = record.Y;
    d.f.Angle = record.Angle;
    d.f.Width = record.Width;
    d.f.Height = record.Height;
    d.f.Sweep = record.Sweep;
  });
}

int32_t Store::I_ChangeTextSize(ObjectHandle item, int32_t size1, int32_t size2) {
  ItemData* d = impl_->item(item);
  if (!d || (d->f.Type != ItemVectorText && d->f.Type != ItemTrueTypeText))
    return 0;
  return changeItem(*impl_, item, [&](ItemData& t) {
    t.f.Width = size1;
    t.f.Height = size2;
  });
}

void Store::I_APtoLP(int32_t& x, int32_t& y) const {
  unplacePoint(x, y, impl_->compLocation);
  unplacePoint(x, y, impl_->padLocation);
}

}  // namespace tvx
