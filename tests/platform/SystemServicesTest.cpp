// The service object and its parts: the message catalogue, the yes/no question and the path
// helper; the settings file with its lenient reading, writes that keep the rest of the file and
// atomic replacement; the mark glyphs; and the token list of the host's commands.
#include "platform/SystemServices.h"
#include "kernel/Kernel.h"
#include "platform/IniFile.h"
#include "platform/MarkGlyphs.h"
#include "platform/MessageCatalogue.h"
#include "platform/TokenList.h"
#include "platform/UserPrompts.h"
#include "platform/UserStore.h"
#include "support/GuiTestApplication.h"

#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tvx {
namespace {

TEST(MessageCatalogue, LinesAreReadLeniently) {
  MessageCatalogue c;
  c.parse("\xEF\xBB\xBF"
          "62380\tArtwork File - Incorrect format\r\n"
          "# 62381\tcomment\n"
          "\n"
          "62451\tCan't read file: \n"
          "625 Delete element?\n"       // no tab: skipped
          "62A\tnot an id\n"            // id not all digits: skipped
          "\tno id\n"                   // empty id: skipped
          "6290\t\n"                    // empty text: skipped
          "62380\tsecond definition\n"  // the first line counts
          "151217\tTwo\\nlines\\tand a \\\\ backslash\\x\n"
          "62101\tClear all elements");  // last line without a line break
  const auto text = [&](const char* id) {
    const std::string* found = c.find(id);
    return found ? *found : "<none>";
  };
  const std::pair<const char*, const char*> cases[] = {
      {"62380", "Artwork File - Incorrect format"},
      {"62381", "<none>"},
      {"62451", "Can't read file: "},
      {"625", "<none>"},
      {"62A", "<none>"},
      {"6290", "<none>"},
      {"151217", "Two\nlines\tand a \\ backslash\\x"},
      {"62101", "Clear all elements"}};
  for (const auto& [id, expected] : cases)
    EXPECT_EQ(text(id), expected) << id;
  EXPECT_EQ(c.size(), 4u);
  EXPECT_EQ(MessageCatalogue::unescape(MessageCatalogue::escape("a\\b\nc\td\\n")), "a\\b\nc\td\\n");
}

// Texts without an entry keep their default (the layer catalogue's test); the catalogue's file is
// found whatever the case of its name.
TEST(SystemServicesCatalogue, TheFileIsFoundCaseBlind) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  std::ofstream(dir.path().toStdString() + "/gbrviewer.msg") << "62185\tNeuzeichnen...\n";
  SystemServices services;
  services.loadCatalogue(dir.path().toStdString());
  EXPECT_EQ(services.LocalMessage("Redraw in progress....", "62185"), "Neuzeichnen...");
}

TEST(SystemServicesQuestion, AskYesNoGoesThroughThePrompts) {
  SystemServices silent;
  EXPECT_FALSE(silent.AskYesNo("Delete Selected items", "Fabrication Editor"));

  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  prompts.answers = {answer::No, answer::Yes, answer::Cancel};
  EXPECT_FALSE(services.AskYesNo("Clear all elements", "Fabrication Editor"));
  EXPECT_TRUE(services.AskYesNo("second", "t"));
  EXPECT_FALSE(services.AskYesNo("third", "t"));
  ASSERT_EQ(prompts.shown.size(), 3u);
  EXPECT_EQ(
      std::tuple(prompts.shown[0].prompt, prompts.shown[0].title, prompts.shown[0].flags & 0xF),
      std::tuple("Clear all elements", "Fabrication Editor", msgbox::YesNo));
}

TEST(SystemServicesPaths, EnsureBackslashAddsOneSeparatorOnly) {
  // The added separator is kept in the path too.
  std::string plain = "/opt/tarvex", slash = "/opt/", backslash = "C:\\Tarvex\\", empty;
  EXPECT_EQ(std::tuple(SystemServices::EnsureBackslash(plain), plain,
                       SystemServices::EnsureBackslash(slash),
                       SystemServices::EnsureBackslash(backslash),
                       SystemServices::EnsureBackslash(empty)),
            std::tuple("/opt/tarvex/", "/opt/tarvex/", "/opt/", "C:\\Tarvex\\", ""));
  EXPECT_EQ(SystemServices::StringFromPointer(nullptr) + SystemServices::StringFromPointer("TVN"),
            "TVN");
}

