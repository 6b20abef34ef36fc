// The settings file: lenient reading, writes that keep the rest of the file, atomic replacement.
#include "platform/IniFile.h"
#include "platform/SystemServices.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tvx {
namespace {

namespace fs = std::filesystem;

std::string readFile(const std::string& path) {
  std::string text;
  EXPECT_TRUE(readWholeFile(path, text)) << path;
  return text;
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
}

class IniSettings : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(dir_.isValid());
    path_ = dir_.filePath("tarvex.ini").toStdString();
    services_.SetIniFile(path_);
  }

  QTemporaryDir dir_;
  std::string path_;
  SystemServices services_;
};

TEST_F(IniSettings, ValuesWrittenReadBackTheSameInAFreshServiceObject) {
  const std::vector<std::pair<std::string, std::string>> values = {
      {"Plain", "English,English,65535"},
      {"Empty", ""},
      {"Blanks", "  padded both ends  "},
      {"Quoted", "\"already quoted\""},
      {"Equals", "a=b=c"},
      {"Semicolon", "; not a comment"},
      {"Utf8", "Gr\xC3\xB6\xC3\x9F"
               "e \xE6\x96\xB0"},
      {"Brackets", "[not a section]"},
      {"LoneQuote", "\""},
  };
  int32_t status = -1;
  for (const auto& [key, value] : values) {
    services_.WriteIniString("GBRVIEWER", key, value, status);
    ASSERT_EQ(status, 0) << key;
  }
  SystemServices fresh;
  fresh.SetIniFile(path_);
  for (const auto& [key, value] : values) {
    SCOPED_TRACE(key);
    EXPECT_EQ(fresh.GetIniString("GBRVIEWER", key, "default"), value);
    EXPECT_EQ(services_.GetIniString("GBRVIEWER", key, "default"), value);
  }
  // Overwriting keeps one line per key.
  services_.WriteIniString("GBRVIEWER", "Plain", "German,German,0", status);
  EXPECT_EQ(fresh.GetIniString("gbrviewer", "PLAIN", ""), "German,German,0");
  IniDocument doc(readFile(path_));
  EXPECT_EQ(doc.keys("GBRVIEWER").size(), values.size());
}

TEST_F(IniSettings, LenientReadingOfUntidyFiles) {
  writeFile(path_, "\xEF\xBB\xBF"
                   "TopKey=outside any section\r\n"
                   "garbage line without equals\r\n"
                   "=value without key\r\n"
                   "[ Country ]\r\n"
                   "  Number = 2  \r\n"
                   "Number=3\r\n"
                   "Default=\r\n"
                   "; Number=9\r\n"
                   "[Images\r\n"
                   "IMGHEIGHT=24\r\n");
  struct Case {
    const char* section;
    const char* key;
    const char* expected;
  } cases[] = {
      {"", "TopKey", "outside any section"},
      {"COUNTRY", "number", "2"},  // first of duplicate keys, trimmed, case-blind
      {"Country", "Default", ""},  // present but empty: not the default
      {"Country", "Missing", "dflt"},
      {"IMAGES", "IMGHEIGHT", "24"},  // header without its closing bracket
      {"Nowhere", "Number", "dflt"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.section) + "/" + c.key);
    EXPECT_EQ(services_.GetIniString(c.section, c.key, "dflt"), c.expected);
  }
}

// Changed values keep their line's place; a new key lands behind the last key of its own
// section, a new section at the end; every other byte stays as it was.
TEST_F(IniSettings, WritingKeepsEveryOtherLineByteForByte) {
  writeFile(path_, "\xEF\xBB\xBF; settings of the suite\r\n[GBRVIEWER]\r\ngarbage line\r\n"
                   "Zoom = 5   \r\nGrid=1\r\n\r\n# another comment\r\n[COUNTRY]\r\nNumber=1\r\n");
  int32_t status = -1;
  for (const auto& [section, key, value] : {std::tuple{"GBRVIEWER", "Grid", "2"},
                                            {"GBRVIEWER", "Zoom", "7"},
                                            {"GBRVIEWER", "Ruler", "0"},
                                            {"PRINT", "Copies", "2"}}) {
    services_.WriteIniString(section, key, value, status);
    ASSERT_EQ(status, 0) << key;
  }
  EXPECT_EQ(readFile(path_),
            "\xEF\xBB\xBF; settings of the suite\r\n[GBRVIEWER]\r\ngarbage line\r\n"
            "Zoom = 7\r\nGrid=2\r\nRuler=0\r\n\r\n# another comment\r\n"
            "[COUNTRY]\r\nNumber=1\r\n\r\n[PRINT]\r\nCopies=2\r\n");
}

