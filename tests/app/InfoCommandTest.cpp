// "gbrview info" as the user runs it: the report on stdout, the same on every run, and exit 1 with
// the file's name on stderr when the file cannot be read.
#include "support/CliProcess.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

test::ProcessRun info(const QStringList& arguments) {
  return test::runGbrview(QStringList{"info"} + arguments);
}

class InfoCommandTest : public test::GbrviewTest {};

TEST_F(InfoCommandTest, ADrillFileIsReportedAsTextAndAsJson) {
  const QString path = write("plated.cnc", "M48\r\nINCH,TZ\r\nT1C0.02\r\n%\r\nT1\r\nX1000Y1000\r\n"
                                           "X3000Y1000\r\nM30\r\n");
  const test::ProcessRun text = info({path});
  EXPECT_EQ(text.exitCode, 0);
  EXPECT_EQ(text.err, "");
  for (const std::string& line :
       {"file: " + path.toStdString() + "\n",
        std::string("  T1  0.50800 mm  0.020000 in  2 holes\n"),
        std::string("extents mm: x 2.54000 .. 7.62000, y 2.54000 .. 2.54000\n")})
    EXPECT_NE(text.out.find(line), std::string::npos) << line << "in\n" << text.out;
  EXPECT_EQ(info({path}).out, text.out);  // deterministic

  const test::ProcessRun json = info({"--json", path});
  EXPECT_EQ(json.exitCode, 0);
  const QJsonObject report = QJsonDocument::fromJson(QByteArray::fromStdString(json.out)).object();
  EXPECT_EQ(report["kind"].toInt(), 3);
  EXPECT_EQ(report["excellon"].toObject()["import"].toObject()["pads"].toInt(), 2);
  EXPECT_EQ(info({path, "--json"}).out, json.out);
}

TEST_F(InfoCommandTest, AFileThatCannotBeReadExitsWithOneAndNamesIt) {
  for (const QString& path : {folder.filePath("missing.drl"), folder.path()}) {
    SCOPED_TRACE(path.toStdString());
    const test::ProcessRun run = info({path});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find(path.toStdString()), std::string::npos) << run.err;
  }
}

}  // namespace
