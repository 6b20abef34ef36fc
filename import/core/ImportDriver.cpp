#include "import/core/ImportDriver.h"
#include "store/LayerSymbol.h"

#include "import/core/ReportStatus.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace tvx {

namespace {

constexpr int32_t StatusNotSupported = 93;
constexpr int32_t StatusCannotLoad = 85;
constexpr int32_t StatusIncorrectFormat = 8;

int32_t clampToStore(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(),
                                                  std::numeric_limits<int32_t>::max()));
}

// Nearest whole number, a half to the even neighbour, within the store's range.
int32_t clampToStore(double value) {
  if (std::isnan(value))
    return 0;
  value = std::clamp(value, static_cast<double>(std::numeric_limits<int32_t>::min()),
                     static_cast<double>(std::numeric_limits<int32_t>::max()));
  return static_cast<int32_t>(std::nearbyint(value));
}

// A file whose reader is not part of this program.
void reportNotSupported(int32_t& status, const LayerFileRecord& file,
                        const ImportContext& context) {
  context.reporter.ReportStatus(StatusNotSupported, file.FileName);
  status = 1;
}

template <typename Reader, typename Text>
void runReader(int32_t& status, const Reader& reader, const Text& text, LayerRecord& layer,
               LayerFileRecord& file, const ImportContext& context) {
  if (!reader) {
    reportNotSupported(status, file, context);
    return;
  }
  reader(status, text, layer, file);
}

}  // namespace

void ImportIntoLayer(int32_t& status, LayerRecord& layer, ImportContext& context) {
  EnsureLayerSymbol(context.store, layer, layer.ImportMode <= 0);
  const std::string importing = context.services.LocalMessage("Importing", "151209");
  const ImportJob& job = context.state.Job;
  const ReaderSet& readers = context.readers;
  // Status is not tested between files: each reader sets it anew, and the last one decides.
  for (size_t i = 0; i < layer.Files.size(); ++i) {
    LayerFileRecord& file = layer.Files[i];
    if (context.editMsgLine)
      context.editMsgLine(file.FileName + " " + importing);
    switch (file.ReaderCode) {
    case ReaderGerberArtwork:
    case ReaderGerberDrilling:
      ImportGerberFile(status, layer, file, context);
      break;
    case ReaderExcellon:
      runReader(status, readers.importExcellon, job.ExcellonText, layer, file, context);
      break;
    case ReaderHpgl:
      runReader(status, readers.importHpgl, job.HpglText, layer, file, context);
      break;
    case ReaderDxf:
      runReader(status, readers.importDxf, job.DxfText, layer, file, context);
      break;
    default:
      break;  // no reader for this code
    }
  }
}

void ImportGerberFile(int32_t& status, LayerRecord& layer, LayerFileRecord& file,
                      ImportContext& context) {
  context.state.CurrentFile = file.FileName;
  const ReaderSet& readers = context.readers;
  if (!readers.loadArtSections || !readers.drawGerberStream) {
    reportNotSupported(status, file, context);
    return;
  }
  ArtFile art;
  if (!art.open(file.FileName)) {
    context.reporter.ReportStatus(StatusCannotLoad, file.FileName);
    status = 1;
    return;
  }
  status = 0;
  if (art.recordCount() < artrecord::HeaderRecords) {
    context.reporter.ReportStatus(StatusIncorrectFormat, file.FileName);
    status = 1;
    return;
  }
  // A cut-off last record: the whole records are imported, then the damage is reported.
  const bool truncated = art.hasPartialRecord();
  readers.loadArtSections(status, art);
  if (status == 0)
    readers.drawGerberStream(status, art, layer, file);
  art.close();
  if (status == 0 && truncated) {
    context.reporter.ReportStatus(StatusIncorrectFormat, file.FileName);
    status = 1;
  }
}

Shift centringShift(const FrameRect& frame, bool originalCoordinates) {
  if (originalCoordinates)
    return {};
  // The lower left corner seen from the centre, rounded half away from zero to whole millimetres;
  // the shift brings the corner there.
  const auto axis = [](int32_t low, int32_t high) -> int64_t {
    const double centre = (static_cast<double>(low) + static_cast<double>(high)) / 2.0;
    const double corner = static_cast<double>(low) - centre;
    const double rounded = std::round(corner / StoreUnitsPerMm) * StoreUnitsPerMm;
    return static_cast<int64_t>(low) - static_cast<int64_t>(rounded);
  };
  return {axis(frame.MinX, frame.MaxX), axis(frame.MinY, frame.MaxY)};
}

