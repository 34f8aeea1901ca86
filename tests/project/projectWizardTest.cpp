// The project screens: paths, opening and creating a project on disk, and the screens played frame by frame.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "app/screenKit.h"
#include "domain/bitmapTestSupport.h"
#include "project/projectWizard.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using namespace marv;
namespace fs = std::filesystem;

std::string lastMessage;
void keepMessage(appConfig&, const char* text) { lastMessage = text; }

struct wizardCase {
  appConfig cfg;
  std::string chosen, start;
  projectWizard wizard;
  wizardCase() {
    constructAppConfig(cfg, false, false);
    cfg.showMessage = keepMessage;
    cfg.lastKeyMs = nowMs() - 10000;
    start = fs::current_path().string();
    constructWizard(wizard, cfg, chosen, start);
  }
  ~wizardCase() {
    destroyWizard(wizard);
    fs::current_path(start);
  }
};

// Runs a screen of the wizard under a script; its result.
int play(int (*screen)(projectWizard&, appConfig&), wizardCase& c, std::vector<inputFrame> frames) {
  marvtest::scriptedRun run(std::move(frames));
  return screen(c.wizard, c.cfg);
}

TEST(ProjectPaths, FileInAnInputFolderAndFoldersToCreate) {
  // The project's name, folder, input folder and parameter file that a path gives.
  const auto paths = [](const std::string& path, bool isFolder) {
    projectWizard w;
    const std::string name = projectFromPath(w, path, isFolder);
    return name + "|" + w.projectDir + "|" + w.inputDir + "|" + w.paramFilePath;
  };
  EXPECT_EQ(paths("/data/runs/box/input/param.txt", false),
            "box|/data/runs/box/|/data/runs/box/input/|/data/runs/box/input/param.txt");
  // Any file one level below the project counts, whatever its folder's name.
  EXPECT_EQ(paths("/data/runs/box/pictures/bcXY0.bmp", false).substr(0, 44),
            "box|/data/runs/box/|/data/runs/box/pictures/");
  EXPECT_EQ(paths("/data/runs/new case/", true),
            "new case|/data/runs/new case/|/data/runs/new case/input/|/data/runs/new case/input/param.txt");
  EXPECT_EQ(displayPath("C:\\runs\\box\\") + "|" + folderOf("/a/b/bcXY0.bmp") + "|" + folderOf("plain"),
            "C:/runs/box/|/a/b/|");
}

TEST(ProjectFolder, NewProjectCopiesBitmapsModelAndParametersOnly) {
  wizardCase c;
  const fs::path root = marvtest::scratchFolder("wizard-new");
  const fs::path source = root / "source" / "input";
  for (const char* bitmap : {"bcXY0.bmp", "bcZX3.bmp"})
    marvtest::writeBmp(source / bitmap, 4, 4, [](int, int) { return marvtest::rgb{}; });
  for (const char* other : {"bcXY1.bmp", "viz.txt", "bmp.txt"}) marvtest::writeText(source / other, "x\n");
  marvtest::writeText(source / "bc.stl", "solid x\nendsolid x\n");
  marvtest::writeText(source / "param.txt", "1:nx 9\n");
  c.wizard.newProject = 1;
  projectFromPath(c.wizard, (root / "fresh").string(), true);
  c.wizard.sourceDir = source.string() + "/";
  ASSERT_EQ(openProjectFolder(c.wizard, c.cfg), 1) << c.wizard.message;
  EXPECT_EQ(fs::canonical(fs::current_path()), fs::canonical(root / "fresh")) << "the project is the working folder";
  for (const char* sub : {"input", "figs", "dump"}) EXPECT_TRUE(fs::is_directory(root / "fresh" / sub)) << sub;
  // A file that is no picture is not copied as a bitmap; viz.txt and bmp.txt stay behind.
  const fs::path input = root / "fresh" / "input";
  for (const auto& [file, copied] : std::initializer_list<std::pair<const char*, bool>>{
           {"bcXY0.bmp", true}, {"bcZX3.bmp", true}, {"bcXY1.bmp", false}, {"viz.txt", false}, {"bmp.txt", false}})
    EXPECT_EQ(fs::exists(input / file), copied) << file;
  EXPECT_EQ(marvtest::readText(input / "bc.stl"), "solid x\nendsolid x\n");
  EXPECT_EQ(marvtest::readText(input / "param.txt"), "1:nx 9\n");
  EXPECT_EQ(fs::path(c.cfg.absProjPath), fs::canonical(root / "fresh") / "");
  // The same folder again is refused as a new project, with the folder named;
  // as an existing one it keeps its files and gets its missing folders back.
  fs::current_path(c.start);
  ASSERT_EQ(openProjectFolder(c.wizard, c.cfg), -1);
  EXPECT_EQ(c.wizard.message, "Project directory is not valid. [filepath] " + (root / "fresh").string() + "/.");
  fs::remove_all(root / "fresh" / "figs");
  marvtest::writeText(root / "fresh" / "dump" / "keep.txt", "k");
  c.wizard.newProject = 0;
  projectFromPath(c.wizard, (input / "param.txt").string(), false);
  ASSERT_EQ(openProjectFolder(c.wizard, c.cfg), 1);
  EXPECT_TRUE(fs::is_directory(root / "fresh" / "figs"));
  EXPECT_EQ(marvtest::readText(root / "fresh" / "dump" / "keep.txt") + marvtest::readText(input / "param.txt"),
            "k1:nx 9\n");
  fs::current_path(c.start);
  fs::remove_all(root);
}