// The catalogues that ship: every line is a valid entry with an id of its own, and the German one
// translates every message the English one holds.
std::vector<std::string> shippedIds(const std::string& language, MessageCatalogue& catalogue) {
  const std::string folder = std::string(TVX_SOURCE_DIR) + "/data/COUNTRY/" + language;
  EXPECT_TRUE(catalogue.load(folder)) << folder;
  std::ifstream in(folder + "/GBRVIEWER.MSG", std::ios::binary);
  std::vector<std::string> ids;
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line[0] != '#')
      ids.push_back(line.substr(0, line.find('\t')));
  EXPECT_EQ(catalogue.size(), ids.size()) << language << ": a line is skipped or holds an id twice";
  return ids;
}

TEST(ShippedCatalogues, GermanTranslatesEveryEnglishMessage) {
  MessageCatalogue english, german;
  const std::vector<std::string> ids = shippedIds("English", english);
  shippedIds("German", german);
  EXPECT_GT(ids.size(), 100u);
  EXPECT_EQ(german.size(), english.size()) << "German holds ids English has not";
  for (const std::string& id : ids)
    EXPECT_NE(german.find(id), nullptr) << "missing in German: " << id;
}

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
  // Writes one value through the service object and gives its status.
  int32_t write(const std::string& section, const std::string& key, const std::string& value) {
    int32_t status = -1;
    services_.WriteIniString(section, key, value, status);
    return status;
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
      {"LoneQuote", "\""},
      {"OpenQuote", "\"x"},
      {"Tab", "\t"}};
  for (const auto& [key, value] : values)
    ASSERT_EQ(write("GBRVIEWER", key, value), 0) << key;
  SystemServices fresh;
  fresh.SetIniFile(path_);
  for (const auto& [key, value] : values) {
    SCOPED_TRACE(key);
    EXPECT_EQ(fresh.GetIniString("GBRVIEWER", key, "default"), value);
    EXPECT_EQ(services_.GetIniString("GBRVIEWER", key, "default"), value);
  }
  // Overwriting keeps one line per key.
  write("GBRVIEWER", "Plain", "German,German,0");
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
  const std::tuple<std::string, const char*, const char*> cases[] = {
      {"", "TopKey", "outside any section"},
      {"COUNTRY", "number", "2"},  // first of duplicate keys, trimmed, case-blind
      {"Country", "Default", ""},  // present but empty: not the default
      {"Country", "Missing", "dflt"},
      {"IMAGES", "IMGHEIGHT", "24"},  // header without its closing bracket
      {"Nowhere", "Number", "dflt"}};
  for (const auto& [section, key, expected] : cases) {
    SCOPED_TRACE(std::string(section) + "/" + key);
    EXPECT_EQ(services_.GetIniString(section, key, "dflt"), expected);
  }
}

// Changed values keep their line's place; a new key lands behind the last key of its own
// section, a new section at the end; every other byte stays as it was.
TEST_F(IniSettings, WritingKeepsEveryOtherLineByteForByte) {
  writeFile(path_, "\xEF\xBB\xBF; settings of the suite\r\n[GBRVIEWER]\r\ngarbage line\r\n"
                   "Zoom = 5   \r\nGrid=1\r\n\r\n# another comment\r\n[COUNTRY]\r\nNumber=1\r\n");
  for (const auto& [section, key, value] : {std::tuple{"GBRVIEWER", "Grid", "2"},
                                            {"GBRVIEWER", "Zoom", "7"},
                                            {"GBRVIEWER", "Ruler", "0"},
                                            {"PRINT", "Copies", "2"}})
    ASSERT_EQ(write(section, key, value), 0) << key;
  EXPECT_EQ(readFile(path_),
            "\xEF\xBB\xBF; settings of the suite\r\n[GBRVIEWER]\r\ngarbage line\r\n"
            "Zoom = 7\r\nGrid=2\r\nRuler=0\r\n\r\n# another comment\r\n"
            "[COUNTRY]\r\nNumber=1\r\n\r\n[PRINT]\r\nCopies=2\r\n");
}

