// The project's text files: param.txt (order, text lines, unknown and repeated names, the value filter, the line
// limit, backups, damage), viz.txt and .history (exact formats, round trips, the readers' rules).
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "project/historyFile.h"
#include "project/parameterFile.h"
#include "project/parameterTable.h"
#include "project/vizFile.h"
#include "testSupport.h"

namespace {

using marv::appConfig;
using marv::parameterEditor;

struct readResult {
  parameterEditor editor;
  int count = 0;
};

readResult readFromText(const std::string& text) {
  auto folder = marvtest::scratchFolder("param");
  marvtest::writeText(folder / "param.txt", text);
  readResult r;
  marv::resetParameterEditor(r.editor);
  marv::appConfig cfg;
  r.count = marv::readParameterFile(r.editor, cfg, (folder / "param.txt").string());
  std::filesystem::remove_all(folder);
  return r;
}

// One entry in a line: its number in the table, its name, value and description, or "text" and the text of a text line.
std::vector<std::string> summary(const readResult& r) {
  std::vector<std::string> out;
  for (int i = 0; i < r.count; ++i) {
    const marv::parameterEntry& e = r.editor.entries[i];
    out.push_back(e.isTextLine ? "text " + e.description
                               : std::to_string(e.index) + " " + e.name + "=" + e.value + " " + e.description);
  }
  return out;
}

TEST(ParameterFile, KeepsOrderTextLinesUnknownAndRepeatedNames) {
  const readResult r = readFromText(
      "// a comment that goes\n# a mark that goes\n---- Boundary ----\n012:latts 500 // x\n\n900:LATTS 700\n"
      "003:nosuchname 4.5 // kept\nname 1.0\n005:cfl 0.3\n");
  const std::string latts = marv::parameterDescription(16), cfl = marv::parameterDescription(17);
  const std::string unknown = std::to_string(marv::unknownParameter);
  EXPECT_EQ(summary(r), (std::vector<std::string>{"text ---- Boundary ----\n", "16 latts=500 " + latts,
                                                  "16 LATTS=700 " + latts,  // names compare without case
                                                  unknown + " nosuchname=4.5 NA",
                                                  "text name 1.0\n",  // no leading digit: text
                                                  "17 cfl=0.3 " + cfl}));
  EXPECT_EQ(r.editor.entries[5].valueType, 1);
}

// Values keep only number characters, a name needs a colon, and the end
// mark written by the program does not end reading.
TEST(ParameterFile, LineRules) {
  const readResult r =
      readFromText("1:peps 1.5e-3abc\n2:nx 3,5\n3:ny\n4:uinb -\n5:cmode\t1//c\n12latts 500\n#End of file\n6:ny 6\n");
  ASSERT_EQ(r.count, 7);
  const auto& e = r.editor.entries;
  std::string values;
  for (int i : {0, 1, 2, 3, 4, 6}) values += e[i].value + "|";
  EXPECT_EQ(values, "1.5e-3|35||-|1|6|") << "read on past the end mark";
  EXPECT_EQ(std::pair(e[4].isChoice, e[4].choiceCount), std::pair(1, 2));
  EXPECT_EQ(e[5].name + std::to_string(e[5].index), std::to_string(marv::unknownParameter)) << "no colon: no name";
}

TEST(ParameterFile, WritesExactHeadAndLinesAndReadsBackTheSameList) {
  const readResult r = readFromText("---- Case ----\n7:nx 65\n1:cmode 0\n");
  const std::string text = marv::formatParameterFile(r.editor, "2021R3.0");
  const std::string head =
      "//==========================================================================//\n"
      "//   Marvanesse+ parameter file...              -- 2021R3.0 --                //\n";
  EXPECT_EQ(text.substr(0, head.size()), head);
  const std::string body =
      "//==========================================================================//\n"
      "---- Case ----\n\n"
      "002:nx                                     65  // " +
      std::string(marv::parameterDescription(8)) +
      "\n"
      "003:cmode                                   0  // " +
      marv::parameterDescription(0) + "\n#End of file";
  ASSERT_GE(text.size(), body.size());
  EXPECT_EQ(text.substr(text.size() - body.size()), body);
  // A written file reads back as the same list and writes the same text.
  const readResult again = readFromText(text);
  ASSERT_EQ(again.count, r.count);
  EXPECT_EQ(marv::formatParameterFile(again.editor, "2021R3.0"), text);
}

TEST(ParameterFile, ReadsAtMostHundredLinesCommentsIncludedAndRefusesAMissingFile) {
  std::string text;
  for (int i = 0; i < 11; ++i) text += "// head\n";
  for (int i = 0; i < 150; ++i) text += std::to_string(i) + ":nx " + std::to_string(i) + "\n";
  const readResult r = readFromText(text);
  EXPECT_EQ(std::to_string(r.count) + " " + r.editor.entries[88].value, "89 88");
  EXPECT_EQ(readFromText(marv::formatParameterFile(parameterEditor{}, "v")).count, 0) << "a head alone";
  parameterEditor editor;
  marv::appConfig cfg;
  EXPECT_EQ(marv::readParameterFile(editor, cfg, "/nonexistent/param.txt"), -1);
}

TEST(ParameterFile, RewriteLossesNameWhatTheWriterDrops) {
  parameterEditor editor = readFromText("---- Case ----\n1:nx 5\n2:cmode 1\n").editor;
  std::string many;
  for (int i = 0; i < 150; ++i) many += std::to_string(i) + ":nx 5\n";
  const std::pair<std::string, std::string> cases[] = {
      {marv::formatParameterFile(editor, "2021R3.0"), ""},  // the program's own file
      {"", ""},
      {"1:nx 5\r\n   // my own\r\n2:ny 5\n", "1 comment line"},
      {"# mark\n1:nx 5\n#End of file", "1 comment line"},  // only the end mark is the writer's
      {"1:nx 5 // finer later\n2:ny 5 //\n", "1 note of your own after //"},
      {"1:nx 5\n" + std::string(500, 'x') + "\n", "1 line longer than 399 characters"},
      {many + "// tail\n", "51 lines past the hundredth"},
      {"// a\n// b\n", "2 comment lines"}};
  for (const auto& [text, losses] : cases) EXPECT_EQ(marv::rewriteLosses(text), losses) << text.substr(0, 40);
}

TEST(ParameterFile, ARewriteThatDropsTextKeepsEveryOriginalAsABackup) {
  marvtest::inFolder here(marvtest::scratchFolder("backup"));
  EXPECT_EQ(marv::writeParameterFile(readFromText("1:nx 5\n").editor, "v"), -1) << "no input folder: nothing written";
  EXPECT_FALSE(std::filesystem::exists("input"));
  std::filesystem::create_directory("input");
  std::string original = "// the user's own head\r\n";
  for (int i = 1; i <= 150; ++i) original += std::to_string(i) + ":nx " + std::to_string(i % 7 + 2) + "\n";
  original += std::string("\0\xff bytes\n", 9);
  marvtest::writeText("input/param.txt", original);
  parameterEditor editor;
  marv::resetParameterEditor(editor);
  marv::appConfig cfg;
  ASSERT_EQ(marv::readParameterFile(editor, cfg, "input/param.txt"), 99);
  std::string losses;
  EXPECT_EQ(marv::writeParameterFile(editor, "v", &losses), 2);
  EXPECT_EQ(marvtest::readText("input/param.txt.bak"), original) << "byte for byte";
  EXPECT_NE(losses.find("52 lines past the hundredth, 1 comment line|input/param.txt.bak"), std::string::npos)
      << losses;
  // The rewritten file holds 99 entries and a head of 11 lines: read again
  // it loses entries once more. The first backup stays; a second one is made.
  const std::string rewritten = marvtest::readText("input/param.txt");
  ASSERT_EQ(marv::readParameterFile(editor, cfg, "input/param.txt"), 89);
  EXPECT_EQ(marv::writeParameterFile(editor, "v", &losses), 2);
  EXPECT_EQ(marvtest::readText("input/param.txt.bak"), original);
  EXPECT_EQ(marvtest::readText("input/param.txt.bak2"), rewritten);
  // A file that loses nothing is written without a backup.
  EXPECT_EQ(marv::writeParameterFile(editor, "v", &losses), 1);
  EXPECT_FALSE(std::filesystem::exists("input/param.txt.bak3"));
}

TEST(ParameterFile, ALinkIsWrittenThroughAndStaysALink) {
  marvtest::inFolder here(marvtest::scratchFolder("link"));
  std::filesystem::create_directories("input");
  std::filesystem::create_directories("shared/cases");
  marvtest::writeText("shared/cases/param.txt", "1:nx 5\n");
  std::filesystem::create_symlink("cases/param.txt", "shared/current");  // a chain of two relative links
  std::filesystem::create_symlink("../shared/current", "input/param.txt");
  parameterEditor editor = readFromText("1:nx 9\n").editor;
  ASSERT_EQ(marv::writeParameterFile(editor, "v"), 1);
  EXPECT_TRUE(std::filesystem::is_symlink("input/param.txt") && std::filesystem::is_symlink("shared/current"));
  EXPECT_EQ(marvtest::readText("shared/cases/param.txt"), marv::formatParameterFile(editor, "v"));
  EXPECT_FALSE(std::filesystem::exists("shared/cases/param.txt.tmp"));
}

// Every damaged file under tests/data/param reads without fault, keeps at most
// 100 entries of bounded length, and survives a write and a second read.
TEST(ParameterFile, DamagedFilesReadSafely) {
  int files = 0;
  for (const auto& item : std::filesystem::directory_iterator(MARV_TEST_DATA "/param")) {
    ++files;
    parameterEditor editor;
    marv::resetParameterEditor(editor);
    marv::appConfig cfg;
    const int count = marv::readParameterFile(editor, cfg, item.path().string());
    ASSERT_GE(count, 0) << item.path();
    ASSERT_LE(count, 100) << item.path();
    for (int i = 0; i < count; ++i) {
      EXPECT_LT(editor.entries[i].description.size(), 1000u) << item.path() << " at entry " << i;
      EXPECT_LT(editor.entries[i].value.size(), 400u) << item.path() << " at entry " << i;
    }
    const readResult again = readFromText(marv::formatParameterFile(editor, "v"));
    // Behind the eleven-line head of a written file only 89 lines fit.
    EXPECT_EQ(again.count, std::min(count, 89)) << item.path();
  }
  EXPECT_GE(files, 5);
}

// Each row of the table names a field of its own: storing into one parameter
// changes that field alone, in the way of its kind.
TEST(ParameterTable, EveryParameterHasItsOwnFieldAndStoresByItsKind) {
  using namespace marv;
  for (int n = 0; n < numParameters; ++n) {
    appConfig cfg;
    double before[numParameters];
    for (int m = 0; m < numParameters; ++m) before[m] = parameterFieldValue(cfg, m);
    setParameterField(cfg, n, 2.75);
    const double v = parameterFieldValue(cfg, n);
    const std::string name = parameterName(n);
    if (name == "presAdjustFlag" || name == "ageFlag")
      EXPECT_EQ(v, 1.0) << name;
    else if (lookupParameter(name).valueType == 1)
      EXPECT_EQ(v, 2.75) << name;
    else
      EXPECT_EQ(v, 2.0) << name << " truncates";
    for (int m = 0; m < numParameters; ++m) {
      if (m == n) continue;
      EXPECT_EQ(parameterFieldValue(cfg, m), before[m]) << name << " also changed " << parameterName(m);
    }
  }
  EXPECT_EQ(parameterRowOf(numParameters), nullptr);
}

long countLines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST(VizFile, WritesSeventyOneLinesWithTheRepeatedKey) {
  appConfig cfg;
  cfg.particleDivNum = 12;
  const std::string text = marv::formatVizFile(cfg);
  EXPECT_EQ(countLines(text), 71);
  // particleDivNum twice, the second time after animationRotationFlag.
  const std::string key = "\nparticleDivNum                           12\n";
  const std::size_t first = text.find(key), second = text.find(key, first + 1);
  ASSERT_NE(second, std::string::npos);
  EXPECT_EQ(text.find(key, second + 1), std::string::npos);
  EXPECT_EQ(text.rfind('\n', second - 1), text.rfind("\nanimationRotationFlag", second));
  EXPECT_EQ(marv::formatVizLine(16, 0.99), "CorrVectorThres                          9.90000000e-01");
  EXPECT_EQ(marv::formatVizLine(2, 1.9), "showOutlineFlag                          1");
}

// A domain of 2 x 1 x 1, against which the cross-sections are limited.
appConfig domain() {
  appConfig cfg;
  cfg.lx = 2.0;
  cfg.ly = cfg.lz = 1.0;
  return cfg;
}

TEST(VizFile, RoundTripAndReaderRules) {
  marvtest::inFolder here(marvtest::scratchFolder("viz"));
  std::filesystem::create_directory("input");
  appConfig written = domain();
  written.cameraRadius = 123.5f;
  written.manualMaxValue = -3.25e-7;
  marv::syncViz(written, 1);
  EXPECT_FALSE(std::filesystem::exists("input/viz.txt.tmp"));
  appConfig read = domain();
  marv::syncViz(read, 0);
  EXPECT_EQ(marv::formatVizFile(read), marv::formatVizFile(written)) << "every key, at full precision";
  // Later key wins, unknown keys are read over, flags take any non-zero, cross-sections are limited to the domain.
  marvtest::writeText("input/viz.txt",
                      "numProbes 3\nbogusKey 9\nNUMPROBES 5\npolygonFrames 0.5\nzCrosssectionXY 5\n"
                      "xCrosssectionYZ -1\nyCrosssectionXZ 0.5\n");
  appConfig cfg = domain();
  marv::syncViz(cfg, 0);
  EXPECT_EQ((std::vector<double>{double(cfg.numProbes), double(cfg.polygonFrames), cfg.zCrosssectionXY,
                                 cfg.xCrosssectionYZ, cfg.yCrosssectionXZ}),
            (std::vector<double>{5, 1, 1.0, 0.0, 0.5}));
  EXPECT_EQ(marv::formatVizFile(cfg).find("bogusKey"), std::string::npos);
}

// Noise is the fuzz target's; these are the values at the ends of the number types.
TEST(VizFile, MissingFilesLeaveDefaultsAndExtremeValuesSaturate) {
  marvtest::inFolder here(marvtest::scratchFolder("vizbad"));
  appConfig cfg;
  marv::syncViz(cfg, 0);
  EXPECT_EQ(marv::formatVizFile(cfg), marv::formatVizFile(appConfig{}));
  std::filesystem::create_directory("input");
  marvtest::writeText("input/viz.txt", "numProbes 1e300\nshowForce nan\ncameraRadius 1e300\n");
  appConfig huge;
  marv::syncViz(huge, 0);
  EXPECT_EQ(countLines(marv::formatVizFile(huge)), 71);
  EXPECT_EQ(huge.numProbes, 2147483647) << "whole numbers saturate";
  EXPECT_EQ(huge.showForce, 0) << "nan reads as 0";
}

TEST(HistoryFile, WritesDefaultsWhenMissingReadsBackAndCutsAPathAtItsBlank) {
  const auto folder = marvtest::scratchFolder("history");
  marvtest::inFolder here(folder);
  appConfig cfg;
  marv::syncHistory(cfg, 0, "");
  const auto line = [](const char* key, const std::string& value) {
    return key + std::string(41 - std::string(key).size(), ' ') + value + "\n";
  };
  EXPECT_EQ(marvtest::readText(".history"),
            line("fontSize", "20") + line("langFlag", "0") + line("absProjPath", "./" + std::string(38, ' ')));
  for (const char* path : {"/home/user/cases/pipe", "/home/user/my cases/pipe"}) {
    cfg.textHeight = 28;
    cfg.langFlag = 1;
    cfg.absProjPath = path;
    marv::syncHistory(cfg, 1, folder.string());
    appConfig back;
    marv::syncHistory(back, 0, "");
    EXPECT_EQ(std::to_string(back.textHeight) + " " + std::to_string(back.langFlag) + " " + back.absProjPath,
              "28 1 " + std::string(path).substr(0, std::string(path).find(' ')));
  }
}

}  // namespace