TEST(StartScreen, RowsFireOnlyForAPressThatBeganOnThem) {
  wizardCase c;
  const int x = c.wizard.listLeft + 5, y = c.wizard.listTop + 5;  // on "Create a new project"
  // A press that begins beside the row and is dragged onto it does nothing;
  // a fresh press after the button went up on the row fires it.
  const std::vector<inputFrame> dragged = {marvtest::pointer(5, 5, true), marvtest::pointer(x, y, true),
                                           marvtest::pointer(x, y, true), marvtest::pointer(x, y)};
  EXPECT_EQ(play(runStartScreen, c, marvtest::join({dragged, marvtest::press(keyEsc)})), -1);
  EXPECT_EQ(play(runStartScreen, c, marvtest::join({dragged, marvtest::click(x, y)})), 2);
  // The analysis text beside the load row has its own result.
  const std::string load = screenText(c.cfg, 17);
  const int ax = c.wizard.listLeft + textWidthInFont(c.cfg.fontBold, "%s", load.c_str()) + 3 * c.cfg.textHeight + 5;
  const int ay = c.wizard.listTop + 2 * (2 * c.cfg.textHeight + c.cfg.textGap) - c.cfg.textHeight + 5;
  EXPECT_EQ(play(runStartScreen, c, marvtest::click(ax, ay)), 4);
}

TEST(StartScreen, ProceedOpensTheLastProjectEnterCountsOnlyAfterTheDebounceAndEscCancels) {
  wizardCase c;
  c.cfg.absProjPath = "/somewhere/box/";
  EXPECT_EQ(play(runStartScreen, c, marvtest::click(c.cfg.proceedX + 10, c.cfg.proceedY + 10)), 1);
  EXPECT_EQ(c.chosen, "/somewhere/box/input/param.txt");
  EXPECT_EQ(c.wizard.newProject, 0);
  c.chosen.clear();  // a path in the buffer ends the screen at once
  EXPECT_EQ(play(runStartScreen, c, marvtest::press(keyEsc)), -1);
  screenInput in;
  in.enter = true;
  in.now = 100000;
  c.cfg.absProjPath = appConfig{}.absProjPath;  // no project before
  c.cfg.lastKeyMs = in.now - 400;               // Enter still held from the screen before
  EXPECT_EQ(startScreenFrame(c.wizard, c.cfg, in), 0);
  EXPECT_TRUE(c.chosen.empty());
  c.cfg.lastKeyMs = in.now - 401;
  EXPECT_EQ(startScreenFrame(c.wizard, c.cfg, in), 1);
  EXPECT_EQ(c.chosen, "./input/param.txt") << "no project before: the start folder";
  c.chosen = "/x/input/param.txt";
  EXPECT_EQ(startScreenFrame(c.wizard, c.cfg, screenInput{}), 1) << "a path that a menu command put in the buffer";
}

std::string askedTitle;
std::string pickSource(appConfig&, const std::string& title, bool) {
  askedTitle = title;
  return "/data/picked/input/param.txt";
}

TEST(SourceScreen, ADropOrAClickIntoTheBoxChoosesTheFolderAndAnExistingProjectSkipsTheScreen) {
  wizardCase c;
  c.wizard.newProject = 1;
  c.chosen = "/tmp/marv-never-made";
  inputFrame drop = marvtest::pointer(0, 0);
  drop.dropped = {"/data/source/input/bcXY0.bmp"};
  EXPECT_EQ(play(runSourceScreen, c, {marvtest::pointer(0, 0), drop, marvtest::pointer(0, 0)}), 1);
  EXPECT_EQ(c.wizard.sourceDir + "|" + c.wizard.sourceText + "|" + c.cfg.projectName,
            "/data/source/input/|/data/source/input/|marv-never-made");
  c.wizard.askFile = pickSource;
  EXPECT_EQ(play(runSourceScreen, c, marvtest::click(c.cfg.startWidth / 2, c.cfg.startHeight / 2)), 1);
  EXPECT_EQ(askedTitle, screenText(c.cfg, 41));
  EXPECT_EQ(c.wizard.sourceDir, "/data/picked/input/");
  EXPECT_EQ(play(runSourceScreen, c, marvtest::press(keyEsc)), -1);
  c.wizard.newProject = 0;
  c.chosen = "/data/old/input/param.txt";
  EXPECT_EQ(runSourceScreen(c.wizard, c.cfg), 1) << "shown only for a new project";
  EXPECT_EQ(c.cfg.projectName, "old");
}

TEST(ConfirmScreen, ProceedCreatesTheProjectAndAnExistingFolderIsReported) {
  wizardCase c;
  const fs::path root = marvtest::scratchFolder("wizard-confirm");
  c.wizard.newProject = 1;
  projectFromPath(c.wizard, (root / "made").string(), true);
  c.wizard.sourceDir = (root / "nothing").string() + "/";
  const std::vector<inputFrame> proceed = marvtest::click(c.cfg.proceedX + 10, c.cfg.proceedY + 10);
  EXPECT_EQ(play(runConfirmScreen, c, proceed), 1);
  EXPECT_TRUE(fs::is_directory(root / "made" / "dump"));
  fs::current_path(c.start);
  lastMessage.clear();
  c.cfg.keyDelayMs = 0;
  EXPECT_EQ(play(runConfirmScreen, c, proceed), -1);
  EXPECT_NE(lastMessage.find("Project directory is not valid."), std::string::npos);
  fs::remove_all(root);
}

}  // namespace