TEST_F(IniSettings, LfFilesStayLfAndAMissingFileIsCreated) {
  writeFile(path_, "[A]\nx=1");  // no final line break
  ASSERT_EQ(write("A", "y", "2"), 0);
  EXPECT_EQ(readFile(path_), "[A]\nx=1\ny=2");
  // Mixed line ends, a stray CR before one and a CR at the very end come back as read.
  EXPECT_EQ(IniDocument("z\na\r\r\n[B]\r\nq=1\r").text(), "z\na\r\r\n[B]\r\nq=1\r");
  write("B", "z", "3");
  EXPECT_EQ(readFile(path_), "[A]\nx=1\ny=2\n\n[B]\nz=3\n");

  const std::string other = dir_.filePath("new.ini").toStdString();
  services_.SetIniFile(other);
  EXPECT_EQ(services_.GetIniString("A", "x", "none"), "none");
  ASSERT_EQ(write("A", "x", "5"), 0);
  EXPECT_EQ(readFile(other), "[A]\nx=5\n");

  // A change by another writer is seen and kept.
  writeFile(other, "[A]\nx=22\ny=other writer\n");
  EXPECT_EQ(services_.GetIniString("A", "x", ""), "22");
  write("A", "z", "mine");
  EXPECT_EQ(readFile(other), "[A]\nx=22\ny=other writer\nz=mine\n");
}

TEST_F(IniSettings, UnwritableValuesAndPlacesGiveStatusOneAndChangeNothing) {
  writeFile(path_, "[A]\nx=1\n");
  for (const auto& [key, value] : {std::pair{"x", "two\nlines"}, {"", "no key"}, {"k=v", "v"}}) {
    SCOPED_TRACE(key);
    EXPECT_EQ(write("A", key, value), 1);
  }
  EXPECT_EQ(std::tuple(readFile(path_), services_.GetIniString("A", "x", "")),
            std::tuple("[A]\nx=1\n", "1"));

  // A folder that does not exist, a "folder" that is a file, and no file at all.
  for (const std::string& bad : {dir_.filePath("no/such/folder/t.ini").toStdString(),
                                 dir_.filePath("tarvex.ini/t.ini").toStdString(), std::string()}) {
    SCOPED_TRACE(bad);
    SystemServices services;
    if (!bad.empty())
      services.SetIniFile(bad);
    int32_t status = 0;
    services.WriteIniString("A", "x", "2", status);
    EXPECT_EQ(std::tuple(status, services.GetIniString("A", "x", "dflt")), std::tuple(1, "dflt"));
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
  EXPECT_EQ(
      (std::tuple{write("GBRVIEWER", "Big", big), services_.GetIniString("GBRVIEWER", "Big", ""),
                  services_.GetIniString("GBRVIEWER", "Key39", "")}),
      std::tuple(0, big, "value number 39"));
}

// A save of many keys that dies at any step of its one replacement leaves the old file or the new
// one whole, and the next viewer to open the file removes the temporary it left.
TEST_F(IniSettings, ASaveKilledAtAnyStepLeavesTheOldOrTheNewFileWhole) {
  const std::string original = "[VIEW]\nUNIT=0\nZOOM=1\n";
  const std::string saved = "[VIEW]\nUNIT=2\nZOOM=4\nGRID=1\n";
  const auto save = [](SystemServices& services) {
    SettingsBatch batch(services);
    for (const auto& [key, value] : {std::pair{"UNIT", "2"}, {"ZOOM", "4"}, {"GRID", "1"}}) {
      int32_t status = 0;
      services.WriteIniString("VIEW", key, value, status);
    }
    return batch.commit();
  };
  for (AtomicWriteStep step :
       {AtomicWriteStep::Create, AtomicWriteStep::Mode, AtomicWriteStep::Write,
        AtomicWriteStep::Flush, AtomicWriteStep::Close, AtomicWriteStep::Rename,
        AtomicWriteStep::FlushFolder}) {
    SCOPED_TRACE(int(step));
    writeFile(path_, original);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      setAtomicWriteStepHook([step](AtomicWriteStep reached) {
        if (reached == step)
          _exit(0);
      });
      SystemServices services;
      services.SetIniFile(path_);
      save(services);
      _exit(3);  // the hook was never reached
    }
    int wstatus = 0;
    ASSERT_EQ(waitpid(child, &wstatus, 0), child);
    ASSERT_TRUE(WIFEXITED(wstatus) && WEXITSTATUS(wstatus) == 0);
    const std::string after = readFile(path_);
    EXPECT_EQ(after, step == AtomicWriteStep::FlushFolder ? saved : original);
    // Opening the settings file cleans up; this process's own writes go through.
    SystemServices next;
    next.SetIniFile(path_);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir_.path().toStdString()), {}), 1)
        << "a temporary of the dead writer is left";
    EXPECT_EQ(save(next), 0);
    EXPECT_EQ(readFile(path_), saved);
  }
}

