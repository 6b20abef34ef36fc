// Two viewers started at once on one work folder, each on a board of its own: each shows the
// board it was given, as it shows it alone, and neither leaves its folder behind.
#include "HostDriver.h"
#include "support/CorpusPath.h"

namespace {

class WorkFolderRoad : public test::HostDriver {
protected:
  void startOn(QProcess& process, const QString& board) {
    process.setProcessEnvironment(environment);
    process.start(test::binary("tarvex-gbrviewer"), {"--layer", "3", board});
    ASSERT_TRUE(process.waitForStarted(10000));
  }
  // The message line once the import is over, and what layer 3 holds.
  QString shown(QProcess& process, QString& heard) {
    talkTo(&process, &heard);
    QString message;
    test::waitUntil([&] { return (message = messageLine()).endsWith("Import successful"); }, 60000);
    const test::LayerFacts facts = layer(3);
    talkTo();
    return message + QString(" | %1 items, %2,%3 .. %4,%5, widest %6")
                         .arg(facts.items)
                         .arg(facts.minX)
                         .arg(facts.minY)
                         .arg(facts.maxX)
                         .arg(facts.maxY)
                         .arg(facts.widest);
  }
  QStringList workFolders() const {
    return QDir(home.filePath("cache/tarvex")).entryList({"viewer-*"}, QDir::Dirs);
  }
};

TEST_F(WorkFolderRoad, TwoViewersStartedAtOnceShowEachItsOwnBoard) {
  const std::string corpusPath = tvx::test::corpusDir();
  if (corpusPath.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const QDir corpus(QString::fromStdString(corpusPath));
  const QString boards[2] = {
      corpus.filePath("gerbv/hellboard/hellboard.front.gbr"),
      corpus.filePath("pygerber/A64-OLinuXino-rev-G/A64-OlinuXino_Rev_G-F_Cu.gbr")};
  QString alone[2];
  for (int i = 0; i < 2; ++i) {
    startOn(host, boards[i]);
    alone[i] = shown(host, output);
    stop();
    output.clear();
  }
  ASSERT_NE(alone[0], alone[1]);

  QProcess other;
  QString otherOutput;
  startOn(host, boards[0]);
  startOn(other, boards[1]);
  EXPECT_EQ(shown(host, output), alone[0]);
  EXPECT_EQ(shown(other, otherOutput), alone[1]);
  EXPECT_EQ(workFolders().size(), 2);

  stop();
  other.write("All,EX\n");
  EXPECT_TRUE(other.waitForFinished(10000));
  EXPECT_EQ(workFolders(), QStringList()) << "a viewer left its work folder";
}

}  // namespace
