// The message catalogue, the yes/no question and the path helper of the service object.
#include "platform/MessageCatalogue.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
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
  struct Case {
    const char* id;
    const char* expected;  // nullptr: no entry
  } cases[] = {
      {"62380", "Artwork File - Incorrect format"},
      {"62381", nullptr},
      {"62451", "Can't read file: "},
      {"625", nullptr},
      {"62A", nullptr},
      {"6290", nullptr},
      {"151217", "Two\nlines\tand a \\ backslash\\x"},
      {"62101", "Clear all elements"},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.id);
    const std::string* text = c.find(k.id);
    if (!k.expected) {
      EXPECT_EQ(text, nullptr);
    } else {
      ASSERT_NE(text, nullptr);
      EXPECT_EQ(*text, k.expected);
    }
  }
  EXPECT_EQ(c.size(), 4u);
  EXPECT_EQ(MessageCatalogue::unescape(MessageCatalogue::escape("a\\b\nc\td\\n")), "a\\b\nc\td\\n");
}

TEST(SystemServicesCatalogue, LookupFallsBackToTheDefaultText) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const std::string folder = dir.path().toStdString();
  // The file name is matched case-blind.
  std::ofstream(folder + "/gbrviewer.msg") << "62185\tNeuzeichnen...\n";

  SystemServices services;
  EXPECT_EQ(services.LocalMessage("Redraw in progress....", "62185"), "Redraw in progress....");
  services.loadCatalogue(folder);
  EXPECT_EQ(services.LocalMessage("Redraw in progress....", "62185"), "Neuzeichnen...");
  EXPECT_EQ(services.LocalMessage("Select Object", "62100"), "Select Object");

  // Loading a folder without a catalogue forgets the previous language.
  services.loadCatalogue(folder + "/missing");
  EXPECT_EQ(services.LocalMessage("Redraw in progress....", "62185"), "Redraw in progress....");
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
  EXPECT_EQ(prompts.shown[0].prompt, "Clear all elements");
  EXPECT_EQ(prompts.shown[0].title, "Fabrication Editor");
  EXPECT_EQ(prompts.shown[0].flags & 0xF, msgbox::YesNo);
}

TEST(SystemServicesPaths, EnsureBackslashAddsOneSeparatorOnly) {
  struct Case {
    std::string in, out;
  } cases[] = {{"/opt/tarvex", "/opt/tarvex/"},
               {"/opt/tarvex/", "/opt/tarvex/"},
               {"C:\\Tarvex\\", "C:\\Tarvex\\"},
               {"relative", "relative/"},
               {"", ""}};
  for (Case& c : cases) {
    SCOPED_TRACE(c.in);
    std::string path = c.in;
    EXPECT_EQ(SystemServices::EnsureBackslash(path), c.out);
    EXPECT_EQ(path, c.out);
  }
  EXPECT_EQ(SystemServices::StringFromPointer(nullptr), "");
  EXPECT_EQ(SystemServices::StringFromPointer("TVN"), "TVN");
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

  SystemServices services;
  services.loadCatalogue(std::string(TVX_SOURCE_DIR) + "/data/COUNTRY/German");
  EXPECT_EQ(services.LocalMessage("Can't read file: ", "62451"),
            "Datei kann nicht gelesen werden: ");
  EXPECT_EQ(services.LocalMessage("Delete element?", "625"), "Element l\xC3\xB6schen?");
}

}  // namespace
}  // namespace tvx
