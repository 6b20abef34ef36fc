// Each viewer's own folder in the work directory: made apart from every other viewer's, removed
// when the viewer goes, and the folders of dead processes cleaned away by the next viewer.
#include "platform/ViewerWorkFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace tvx {
namespace {

namespace fs = std::filesystem;

struct ViewerWorkFolderTest : ::testing::Test {
  ViewerWorkFolderTest() {
    std::string pattern = (fs::temp_directory_path() / "tvx-work-XXXXXX").string();
    work = mkdtemp(pattern.data());
  }
  ~ViewerWorkFolderTest() override {
    std::error_code ignored;
    fs::permissions(work, fs::perms::owner_all, ignored);
    fs::remove_all(work, ignored);
  }
  fs::path work;
};

TEST_F(ViewerWorkFolderTest, TwoViewersOnOneWorkDirectoryHaveFoldersOfTheirOwn) {
  auto first = std::make_unique<ViewerWorkFolder>(work.string());
  const ViewerWorkFolder second(work.string());
  ASSERT_FALSE(first->path().empty());
  EXPECT_NE(first->path(), second.path());
  EXPECT_EQ(fs::path(first->path()).parent_path().parent_path(), work);
  std::ofstream(first->path() + "TMP.ART") << "first";
  EXPECT_FALSE(fs::exists(second.path() + "TMP.ART"));
  // The viewer that goes takes its folder and files with it; the other's stays.
  const std::string gone = first->path();
  first.reset();
  EXPECT_FALSE(fs::exists(gone));
  EXPECT_TRUE(fs::is_directory(second.path()));
}

TEST_F(ViewerWorkFolderTest, FoldersOfDeadProcessesGoWhenAViewerStarts) {
  // A process id that runs no process: a child that has ended and been waited for.
  const pid_t dead = fork();
  if (dead == 0)
    _exit(0);
  ASSERT_GT(dead, 0);
  int status = 0;
  waitpid(dead, &status, 0);
  const std::string deadFolder = "viewer-" + std::to_string(dead) + "-1";
  const std::string liveFolder = "viewer-" + std::to_string(getppid()) + "-3";
  for (const std::string& name :
       {deadFolder, liveFolder, std::string("viewer-notes"), std::string("TMP.ART.keep")}) {
    fs::create_directory(work / name);
    std::ofstream(work / name / "TMP.ART") << "old";
  }
  const ViewerWorkFolder viewer(work.string());
  EXPECT_FALSE(fs::exists(work / deadFolder));
  for (const char* kept : {"viewer-notes", "TMP.ART.keep"})
    EXPECT_TRUE(fs::exists(work / kept)) << kept;
  EXPECT_TRUE(fs::exists(work / liveFolder));
}

TEST_F(ViewerWorkFolderTest, AWorkDirectoryThatCannotTakeAFolderGivesWayToTheTemporaryFolder) {
  // A file where the work directory should be.
  std::ofstream(work / "not-a-folder") << "x";
  const ViewerWorkFolder viewer((work / "not-a-folder").string());
  ASSERT_FALSE(viewer.path().empty());
  EXPECT_EQ(fs::path(viewer.path()).parent_path().parent_path(),
            fs::temp_directory_path() / "tarvex-work");
  EXPECT_TRUE(fs::is_directory(viewer.path()));
}

TEST(ViewerWorkFolderName, TheProcessOfAFolderName) {
  // A folder name and the process it names; 0 for names that are no viewer's folder.
  const std::pair<const char*, long> cases[] = {{"viewer-1234-1", 1234},
                                                {"viewer-7-12", 7},
                                                {"viewer-1234-", 0},
                                                {"viewer--1", 0},
                                                {"viewer-12a-1", 0},
                                                {"viewer-1234-x", 0},
                                                {"viewer-1234", 0},
                                                {"viewers-1234-1", 0},
                                                {"", 0},
                                                {"viewer-99999999999999999999-1", 0}};
  for (const auto& [name, pid] : cases)
    EXPECT_EQ(ViewerWorkFolder::processOf(name), pid) << name;
}

}  // namespace
}  // namespace tvx