TEST_F(IniSettings, ABatchThatCannotBeWrittenSaysWhyOnceAndChangesNothing) {
  std::vector<std::pair<std::string, int>> said;
  services_.setSettingsFailureReport(
      [&said](const std::string& file, int error) { said.emplace_back(file, error); });
  writeFile(path_, "[A]\nx=1\n");
  fs::permissions(path_, fs::perms::owner_read | fs::perms::group_read);
  SettingsBatch batch(services_);
  EXPECT_EQ(write("A", "x", "2"), 0);
  EXPECT_EQ(services_.GetIniString("A", "x", ""), "2");  // the batch's reads see its writes
  // A read-only file is not replaced, also for the superuser.
  EXPECT_EQ(batch.commit(), EACCES);
  EXPECT_EQ(readFile(path_), "[A]\nx=1\n");
  EXPECT_EQ(services_.GetIniString("A", "x", ""), "1");
  // A later save that fails too is not said again.
  EXPECT_EQ(write("A", "x", "3"), 1);
  EXPECT_EQ(said, (std::vector<std::pair<std::string, int>>{{path_, EACCES}}));
  fs::permissions(path_, fs::perms::owner_read | fs::perms::owner_write);
}

// A window's values saved through the user store in the settings file are one replacement, in
// the section "<application>.<section>"; within a save of the services they wait for its commit.
TEST_F(IniSettings, TheUserStoreSavesAWindowsValuesAsOneReplacement) {
  IniUserStore store(services_);
  int replacements = 0;
  setAtomicWriteStepHook(
      [&](AtomicWriteStep step) { replacements += step == AtomicWriteStep::Rename; });
  {
    const UserStoreSave save(store);
    for (const char* key : {"W_TOP", "W_LEFT", "W_WIDTH"})
      store.SaveSetting("App", "Sec", key, "7");
    EXPECT_EQ(replacements, 0);
  }
  EXPECT_EQ(replacements, 1);
  {
    SettingsBatch unload(services_);
    {
      const UserStoreSave save(store);
      store.SaveSetting("App", "Sec", "W_TOP", "8");
    }
    EXPECT_EQ(replacements, 1);
    unload.commit();
  }
  setAtomicWriteStepHook({});
  EXPECT_EQ(replacements, 2);
  EXPECT_EQ(readFile(path_), "[App.Sec]\nW_TOP=8\nW_LEFT=7\nW_WIDTH=7\n");
}

