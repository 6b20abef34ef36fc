// The status codes that ReportStatus turns into messages. A status word holds one of these at the
// place of detection and 1 after it has been reported.
#pragma once

#include <cstdint>

namespace tvx {

enum StatusCode : int32_t {
  StatusOk = 0,
  StatusReported = 1,          // reported already; also "Range Error - format:" when reported
  StatusIncorrectFormat = 8,   // "Artwork File - Incorrect format"
  StatusNoVectorFont = 22,     // "Can't load local vector font, default assumed."
  StatusCannotLoad = 85,       // "Can't load " + name
  StatusSaveFailed = 86,       // "Save of " + name + " failed"
  StatusOutsideLimits = 88,    // "Coordinates outside limits", check the Gerber parameters
  StatusApertureMissing = 90,  // name + " aperture not found in the list during import."
  StatusExtents = 92,          // "Coordinates outside limits", check the parameters for name
  StatusNotSupported = 93,     // "import of files in this format is not supported"
  StatusNotFormatTwo = 94,     // name + " - this is not Format 2 File."
  StatusPolygonTooComplex = 104,
  StatusPathNotClosed = 105,
  StatusNoLayers = 200,            // name + " No available layers"
  StatusNoData = 201,              // "No data to output"
  StatusCompleted = 300,           // name + " Completed"
  StatusNoAperture = 400,          // name + " No aperture defined for selected item"
  StatusExtentsTruncated = 414,    // "Drawing extents are out of range."
  StatusBinaryDxf = 415,           // name + " - binary DXF can't be read", save it as ASCII DXF
  StatusFarElementsLeftOut = 416,  // count + " elements ... were left out"
  StatusBadStepping = 2000,
  StatusNoRotationPoints = 2001,
  StatusOutOfRange = 2002,
  StatusNothingToImport = 3000,
  StatusEmptyFile = 3001,  // name + " - the file is empty"
};

}  // namespace tvx
