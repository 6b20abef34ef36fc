// The fixed catalogue of the 31 layer slots: their roles, codes, colours, keys and captions, and
// the groups of layers as masks.
#pragma once

#include "store/LayerRecord.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tvx {

// Groups of layers as masks of their bits (bit n - 1 for layer n).
namespace layergroup {
inline constexpr int32_t ListedAtStart = 0x6000003F;  // 1 to 6, 30, 31
inline constexpr int32_t AllButOutlineAndDrill = 0x1FFFFFFF;
inline constexpr int32_t Copper = 0x1FFFFFCC;       // 3, 4, 7 to 29
inline constexpr int32_t FlashedPads = 0x1FFFFFDE;  // may hold a flashed pad: 2 to 5, 7 to 29
inline constexpr int32_t Inner = 0x1FFFFFC0;        // 7 to 29
inline constexpr int32_t Silkscreen = 0x21;         // 1 and 6
inline constexpr int32_t SolderMask = 0x12;         // 2 and 5
inline constexpr int32_t AllButDrill = 0x3FFFFFFF;  // every layer but the drill template
inline constexpr int32_t OutlineAndDrill = BoardOutlineMask | DrillLayerMask;  // 30 and 31
}  // namespace layergroup

// Layer numbers with a fixed role.
inline constexpr int32_t BoardOutlineLayer = 30;
inline constexpr int32_t DrillLayer = 31;

// Marker kinds of LayerRecord::PadKind.
inline constexpr int32_t PadKindDrill = 6;
inline constexpr int32_t PadKindOutline = 0;
inline constexpr int32_t PadKindArtwork = 5;

// Filter masks that a layer starts with.
inline constexpr int32_t DrillFilterMask = filter::AF_IPD | filter::AF_IMC | filter::AF_IPP;  // 50
inline constexpr int32_t OutlineFilterMask =
    filter::AF_ILN | filter::AF_IPA | filter::AF_IPL;  // 13
inline constexpr int32_t ArtworkFilterMask = filter::AF_ILN | filter::AF_IPD | filter::AF_IPA |
                                             filter::AF_IPL | filter::AF_IMC | filter::AF_IPP |
                                             filter::AF_IMP | filter::FilledOutlines;  // 16511

// One row of the catalogue. Mask, symbol id and symbol name follow from the layer's number.
struct LayerCatalogueRow {
  int32_t LayerCode;  // layer number in the layout editor; 0 for layers 30 and 31
  int32_t Colour;     // palette number
  std::string_view KeyName;
  std::string_view TextId;   // message id of the caption
  std::string_view Caption;  // default caption
};

// Rows for layers 1 to 31, at index number - 1. Layer 29's key "lyInnerW" follows the other inner
// layers; nothing in the viewer reads KeyName.
inline constexpr std::array<LayerCatalogueRow, LayerCount> LayerCatalogue = {{
    {96, 3, "silkTop", "62423", "Silkscreen Top"},
    {97, 1, "maskTop", "62424", "Mask Top Layer"},
    {98, 10, "lyTop", "62425", "Artwork Top Layer"},
    {125, 9, "lyBottom", "62426", "Artwork Bottom Layer"},
    {126, 1, "maskBottom", "62427", "Mask Bottom Layer"},
    {127, 3, "silkBottom", "62428", "Silkscreen Bottom"},
    {99, 2, "lyInnerA", "62429", "Artwork Inner Layer (A)"},
    {100, 8, "lyInnerB", "62430", "Artwork Inner Layer (B) "},
    {101, 5, "lyInnerC", "62431", "Artwork Inner Layer (C)"},
    {102, 7, "lyInnerD", "62432", "Artwork Inner Layer (D)"},
    {103, 4, "lyInnerE", "62433", "Artwork Inner Layer (E)"},
    {104, 6, "lyInnerF", "62434", "Artwork Inner Layer (F)"},
    {105, 22, "lyInnerG", "62435", "Artwork Inner Layer (G)"},
    {106, 28, "lyInnerH", "62436", "Artwork Inner Layer (H)"},
    {107, 26, "lyInnerI", "62437", "Artwork Inner Layer (I)"},
    {108, 14, "lyInnerJ", "62438", "Artwork Inner Layer (J)"},
    {109, 16, "lyInnerK", "4956", "Artwork Inner Layer (K)"},
    {110, 17, "lyInnerL", "4957", "Artwork Inner Layer (L)"},
    {111, 19, "lyInnerM", "4958", "Artwork Inner Layer (M)"},
    {112, 20, "lyInnerN", "4959", "Artwork Inner Layer (N)"},
    {113, 21, "lyInnerO", "4960", "Artwork Inner Layer (O)"},
    {114, 13, "lyInnerP", "4961", "Artwork Inner Layer (P)"},
    {115, 23, "lyInnerQ", "4962", "Artwork Inner Layer (Q)"},
    {116, 27, "lyInnerR", "4963", "Artwork Inner Layer (R)"},
    {117, 29, "lyInnerS", "4964", "Artwork Inner Layer (S)"},
    {118, 18, "lyInnerT", "4965", "Artwork Inner Layer (T)"},
    {119, 24, "lyInnerU", "4966", "Artwork Inner Layer (U)"},
    {120, 25, "lyInnerV", "4967", "Artwork Inner Layer (V)"},
    {121, 30, "lyInnerW", "4968", "Artwork Inner Layer (W)"},
    {0, 12, "lyBoardOutline", "62439", "Board Outline/Cut-outs"},
    {0, 31, "lyDrill", "62440", "Drill Template"},
}};

// The bit of layer number (1 to 31).
inline constexpr int32_t layerMask(int32_t number) { return int32_t(1u << (number - 1)); }
// The symbol id of layer number: -76500 - number.
inline constexpr SymbolId layerSymbolId(int32_t number) { return LayerSymbolBase - number; }
// "$$GIS_CAT" followed by the decimal symbol id, as "$$GIS_CAT-76501".
std::string layerSymbolName(int32_t number);

// The filter mask and the pad marker that a layer starts with, by its role.
int32_t initialFilterMask(int32_t number);
int32_t initialPadKind(int32_t number);

}  // namespace tvx
