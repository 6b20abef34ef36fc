// "gbrview reconstruct" on real boards: the demo board's categories, counted exactly, and pairs
// of copper and drill files from the corpus, where every plated hole must find its pad.
#include "support/CliProcess.h"
#include "support/CorpusPath.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

QJsonObject reportOf(const test::ProcessRun& run) {
  return QJsonDocument::fromJson(QByteArray::fromStdString(run.out)).object();
}

QString sample(const char* name) { return QStringLiteral(TVX_SOURCE_DIR "/samples/") + name; }

class ReconstructCommandTest : public test::GbrviewTest {};

TEST_F(ReconstructCommandTest, TheDemoBoardSortsIntoItsCategories) {
  const test::ProcessRun run = test::runGbrview({"reconstruct",
                                                 "--json",
                                                 "--via",
                                                 "D30",
                                                 "--layer",
                                                 "3",
                                                 sample("demo-top.gbr"),
                                                 "--layer",
                                                 "4",
                                                 sample("demo-bottom.gbr"),
                                                 "--layer",
                                                 "1",
                                                 sample("demo-silk-top.gbr"),
                                                 "--layer",
                                                 "2",
                                                 sample("demo-mask-top.gbr"),
                                                 "--layer",
                                                 "30",
                                                 sample("demo-outline.gbr"),
                                                 "--layer",
                                                 "31",
                                                 sample("demo.drl")});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const QJsonObject report = reportOf(run);
  const QJsonObject categories = report["categories"].toObject();
  EXPECT_EQ(categories["Thrupads Positions"].toInt(), 22);
  EXPECT_EQ(categories["Via Positions"].toInt(), 3);
  EXPECT_EQ(categories["SMD Pads Positions Comp.Side"].toInt(), 2);
  EXPECT_EQ(categories["SMD Pads Positions Solder Side"].toInt(), 0);
  // The outline's four sides and four corners, the pours' outlines, the tracks, the silkscreen.
  EXPECT_EQ(categories["Board Outline"].toInt(), 8);
  EXPECT_GT(categories["Copper Planes Master"].toInt(), 0);
  EXPECT_GT(categories["Trace Master"].toInt(), 0);
  EXPECT_GT(categories["Silkscreen Comp.Side"].toInt(), 0);
  EXPECT_EQ(report["holes"].toObject()["matched"].toInt(), 25);
  EXPECT_EQ(report["viaCode"].toInt(), 30);
}

TEST_F(ReconstructCommandTest, NothingToSortIsAFailure) {
  const test::ProcessRun run =
      test::runGbrview({"reconstruct", "--layer", "31", sample("demo.drl")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("Nothing to import"), std::string::npos) << run.err;
  EXPECT_TRUE(run.out.empty());
}

TEST_F(ReconstructCommandTest, EveryPlatedHoleOfARealBoardFindsItsPad) {
  const std::string corpus = tvx::test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus";
  const std::pair<const char*, const char*> pairs[] = {
      {"gerbv/hellboard/hellboard.front.gbr", "gerbv/hellboard/hellboard.plated-drill.cnc"},
      {"gerbv/protel-pnp/SE_SG_IF_V2.GTL", "gerbv/protel-pnp/SE_SG_IF_V2.TXT"},
      {"pygerber/A64-OLinuXino-rev-G/A64-OlinuXino_Rev_G-F_Cu.gbr",
       "pygerber/A64-OLinuXino-rev-G/A64-OlinuXino_Rev_G-PTH.drl"},
  };
  for (const auto& [copper, drill] : pairs) {
    SCOPED_TRACE(copper);
    const QString root = QString::fromStdString(corpus) + "/";
    const test::ProcessRun run = test::runGbrview(
        {"reconstruct", "--json", "--layer", "3", root + copper, "--layer", "31", root + drill});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const QJsonObject holes = reportOf(run)["holes"].toObject();
    EXPECT_GT(holes["total"].toInt(), 300);
    EXPECT_EQ(holes["withoutPad"].toInt(), 0);
  }
}

}  // namespace
