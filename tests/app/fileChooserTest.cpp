// The program's own file chooser: what it lists, what a chosen path means, a path typed frame by frame.
#include <gtest/gtest.h>

#include <filesystem>

#include "app/fileChooser.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using namespace marv;
namespace fs = std::filesystem;

TEST(FileChooser, ListsFoldersFirstThenInputFilesOnly) {
  const fs::path root = marvtest::scratchFolder("chooser-list");
  fs::create_directories(root / "zeta");
  fs::create_directories(root / "alpha");
  fs::create_directories(root / ".hidden");
  for (const char* name : {"param.txt", "bcXY0.BMP", "bc.stl", "notes.md", "dump.raw", ".history"})
    marvtest::writeText(root / name, "x");
  const std::vector<std::string> expected = {"alpha/", "zeta/", "bc.stl", "bcXY0.BMP", "param.txt"};
  EXPECT_EQ(listChoosable(root.string()), expected);
  EXPECT_TRUE(listChoosable((root / "missing").string()).empty());
  fs::remove_all(root);
}

TEST(FileChooser, AProjectFolderStandsForItsParameterFileAndANewPathMustBeFree) {
  const fs::path root = marvtest::scratchFolder("chooser-resolve");
  marvtest::writeText(root / "case" / "input" / "param.txt", "1:nx 5\n");
  const std::string param = (root / "case" / "input" / "param.txt").string();
  EXPECT_EQ(resolveChosenPath((root / "case").string(), false), param);
  EXPECT_EQ(resolveChosenPath((root / "case" / ".." / "case" / "").string(), false), param);
  EXPECT_EQ(resolveChosenPath(param, false), param);
  EXPECT_EQ(resolveChosenPath(root.string(), false), "") << "a folder that is no project";
  EXPECT_EQ(resolveChosenPath("", false), "");

  EXPECT_EQ(resolveChosenPath((root / "fresh").string(), true), (root / "fresh").string());
  EXPECT_EQ(resolveChosenPath((root / "case").string(), true), "") << "an existing folder is not new";
  EXPECT_EQ(resolveChosenPath((root / "no" / "such" / "parent").string(), true), "");
  fs::remove_all(root);
}

TEST(FileChooser, APathTypedBehindTheShownFolderStartsAnew) {
  if (programAvailable("zenity") || programAvailable("kdialog")) GTEST_SKIP() << "the desktop's dialog would open";
  const fs::path root = marvtest::scratchFolder("chooser-typed");
  marvtest::writeText(root / "case" / "input" / "param.txt", "1:nx 5\n");
  appConfig cfg;
  constructAppConfig(cfg, false, false);
  inputFrame typed;
  typed.typed = (root / "case").string();
  typed.typed.insert(typed.typed.begin(), '/');  // behind the prefilled folder: "...//abs/case"
  inputFrame enter;
  enter.keysTapped = {keyEnter};
  // The chooser ignores Enter in its first 400 ms.
  std::vector<inputFrame> frames = {typed};
  std::string chosen;
  const int start = nowMs();
  while (nowMs() - start <= cfg.keyDelayMs + 50) waitMs(10);
  cfg.keyDelayMs = 0;
  frames.push_back(enter);
  {
    marvtest::scriptedRun run(frames);
    chosen = askPathInWindow(cfg, "Choose", false);
  }
  EXPECT_EQ(chosen, (root / "case" / "input" / "param.txt").string());
  fs::remove_all(root);
}

}  // namespace