void centreImportedLayer(Store& store, const LayerRecord& layer, const FileExtents& readerExtents) {
  if (layer.Files.empty())
    return;
  const LayerFileRecord& first = layer.Files.front();
  if (first.ReaderCode != ReaderHpgl && first.ReaderCode != ReaderDxf)
    return;
  const SymbolId id = layer.SymbolHandle;
  FrameRect frame;
  if (store.S_FrameSymbolItems(id, -1, frame) == 0) {
    frame = {clampToStore(readerExtents.MinX), clampToStore(readerExtents.MinY),
             clampToStore(readerExtents.MaxX), clampToStore(readerExtents.MaxY)};
  }
  const Shift shift = centringShift(frame, first.OriginalCoordinates);
  const ArrayHandle items = store.S_SymbolItemArray(id);
  const int32_t count = store.OA_GetCount(items);
  for (int32_t i = 1; i <= count; ++i) {
    const ObjectHandle item = store.OA_Object(items, i);
    if (!item)
      break;
    ItemRecord record;
    if (store.I_ReadItem(item, record) == 0)
      break;
    record.X = clampToStore(static_cast<int64_t>(record.X) - shift.x + first.OffsetX);
    record.Y = clampToStore(static_cast<int64_t>(record.Y) - shift.y + first.OffsetY);
    store.I_ChangeItemXY(item, record);
  }
}

void bindLayers(ImportState& state, std::span<LayerRecord> layers, bool noCenter,
                const ReaderSet& readers) {
  ImportJob& job = state.Job;
  const ImportKind kind = job.Kind;
  state.LayerChoices.clear();
  state.DialogLayer = 0;
  job.Prepared = true;

  const auto bind = [&](int32_t number, LayerRecord& layer,
                        int32_t readerCode) -> LayerFileRecord& {
    state.DialogLayer = number;
    state.CurrentSymbol = layer.SymbolHandle;
    state.LayerListIndex = 0;
    layer.Files.assign(1, LayerFileRecord{});
    layer.OriginalCoordinates = noCenter;
    LayerFileRecord& file = layer.Files.front();
    file.FileName = job.SourcePath;  // these readers read the source file's text
    file.ReaderCode = readerCode;
    file.Colour = layer.ColourNumber;
    file.OffsetX = 0;
    file.OffsetY = 0;
    file.OriginalCoordinates = layer.OriginalCoordinates;
    return file;
  };
  const auto offer = [&](int32_t number, const LayerRecord& layer) {
    state.LayerChoices.push_back({number, layer.DisplayName});
  };

  const int32_t last = static_cast<int32_t>(std::min<size_t>(layers.size(), LayerCount));
  for (int32_t number = 1; number <= last; ++number) {
    LayerRecord& layer = layers[number - 1];
    if (isGerberKind(kind)) {
      // Any listed layer; the user chooses.
      if ((layer.Mask & 0x7FFFFFFF) != 0 && layer.Listed)
        offer(number, layer);
    } else if (isPlotterOrCadKind(kind)) {
      if ((layer.Mask & BoardOutlineMask) != 0) {
        bind(number, layer, kind == ImportKind::Hpgl ? ReaderHpgl : ReaderDxf);
        state.LayerChoices.insert(state.LayerChoices.begin(), {number, layer.DisplayName});
        break;
      }
      // DXF may go into any listed artwork layer; HPGL only into the outline.
      if (kind == ImportKind::Dxf && (layer.Mask & 0x1FFFFFFF) != 0 && layer.Listed)
        offer(number, layer);
    } else if (isExcellonKind(kind)) {
      if (layer.Mask == DrillLayerMask && layer.Listed) {
        LayerFileRecord& file = bind(number, layer, ReaderExcellon);
        file.Tag.assign(1, ' ');  // no aperture barred
        file.FilterMask = layer.FilterMask;
        file.Mirror = layer.Mirror;
        file.OriginalCoordinates = layer.OriginalCoordinates;
        if (readers.scanExcellonText) {
          const int32_t found = readers.scanExcellonText(
              job.ExcellonText, file.Tools, kind == ImportKind::ExcellonFormatTwo, false);
          job.Kind = static_cast<ImportKind>(found);
        }
        offer(number, layer);
        break;
      }
    }
  }
}

}  // namespace tvx
