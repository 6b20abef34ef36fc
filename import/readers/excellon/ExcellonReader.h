// The Excellon reader: the file as one string of blocks, the scan that finds the format, the tool
// table and the extents, the coordinate decoder, and the import that places one pad per hole.
#pragma once

#include "import/core/ImportJob.h"
#include "import/core/PlaceHole.h"
#include "import/core/StatusCodes.h"
#include "import/readers/ImportSettings.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class FileLayer;
class Store;
class StatusReporter;
class SystemServices;

// Reads the file line by line into text: each line upper-cased and trimmed of blanks, cut at its
// first ";", and, when anything is left, closed by "|". Empty lines and comment lines leave no
// block. What a line holds from its ";" on goes to comments, when given, upper-cased and closed by
// "|" the same way. Tells editMsgLine the file's name and "Processing" first. False, with the file
// layer's message, when the file cannot be opened or read.
// A file whose last block is no "M30" was cut: its last block is dropped when its line has no line
// end, and notes, when given, say so by line ("line 9: ...").
bool ReadExcellonText(FileLayer& files, const SystemServices& services, const std::string& fileName,
                      std::string& text,
                      const std::function<void(const std::string&)>& editMsgLine = {},
                      std::string* comments = nullptr, std::vector<std::string>* notes = nullptr);

// How the holes of the last import went.
struct HoleTally {
  int32_t Placed = 0;        // holes and slots
  int32_t Slots = 0;         // of them, drilled or routed slots
  int32_t Covered = 0;       // a pad already lay on the point
  int32_t WithoutSize = 0;   // drill layer: the tool has no diameter or is not in the table
  int32_t StoreRefused = 0;  // also clear polarity, which this reader never sets

  int32_t total() const { return Placed + Covered + WithoutSize + StoreRefused; }
  bool operator==(const HoleTally&) const = default;
};

// The reader's state for the life of the component: the format (shared with the settings and the
// import dialog), the extents (shared with the import job) and the two coordinate registers. The
// registers are modal from block to block and are not reset when a file starts.
class ExcellonReader {
public:
  ExcellonReader(Store& store, const SystemServices& services, const StatusReporter& reporter,
                 ExcellonFormat& format, FileExtents& extents);

  // Updates the format (with readHeader: the header, then what the file states of itself, see
  // ApplyStatedFormat), the tool table, the hole counts and the extents. keepTools keeps the table
  // and its diameters, adding only codes it lacks; without it the table starts empty, the "C"
  // values set the diameters, then sizes given in comments those of tools without "C", and a tool
  // of a later program without a size takes that of the same number in the program before.
  // Returns 3 (a header unit, tool sizes, tools and coordinates were seen), 4 (tools and
  // coordinates) or 0 (no Excellon text). A hole, a drilled slot and a routed slot count one each.
  int32_t ScanExcellonText(const std::string& text, std::vector<ToolEntry>& tools, bool readHeader,
                           bool keepTools, std::string_view comments = {});

  // Sets what the file states of its unit, digits and zero form (ReadStatedFormat); where it
  // states no zero form, the one its coordinates show; and where it states no digits, the digits
  // kept unless its holes would not fit a board, then the nearest reading whose holes do. True
  // when a unit line stands ahead of the header.
  bool ApplyStatedFormat(const std::string& text, std::string_view comments);

  // A number without a decimal point in store units under the format. Cuts the sign and what
  // stands before it off digits. More digits than the format keep all of them, the point staying
  // XYFormA digits from the right end. Not rounded.
  double DecodeExcellonNumber(std::string& digits) const;

  // Places the holes and slots of text into the layer's symbol with the file record's tool table,
  // offsets, mirror and OriginalCoordinates. Status 0 on success; a coordinate beyond the world is
  // reported (88), stops the import with status 1 and keeps what was placed.
  void ImportExcellon(int32_t& status, const std::string& text, LayerRecord& layer,
                      LayerFileRecord& file);

  const ExcellonFormat& format() const { return format_; }
  // What the last digit of a coordinate is worth under the format, in store units.
  double coordinateStep() const;
  const SystemServices& services() const { return services_; }
  const StatusReporter& reporter() const { return reporter_; }
  const FileExtents& extents() const { return extents_; }

  double RegisterX = 0.0;
  double RegisterY = 0.0;
  HoleTally LastImport;  // how the holes of the last import went

  // Hands control to the event loop now and then during long walks; none in tests.
  std::function<void()> yield;
  // The message line of the window in charge, where reading a file shows its progress.
  std::function<void(const std::string&)> editMsgLine;

private:
  // Blocks walked between two looks at the clock.
  static constexpr size_t YieldBlocks = 4096;
  // Holes that the check for holes standing inside one another looks at, at most.
  static constexpr size_t SampledHoles = 4096;

  // A length in the format's unit, in store units, not rounded.
  double fileLength(const std::string& field) const;
  // A coordinate field in store units: with a point by its value in the format's unit, without
  // by the decoder.
  double coordinate(const std::string& field) const;
  // The header between "M48" and its end; true when it names the unit.
  bool readHeader(const std::string& text);
  bool applyStatedFormat(const std::string& text, std::string_view comments);
  // Whether the holes under the format as it stands fit a board: none metres away or apart, and
  // few with their centre inside a larger hole.
  bool plausible(const std::string& text) const;
  // Diameters for tools without one: from the comments, or from the program before an "M30".
  void completeToolSizes(std::vector<ToolEntry>& tools, std::string_view comments) const;

  // The last text and format ApplyStatedFormat was asked about, and its answer.
  struct StatedMemo {
    size_t textHash = 0;
    size_t commentsHash = 0;
    ExcellonFormat format;
    bool operator==(const StatedMemo&) const = default;
  };
  struct StatedAnswer {
    StatedMemo asked;
    ExcellonFormat format;
    bool unitLineAhead = false;
  };
  std::optional<StatedAnswer> memo_;

  Store& store_;
  const SystemServices& services_;
  const StatusReporter& reporter_;
  ExcellonFormat& format_;
  FileExtents& extents_;
};

}  // namespace tvx
