// The report of "gbrview info" as lines of text and as one JSON document, from one FileInfo.
#include "app/cli/FileInfo.h"

#include "kernel/KernelTypes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <charconv>
#include <cmath>

namespace tvx {

namespace {

constexpr double UnitsPerMm = StoreUnitsPerMm;
constexpr double UnitsPerInch = StoreUnitsPerMm * 25.4;

// A number with a fixed count of decimals, "." as the point whatever the locale.
std::string fixed(double value, int decimals) {
  char digits[512];
  const auto [end, error] =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals);
  return error == std::errc() ? std::string(digits, end) : std::string("0");
}

// The shortest text that reads back as the same number.
std::string shortest(double value) {
  char digits[64];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
  return error == std::errc() ? std::string(digits, end) : std::string("0");
}

// The same rounding as fixed(), as a JSON number.
QJsonValue rounded(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  return std::round(value * scale) / scale;
}

QString q(const std::string& text) { return QString::fromStdString(text); }

std::string unitName(int32_t unit) {
  if (unit == 0)
    return "inch";
  if (unit == 1)
    return "mm";
  return "unit " + std::to_string(unit);
}

std::string zerosName(int32_t zeros) {
  if (zeros == 0)
    return "LZ";
  if (zeros == 1)
    return "TZ";
  return "OMZeros " + std::to_string(zeros);
}

// Which zeros a Gerber file's coordinates leave out.
const char* omittedZerosName(int32_t omitted) { return omitted == 1 ? "leading" : "trailing"; }

std::string shapeName(const ApertureUses& a) {
  return apertureShapeWord(a.Shape) + (a.MacroName.empty() ? "" : " " + a.MacroName);
}

// Width and height of a rectangle or an oval, in store units; false for other shapes.
bool sidesOf(const ApertureUses& a, double& width, double& height) {
  const bool sided = a.Shape == ApertureShape::Rectangle || a.Shape == ApertureShape::Oval;
  if (!sided || a.Values.size() < 2)
    return false;
  width = a.Values[0];
  height = a.Values[1];
  return true;
}

// The size of an aperture: the width of a draw or round aperture, the side of a square, width by
// height of a rectangle or an oval; empty for the other special shapes.
std::string sizeText(const ApertureUses& a) {
  double width = 0, height = 0;
  if (sidesOf(a, width, height))
    return fixed(width / UnitsPerMm, 5) + " x " + fixed(height / UnitsPerMm, 5) + " mm";
  return a.Size != 0 ? fixed(a.Size / UnitsPerMm, 5) + " mm" : std::string();
}

std::string extentsLine(const FileInfo& info) {
  if (!info.hasExtents)
    return "extents mm: none\n";
  const FileExtents& e = info.extents;
  return "extents mm: x " + fixed(e.MinX / UnitsPerMm, 5) + " .. " + fixed(e.MaxX / UnitsPerMm, 5) +
         ", y " + fixed(e.MinY / UnitsPerMm, 5) + " .. " + fixed(e.MaxY / UnitsPerMm, 5) + "\n";
}

QJsonValue extentsJson(const FileInfo& info) {
  if (!info.hasExtents)
    return QJsonValue::Null;
  const FileExtents& e = info.extents;
  return QJsonObject{{"minX", rounded(e.MinX / UnitsPerMm, 5)},
                     {"minY", rounded(e.MinY / UnitsPerMm, 5)},
                     {"maxX", rounded(e.MaxX / UnitsPerMm, 5)},
                     {"maxY", rounded(e.MaxY / UnitsPerMm, 5)}};
}

std::string excellonText(const FileInfo& info) {
  const ExcellonFormat& f = info.format;
  std::string out = "format: " + unitName(f.XYunit) + " " + std::to_string(f.XYFormB) + "." +
                    std::to_string(f.XYFormA) + " " + zerosName(f.OMZeros) + "\n";
  out += "tools: " + std::to_string(info.tools.size()) + "\n";
  for (const ToolEntry& tool : info.tools)
    out += "  T" + std::to_string(tool.Code) + "  " + fixed(tool.Diameter / UnitsPerMm, 5) +
           " mm  " + fixed(tool.Diameter / UnitsPerInch, 6) + " in  " +
           std::to_string(tool.HoleCount) + " holes\n";
  out += "holes: " + std::to_string(info.holes) + "\n";
  out += extentsLine(info);
  out += "import: status " + std::to_string(info.importStatus);
  if (info.layer != 0) {
    const HoleTally& t = info.holeTally;
    out += ", layer " + std::to_string(info.layer) + " " + info.layerName + ", pads " +
           std::to_string(info.pads) + " (placed " + std::to_string(t.Placed) + ", slots " +
           std::to_string(t.Slots) + ", covered " + std::to_string(t.Covered) + ", without size " +
           std::to_string(t.WithoutSize) + ", refused " + std::to_string(t.StoreRefused) + ")";
  }
  return out + "\n";
}

QJsonObject excellonJson(const FileInfo& info) {
  const ExcellonFormat& f = info.format;
  QJsonArray tools;
  for (const ToolEntry& tool : info.tools)
    tools.append(QJsonObject{{"code", tool.Code},
                             {"diameterMm", rounded(tool.Diameter / UnitsPerMm, 5)},
                             {"diameterInch", rounded(tool.Diameter / UnitsPerInch, 6)},
                             {"holes", tool.HoleCount}});
  const HoleTally& t = info.holeTally;
  return {{"format", QJsonObject{{"unit", q(unitName(f.XYunit))},
                                 {"integerDigits", f.XYFormB},
                                 {"decimalDigits", f.XYFormA},
                                 {"zeros", q(zerosName(f.OMZeros))}}},
          {"tools", tools},
          {"holes", qint64(info.holes)},
          {"extentsMm", extentsJson(info)},
          {"import", QJsonObject{{"status", info.importStatus},
                                 {"layer", info.layer},
                                 {"layerName", q(info.layerName)},
                                 {"pads", info.pads},
                                 {"placed", t.Placed},
                                 {"slots", t.Slots},
                                 {"covered", t.Covered},
                                 {"withoutSize", t.WithoutSize},
                                 {"refused", t.StoreRefused}}}};
}

std::string gerberText(const FileInfo& info) {
  const GerberFormat& f = info.gerberFormat;
  std::string out = "format: " + unitName(f.Unit) + ", " + omittedZerosName(f.OmittedZeros) +
                    " zeros omitted, X " + std::to_string(f.IntegerDigits[AxisX]) + "." +
                    std::to_string(f.DecimalDigits[AxisX]) + ", Y " +
                    std::to_string(f.IntegerDigits[AxisY]) + "." +
                    std::to_string(f.DecimalDigits[AxisY]) + ", scale X " +
                    shortest(f.Scale[AxisX]) + " Y " + shortest(f.Scale[AxisY]) + "\n";
  out += extentsLine(info);
  out += "apertures: " + std::to_string(info.apertures.size()) + "\n";
  for (const ApertureUses& a : info.apertures)
    out += "  D" + std::to_string(a.DCode) + "  " + shapeName(a) +
           (sizeText(a).empty() ? "" : "  " + sizeText(a)) + "  draws " + std::to_string(a.Draws) +
           "  flashes " + std::to_string(a.Flashes) + "  uses " + fixed(a.Uses, 0) +
           (a.Defined ? "" : "  (not defined)") + "\n";
  const GerberStreamCounts& s = info.stream;
  out += "draws: " + std::to_string(s.Draws) + "\narcs: " + std::to_string(s.Arcs) +
         "\nflashes: " + std::to_string(s.Flashes) + "\nregions: " + std::to_string(s.Regions) +
         "\n";
  out += "layer polarity records: " + std::to_string(s.LayerPolarityRecords()) + " (dark " +
         std::to_string(s.DarkLayers) + ", clear " + std::to_string(s.ClearLayers) + ")\n";
  out += std::string("image polarity: ") + (s.NegativeImage ? "negative" : "positive") + "\n";
  if (s.StepRepeats.empty())
    out += "step and repeat: none\n";
  else
    out += "step and repeat: " + std::to_string(s.StepRepeats.size()) + "\n";
  for (const StepRepeatBlock& b : s.StepRepeats)
    out += "  copies X " + shortest(b.CountX) + " Y " + shortest(b.CountY) + ", steps mm X " +
           fixed(b.StepX / UnitsPerMm, 5) + " Y " + fixed(b.StepY / UnitsPerMm, 5) + "\n";
  if (!info.fileAttributes.empty())
    out += "file attributes: " + std::to_string(info.fileAttributes.size()) + "\n";
  for (const FileAttribute& attribute : info.fileAttributes)
    out += "  " + attribute.name + ": " + attribute.value + "\n";
  return out;
}

QJsonObject gerberJson(const FileInfo& info) {
  const GerberFormat& f = info.gerberFormat;
  QJsonArray apertures;
  for (const ApertureUses& a : info.apertures) {
    QJsonObject aperture{{"dCode", a.DCode},
                         {"shape", apertureShapeWord(a.Shape)},
                         {"macro", q(a.MacroName)},
                         {"sizeMm", rounded(a.Size / UnitsPerMm, 5)},
                         {"defined", a.Defined},
                         {"draws", qint64(a.Draws)},
                         {"flashes", qint64(a.Flashes)},
                         {"uses", a.Uses}};
    double width = 0, height = 0;
    if (sidesOf(a, width, height)) {
      aperture["widthMm"] = rounded(width / UnitsPerMm, 5);
      aperture["heightMm"] = rounded(height / UnitsPerMm, 5);
    }
    apertures.append(aperture);
  }
  const GerberStreamCounts& s = info.stream;
  QJsonArray stepRepeats;
  for (const StepRepeatBlock& b : s.StepRepeats)
    stepRepeats.append(QJsonObject{{"copiesX", b.CountX},
                                   {"copiesY", b.CountY},
                                   {"stepXMm", rounded(b.StepX / UnitsPerMm, 5)},
                                   {"stepYMm", rounded(b.StepY / UnitsPerMm, 5)}});
  QJsonArray attributes;
  for (const FileAttribute& attribute : info.fileAttributes)
    attributes.append(QJsonObject{{"name", q(attribute.name)}, {"value", q(attribute.value)}});
  return {{"format", QJsonObject{{"unit", q(unitName(f.Unit))},
                                 {"omittedZeros", omittedZerosName(f.OmittedZeros)},
                                 {"integerDigitsX", f.IntegerDigits[AxisX]},
                                 {"decimalDigitsX", f.DecimalDigits[AxisX]},
                                 {"integerDigitsY", f.IntegerDigits[AxisY]},
                                 {"decimalDigitsY", f.DecimalDigits[AxisY]},
                                 {"scaleX", f.Scale[AxisX]},
                                 {"scaleY", f.Scale[AxisY]}}},
          {"extentsMm", extentsJson(info)},
          {"apertures", apertures},
          {"draws", qint64(s.Draws)},
          {"arcs", qint64(s.Arcs)},
          {"flashes", qint64(s.Flashes)},
          {"regions", qint64(s.Regions)},
          {"layerPolarity", QJsonObject{{"records", qint64(s.LayerPolarityRecords())},
                                        {"dark", qint64(s.DarkLayers)},
                                        {"clear", qint64(s.ClearLayers)}}},
          {"imagePolarity", s.NegativeImage ? "negative" : "positive"},
          {"stepRepeat", stepRepeats},
          {"fileAttributes", attributes}};
}

// "NAME count, NAME count" in name order; "none" for no names.
std::string countsText(const std::map<std::string, int32_t>& counts) {
  std::string out;
  for (const auto& [name, n] : counts)
    out += (out.empty() ? "" : ", ") + name + " " + std::to_string(n);
  return out.empty() ? "none" : out;
}

QJsonObject countsJson(const std::map<std::string, int32_t>& counts) {
  QJsonObject out;
  for (const auto& [name, n] : counts)
    out[q(name)] = n;
  return out;
}

std::string drawingText(const FileInfo& info) {
  return "drawing: version " + (info.acadVer.empty() ? std::string("none") : info.acadVer) +
         ", units " + (info.insUnits < 0 ? std::string("none") : std::to_string(info.insUnits)) +
         "\nentities drawn: " + countsText(info.entitiesRead) +
         "\nentities passed over: " + countsText(info.entitiesPassedOver) +
         "\nleft out beyond the extents: " + std::to_string(info.leftOut) + "\n";
}

QJsonObject drawingJson(const FileInfo& info) {
  return QJsonObject{{"acadVer", q(info.acadVer)},
                     {"insUnits", info.insUnits},
                     {"entitiesDrawn", countsJson(info.entitiesRead)},
                     {"entitiesPassedOver", countsJson(info.entitiesPassedOver)},
                     {"leftOut", info.leftOut}};
}

std::string plotterText(const FileInfo& info) {
  return "elements: " + std::to_string(info.lines) + " lines, " + std::to_string(info.arcs) +
         " arcs, " + std::to_string(info.circles) + " circles, " +
         std::to_string(info.outlinePieces) + " outline pieces, " + std::to_string(info.texts) +
         " texts\n" + extentsLine(info) + "import: status " + std::to_string(info.importStatus) +
         (info.layer != 0 ? ", layer " + std::to_string(info.layer) + " " + info.layerName : "") +
         "\n";
}

QJsonObject plotterJson(const FileInfo& info) {
  return QJsonObject{{"lines", info.lines},
                     {"arcs", info.arcs},
                     {"circles", info.circles},
                     {"outlinePieces", info.outlinePieces},
                     {"texts", info.texts},
                     {"extentsMm", extentsJson(info)},
                     {"importStatus", info.importStatus},
                     {"layer", info.layer}};
}

}  // namespace

