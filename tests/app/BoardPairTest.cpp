// Board pairs: every row of the corpus's boards/HOLES.tsv names the drill file and the top copper
// of one board. Both are rendered alone by "gbrview render --mono" into the same window (the
// copper's extents and a margin), so that their pixels line up. The holes are the lit components
// of the drill picture; the share of hole centres on lit copper is printed per pair and must reach
// 0.99, or the minimum of data/board-pair-exceptions.tsv for boards with holes that have no
// copper. The holes found must also reach 90% of the count an independent viewer found, or of the
// drill file's own count where that file gives one, so that a reader that drops holes does not
// pass by keeping only the good ones. Pairs whose drill file is misread fail here.
// TVX_CORPUS_DIR chooses the corpus (support/CorpusPath.h).
#include "support/CliProcess.h"
#include "support/CorpusPath.h"
#include "support/LitPicture.h"
#include "support/TabTable.h"

#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace {

constexpr double DefaultMinShare = 0.99;
constexpr double MinHoleShareOfExpected = 0.9;
constexpr double MarginMm = 2.0;
// Above this the row's dpi is lowered: the pair's two pictures stay quick to draw, write and scan.
constexpr double MaxPixels = 12e6;
constexpr int TimeoutMs = 60000;

using tvx::test::LitPicture;

// Lit is any pixel that is not the black background: in mono the copper is white, but the drill
// layer keeps its own colour, which is not white.
LitPicture litPictureOf(const QImage& image) {
  return tvx::test::litPictureOf(image, tvx::test::notBlack);
}

// One lit component: its centroid in pixels (pixel (x, y) covers x .. x + 1) and its size.
struct Hole {
  double x = 0;
  double y = 0;
  int64_t pixels = 0;
  // Copper lit on one of its pixels or right beside one: a pad flashed as a ring whose hole is
  // as wide as the drill leaves the centre dark but meets the hole's edge.
  bool touchesCopper = false;
};

// The 8-connected lit components of a picture, in the order of their first pixel row by row. A
// slot, routed or drilled, is one component and its centre the centroid of its pixels.
std::vector<Hole> holesOf(const LitPicture& picture, const LitPicture* copper = nullptr) {
  std::vector<Hole> holes;
  std::vector<uint8_t> seen(picture.lit.size());
  std::vector<std::pair<int, int>> pending;
  for (int y0 = 0; y0 < picture.height; ++y0)
    for (int x0 = 0; x0 < picture.width; ++x0) {
      const size_t start = size_t(y0) * size_t(picture.width) + size_t(x0);
      if (!picture.lit[start] || seen[start])
        continue;
      seen[start] = 1;
      pending.assign(1, {x0, y0});
      double sumX = 0, sumY = 0;
      int64_t count = 0;
      bool touches = false;
      while (!pending.empty()) {
        const auto [x, y] = pending.back();
        pending.pop_back();
        sumX += x + 0.5;
        sumY += y + 0.5;
        ++count;
        for (int dy = -1; dy <= 1; ++dy)
          for (int dx = -1; dx <= 1; ++dx) {
            if (copper && copper->at(x + dx, y + dy))
              touches = true;
            if (!picture.at(x + dx, y + dy))
              continue;
            const size_t i = size_t(y + dy) * size_t(picture.width) + size_t(x + dx);
            if (!seen[i]) {
              seen[i] = 1;
              pending.push_back({x + dx, y + dy});
            }
          }
      }
      holes.push_back({sumX / double(count), sumY / double(count), count, touches});
    }
  return holes;
}

// Whether copper is lit at a point given in pixels, or in one of the 8 pixels round the one that
// holds it. The centroid of a hole with an even count of pixels across lies on a pixel edge, and
// the two pictures round their edges each on their own, so the pixel that holds the centre may
// be the last dark one beside a lit pad edge; one pixel is well below any hole's radius at these
// resolutions, so a hole cut clear of the copper still finds none.
bool copperAround(const LitPicture& copper, double x, double y) {
  const int px = int(std::floor(x)), py = int(std::floor(y));
  for (int dy = -1; dy <= 1; ++dy)
    for (int dx = -1; dx <= 1; ++dx)
      if (copper.at(px + dx, py + dy))
        return true;
  return false;
}

int64_t holesOnCopper(const std::vector<Hole>& holes, const LitPicture& copper) {
  return std::count_if(holes.begin(), holes.end(), [&](const Hole& h) {
    return h.touchesCopper || copperAround(copper, h.x, h.y);
  });
}

