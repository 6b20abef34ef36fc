#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"

#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tvx {

namespace {

// One piece of a message: a catalogue text, the name argument, a line break, a fixed text that is
// never translated, the digits of the format, or the count of elements a failure cost.
struct Piece {
  enum Kind { Catalogue, Name, LineBreak, Literal, Digits, Count } kind;
  std::string_view id;
  std::string_view text;
};

constexpr Piece cat(std::string_view id, std::string_view text) {
  return {Piece::Catalogue, id, text};
}
constexpr Piece name{Piece::Name, {}, {}};
constexpr Piece crlf{Piece::LineBreak, {}, {}};
constexpr Piece lit(std::string_view text) { return {Piece::Literal, {}, text}; }
constexpr Piece digits{Piece::Digits, {}, {}};
constexpr Piece count{Piece::Count, {}, {}};

constexpr int none = 0;
constexpr int exclamation = msgbox::Exclamation;
constexpr int critical = msgbox::Critical;

struct StatusEntry {
  int32_t status;
  int icon;
  std::array<Piece, 7> pieces;
  int count;  // pieces in use
};

template <typename... P> constexpr StatusEntry entry(int32_t status, int icon, P... p) {
  return {status, icon, {p...}, static_cast<int>(sizeof...(P))};
}

constexpr Piece outsideLimits = cat("62385", "Coordinates outside limits");

constexpr std::array<StatusEntry, 24> StatusTable = {{
    entry(StatusReported, critical, cat("62379", "Range Error - format:"), digits),
    entry(StatusIncorrectFormat, exclamation, cat("62380", "Artwork File - Incorrect format")),
    entry(StatusNoVectorFont, exclamation,
          cat("62381", "Can't load local vector font, default assumed."), name),
    entry(StatusCannotLoad, exclamation, cat("62382", "Can't load "), name),
    entry(StatusSaveFailed, exclamation, cat("62383", "Save of "), name, cat("62384", " failed")),
    entry(StatusOutsideLimits, none, outsideLimits, crlf,
          cat("62386", "Check parameters for GERBER file and import again.")),
    entry(StatusApertureMissing, none, name,
          cat("62387", " aperture not found in the list during import."), count, crlf,
          cat("62388", "Select proper Aperture Table and import again.")),
    entry(StatusExtents, none, outsideLimits, crlf, cat("62389", "Check parameters for "), name,
          lit(" "), cat("62390", "file and import again.")),
    entry(StatusNotSupported, exclamation, name, lit(" - "),
          cat("62391", "import of files in this format is not supported")),
    entry(StatusNotFormatTwo, exclamation, name, lit(" - "),
          cat("62392", "this is not Format 2 File."), crlf,
          cat("62393",
              "Format parameters and/or tools sizes might need adjustment for correct import")),
    entry(StatusPolygonTooComplex, exclamation, cat("62395", "Polygon to complex "), name),
    entry(StatusPathNotClosed, exclamation, cat("62396", "This path is not a closed shape"), name),
    entry(StatusNoLayers, exclamation, name, lit(" "), cat("62397", "No available layers")),
    entry(StatusNoData, exclamation, cat("62398", "No data to output")),
    entry(StatusCompleted, none, name, lit(" "), cat("62399", "Completed")),
    entry(StatusNoAperture, exclamation, name, lit(" "),
          cat("4953", "No aperture defined for selected item")),
    entry(StatusExtentsTruncated, exclamation, cat("loc", "Drawing extents are out of range."),
          crlf, name, crlf, cat("loc", "Import may be truncated into supported range.")),
    entry(StatusBinaryDxf, exclamation, name, lit(" - "),
          cat("loc", "binary DXF files can't be read."), crlf,
          cat("loc", "Save the drawing as an ASCII DXF file and import it again.")),
    entry(StatusFarElementsLeftOut, exclamation, name,
          cat("loc", " elements lay 1000 mm or more outside the drawing's extents and were left "
                     "out.")),
    entry(StatusBadStepping, exclamation, cat("62400", "Incorrect stepping parameters"), name),
    entry(StatusNoRotationPoints, exclamation, cat("62401", "Set Point(s) to define rotation.")),
    entry(StatusOutOfRange, exclamation, cat("62402", "Out of Range"), name),
    entry(StatusNothingToImport, exclamation, cat("151219", "Nothing to import"), name),
    entry(StatusEmptyFile, exclamation, name, lit(" - "), cat("900123", "the file is empty")),
}};

constexpr StatusEntry UnknownStatus = entry(0, critical, cat("62403", "Unknown Error"));

}  // namespace

StatusMessage statusMessage(const SystemServices& services, int32_t status, const std::string& text,
                            const FormatDigits& format, int64_t elements) {
  const auto* found = std::find_if(StatusTable.begin(), StatusTable.end(),
                                   [&](const StatusEntry& e) { return e.status == status; });
  const StatusEntry& e = found != StatusTable.end() ? *found : UnknownStatus;
  StatusMessage message;
  message.icon = e.icon;
  for (int i = 0; i < e.count; ++i) {
    const Piece& p = e.pieces[i];
    switch (p.kind) {
    case Piece::Catalogue:
      message.text += services.LocalMessage(std::string(p.text), std::string(p.id));
      break;
    case Piece::Name:
      message.text += text;
      break;
    case Piece::LineBreak:
      message.text += "\r\n";
      break;
    case Piece::Literal:
      message.text += p.text;
      break;
    case Piece::Digits:
      message.text +=
          std::to_string(format.IntegerDigits) + "." + std::to_string(format.DecimalDigits);
      break;
    case Piece::Count:
      if (elements > 0)
        message.text +=
            " (" + std::to_string(elements) + (elements == 1 ? " element)" : " elements)");
      break;
    }
  }
  return message;
}

void StatusReporter::ReportStatus(int32_t status, const std::string& text, int64_t elements) const {
  StatusMessage m = statusMessage(services_, status, text, format_, elements);
  prompts_.messageBox(m.text, m.icon | msgbox::SystemModal, titles_.boxTitle());
}

}  // namespace tvx
