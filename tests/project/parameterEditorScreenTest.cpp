// The parameter editor played frame by frame: typing, refusals, row moves, scrolling, and what accept and cancel leave.
#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <memory>
#include <string>

#include "project/parameterEditorScreen.h"
#include "project/parameterTable.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using namespace marv;
using marvtest::press;
using marvtest::typing;

std::string lastMessage;
void keepMessage(appConfig&, const char* text) { lastMessage = text; }

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

TEST_F(editorCase, AValueThatIsNoNumberIsRefusedAndNeverBecomesZero) {
  writeParams(threeRows);
  const std::string before = params();
  // Moving away from "10abc" keeps 10 and says why.
  ASSERT_EQ(run({{typing("abc")}, press(keyArrowDown), press(keyEsc)}), -1);
  EXPECT_EQ(editor.entries[1].value, "10");
  EXPECT_NE(screen.message.find("\"10abc\" is not a number"), std::string::npos) << screen.message;
  EXPECT_EQ(params(), before);
  // Accepting with a bad value in the field is refused with a message: the
  // screen stays until the user cancels, and the file is left as it was.
  ASSERT_EQ(run({{typing("abc")}, proceed(), press(keyEsc)}), -1);
  EXPECT_NE(lastMessage.find("is not a number"), std::string::npos) << lastMessage;
  EXPECT_EQ(params(), before);
}

TEST_F(editorCase, CancelLeavesTheFileByteForByte) {
  const std::string odd = "// my notes\r\n1:nx 5 // first\r\n\r\n2:latts 1,5\n# mark\nfree text\n3:ny 6";
  writeParams(odd);
  ASSERT_EQ(run({{typing("99")}, press(keyArrowDown), swapUp(), press(keyEsc)}), -1);
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