// Each glyph marks its point and stays within its size; drawn twice in exclusive-or it is gone.
TEST(MarkGlyphs, GlyphsMarkTheirPointAndEraseThemselves) {
  test::guiTestApplication();
  Kernel k;
  SystemServices services;
  services.setGraphics(&k.graphics);
  for (int glyph : {1, 5, 6, 7, 8, 10}) {
    SCOPED_TRACE(glyph);
    QImage image(60, 60, QImage::Format_RGB32);
    image.fill(Qt::black);
    const QImage blank = image;
    int32_t dev = k.graphics.G_GetDC(&image);
    ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 60, 60, 0, 0, 4}, 0), 1);
    services.DrawMarkGlyph(dev, 4, std::to_string(glyph), 0, 0, 15, 0, 2000, 2000);
    k.graphics.G_CloseDC(dev, 0);
    int lit = 0, far = 0;
    for (int py = 0; py < 60; ++py)
      for (int px = 0; px < 60; ++px)
        if (image.pixel(px, py) != blank.pixel(px, py)) {
          ++lit;
          far += std::abs(px - 30) > 12 || std::abs(py - 30) > 12;
        }
    EXPECT_GT(lit, 5);
    EXPECT_EQ(far, 0) << "a 2000-unit glyph stays within 10 pixels of its point";

    image = blank;
    ASSERT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{100, 60, 60, 0, 0, 4}, 0), 1);
    services.DrawMarkGlyph(dev, 6, std::to_string(glyph), 0, 0, 15, 30000, 2000, 2000);
    services.DrawMarkGlyph(dev, 6, std::to_string(glyph), 0, 0, 15, 30000, 2000, 2000);
    k.graphics.G_CloseDC(dev, 0);
    EXPECT_EQ(image, blank);
    k.graphics.G_DeleteDC(dev);
  }
  EXPECT_FALSE(drawMarkGlyph(k.graphics, 1, 4, 2, 0, 0, 15, 0, 10, 10)) << "no glyph 2";
}

std::vector<std::string> itemsOf(const TokenList& list) {
  std::vector<std::string> items;
  for (int32_t i = 1; i <= list.Count(); ++i)
    items.push_back(list.Item(i));
  return items;
}

TEST(TokenListTest, ParseCutsAtEveryDelimiterAndIndicesOutsideGiveEmptyText) {
  const std::tuple<std::string, std::string, std::vector<std::string>> cases[] = {
      {"TVNGBRVIEWER,MX", ",", {"TVNGBRVIEWER", "MX"}},
      {"", ",", {}},
      {"a,,b", ",", {"a", "", "b"}},
      {"a,b,", ",", {"a", "b", ""}},
      {",a", ",", {"", "a"}},
      {" a , b ", ",", {" a ", " b "}},
      {"a<>b<>c", "<>", {"a", "b", "c"}},
      {"a<b>c", "<>", {"a<b>c"}},
      {"a,b", "", {"a,b"}}};
  TokenList list;
  for (const auto& [text, delimiter, items] : cases) {
    SCOPED_TRACE("'" + text + "' at '" + delimiter + "'");
    list.Parse(text, delimiter);  // a new text replaces the old items
    EXPECT_EQ(itemsOf(list), items);
    for (int32_t index : {0, -1, list.Count() + 1})
      EXPECT_EQ(std::tuple(list.Item(index), list.ItemValue(index)), std::tuple("", 0.0)) << index;
  }
}

TEST(TokenListTest, ItemValueReadsLeniently) {
  const std::pair<std::string, double> cases[] = {
      {"-3.25", -3.25}, {"1,2,3", 1.2}, {"  7", 7.0}, {"+4", 4.0},   {"+-4", 0.0},
      {"12.5mm", 12.5}, {"abc", 0.0},   {"", 0.0},    {"1e999", 0.0}};
  for (const auto& [item, value] : cases) {
    SCOPED_TRACE("'" + item + "'");
    TokenList list;
    list.Parse("x;" + item, ";");
    ASSERT_EQ(list.Count(), 2);
    EXPECT_DOUBLE_EQ(list.ItemValue(2), value);
  }
}

}  // namespace
}  // namespace tvx
