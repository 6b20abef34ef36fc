// The session's yield serves every reading; a file's own yield replaces it for that file only.
#include "import/readers/excellon/ExcellonTestSupport.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

struct SessionYieldTest : ::testing::Test, test::ImportWorld {};

TEST_F(SessionYieldTest, AFilesOwnYieldServesThatFileOnly) {
  int sessionYields = 0, fileYields = 0;
  session->setYield([&] { ++sessionYields; });
  ImportOptions options;
  options.yield = [&] { ++fileYields; };
  const std::string path =
      write("board.drl", "M48\r\nINCH,TZ\r\nT1C0.02\r\n%\r\nT1\r\nX1000Y1000\r\nM30\r\n");
  EXPECT_EQ(run(path, options).status, 0);
  // After the file, the readers hand control through the session's yield again.
  ASSERT_TRUE(session->gerberPass.yield && session->excellon.yield);
  session->gerberPass.yield();
  session->excellon.yield();
  EXPECT_EQ(sessionYields, 2);
  session->setYield({});
  EXPECT_FALSE(session->gerberPass.yield || session->excellon.yield);
  EXPECT_EQ(run(path).status, 0) << "a session without a yield reads through";
}

}  // namespace
}  // namespace tvx
