// The table part of TMP.ART: the header records and the four aperture sections behind the drawing
// stream, written at the end of the text pass and read back (or rewritten with edited sizes) when
// the file is imported.
#pragma once

#include "import/gerber/ArtFile.h"
#include "import/gerber/ArtStream.h"
#include "import/gerber/GerberScan.h"

#include <cstdint>
#include <vector>

namespace tvx {

class StatusReporter;

// The section of one list (0 DrawList, 1 RoundPadList, 2 SquarePadList, 3 SpecialList with its
// primitive rows and macro names): one record per used aperture, closed by its end record.
std::vector<ArtRecord> sectionRecords(const ApertureLists& lists, int which);

// Appends the section of one list to the stream; recordNumber becomes the number of its first
// record. status is 1 when the write failed (the writer keeps the failure).
void WriteSections(int32_t& status, int which, ArtWriter& out, const ApertureLists& lists,
                   int32_t& recordNumber);

// Reads the section of one list from record number first on into the lists. Rows are read as long
// as their type is the section's; the primitive rows of section 40 are appended to PrimitiveList
// anew and each special row's Size names its new first row.
void ReadSections(int32_t& status, ArtFile& art, int which, int32_t first, ApertureLists& lists);

// Reads records 1 to 5 into the header. Without writeBack it then empties the lists and reads the
// sections 10, 20, 30 and (when it has a record number) 40; with writeBack it writes the four
// sections from the lists at those record numbers, so that edited sizes reach the file. Failures
// are reported here (the file's format, or its write) and leave status 1.
void LoadArtHeader(int32_t& status, ArtFile& art, bool writeBack, GerberScan& scan,
                   const StatusReporter& reporter);

}  // namespace tvx
