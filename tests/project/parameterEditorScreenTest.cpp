// The parameter editor's screen driven frame by frame: typed values, the
// refusal of values that are no numbers, reordering, adding and removing
// rows, scrolling past the end, and what accepting and cancelling leave in
// param.txt.
#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <string>

#include "project/parameterEditorScreen.h"
#include "project/parameterTable.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using namespace marv;
namespace fs = std::filesystem;

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
    folder_ = marvtest::scratchFolder("editor");
    previous_ = fs::current_path();
    fs::create_directories(folder_ / "input");
    fs::current_path(folder_);
    constructAppConfig(cfg, false, false);
    cfg.showMessage = keepMessage;
    lastMessage.clear();
    namesToAdd.clear();
    screen.askNewName = nextName;
    screen.confirmRemove = sayYes;
  }
  void TearDown() override {
    fs::current_path(previous_);
    fs::remove_all(folder_);
  }
  void writeParams(const std::string& text) { marvtest::writeText(folder_ / "input" / "param.txt", text); }
  std::string params() const { return marvtest::readText(folder_ / "input" / "param.txt"); }

  // Runs the editor under a script; returns its result.
  int run(std::vector<inputFrame> frames) {
    marvtest::scriptedRun script(std::move(frames));
    return runEditorScreen(screen, editor, cfg);
  }

  // Places of the screen's buttons.
  int h() const { return cfg.textHeight; }
  int g() const { return cfg.textGap; }
  int s() const { return cfg.buttonSize + g() / 2; }
  std::vector<inputFrame> clickProceed() const { return marvtest::click(cfg.proceedX + 10, cfg.proceedY + 10); }
  std::vector<inputFrame> clickSwapUp() const {
    return marvtest::click(cfg.proceedX + 10, cfg.cancelY - 4 * g() - 3 * s() + 10);
  }
  std::vector<inputFrame> clickSwapDown() const {
    return marvtest::click(cfg.proceedX + 10, cfg.cancelY - 2 * (2 * g() + s()) + 10);
  }
  std::vector<inputFrame> clickAdd() const {
    return marvtest::click(cfg.cancelX + 10, cfg.cancelY - s() - 2 * g() + 10);
  }
  std::vector<inputFrame> clickRemove() const {
    return marvtest::click(cfg.proceedX + 10, cfg.cancelY - s() - 2 * g() + 10);
  }

  appConfig cfg;
  parameterEditor editor;
  editorScreen screen;

 private:
  fs::path folder_, previous_;
};

inputFrame typing(const std::string& text) {
  inputFrame f;
  f.typed = text;
  return f;
}

TEST(ValueFilter, NumbersPassAndEverythingElseIsRefused) {
  const parameterEntry latts = lookupParameter("latts");
  const parameterEntry uinb = lookupParameter("uinb");
  std::string out = "unchanged";
  struct row {
    const char* text;
    bool ok;
    const char* kept;
  };
  for (const row& r : {row{"1,000", true, "1000"}, row{" 2.5e-3 ", true, "2.5e-3"}, row{"-7", true, "-7"},
                       row{"abc", false, ""}, row{"", false, ""}, row{"10abc", false, ""}, row{"1e999", false, ""},
                       row{"0x10", false, ""}, row{"inf", false, ""}, row{"-", false, ""}}) {
    out = "unchanged";
    EXPECT_EQ(filterValue(latts, r.text, out), r.ok) << r.text;
    EXPECT_EQ(out, r.ok ? std::string(r.kept) : std::string("unchanged")) << r.text;
  }
  EXPECT_TRUE(filterValue(uinb, "-", out)) << "an inflow value may be the dash";
  EXPECT_EQ(out, "-");
}

TEST_F(editorCase, TypedValueIsCommittedWhenTheSelectionMovesAndWrittenOnAccept) {
  writeParams("1:nx 5\n2:latts 10\n3:ny 6\n");
  std::vector<inputFrame> frames = {typing(",000")};
  marvtest::append(frames, marvtest::press(keyArrowDown));
  marvtest::append(frames, clickProceed());
  ASSERT_EQ(run(frames), 1);
  EXPECT_EQ(cfg.latts, 10000);
  EXPECT_NE(params().find("002:latts                               10000  // End time step."), std::string::npos)
      << params();
}