// The dpi for a window: the row's, lowered when the picture would hold more than MaxPixels.
double renderDpi(double rowDpi, double widthMm, double heightMm) {
  const double limit = std::floor(25.4 * std::sqrt(MaxPixels / (widthMm * heightMm)));
  return std::min(rowDpi, limit);
}

// What a pair must reach; the defaults, or a row of the exceptions file.
struct Demand {
  double minShare = DefaultMinShare;
  // The holes the drill file holds by its own text, when the independent count is missing or
  // wrong; 90% of the one that applies must be found.
  std::optional<int64_t> fileHoles;
  std::string reason;
};

// The faults of a pair's figures, one text each; none when it passes.
std::vector<std::string> faultsOf(int64_t holes, int64_t onCopper,
                                  std::optional<int64_t> independentHoles, const Demand& demand) {
  std::vector<std::string> faults;
  if (holes == 0) {
    faults.push_back("no hole in the drill picture");
    return faults;
  }
  const double share = double(onCopper) / double(holes);
  if (share < demand.minShare) {
    char text[120];
    std::snprintf(text, sizeof text, "%.4f of the holes on copper, below %.4f", share,
                  demand.minShare);
    faults.push_back(text);
  }
  const std::optional<int64_t> expected = demand.fileHoles ? demand.fileHoles : independentHoles;
  if (expected && *expected > 0) {
    // The small subtraction keeps 90% of 100 at 90 whatever the rounding of the product.
    const auto minHoles = int64_t(std::ceil(MinHoleShareOfExpected * double(*expected) - 1e-9));
    if (holes < minHoles)
      faults.push_back(std::to_string(holes) + " holes, fewer than " + std::to_string(minHoles) +
                       " (90% of " + std::to_string(*expected) + ")");
  }
  return faults;
}

// --- The measure, on pictures made here ---------------------------------------------------------

// A picture from rows of text: '#' lit, anything else dark.
LitPicture pictureOf(const std::vector<std::string>& rows) {
  LitPicture picture{rows.empty() ? 0 : int(rows[0].size()), int(rows.size()), {}};
  for (const std::string& row : rows)
    for (char c : row)
      picture.lit.push_back(c == '#' ? 1 : 0);
  return picture;
}

