#include "import/core/ReportStatus.h"

#include "import/core/ImportJob.h"
#include "import/core/StatusCodes.h"
#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>

namespace tvx {
namespace {

constexpr int Ex = msgbox::Exclamation;
constexpr int Cr = msgbox::Critical;

struct StatusCase {
  int32_t status;
  int icon;
  const char* defaults;  // the text with an empty catalogue
  const char* byId;      // the text when every id's entry reads "<id>"
};

// Name is "F.GBR" and the format 3.4 throughout.
const StatusCase Cases[] = {
    {StatusReported, Cr, "Range Error - format:3.4", "<62379>3.4"},
    {StatusIncorrectFormat, Ex, "Artwork File - Incorrect format", "<62380>"},
    {StatusNoVectorFont, Ex, "Can't load local vector font, default assumed.F.GBR", "<62381>F.GBR"},
    {StatusCannotLoad, Ex, "Can't load F.GBR", "<62382>F.GBR"},
    {StatusSaveFailed, Ex, "Save of F.GBR failed", "<62383>F.GBR<62384>"},
    {StatusOutsideLimits, 0,
     "Coordinates outside limits\r\nCheck parameters for GERBER file and import again.",
     "<62385>\r\n<62386>"},
    {StatusApertureMissing, 0,
     "F.GBR aperture not found in the list during import.\r\nSelect proper Aperture Table and "
     "import again.",
     "F.GBR<62387>\r\n<62388>"},
    {StatusExtents, 0,
     "Coordinates outside limits\r\nCheck parameters for F.GBR file and import again.",
     "<62385>\r\n<62389>F.GBR <62390>"},
    {StatusNotSupported, Ex, "F.GBR - import of files in this format is not supported",
     "F.GBR - <62391>"},
    {StatusNotFormatTwo, Ex,
     "F.GBR - this is not Format 2 File.\r\nFormat parameters and/or tools sizes might need "
     "adjustment for correct import",
     "F.GBR - <62392>\r\n<62393>"},
    {StatusPolygonTooComplex, Ex, "Polygon to complex F.GBR", "<62395>F.GBR"},
    {StatusPathNotClosed, Ex, "This path is not a closed shapeF.GBR", "<62396>F.GBR"},
    {StatusNoLayers, Ex, "F.GBR No available layers", "F.GBR <62397>"},
    {StatusNoData, Ex, "No data to output", "<62398>"},
    {StatusCompleted, 0, "F.GBR Completed", "F.GBR <62399>"},
    {StatusNoAperture, Ex, "F.GBR No aperture defined for selected item", "F.GBR <4953>"},
    // Both texts of StatusExtentsTruncated stand under the id "loc", which no catalogue holds.
    {StatusExtentsTruncated, Ex,
     "Drawing extents are out of range.\r\nF.GBR\r\nImport may be truncated into supported range.",
     "Drawing extents are out of range.\r\nF.GBR\r\nImport may be truncated into supported range."},
    {StatusBadStepping, Ex, "Incorrect stepping parametersF.GBR", "<62400>F.GBR"},
    {StatusNoRotationPoints, Ex, "Set Point(s) to define rotation.", "<62401>"},
    {StatusOutOfRange, Ex, "Out of RangeF.GBR", "<62402>F.GBR"},
    {StatusNothingToImport, Ex, "Nothing to importF.GBR", "<151219>F.GBR"},
    {StatusOk, Cr, "Unknown Error", "<62403>"},
    {95, Cr, "Unknown Error", "<62403>"},
    {-1, Cr, "Unknown Error", "<62403>"},
};

// A catalogue in which every id used by the status table reads as itself in angle brackets.
void writeMarkerCatalogue(const std::string& folder) {
  std::ofstream out(folder + "/GBRVIEWER.MSG");
  std::regex idPattern("<([0-9]+)>");
  for (const StatusCase& c : Cases) {
    std::string text = c.byId;
    for (std::sregex_iterator it(text.begin(), text.end(), idPattern), end; it != end; ++it)
      out << (*it)[1] << "\t<" << (*it)[1] << ">\n";
  }
}

TEST(ReportStatusTest, EveryCodeHasItsTextAndIcon) {
  test::Reporting r;
  r.digits = {3, 4};
  for (const StatusCase& c : Cases) {
    SCOPED_TRACE(c.status);
    StatusMessage m = statusMessage(r.services, c.status, "F.GBR", r.digits);
    EXPECT_EQ(m.text, c.defaults);
    EXPECT_EQ(m.icon, c.icon);
  }
  test::TempDir dir;
  writeMarkerCatalogue(dir.path().string());
  r.services.loadCatalogue(dir.path().string());
  for (const StatusCase& c : Cases) {
    SCOPED_TRACE(c.status);
    EXPECT_EQ(statusMessage(r.services, c.status, "F.GBR", r.digits).text, c.byId);
  }
}

TEST(ReportStatusTest, BoxIsSystemModalWithBothTitles) {
  test::Reporting r;
  r.titles.dialogTitle = "Import Parameters";
  r.digits = {2, 5};
  r.reporter.ReportStatus(StatusReported, "");
  r.titles.dialogTitle.clear();
  r.reporter.ReportStatus(StatusCompleted, "Layer 3");
  r.reporter.ReportStatus(StatusIncorrectFormat, "");
  ASSERT_EQ(r.prompts.shown.size(), 3u);
  EXPECT_EQ(r.prompts.shown[0].prompt, "Range Error - format:2.5");
  EXPECT_EQ(r.prompts.shown[0].flags, msgbox::Critical | msgbox::SystemModal);
  EXPECT_EQ(r.prompts.shown[0].title, "Tarvex Viewer (Import Parameters)");
  EXPECT_EQ(r.prompts.shown[1].flags, msgbox::SystemModal);
  EXPECT_EQ(r.prompts.shown[1].title, "Tarvex Viewer");
  EXPECT_EQ(r.prompts.shown[2].flags, msgbox::Exclamation | msgbox::SystemModal);
}

TEST(ImportKindTest, EveryKindHasItsOwnCatalogueTextAndOthersAreUnknown) {
  std::set<std::string_view> ids, texts;
  for (int32_t k = 1; k <= 8; ++k) {
    const CatalogueText t = importKindText(static_cast<ImportKind>(k));
    EXPECT_FALSE(t.id.empty()) << k;
    EXPECT_TRUE(ids.insert(t.id).second && texts.insert(t.text).second) << k;
  }
  const auto text = [](int32_t k) {
    const CatalogueText t = importKindText(static_cast<ImportKind>(k));
    return std::pair(std::string(t.id), std::string(t.text));
  };
  EXPECT_EQ(text(7), std::pair(std::string("62375"), std::string("HPGL Format file")));
  for (int32_t k : {0, 9})
    EXPECT_EQ(text(k), std::pair(std::string(), std::string("unknown file"))) << k;
}

}  // namespace
}  // namespace tvx
