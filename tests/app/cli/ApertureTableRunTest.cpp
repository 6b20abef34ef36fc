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

// The table of an aperture list of lines "Dnn ROUND|SQUARE inches mm ...": round codes both draw
// and flash, square codes flash; the sizes of the list, with the table's rows in order of size.
// dCodeSizes receives each code's size.
std::string tableFromList(const std::string& listPath, std::map<int32_t, int32_t>& dCodeSizes) {
  std::ifstream list(listPath);
  std::multimap<int32_t, std::string> rows;
  for (std::string line; std::getline(list, line);) {
    std::istringstream fields(line);
    std::string code, shape;
    double inches = 0, mm = 0;
    if (!(fields >> code >> shape >> inches >> mm) || code.size() < 2 || code[0] != 'D')
      continue;
    const int32_t d = std::stoi(code.substr(1)), size = int32_t(std::lround(mm * 100000));
    dCodeSizes[d] = size;
    const std::string c = std::to_string(d);
    rows.emplace(size, shape == "SQUARE" ? "0,0," + c : c + "," + c + ",0");
  }
  std::string text;
  for (const auto& [size, codes] : rows)
    text += std::to_string(size) + "," + codes + "\r\n";
  return text + "\"#\",\"#\",\"#\",\"#\"\r\n";
}

TEST(ApertureTableRun, EveryCodeOfAPlainFileHasItsSizeFromTheTable) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus";
  const std::string file = corpus + "/gerbv/ekf/l1.off";
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  std::map<int32_t, int32_t> sizes;
  const std::string tablePath = folder.filePath("EKF.APT").toStdString();
  std::ofstream(tablePath, std::ios::binary) << tableFromList(corpus + "/gerbv/ekf/ekf.gap", sizes);
  ASSERT_EQ(sizes.size(), 199u);

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
