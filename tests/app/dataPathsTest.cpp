// The program's data folder is found from the executable, not from the working directory.
#include "app/dataPaths.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <string>

namespace {

std::string here() {
  char buffer[PATH_MAX];
  return getcwd(buffer, sizeof buffer) ? buffer : "";
}

TEST(dataPaths, foundAlikeFromAnyWorkingDirectory) {
  const std::string start = here();
  const std::string fromStart = marv::programDataDir();
  ASSERT_FALSE(fromStart.empty());
  ASSERT_EQ(chdir("/"), 0);
  const std::string fromRoot = marv::programDataDir();
  const std::string help = marv::programDataPath("help/param_en.html");
  const std::string example = marv::programDataPath("examples/cavity2d/input/param.txt");
  ASSERT_EQ(chdir(start.c_str()), 0);
  EXPECT_EQ(fromRoot, fromStart);
  EXPECT_EQ(fromRoot.front(), '/') << "a relative folder would move with the working directory";
  EXPECT_FALSE(help.empty());
  EXPECT_FALSE(example.empty());
}

TEST(dataPaths, missingFilesAndEscapesGiveNothing) {
  EXPECT_EQ(marv::programDataPath("help/no_such_page.html"), "");
  EXPECT_EQ(marv::programDataPath("examples/no_such_example/input/param.txt"), "");
  // The executable folder is an absolute path with no trailing slash.
  const std::string exe = marv::executableFolder();
  ASSERT_FALSE(exe.empty());
  EXPECT_EQ(exe.front(), '/');
  EXPECT_NE(exe.back(), '/');
}

}  // namespace