TEST(BoardPairMeasure, HolesAreEightConnectedComponentsCentredOnTheirCentroid) {
  struct Case {
    const char* name;
    std::vector<std::string> rows;
    std::vector<Hole> holes;
  } cases[] = {
      {"nothing lit", {"....", "...."}, {}},
      {"two squares apart", {"##....", "##..##", "....##"}, {{1.0, 1.0, 4}, {5.0, 2.0, 4}}},
      {"touching at a corner only is one component", {"#...", ".#..", "..#."}, {{1.5, 1.5, 3}}},
      {"side by side on a row, one gap between", {"#.#"}, {{0.5, 0.5, 1}, {2.5, 0.5, 1}}},
      {"a slot with a bend is one component",
       {"#####.", "....#.", "....#."},
       {{(0.5 + 1.5 + 2.5 + 3.5 + 4.5 * 3) / 7, (0.5 * 5 + 1.5 + 2.5) / 7, 7}}},
      {"a ring is one component centred in its middle", {"###", "#.#", "###"}, {{1.5, 1.5, 8}}},
      {"a component on the picture's edges", {"...#", "...#"}, {{3.5, 1.0, 2}}},
      {"a U shape whose arms join only at the bottom",
       {"#.#", "#.#", "###"},
       {{1.5, (0.5 * 2 + 1.5 * 2 + 2.5 * 3) / 7, 7}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::vector<Hole> found = holesOf(pictureOf(c.rows));
    ASSERT_EQ(found.size(), c.holes.size());
    for (size_t i = 0; i < found.size(); ++i) {
      EXPECT_DOUBLE_EQ(found[i].x, c.holes[i].x) << "hole " << i;
      EXPECT_DOUBLE_EQ(found[i].y, c.holes[i].y) << "hole " << i;
      EXPECT_EQ(found[i].pixels, c.holes[i].pixels) << "hole " << i;
    }
  }
}

TEST(BoardPairMeasure, AHoleInARingPadTouchesItsCopper) {
  // A ring pad whose hole is as wide as the drill, a hole in it, and a hole in a clearance.
  const LitPicture copper =
      pictureOf({"#####.......", "#...#.......", "#...#.......", "#...#.......", "#####......."});
  const LitPicture drill =
      pictureOf({"............", ".###........", ".###......#.", ".###........", "............"});
  const std::vector<Hole> holes = holesOf(drill, &copper);
  ASSERT_EQ(holes.size(), 2u);
  EXPECT_TRUE(holes[0].touchesCopper);
  EXPECT_FALSE(holes[1].touchesCopper);
  EXPECT_EQ(holesOnCopper(holes, copper), 1);
}

// --- The corpus ---------------------------------------------------------------------------------

struct PairRow {
  std::string copper;  // empty for the row that says the corpus is missing
  std::string drill;
  double dpi = 0;
  std::optional<int64_t> independentHoles;
  std::string testName;
};

void PrintTo(const PairRow& row, std::ostream* out) { *out << row.drill; }

using tvx::test::splitTabs;
using tvx::test::uniqueTestName;

std::string fileName(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

// The rows of boards/HOLES.tsv, or one row without files when there is no table.
std::vector<PairRow> pairRows() {
  std::vector<PairRow> rows;
  const std::string corpus = tvx::test::corpusDir();
  std::ifstream in(corpus.empty() ? std::string() : corpus + "/boards/HOLES.tsv");
  std::string line;
  std::map<std::string, size_t> columns;
  size_t independentHolesColumn = std::string::npos;
  if (in && std::getline(in, line)) {
    const std::vector<std::string> header = splitTabs(line);
    for (size_t i = 0; i < header.size(); ++i) {
      columns[header[i]] = i;
      // The table names the independent reading's columns after that viewer; its hole count is
      // the "holes_" column that is not ours.
      if (header[i].rfind("holes_", 0) == 0 && header[i] != "holes_ours")
        independentHolesColumn = i;
    }
  }
  const auto field = [](const std::vector<std::string>& f, size_t column) {
    return column < f.size() ? f[column] : std::string();
  };
  const auto named = [&](const std::vector<std::string>& f, const char* name) {
    const auto it = columns.find(name);
    return it == columns.end() ? std::string() : field(f, it->second);
  };
  std::map<std::string, int> namesUsed;
  while (in && std::getline(in, line)) {
    const std::vector<std::string> f = splitTabs(line);
    PairRow row;
    row.copper = named(f, "copper");
    row.drill = named(f, "drill");
    if (row.copper.empty() || row.drill.empty())
      continue;
    row.dpi = std::atof(named(f, "dpi").c_str());
    if (const std::string count = field(f, independentHolesColumn); !count.empty())
      row.independentHoles = std::atoll(count.c_str());
    row.testName = uniqueTestName(row.drill, namesUsed);
    rows.push_back(row);
  }
  if (rows.empty())
    rows.push_back(PairRow{"", "", 0, std::nullopt, "NoCorpus"});
  return rows;
}

// Drill file name (without folders) -> what the pair must reach, from
// data/board-pair-exceptions.tsv.
std::map<std::string, Demand> exceptions() {
  std::map<std::string, Demand> out;
  std::ifstream in(TVX_SOURCE_DIR "/tests/app/data/board-pair-exceptions.tsv");
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#')
      continue;
    const std::vector<std::string> f = splitTabs(line);
    if (f.size() < 4 || f[0] == "drill")
      continue;
    Demand demand;
    if (f[1] != "-")
      demand.minShare = std::atof(f[1].c_str());
    if (f[2] != "-")
      demand.fileHoles = std::atoll(f[2].c_str());
    demand.reason = f[3];
    out[f[0]] = demand;
  }
  return out;
}

TEST(BoardPairExceptions, NameDrillFilesOfTheTableWithTheirFigures) {
  const std::map<std::string, Demand> listed = exceptions();
  ASSERT_FALSE(listed.empty()) << "data/board-pair-exceptions.tsv is missing or empty";
  const std::vector<PairRow> rows = pairRows();
  if (rows.front().copper.empty())
    GTEST_SKIP() << "the corpus is absent or has no boards/HOLES.tsv";
  for (const auto& [drill, demand] : listed) {
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(),
                            [&](const PairRow& row) { return fileName(row.drill) == drill; }))
        << drill << " is not a drill file of boards/HOLES.tsv";
    EXPECT_TRUE(demand.minShare >= 0 && demand.minShare <= 1) << drill;
    EXPECT_TRUE(demand.minShare < DefaultMinShare || demand.fileHoles) << drill << " asks nothing";
    EXPECT_FALSE(demand.reason.empty()) << drill;
  }
}

class BoardPairTest : public ::testing::TestWithParam<PairRow> {};