TEST_F(editorCase, AValueThatIsNoNumberIsRefusedAndNeverBecomesZero) {
  writeParams("1:nx 5\n2:latts 10\n3:ny 6\n");
  const std::string before = params();
  // Moving away from "10abc" keeps 10 and says why.
  std::vector<inputFrame> frames = {typing("abc")};
  marvtest::append(frames, marvtest::press(keyArrowDown));
  marvtest::append(frames, marvtest::press(keyEsc));
  ASSERT_EQ(run(frames), -1);
  EXPECT_EQ(editor.entries[1].value, "10");
  EXPECT_NE(screen.message.find("\"10abc\" is not a number"), std::string::npos) << screen.message;
  EXPECT_EQ(params(), before);

  // Accepting with a bad value in the field is refused with a message: the
  // screen stays until the user cancels, and the file is left as it was.
  frames = {typing("abc")};
  marvtest::append(frames, clickProceed());
  marvtest::append(frames, marvtest::press(keyEsc));
  ASSERT_EQ(run(frames), -1);
  EXPECT_NE(lastMessage.find("is not a number"), std::string::npos) << lastMessage;
  EXPECT_EQ(params(), before);
}

TEST_F(editorCase, CancelLeavesTheFileByteForByte) {
  const std::string odd = "// my notes\r\n1:nx 5 // first\r\n\r\n2:latts 1,5\n# mark\nfree text\n3:ny 6";
  writeParams(odd);
  std::vector<inputFrame> frames = {typing("99")};
  marvtest::append(frames, marvtest::press(keyArrowDown));
  marvtest::append(frames, clickSwapUp());
  marvtest::append(frames, marvtest::press(keyEsc));
  ASSERT_EQ(run(frames), -1);
  EXPECT_EQ(params(), odd);
}

TEST_F(editorCase, SwapButtonsReorderTheRowsInTheFile) {
  writeParams("1:nx 5\n2:latts 10\n3:ny 6\n");
  std::vector<inputFrame> frames = clickSwapUp();  // latts above nx
  marvtest::append(frames, marvtest::press(keyArrowDown));
  marvtest::append(frames, marvtest::press(keyArrowDown));
  marvtest::append(frames, clickSwapDown());  // the last row cannot go further down
  marvtest::append(frames, clickProceed());
  ASSERT_EQ(run(frames), 1);
  const std::string text = params();
  const auto at = [&](const char* name) { return text.find(name); };
  EXPECT_LT(at(":latts"), at(":nx"));
  EXPECT_LT(at(":nx"), at(":ny"));
  EXPECT_NE(text.find("001:latts"), std::string::npos) << "the leading number is the new position";
}

TEST_F(editorCase, AddedRowsTakeTheSelectedPlace) {
  writeParams("1:nx 5\n2:ny 6\n");
  namesToAdd = {"la tts", "---- Notes ----", "frobnicate", "deltat"};
  std::vector<inputFrame> frames;
  for (int i = 0; i < 4; ++i) marvtest::append(frames, clickAdd());
  marvtest::append(frames, marvtest::press(keyEsc));
  ASSERT_EQ(run(frames), -1);
  ASSERT_EQ(editor.count, 6);
  // Each new row went in at the selected row, which then selects it.
  EXPECT_EQ(editor.entries[1].name, "deltat");
  EXPECT_EQ(editor.entries[2].name, "frobnicate");
  EXPECT_EQ(editor.entries[3].description, "---- Notes ----");
  EXPECT_EQ(editor.entries[3].isTextLine, 1);
  EXPECT_EQ(editor.entries[4].name, "latts");
  EXPECT_EQ(editor.entries[4].index, 16);
  EXPECT_EQ(editor.entries[4].description, "End time step.");
  EXPECT_EQ(editor.entries[4].value, "0");
  EXPECT_EQ(editor.entries[2].index, unknownParameter);
  EXPECT_EQ(editor.entries[2].listNumber, -1) << "an unknown name shows no number";
  EXPECT_EQ(editor.entries[5].name, "ny");
}

