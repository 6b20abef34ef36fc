// Numbered files: lines, characters, fixed records, and the messages of failed reads and writes.
#include "common/FileLayer.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <system_error>

namespace tvx {
namespace {

class FileLayerTest : public ::testing::Test {
protected:
  void SetUp() override { ASSERT_TRUE(dir_.isValid()); }
  std::string path(const char* name) const { return dir_.filePath(name).toStdString(); }
  void writeFile(const std::string& p, const std::string& text) {
    std::ofstream(p, std::ios::binary) << text;
  }

  QTemporaryDir dir_;
  ScriptedPrompts prompts_;
  SystemServices services_{&prompts_};
  FileLayer files_{services_, &prompts_};
};

TEST_F(FileLayerTest, LinesWithEveryEndingAndTheEndOfTheFile) {
  const std::string name = path("lines.txt");
  writeFile(name, "first\r\nsecond\nthird\rfourth\r\n\r\nlast without ending");
  int32_t status = -1;
  int16_t handle = 0;
  files_.OpenForInput(status, handle, name);
  ASSERT_EQ(std::tuple(status, handle), std::tuple(0, 1));
  std::vector<std::string> lines;
  while (!files_.EndOfFile(handle)) {
    std::string line;
    files_.ReadTextLine(status, handle, line);
    ASSERT_EQ(status, 0);
    lines.push_back(line);
  }
  EXPECT_EQ(lines, (std::vector<std::string>{"first", "second", "third", "fourth", "",
                                             "last without ending"}));
  EXPECT_TRUE(prompts_.shown.empty());

  // Reading past the end is a read error that names the file.
  std::string line = "stale";
  files_.ReadTextLine(status, handle, line);
  ASSERT_EQ(std::tuple(status, line, prompts_.shown.size()), std::tuple(1, "", 1u));
  EXPECT_EQ(std::tuple(prompts_.shown[0].prompt, prompts_.shown[0].flags),
            std::tuple("Can't read file: " + name, msgbox::Exclamation));
  files_.CloseFile(false, handle, name);
  EXPECT_EQ(std::tuple(files_.openCount(), std::filesystem::exists(name)), std::tuple(0, true));
}

TEST_F(FileLayerTest, FailedOpensReportOnceWithTheSystemsReason) {
  int32_t status = 0;
  int16_t handle = 9;
  const std::string missing = path("missing.gbr"), noFolder = path("no/folder/TMP.ART");
  const std::string cantRead = "Can't read file: ", cantWrite = "Can't create/write to file: ";
  const std::vector<std::pair<std::function<void()>, std::string>> opens = {
      {[&] { files_.OpenForInput(status, handle, missing); }, cantRead + missing},
      {[&] { files_.OpenForBinary(status, handle, missing); }, cantRead + missing},
      {[&] { files_.OpenForOutput(status, handle, noFolder); }, cantWrite + noFolder}};
  for (const auto& [open, message] : opens) {
    SCOPED_TRACE(message);
    status = 0;
    handle = 9;
    open();
    EXPECT_EQ(std::tuple(status, handle, prompts_.shown.back().prompt), std::tuple(1, 0, message));
  }
  ASSERT_EQ(prompts_.shown.size(), opens.size());
  EXPECT_EQ(std::tuple(prompts_.shown[0].title, files_.openCount()),
            std::tuple(std::generic_category().message(ENOENT), 0));

  // The messages come from the catalogue of the language in use, and so do the reasons the
  // system's texts leave vague: a folder, a name too long, a file that is not plain.
  writeFile(path("GBRVIEWER.MSG"), "62451\tDatei kann nicht gelesen werden: \n"
                                   "900120\tOrdner\n900121\tzu lang\n900122\tkeine Datei\n");
  services_.loadCatalogue(dir_.path().toStdString());
  files_.OpenForInput(status, handle, missing);
  EXPECT_EQ(prompts_.shown.back().prompt, "Datei kann nicht gelesen werden: " + missing);
  const std::string tooLong = path(std::string(300, 'a').c_str());
  for (const auto& [name, reason] : {std::pair(dir_.path().toStdString(), "Ordner"),
                                     std::pair(tooLong, "zu lang"), std::pair(missing, "")}) {
    SCOPED_TRACE(name);
    const int error = FileLayer::plainFileError(name);
    EXPECT_EQ(files_.readErrorLine(name, error),
              "Datei kann nicht gelesen werden: " + name + " (" +
                  (*reason ? reason : std::generic_category().message(ENOENT)) + ")");
  }
  EXPECT_EQ(FileLayer::plainFileError("/dev/null"), FileLayer::NotPlainFile);
  EXPECT_EQ(files_.errorText(FileLayer::NotPlainFile), "keine Datei");

  // Without prompts nothing is shown, and the status still says it failed.
  FileLayer quiet(services_, nullptr);
  quiet.OpenForInput(status, handle, missing);
  EXPECT_EQ(status, 1);
}

TEST_F(FileLayerTest, HandlesAreTheLowestFreeNumbers) {
  const std::string name = path("a.txt");
  writeFile(name, "x\n");
  int32_t status = 0;
  int16_t h1 = 0, h2 = 0, h3 = 0, again = 0;
  files_.OpenForInput(status, h1, name);
  files_.OpenForInput(status, h2, name);
  files_.OpenForInput(status, h3, name);
  EXPECT_EQ((std::array<int16_t, 3>{h1, h2, h3}), (std::array<int16_t, 3>{1, 2, 3}));
  files_.CloseFile(false, h2, name);
  files_.OpenForInput(status, again, name);
  files_.CloseFile(false, 77, name);  // a number that is not open: passed over
  // Reading from a number that is not open fails like any read.
  std::string line;
  files_.ReadTextLine(status, 77, line);
  EXPECT_EQ(std::tuple(again, files_.openCount(), status), std::tuple(2, 3, 1));
}

TEST_F(FileLayerTest, CharactersByCountOrByTheTextsLength) {
  const std::string name = path("bytes.bin");
  writeFile(name, std::string("G04*\0\xff%FS", 10));
  int32_t status = 0;
  int16_t h = 0;
  files_.OpenForBinary(status, h, name);
  ASSERT_EQ(status, 0);
  std::string text;
  files_.ReadCharacters(status, h, text, 0);  // count 0 and an empty text: nothing is read
  EXPECT_EQ(std::tuple(status, text), std::tuple(0, ""));
  files_.ReadCharacters(status, h, text, 4);
  EXPECT_EQ(text, "G04*");
  text = "xx";
  files_.ReadCharacters(status, h, text, 0);  // count 0: as many as the text is long
  EXPECT_EQ(text, std::string("\0\xff", 2));
  text.clear();
  files_.ReadCharacters(status, h, text, 9);  // only 4 left
  EXPECT_EQ(std::tuple(status, prompts_.shown.size()), std::tuple(1, 1u));
  files_.CloseFile(false, h, name);
}

TEST_F(FileLayerTest, TextOutputEndsLinesWithCrLf) {
  const std::string name = path("out.apt");
  int32_t status = 0;
  int16_t h = 0;
  files_.OpenForOutput(status, h, name);
  ASSERT_EQ(status, 0);
  files_.WriteTextLine(status, h, "D10,C,0.010");
  files_.WriteCharacters(status, h, "tail");
  EXPECT_EQ(status, 0);
  // A file opened for reading cannot be written.
  int16_t in = 0;
  writeFile(path("in.txt"), "x");
  files_.OpenForInput(status, in, path("in.txt"));
  files_.WriteTextLine(status, in, "no");
  EXPECT_EQ(status, 1);
  files_.CloseFile(false, h, name);
  std::ifstream read(name, std::ios::binary);
  std::string content((std::istreambuf_iterator<char>(read)), std::istreambuf_iterator<char>());
  EXPECT_EQ(content, "D10,C,0.010\r\ntail");

  // Closing with delete removes the file and frees its number.
  files_.CloseFile(true, in, path("in.txt"));
  EXPECT_EQ(std::tuple(std::filesystem::exists(path("in.txt")), files_.openCount()),
            std::tuple(false, 0));
}

}  // namespace
}  // namespace tvx
