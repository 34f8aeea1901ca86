// The project screens played frame by frame: the wizard (paths, opening and creating a project on disk) and the
// parameter editor (typing, refusals, row moves, scrolling, and what accept and cancel leave).
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>

#include "app/screenKit.h"
#include "domain/bitmapTestSupport.h"
#include "project/parameterEditorScreen.h"
#include "project/parameterTable.h"
#include "project/projectWizard.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using namespace marv;
namespace fs = std::filesystem;
using marvtest::press;
using marvtest::typing;

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
  EXPECT_EQ(marvtest::readText(input / "bc.stl") + marvtest::readText(input / "param.txt"),
            "solid x\nendsolid x\n1:nx 9\n");
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
  EXPECT_EQ(play(runStartScreen, c, marvtest::join({dragged, press(keyEsc)})), -1);
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
  EXPECT_EQ(play(runStartScreen, c, press(keyEsc)), -1);
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
  EXPECT_EQ(play(runSourceScreen, c, press(keyEsc)), -1);
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

std::deque<std::string> namesToAdd;
std::string nextName(editorScreen&, appConfig&) {
  if (namesToAdd.empty()) return std::string();
  std::string name = namesToAdd.front();
  namesToAdd.pop_front();
  return name;
}
bool sayYes(editorScreen&, appConfig&) { return true; }

// A project folder with the given param.txt as the working folder.
class editorCase : public ::testing::Test {
 protected:
  void SetUp() override {
    inside_ = std::make_unique<marvtest::inFolder>(marvtest::scratchFolder("editor"));
    std::filesystem::create_directories("input");
    constructAppConfig(cfg, false, false);
    cfg.showMessage = keepMessage;
    lastMessage.clear();
    namesToAdd.clear();
    screen.askNewName = nextName;
    screen.confirmRemove = sayYes;
  }
  void TearDown() override { inside_.reset(); }
  void writeParams(const std::string& text) { marvtest::writeText("input/param.txt", text); }
  std::string params() const { return marvtest::readText("input/param.txt"); }
  // Runs the editor under a script; returns its result.
  int run(std::initializer_list<std::vector<inputFrame>> parts) {
    marvtest::scriptedRun script(marvtest::join(parts));
    return runEditorScreen(screen, editor, cfg);
  }
  // Clicks on the screen's buttons.
  std::vector<inputFrame> clickAt(int x, int rise) const { return marvtest::click(x + 10, cfg.cancelY - rise + 10); }
  int s() const { return cfg.buttonSize + cfg.textGap / 2; }
  std::vector<inputFrame> proceed() const { return clickAt(cfg.proceedX, cfg.cancelY - cfg.proceedY); }
  std::vector<inputFrame> swapUp() const { return clickAt(cfg.proceedX, 4 * cfg.textGap + 3 * s()); }
  std::vector<inputFrame> swapDown() const { return clickAt(cfg.proceedX, 2 * (2 * cfg.textGap + s())); }
  std::vector<inputFrame> add() const { return clickAt(cfg.cancelX, s() + 2 * cfg.textGap); }
  std::vector<inputFrame> remove() const { return clickAt(cfg.proceedX, s() + 2 * cfg.textGap); }
  appConfig cfg;
  parameterEditor editor;
  editorScreen screen;

 private:
  std::unique_ptr<marvtest::inFolder> inside_;
};

const char* const threeRows = "1:nx 5\n2:latts 10\n3:ny 6\n";

TEST(ValueFilter, NumbersPassAndEverythingElseIsRefused) {
  // What the value keeps, or "refused" where it is refused and left unchanged.
  const auto filtered = [](const char* name, const char* text) {
    std::string out = "refused";
    filterValue(lookupParameter(name), text, out);
    return out;
  };
  std::string all;
  for (const char* text : {"1,000", " 2.5e-3 ", "-7", "abc", "", "10abc", "1e999", "0x10", "inf", "-"})
    all += filtered("latts", text) + "|";
  EXPECT_EQ(all, "1000|2.5e-3|-7|refused|refused|refused|refused|refused|refused|refused|");
  EXPECT_EQ(filtered("uinb", "-"), "-") << "an inflow value may be the dash";
}

TEST_F(editorCase, TypedValueIsCommittedWhenTheSelectionMovesAndWrittenOnAccept) {
  writeParams(threeRows);
  ASSERT_EQ(run({{typing(",000")}, press(keyArrowDown), proceed()}), 1);
  EXPECT_EQ(cfg.latts, 10000);
  EXPECT_NE(params().find("002:latts                               10000  // End time step."), std::string::npos)
      << params();
}