TEST_P(BoardPairTest, DrillHolesLandOnTheCopper) {
  const PairRow& row = GetParam();
  if (row.copper.empty())
    GTEST_SKIP() << "the corpus is absent or has no boards/HOLES.tsv";
  const std::string corpus = tvx::test::corpusDir();
  const QString copperFile = QString::fromStdString(corpus + "/" + row.copper);
  const QString drillFile = QString::fromStdString(corpus + "/" + row.drill);
  if (!QFileInfo::exists(copperFile) || !QFileInfo::exists(drillFile))
    GTEST_SKIP() << "the corpus lacks " << row.copper << " or " << row.drill;
  ASSERT_TRUE(QFileInfo(test::binary("gbrview")).isExecutable()) << "build the target gbrview";
  ASSERT_GT(row.dpi, 0) << "the row gives no dpi";

  const std::map<std::string, Demand> listed = exceptions();
  const auto exception = listed.find(fileName(row.drill));
  const Demand demand = exception != listed.end() ? exception->second : Demand{};

  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  const test::ProcessRun info =
      test::runGbrview({"info", "--json", copperFile}, folder.path(), TimeoutMs);
  ASSERT_EQ(info.exitCode, 0) << row.copper << ": " << info.err;
  const QJsonObject extents = QJsonDocument::fromJson(QByteArray::fromStdString(info.out))
                                  .object()["gerber"]
                                  .toObject()["extentsMm"]
                                  .toObject();
  ASSERT_FALSE(extents.isEmpty()) << row.copper << " is not read as a Gerber file with extents";
  const double x0 = extents["minX"].toDouble() - MarginMm;
  const double y0 = extents["minY"].toDouble() - MarginMm;
  const double x1 = extents["maxX"].toDouble() + MarginMm;
  const double y1 = extents["maxY"].toDouble() + MarginMm;
  const double dpi = renderDpi(row.dpi, x1 - x0, y1 - y0);
  const QString window = QStringList{QString::number(x0, 'f', 4), QString::number(y0, 'f', 4),
                                     QString::number(x1, 'f', 4), QString::number(y1, 'f', 4)}
                             .join(',');

  // Both files into the same window at the same dpi: the same grid of pixels.
  const auto render = [&](const QString& file, const QString& png) {
    const test::ProcessRun run = test::runGbrview(
        {"render", "--mono", "--dpi", QString::number(dpi), "--window", window, "-o", png, file},
        folder.path(), TimeoutMs);
    EXPECT_EQ(run.exitCode, 0) << file.toStdString() << ": " << run.err;
    return QImage(png);
  };
  const QImage copperImage = render(copperFile, folder.filePath("copper.png"));
  const QImage drillImage = render(drillFile, folder.filePath("drill.png"));
  ASSERT_FALSE(copperImage.isNull()) << "no picture of " << row.copper;
  ASSERT_FALSE(drillImage.isNull()) << "no picture of " << row.drill;
  ASSERT_EQ(copperImage.size(), drillImage.size());

  const LitPicture copperPicture = litPictureOf(copperImage);
  const std::vector<Hole> holes = holesOf(litPictureOf(drillImage), &copperPicture);
  const int64_t onCopper = holesOnCopper(holes, copperPicture);
  const double share = holes.empty() ? 0.0 : double(onCopper) / double(holes.size());
  std::printf("board pair %s: %zu holes, %.2f%% on copper (%g dpi)%s\n",
              fileName(row.drill).c_str(), holes.size(), 100.0 * share, dpi,
              exception != listed.end() ? " [listed]" : "");
  RecordProperty("holes", std::to_string(holes.size()));
  RecordProperty("share_on_copper", std::to_string(share));
  const std::vector<std::string> faults =
      faultsOf(int64_t(holes.size()), onCopper, row.independentHoles, demand);
  if (faults.empty())
    return;
  // Where the first holes off copper lie, in millimetres, to look at them by hand.
  std::string offCopper;
  int listedOff = 0;
  for (const Hole& h : holes)
    if (!h.touchesCopper && !copperAround(copperPicture, h.x, h.y) && listedOff++ < 8) {
      char text[64];
      std::snprintf(text, sizeof text, " (%.2f, %.2f)", x0 + h.x * 25.4 / dpi,
                    y1 - h.y * 25.4 / dpi);
      offCopper += text;
    }
  for (const std::string& fault : faults)
    ADD_FAILURE() << row.drill << ": " << fault
                  << (demand.reason.empty() ? "" : " (listed: " + demand.reason + ")")
                  << (offCopper.empty() ? "" : "; off copper, mm:" + offCopper);
}

INSTANTIATE_TEST_SUITE_P(Corpus, BoardPairTest, ::testing::ValuesIn(pairRows()),
                         [](const ::testing::TestParamInfo<PairRow>& testInfo) {
                           return testInfo.param.testName;
                         });

}  // namespace
