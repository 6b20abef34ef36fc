#include "import/core/ImportDriver.h"

#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "store/LayerCatalogue.h"
#include "store/LayerSymbol.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace tvx {

namespace {

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

}  // namespace

void ReaderTable::add(int32_t readerCode, FileReader& reader) {
  if (readerCode >= 0 && readerCode < static_cast<int32_t>(readers_.size()))
    readers_[size_t(readerCode)] = &reader;
}

FileReader* ReaderTable::byCode(int32_t readerCode) const {
  if (readerCode < 0 || readerCode >= static_cast<int32_t>(readers_.size()))
    return nullptr;
  return readers_[size_t(readerCode)];
}

FileReader* ReaderTable::forKind(ImportKind kind) const {
  const int32_t code = readerCodeOf(kind);
  return code < 0 ? nullptr : byCode(code);
}

int32_t readerCodeOf(ImportKind kind) {
  if (isGerberKind(kind))
    return ReaderGerberArtwork;
  if (isExcellonKind(kind))
    return ReaderExcellon;
  if (kind == ImportKind::Hpgl)
    return ReaderHpgl;
  if (kind == ImportKind::Dxf)
    return ReaderDxf;
  return -1;
}

void ImportIntoLayer(int32_t& status, LayerRecord& layer, ImportState& state,
                     const ReaderTable& readers, Store& store, const StatusReporter& reporter,
                     const MessageLine& editMsgLine) {
  EnsureLayerSymbol(store, layer, layer.ImportMode <= 0);
  const std::string importing = reporter.services().LocalMessage("Importing", "151209");
  // Status is not tested between files: each reader sets it anew, and the last one decides.
  for (LayerFileRecord& file : layer.Files) {
    if (editMsgLine)
      editMsgLine(file.FileName + " " + importing);
    if (file.ReaderCode < ReaderGerberArtwork || file.ReaderCode > ReaderDxf)
      continue;  // no reader for this code
    FileReader* reader = readers.byCode(file.ReaderCode);
    if (!reader) {
      reporter.ReportStatus(StatusNotSupported, file.FileName);
      status = StatusReported;
      continue;
    }
    state.CurrentFile = file.FileName;
    reader->importFile(status, state.Job, layer, file);
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
    if (item == ObjectHandle::None)
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
                const ReaderTable& readers) {
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
      if (kind == ImportKind::Dxf && (layer.Mask & layergroup::AllButOutlineAndDrill) != 0 &&
          layer.Listed)
        offer(number, layer);
    } else if (isExcellonKind(kind)) {
      if (layer.Mask == DrillLayerMask && layer.Listed) {
        LayerFileRecord& file = bind(number, layer, ReaderExcellon);
        file.Tag.assign(1, ' ');  // no aperture barred
        file.FilterMask = layer.FilterMask;
        file.Mirror = layer.Mirror;
        file.OriginalCoordinates = layer.OriginalCoordinates;
        if (FileReader* reader = readers.byCode(ReaderExcellon))
          reader->prepareBoundFile(job, file);
        offer(number, layer);
        break;
      }
    }
  }
}

LayerFileRecord& StartLayerFile(ImportJob& job, LayerRecord& layer, bool noCenter) {
  const bool drill = layer.Mask == DrillLayerMask;
  if (drill && job.Kind == ImportKind::ArtworkRS274D)
    job.Kind = ImportKind::DrillingRS274D;
  else if (drill && job.Kind == ImportKind::ArtworkRS274X)
    job.Kind = ImportKind::DrillingRS274X;
  else if (!drill && job.Kind == ImportKind::DrillingRS274D)
    job.Kind = ImportKind::ArtworkRS274D;
  else if (!drill && job.Kind == ImportKind::DrillingRS274X)
    job.Kind = ImportKind::ArtworkRS274X;

  layer.Files.assign(1, LayerFileRecord{});
  LayerFileRecord& file = layer.Files.front();
  if (isGerberKind(job.Kind)) {
    layer.OriginalCoordinates = noCenter;
    file.FileName = job.IntermediatePath;
    file.Tag.assign(1, ' ');
    file.FilterMask = layer.FilterMask;
    file.Mirror = layer.Mirror;
    file.OriginalCoordinates = layer.OriginalCoordinates;
    const bool drilling =
        job.Kind == ImportKind::DrillingRS274X || job.Kind == ImportKind::DrillingRS274D;
    file.ReaderCode = drilling ? ReaderGerberDrilling : ReaderGerberArtwork;
  } else if (job.Kind == ImportKind::Dxf) {
    file.FileName = job.SourcePath;
    file.ReaderCode = ReaderDxf;
  } else {
    return file;
  }
  file.Colour = layer.ColourNumber;
  file.OffsetX = file.OffsetY = 0;
  return file;
}

}  // namespace tvx
