// Record files of a thermo cavity run by the batch driver: a restart continues every one line for line.
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <string>

#include "batchRun.h"
#include "result/forceRecord.h"
#include "result/heatLossRecord.h"
#include "result/probes.h"
#include "testSupport.h"

namespace marv {
namespace {

namespace fs = std::filesystem;

const fs::path example = fs::path(MARV_TEST_DATA) / ".." / ".." / "examples" / "thermo2d";

// Each line whose first word is key (in param.txt after its "NNN:") gets
// value as its second word; the rest of the line goes. The example holds
// nfile twice. A parameter that no line holds is added before "#End of file".
std::string setKey(const std::string& text, const std::string& key, const std::string& value, bool numbered) {
  std::string out;
  bool found = false;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    std::size_t word = 0;
    if (numbered) {
      while (word < line.size() && std::isdigit(static_cast<unsigned char>(line[word]))) ++word;
      word = word > 0 && word < line.size() && line[word] == ':' ? word + 1 : std::string::npos;
    }
    if (word != std::string::npos && line.compare(word, key.size(), key) == 0 &&
        (word + key.size() == line.size() || line[word + key.size()] == ' ')) {
      line = line.substr(0, word) + key + " " + value;
      found = true;
    }
    out += line + (end < text.size() ? "\n" : "");
    start = end + 1;
  }
  const std::size_t end = out.find("#End of file");
  if (!found && numbered && end != std::string::npos) out.insert(end, "099:" + key + " " + value + "\n");
  return out;
}

// Sets each key of a param.txt (numbered) or viz.txt file.
void setKeys(const fs::path& file, std::initializer_list<std::pair<const char*, std::string>> values, bool numbered) {
  std::string text = marvtest::readText(file);
  for (const auto& [key, value] : values) text = setKey(text, key, value, numbered);
  marvtest::writeText(file, text);
}

// A copy of the example, set to record from step 0 with probes at two
// points and both walls' force and heat loss.
fs::path recordingProject() {
  const fs::path folder = marvtest::scratchFolder("records");
  fs::copy(example / "input", folder / "input", fs::copy_options::recursive);
  fs::create_directories(folder / "dump");
  fs::create_directories(folder / "figs");
  setKeys(folder / "input" / "param.txt", {{"nx", "21"}, {"ny", "21"}, {"deltat", "0.002"}, {"nfig", "0"}}, true);
  setKeys(folder / "input" / "viz.txt",
          {{"probeRecordInterval", "5"},
           {"numProbes", "2"},
           {"forceRecInterval", "5"},
           {"showForce", "1"},
           {"numRecForce", "2"},
           {"heatLossRecInterval", "5"},
           {"showHeatLoss", "1"},
           {"numRecHeatLoss", "2"}},
          false);
  // The choices as the window leaves them: the last line of each file.
  appConfig seed;
  seed.forceRecordOn[1] = seed.forceRecordOn[8] = 1;
  seed.heatRecordOn[1] = seed.heatRecordOn[8] = 1;
  marvtest::writeText(folder / "dump" / "force.txt", forceHeadLine(seed) + forceDataLine(seed));
  marvtest::writeText(folder / "dump" / "heatLoss.txt", heatLossHeadLine(seed) + heatLossDataLine(seed));
  const probeSample still;
  marvtest::writeText(folder / "dump" / "probe_000_ascii.dat",
                      probeHeadLine() + probeDataLine(seed, probePoint{0.02f, 0.05f, 0.0f}, still));
  marvtest::writeText(folder / "dump" / "probe_001_ascii.dat",
                      probeHeadLine() + probeDataLine(seed, probePoint{0.073f, 0.031f, 0.0f}, still));
  return folder;
}

void runSteps(const fs::path& folder, int sts, int latts, int nfile) {
  setKeys(folder / "input" / "param.txt",
          {{"sts", std::to_string(sts)}, {"latts", std::to_string(latts)}, {"nfile", std::to_string(nfile)}}, true);
  driverState state;
  ASSERT_EQ(marvtest::runBatch(folder, state), 0);
  ASSERT_EQ(state.stepsTaken, latts - sts + 1);
}

const char* const recordFiles[] = {"force.txt", "heatLoss.txt", "probe_000_ascii.dat", "probe_001_ascii.dat"};

TEST(RecordRestart, RecordsContinueLineForLineAsAnUninterruptedRun) {
  const fs::path whole = recordingProject();
  runSteps(whole, 0, 40, 20);
  const std::string force = marvtest::readText(whole / "dump" / "force.txt");
  ASSERT_EQ(std::count(force.begin(), force.end(), '\n'), 1 + 9) << "head line and steps 0, 5 .. 40";
  EXPECT_EQ(force.find("      Black_flag "), force.rfind("      Black_flag ")) << "one head line";
  const std::string heat = marvtest::readText(whole / "dump" / "heatLoss.txt");
  EXPECT_NE(heat.find("\n          40 "), std::string::npos);

  // Stopped at step 20 and continued from its dump.
  const fs::path split = recordingProject();
  runSteps(split, 0, 20, 20);
  runSteps(split, 20, 40, 20);
  // Run past step 20, then restarted from dump 20 to redo the rest.
  const fs::path redo = recordingProject();
  runSteps(redo, 0, 40, 20);
  runSteps(redo, 20, 40, 20);
  for (const char* name : recordFiles) {
    const std::string expected = marvtest::readText(whole / "dump" / name);
    EXPECT_EQ(marvtest::readText(split / "dump" / name), expected) << name;
    EXPECT_EQ(marvtest::readText(redo / "dump" / name), expected) << name;
  }
  EXPECT_TRUE(fs::exists(redo / "dump" / "force.txt.cut")) << "the abandoned lines are kept beside";
  for (const fs::path& folder : {whole, split, redo}) fs::remove_all(folder);
}

TEST(RecordRestart, AKilledRunsHalfLineIsReplacedByTheRestart) {
  const fs::path whole = recordingProject();
  runSteps(whole, 0, 30, 10);
  const fs::path killed = recordingProject();
  runSteps(killed, 0, 10, 10);
  // The run went on and died while writing the line of step 15.
  for (const char* name : recordFiles) {
    const std::string expected = marvtest::readText(whole / "dump" / name);
    const std::size_t at = expected.find("\n          15 ");
    ASSERT_NE(at, std::string::npos) << name;
    marvtest::writeText(killed / "dump" / name, expected.substr(0, at + 30));
  }
  runSteps(killed, 10, 30, 10);
  for (const char* name : recordFiles)
    EXPECT_EQ(marvtest::readText(killed / "dump" / name), marvtest::readText(whole / "dump" / name)) << name;
  for (const fs::path& folder : {whole, killed}) fs::remove_all(folder);
}

}  // namespace
}  // namespace marv