// Cancel leaves the file byte for byte, whatever was typed, refused or moved.
TEST_F(editorCase, AValueThatIsNoNumberIsRefusedAndCancelLeavesTheFileByteForByte) {
  const std::string odd = "// my notes\r\n1:nx 5 // first\r\n\r\n2:latts 10\n# mark\nfree text\n3:ny 6";
  writeParams(odd);
  // Moving away from "10abc" keeps 10 and says why.
  ASSERT_EQ(run({{typing("abc")}, press(keyArrowDown), swapUp(), press(keyEsc)}), -1);
  const auto latts =
      std::find_if(editor.entries.begin(), editor.entries.end(), [](auto& e) { return e.name == "latts"; });
  EXPECT_EQ(latts->value, "10");
  EXPECT_NE(screen.message.find("\"10abc\" is not a number"), std::string::npos) << screen.message;
  EXPECT_EQ(params(), odd);
  // Accepting with a bad value in the field is refused with a message: the screen stays until the user cancels.
  ASSERT_EQ(run({{typing("abc")}, proceed(), press(keyEsc)}), -1);
  EXPECT_NE(lastMessage.find("is not a number"), std::string::npos) << lastMessage;
  EXPECT_EQ(params(), odd);
}

TEST_F(editorCase, SwapButtonsReorderTheRowsInTheFile) {
  writeParams(threeRows);
  // latts above nx; then the last row cannot go further down.
  ASSERT_EQ(run({swapUp(), press(keyArrowDown), press(keyArrowDown), swapDown(), proceed()}), 1);
  const std::string text = params();
  EXPECT_LT(text.find(":latts"), text.find(":nx"));
  EXPECT_LT(text.find(":nx"), text.find(":ny"));
  EXPECT_NE(text.find("001:latts"), std::string::npos) << "the leading number is the new position";
}

TEST_F(editorCase, AddedRowsTakeTheSelectedPlaceAndDeltatGreysCfl) {
  writeParams("1:cfl 0.3\n2:ny 6\n");
  namesToAdd = {"la tts", "---- Notes ----", "frobnicate", "deltat"};
  ASSERT_EQ(run({add(), add(), add(), add(), press(keyEsc)}), -1);
  ASSERT_EQ(editor.count, 6);
  // Each new row went in at the selected row, which then selects it.
  std::string rows;
  for (int i = 0; i < 6; ++i)
    rows += (editor.entries[i].isTextLine ? editor.entries[i].description : editor.entries[i].name) + "|";
  EXPECT_EQ(rows, "cfl|deltat|frobnicate|---- Notes ----|latts|ny|");
  EXPECT_EQ(editor.entries[0].enabled, 0) << "cfl is greyed by deltat";
  EXPECT_EQ(std::pair(editor.entries[2].index, editor.entries[2].listNumber), std::pair(unknownParameter, -1))
      << "an unknown name shows no number";
  EXPECT_EQ(
      std::to_string(editor.entries[4].index) + " " + editor.entries[4].description + " " + editor.entries[4].value,
      "16 End time step. 0");
}

TEST_F(editorCase, AnUnpickedChoiceIsRefusedUntilAnOptionIsChosen) {
  writeParams("1:nx 5\n2:ny 5\n");
  namesToAdd = {"openPresFlag"};
  ASSERT_EQ(run({add(), proceed(), press(keyRight), proceed()}), 1);
  EXPECT_NE(lastMessage.find("openPresFlag"), std::string::npos) << lastMessage;
  EXPECT_EQ(cfg.openPresFlag, 0);
  EXPECT_NE(params().find(":openPresFlag                            0"), std::string::npos);
}

TEST_F(editorCase, RemoveTakesTheSelectedRowButNeverTheLast) {
  writeParams(threeRows);
  ASSERT_EQ(run({remove(), proceed()}), 1);
  EXPECT_EQ(params().find(":latts"), std::string::npos);
  EXPECT_EQ(editor.count, 2);
  writeParams("1:nx 5\n");
  ASSERT_EQ(run({remove(), press(keyEsc)}), -1);
  EXPECT_EQ(editor.count, 1) << "the only row stays";
}

TEST_F(editorCase, ScrollStopsAtTheEndAndEndShowsTheLastRow) {
  std::string text;
  for (int i = 0; i < 60; ++i)
    text += std::to_string(i + 1) + ":name" + std::to_string(i) + " " + std::to_string(i) + "\n";
  writeParams(text);
  inputFrame wheel;
  wheel.wheel = -500;
  ASSERT_EQ(run({{wheel, wheel}, press(keyEsc)}), -1);
  const int pitch = cfg.textHeight + cfg.textGap;
  EXPECT_EQ(screen.scrollY, pitch * (60 + 2) - screen.listHeight) << "the wheel runs into the end of the list";
  ASSERT_EQ(run({press(keyEnd), marvtest::idle(2), press(keyEsc)}), -1);
  EXPECT_EQ(screen.selected, 59);
  const int rowY = pitch * 59 + cfg.textGap;
  EXPECT_GE(rowY, screen.scrollY);
  EXPECT_LE(rowY + cfg.textHeight, screen.scrollY + screen.listHeight) << "the selected row is in view";
}

TEST_F(editorCase, AMissingFileIsToldAndAnalysisModeAppliesButDoesNotSave) {
  EXPECT_EQ(runEditorScreen(screen, editor, cfg), -1);
  EXPECT_EQ(lastMessage, screenText(cfg, 45));
  writeParams(threeRows);
  const std::string before = params();
  cfg.analysisMode = 1;
  ASSERT_EQ(run({{typing("0")}, proceed()}), 1);
  EXPECT_EQ(cfg.latts, 100);
  EXPECT_EQ(params(), before);
}

}  // namespace
