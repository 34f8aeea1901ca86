// The program's data folder is found from the executable, not from the working directory.
#include "app/dataPaths.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

TEST(dataPaths, foundAlikeFromAnyWorkingDirectoryAndNothingForMissingFiles) {
  const std::string start = std::filesystem::current_path().string();
  const std::string fromStart = marv::programDataDir();
  ASSERT_EQ(chdir("/"), 0);
  const std::string fromRoot = marv::programDataDir();
  const std::string example = marv::programDataPath("examples/cavity2d/input/param.txt");
  ASSERT_EQ(chdir(start.c_str()), 0);
  EXPECT_EQ(fromRoot, fromStart);
  EXPECT_TRUE(fromRoot.starts_with("/")) << "a relative folder would move with the working directory";
  EXPECT_FALSE(example.empty());
  EXPECT_EQ(marv::programDataPath("examples/no_such_example/input/param.txt"), "");
  const std::string exe = marv::executableFolder();
  EXPECT_TRUE(exe.starts_with("/") && !exe.ends_with("/")) << exe;
}

}  // namespace
