#include "store/LayerCatalogue.h"

namespace tvx {

std::string layerSymbolName(int32_t number) {
  return "$$GIS_CAT" + std::to_string(layerSymbolId(number));
}

int32_t initialFilterMask(int32_t number) {
  if (number == DrillLayer)
    return DrillFilterMask;
  if (number == BoardOutlineLayer)
    return OutlineFilterMask;
  return ArtworkFilterMask;
}

int32_t initialPadKind(int32_t number) {
  if (number == DrillLayer)
    return PadKindDrill;
  if (number == BoardOutlineLayer)
    return PadKindOutline;
  return PadKindArtwork;
}

}  // namespace tvx