TEST_F(editorCase, AddingDeltatGreysCfl) {
  writeParams("1:cfl 0.3\n2:nx 5\n");
  namesToAdd = {"deltat"};
  std::vector<inputFrame> frames = clickAdd();
  marvtest::append(frames, marvtest::press(keyEsc));
  ASSERT_EQ(run(frames), -1);
  EXPECT_EQ(editor.entries[0].name, "cfl");
  EXPECT_EQ(editor.entries[0].enabled, 0);
}

TEST_F(editorCase, AnUnpickedChoiceIsRefusedUntilAnOptionIsChosen) {
  writeParams("1:nx 5\n2:ny 5\n");
  namesToAdd = {"openPresFlag"};
  std::vector<inputFrame> frames = clickAdd();
  marvtest::append(frames, clickProceed());
  marvtest::append(frames, marvtest::press(keyRight));
  marvtest::append(frames, clickProceed());
  ASSERT_EQ(run(frames), 1);
  EXPECT_NE(lastMessage.find("openPresFlag"), std::string::npos) << lastMessage;
  EXPECT_EQ(cfg.openPresFlag, 0);
  EXPECT_NE(params().find(":openPresFlag                            0"), std::string::npos);
}

TEST_F(editorCase, RemoveTakesTheSelectedRowButNeverTheLast) {
  writeParams("1:nx 5\n2:latts 10\n3:ny 6\n");
  std::vector<inputFrame> frames = clickRemove();
  marvtest::append(frames, clickProceed());
  ASSERT_EQ(run(frames), 1);
  EXPECT_EQ(params().find(":latts"), std::string::npos);
  EXPECT_EQ(editor.count, 2);

  writeParams("1:nx 5\n");
  frames = clickRemove();
  marvtest::append(frames, marvtest::press(keyEsc));
  ASSERT_EQ(run(frames), -1);
  EXPECT_EQ(editor.count, 1) << "the only row stays";
}

TEST_F(editorCase, ScrollStopsAtTheEndAndEndShowsTheLastRow) {
  std::string text;
  for (int i = 0; i < 60; ++i)
    text += std::to_string(i + 1) + ":name" + std::to_string(i) + " " + std::to_string(i) + "\n";
  writeParams(text);
  inputFrame wheel;
  wheel.wheel = -500;
  std::vector<inputFrame> frames = {wheel, wheel};
  marvtest::append(frames, marvtest::press(keyEsc));
  ASSERT_EQ(run(frames), -1);
  const int pitch = h() + g();
  const int total = pitch * (60 + 2);
  EXPECT_EQ(screen.scrollY, total - screen.listHeight) << "the wheel runs into the end of the list";

  frames = marvtest::press(keyEnd);
  marvtest::append(frames, marvtest::idle(2));
  marvtest::append(frames, marvtest::press(keyEsc));
  ASSERT_EQ(run(frames), -1);
  EXPECT_EQ(screen.selected, 59);
  const int rowY = pitch * 59 + g();
  EXPECT_GE(rowY, screen.scrollY);
  EXPECT_LE(rowY + h(), screen.scrollY + screen.listHeight) << "the selected row is in view";
}

TEST_F(editorCase, MissingFileGivesMessage45) {
  EXPECT_EQ(runEditorScreen(screen, editor, cfg), -1);
  EXPECT_EQ(lastMessage, screenText(cfg, 45));
}

TEST_F(editorCase, AnalysisModeAppliesButDoesNotSave) {
  writeParams("1:nx 5\n2:latts 10\n3:ny 6\n");
  const std::string before = params();
  cfg.analysisMode = 1;
  std::vector<inputFrame> frames = {typing("0")};
  marvtest::append(frames, clickProceed());
  ASSERT_EQ(run(frames), 1);
  EXPECT_EQ(cfg.latts, 100);
  EXPECT_EQ(params(), before);
}

}  // namespace
