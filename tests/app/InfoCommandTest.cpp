// "gbrview info" as the user runs it: the report on stdout, as text or JSON. Its failures as a
// process are checked beside render's (RenderCommandTest).
#include "app/cli/FileInfo.h"
#include "support/CliProcess.h"

#include <gtest/gtest.h>

namespace {

test::ProcessRun info(const QStringList& arguments) {
  return test::runGbrview(QStringList{"info"} + arguments);
}

class InfoCommandTest : public test::GbrviewTest {};

// The report's content is the file information's own tests; here: what reaches stdout.
TEST_F(InfoCommandTest, ADrillFileIsReportedAsTextAndAsJson) {
  const QString path = write("plated.cnc", "M48\r\nINCH,TZ\r\nT1C0.02\r\n%\r\nT1\r\nX1000Y1000\r\n"
                                           "X3000Y1000\r\nM30\r\n");
  const tvx::FileInfo facts = tvx::gatherFileInfo(path.toStdString());
  for (const auto& [arguments, report] :
       {std::pair(QStringList{path}, tvx::fileInfoText(facts)),
        {QStringList{"--json", path}, tvx::fileInfoJson(facts)},
        {QStringList{path, "--json"}, tvx::fileInfoJson(facts)}}) {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    const test::ProcessRun run = info(arguments);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, report);
  }
  EXPECT_NE(tvx::fileInfoText(facts).find("  T1  0.50800 mm  0.020000 in  2 holes\n"),
            std::string::npos);
}

}  // namespace