TEST_F(IniSettings, LfFilesStayLfAndAMissingFileIsCreated) {
  writeFile(path_, "[A]\nx=1");  // no final line break
  int32_t status = -1;
  services_.WriteIniString("A", "y", "2", status);
  ASSERT_EQ(status, 0);
  EXPECT_EQ(readFile(path_), "[A]\nx=1\ny=2");
  services_.WriteIniString("B", "z", "3", status);
  EXPECT_EQ(readFile(path_), "[A]\nx=1\ny=2\n\n[B]\nz=3\n");

  const std::string other = dir_.filePath("new.ini").toStdString();
  services_.SetIniFile(other);
  EXPECT_EQ(services_.GetIniString("A", "x", "none"), "none");
  services_.WriteIniString("A", "x", "5", status);
  ASSERT_EQ(status, 0);
  EXPECT_EQ(readFile(other), "[A]\nx=5\n");

  // A change by another writer is seen and kept.
  writeFile(other, "[A]\nx=22\ny=other writer\n");
  EXPECT_EQ(services_.GetIniString("A", "x", ""), "22");
  services_.WriteIniString("A", "z", "mine", status);
  EXPECT_EQ(readFile(other), "[A]\nx=22\ny=other writer\nz=mine\n");
}

TEST_F(IniSettings, UnwritableValuesAndPlacesGiveStatusOneAndChangeNothing) {
  writeFile(path_, "[A]\nx=1\n");
  for (const auto& [key, value] : {std::pair{"x", "two\nlines"}, {"", "no key"}, {"k=v", "v"}}) {
    SCOPED_TRACE(key);
    int32_t status = 0;
    services_.WriteIniString("A", key, value, status);
    EXPECT_EQ(status, 1);
  }
  EXPECT_EQ(readFile(path_), "[A]\nx=1\n");
  EXPECT_EQ(services_.GetIniString("A", "x", ""), "1");

  // A folder that does not exist, a "folder" that is a file, and no file at all.
  for (const std::string& bad : {dir_.filePath("no/such/folder/t.ini").toStdString(),
                                 dir_.filePath("tarvex.ini/t.ini").toStdString(), std::string()}) {
    SCOPED_TRACE(bad);
    SystemServices services;
    if (!bad.empty())
      services.SetIniFile(bad);
    int32_t status = 0;
    services.WriteIniString("A", "x", "2", status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(services.GetIniString("A", "x", "dflt"), "dflt");
  }
}

// A write that fails half way (the disk fills up) must leave the old file as it was and no
// temporary behind. The file size limit makes every write beyond it fail, also for root; it is
// set in a child process so that nothing else of the test run is limited.
TEST_F(IniSettings, AWriteThatFailsHalfWayLeavesTheOldFileIntact) {
  std::string original = "[GBRVIEWER]\n";
  for (int i = 0; i < 40; ++i)
    original += "Key" + std::to_string(i) + "=value number " + std::to_string(i) + "\n";
  writeFile(path_, original);
  const std::string big(4000, 'x');

  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{256, 256};
    setrlimit(RLIMIT_FSIZE, &limit);
    SystemServices services;
    services.SetIniFile(path_);
    int32_t status = 0;
    services.WriteIniString("GBRVIEWER", "Big", big, status);
    _exit(status == 1 ? 0 : 3);
  }
  int wstatus = 0;
  ASSERT_EQ(waitpid(child, &wstatus, 0), child);
  ASSERT_TRUE(WIFEXITED(wstatus));
  EXPECT_EQ(WEXITSTATUS(wstatus), 0) << "the failed write did not give status 1";
  EXPECT_EQ(readFile(path_), original);
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_.path().toStdString()), {}), 1)
      << "a temporary file was left behind";

  // Without the limit the same write succeeds.
  int32_t status = -1;
  services_.WriteIniString("GBRVIEWER", "Big", big, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(services_.GetIniString("GBRVIEWER", "Big", ""), big);
  EXPECT_EQ(services_.GetIniString("GBRVIEWER", "Key39", ""), "value number 39");
}

TEST(IniDocument, ValueEncodingRoundTripsThroughTheText) {
  for (const std::string& value : {std::string(""), std::string(" a"), std::string("a "),
                                   std::string("\"q\""), std::string("\"x"), std::string("\t")}) {
    SCOPED_TRACE("[" + value + "]");
    IniDocument doc;
    ASSERT_TRUE(doc.setValue("S", "k", value));
    IniDocument again(doc.text());
    EXPECT_EQ(again.value("S", "k").value_or("<missing>"), value);
  }
}

}  // namespace
}  // namespace tvx