std::string fileInfoText(const FileInfo& info) {
  std::string out = "file: " + info.path + "\n";
  if (!info.readable) {
    out += "readable: no\n";
  } else {
    out += "bytes: " + std::to_string(info.bytes) + "\n";
    out += "kind: " + std::to_string(int(info.kind)) + " " + info.kindName + "\n";
    if (info.kind != info.recognisedKind)
      out += "recognised as: " + std::to_string(int(info.recognisedKind)) + "\n";
  }
  if (info.excellon)
    out += excellonText(info);
  if (info.gerber && info.scanned)
    out += gerberText(info);
  if (info.drawing)
    out += drawingText(info);
  if (info.plotter || info.drawing)
    out += plotterText(info);
  for (const std::string& message : info.messages)
    out += "message: " + message + "\n";
  return out;
}

std::string fileInfoJson(const FileInfo& info) {
  QJsonObject report{{"file", q(info.path)},         {"readable", info.readable},
                     {"bytes", qint64(info.bytes)},  {"kind", int(info.kind)},
                     {"kindName", q(info.kindName)}, {"recognisedKind", int(info.recognisedKind)}};
  if (info.excellon)
    report["excellon"] = excellonJson(info);
  if (info.gerber && info.scanned)
    report["gerber"] = gerberJson(info);
  if (info.plotter)
    report["plotter"] = plotterJson(info);
  if (info.drawing) {
    QJsonObject drawing = plotterJson(info);
    const QJsonObject header = drawingJson(info);
    for (auto it = header.begin(); it != header.end(); ++it)
      drawing[it.key()] = it.value();
    report["drawing"] = drawing;
  }
  QJsonArray messages;
  for (const std::string& message : info.messages)
    messages.append(q(message));
  report["messages"] = messages;
  return QJsonDocument(report).toJson(QJsonDocument::Indented).toStdString();
}

}  // namespace tvx
