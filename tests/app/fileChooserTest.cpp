// The program's own file chooser: what it lists, what a chosen path means, a path typed frame by frame.
#include <gtest/gtest.h>

#include <filesystem>

#include "app/fileChooser.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using namespace marv;
namespace fs = std::filesystem;

TEST(FileChooser, ListsFoldersFirstThenInputFilesAndAProjectFolderStandsForItsParameterFile) {
  const fs::path root = marvtest::scratchFolder("chooser");
  for (const char* folder : {"zeta", "alpha", ".hidden"}) fs::create_directories(root / folder);
  for (const char* name : {"param.txt", "bcXY0.BMP", "bc.stl", "notes.md", "dump.raw", ".history"})
    marvtest::writeText(root / name, "x");
  marvtest::writeText(root / "case" / "input" / "param.txt", "1:nx 5\n");
  EXPECT_EQ(listChoosable(root.string()),
            (std::vector<std::string>{"alpha/", "case/", "zeta/", "bc.stl", "bcXY0.BMP", "param.txt"}));
  EXPECT_TRUE(listChoosable((root / "missing").string()).empty());
  const std::string param = (root / "case" / "input" / "param.txt").string();
  EXPECT_EQ(resolveChosenPath((root / "case").string(), false), param);
  EXPECT_EQ(resolveChosenPath((root / "case" / ".." / "case" / "").string(), false), param);
  EXPECT_EQ(resolveChosenPath(param, false), param);
  EXPECT_EQ(resolveChosenPath(root.string(), false), "") << "a folder that is no project";
  EXPECT_EQ(resolveChosenPath("", false), "");
  // A new project's path must be free, in an existing folder.
  EXPECT_EQ(resolveChosenPath((root / "fresh").string(), true), (root / "fresh").string());
  EXPECT_EQ(resolveChosenPath((root / "case").string(), true), "");
  EXPECT_EQ(resolveChosenPath((root / "no" / "such" / "parent").string(), true), "");
  fs::remove_all(root);
}

TEST(FileChooser, APathTypedBehindTheShownFolderStartsAnew) {
  if (programAvailable("zenity") || programAvailable("kdialog")) GTEST_SKIP() << "the desktop's dialog would open";
  const fs::path root = marvtest::scratchFolder("chooser-typed");
  marvtest::writeText(root / "case" / "input" / "param.txt", "1:nx 5\n");
  appConfig cfg;
  constructAppConfig(cfg, false, false);
  // Typed behind the prefilled folder: "...//abs/case". The chooser ignores Enter in its first 400 ms.
  std::string typed = (root / "case").string();
  typed.insert(typed.begin(), '/');
  const std::vector<inputFrame> frames = {marvtest::typing(typed), marvtest::typing("", {keyEnter})};
  const int start = nowMs();
  while (nowMs() - start <= cfg.keyDelayMs + 50) waitMs(10);
  cfg.keyDelayMs = 0;
  std::string chosen;
  {
    marvtest::scriptedRun run(frames);
    chosen = askPathInWindow(cfg, "Choose", false);
  }
  EXPECT_EQ(chosen, (root / "case" / "input" / "param.txt").string());
  fs::remove_all(root);
}

}  // namespace
