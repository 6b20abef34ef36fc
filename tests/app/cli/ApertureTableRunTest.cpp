// A plain RS-274-D file of the corpus takes its sizes from an aperture table written from the
// aperture list that came with it.
#include "app/cli/CliApertureTable.h"
#include "app/cli/FileInfo.h"
#include "support/CorpusPath.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

namespace tvx {
namespace {

// The size in store units of each code of a list of lines "Dnn SHAPE mil mm ...".
std::map<int32_t, int32_t> sizesOfList(const std::string& listPath) {
  std::ifstream list(listPath);
  std::map<int32_t, int32_t> sizes;
  for (std::string line; std::getline(list, line);) {
    std::istringstream fields(line);
    std::string code, shape;
    double mil = 0;
    if (fields >> code >> shape >> mil && code.size() > 1 && code[0] == 'D')
      sizes[std::stoi(code.substr(1))] = int32_t(std::lround(mil * 2540));
  }
  return sizes;
}

TEST(ApertureTableRun, EveryCodeOfAPlainFileHasItsSizeFromTheTable) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus";
  const std::string file = corpus + "/gerbv/ekf/l1.off";
  // The list as it came with the file, and a table written from it.
  const std::string listPath = corpus + "/gerbv/ekf/ekf.gap";
  std::map<int32_t, int32_t> sizes = sizesOfList(listPath);
  ASSERT_EQ(sizes.size(), 199u);
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  ApertureTable fromList;
  ASSERT_EQ(loadCliApertureTable(fromList, listPath), "");
  const std::string tablePath = folder.filePath("EKF.APT").toStdString();
  ASSERT_TRUE(fromList.save(folder.path().toStdString(), "EKF"));

  ApertureTable table;
  ASSERT_EQ(loadCliApertureTable(table, tablePath), "");
  const FileInfo with = gatherFileInfo(file, &table.rows);
  const FileInfo without = gatherFileInfo(file);
  int used = 0, drawn = 0;
  for (const ApertureUses& a : with.apertures) {
    if (a.Draws + a.Flashes == 0)
      continue;
    ++used;
    drawn += a.Draws > 0;
    EXPECT_EQ(a.Size, sizes[a.DCode]) << "D" << a.DCode;
    EXPECT_TRUE(a.Defined) << "D" << a.DCode;
  }
  EXPECT_EQ(used, 46);
  EXPECT_EQ(drawn, 17);
  for (const ApertureUses& a : without.apertures)
    EXPECT_FALSE(a.Defined) << "without a table no code has a size: D" << a.DCode;

  EXPECT_NE(loadCliApertureTable(table, folder.filePath("missing.apt").toStdString()), "");
}

}  // namespace
}  // namespace tvx
