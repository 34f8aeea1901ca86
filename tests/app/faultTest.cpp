// Faults under the batch runner: refused input, divergence, failed or killed dump writes; nothing wrong left.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "batchRun.h"
#include "result/dumpFiles.h"

namespace {

namespace fs = std::filesystem;
using marvtest::runBatch;

const std::string cavityLines = "1:nx 33\n2:ny 33\n3:lx 1\n4:ly 1\n5:mu 0.01\n6:rhow 1\n7:uinb 1\n8:nfig 0\n";

// The lid-driven cavity example with its parameters replaced by text (the bitmap stays).
fs::path cavityProject(const std::string& text) {
  const fs::path folder = marvtest::copyExample("cavity2d");
  marvtest::writeText(folder / "input" / "param.txt", text);
  return folder;
}

// The names of the dump folders (their steps in eight digits), oldest first.
std::vector<std::string> dumpSteps(const fs::path& project) {
  std::vector<std::string> steps;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(project / "dump", error)) {
    const std::string name = entry.path().filename().string();
    if (name.size() == 8 && entry.is_directory()) steps.push_back(name);
  }
  std::sort(steps.begin(), steps.end());
  return steps;
}

TEST(Divergence, EndsBeforeTheLastStepAndKeepsOnlyFiniteDumps) {
  // A time step ten times the grid's convective limit blows up in a few steps.
  const fs::path folder = cavityProject(cavityLines + "9:deltat 0.1\n10:latts 200\n11:nfile 2\n");
  marv::driverState state;
  EXPECT_NE(runBatch(folder, state), 0);
  EXPECT_GT(state.stepsTaken, 0);
  EXPECT_LT(state.stepsTaken, 201) << "the run stops when the flow diverges";
  EXPECT_FALSE(dumpSteps(folder).empty()) << "the dump of step 0 stays";
  for (const std::string& step : dumpSteps(folder))
    for (const char* name : {"ufld.raw", "vfld.raw", "pfld.raw"}) {
      const std::string raw = marvtest::readText(folder / "dump" / step / name);
      ASSERT_EQ(raw.size(), 33u * 33u * sizeof(double)) << step << name;
      for (std::size_t at = 0; at < raw.size(); at += sizeof(double)) {
        double v = 0.0;
        std::memcpy(&v, raw.data() + at, sizeof v);
        ASSERT_TRUE(std::isfinite(v)) << step << name;
      }
    }
  fs::remove_all(folder);
}

TEST(RefusedInput, TheBatchRunnerSaysWhyAndRunsNothing) {
  std::string longText = cavityLines + "9:latts 2\n10:nfile 0\n";
  for (int i = 11; i <= 150; ++i) longText += std::to_string(i) + ":nfig 0\n";
  const struct {
    std::string text;
    bool cutBitmap;
    int status;
    const char* said;
  } cases[] = {
      {"", false, 1, "no parameter lines"},
      {"1:ny 5\n", false, 1, "\"nx\" is not given"},
      {"1:nx 1\n2:ny 5\n", false, 1, "\"nx\" is 1"},
      {"1:nx 5\n2:ny 1.5\n", false, 1, "\"ny\" is 1"},
      {cavityLines + "9:latts 1\n", true, 1, "bcXY0.bmp"},
      // Below the 32-bit index limit but hundreds of GiB.
      {"1:nx 46000\n2:ny 46000\n3:domx 50000\n", false, 1, "GiB, this machine has"},
      {longText, false, 0, "lines past the hundredth"},  // run, with the original kept beside
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.said);
    const fs::path folder = cavityProject(c.text);
    const fs::path bitmap = folder / "input" / "bcXY0.bmp";
    if (c.cutBitmap) fs::resize_file(bitmap, fs::file_size(bitmap) / 2);
    marv::driverState state;
    testing::internal::CaptureStderr();
    EXPECT_EQ(runBatch(folder, state), c.status);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find(c.said), std::string::npos) << said;
    EXPECT_EQ(state.stepsTaken, c.status ? 0 : 3);
    fs::remove_all(folder);
  }
}

// marvanesse-batch on folder in a child process under a file size limit in bytes (0: none); the child's pid.
pid_t startBatch(const fs::path& folder, rlim_t fileSizeLimit = 0) {
  const pid_t pid = fork();
  if (pid == 0) {
    if (fileSizeLimit > 0) {
      signal(SIGXFSZ, SIG_IGN);  // a write past the limit fails with EFBIG instead
      const rlimit limit{fileSizeLimit, fileSizeLimit};
      setrlimit(RLIMIT_FSIZE, &limit);
    }
    // The OpenGL driver keeps allocations to the end: no leak checks in the child.
    const char* given = std::getenv("ASAN_OPTIONS");
    const std::string asan = std::string(given ? given : "") + ":detect_leaks=0";
    setenv("ASAN_OPTIONS", asan.c_str(), 1);
    const std::string path = folder.string();
    execl(MARV_BATCH_EXE, MARV_BATCH_EXE, "--quiet", path.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  return pid;
}

int exitStatus(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Every dump folder that a dump search or a restart would take is whole.
void expectOnlyWholeDumps(const fs::path& project, const std::string& context) {
  const fs::path before = fs::current_path();
  fs::current_path(project);
  for (const std::string& step : dumpSteps("."))
    EXPECT_TRUE(marv::dumpIsWhole(std::stoi(step))) << context << ": dump " << step << " is not whole";
  fs::current_path(before);
}

TEST(FullDisk, TheRunStopsWithAnErrorAndEveryDumpIsWholeOrAbsent) {
  // A limit on the file size makes the large writes fail, as a full disk does.
  const fs::path folder = cavityProject(cavityLines + "9:latts 200\n10:nfile 1\n");
  EXPECT_EQ(exitStatus(startBatch(folder, 20000)), 1);
  expectOnlyWholeDumps(folder, "full disk");
  for (const auto& entry : fs::directory_iterator(folder / "dump"))
    EXPECT_NE(entry.path().extension(), ".tmp") << "a failed write removes its staging folder";
  fs::remove_all(folder);
}

TEST(KilledWrite, NothingHalfWrittenIsVisibleAndTheLeftoversGoAtTheNextStart) {
  // A 129 x 129 mesh dumped at every step: random kills land inside a write.
  const fs::path folder =
      cavityProject("1:nx 129\n2:ny 129\n3:mu 0.01\n4:uinb 1\n5:nfig 0\n6:latts 100000\n7:nfile 1\n");
  std::mt19937 random(20261123);
  for (int kill = 0; kill < 8; ++kill) {
    const pid_t pid = startBatch(folder);
    // After the first dump, a kill at a random point.
    for (int wait = 0; wait < 3000 && dumpSteps(folder).empty() && ::kill(pid, 0) == 0; ++wait)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::this_thread::sleep_for(std::chrono::milliseconds(random() % 400));
    ::kill(pid, SIGKILL);
    exitStatus(pid);
    expectOnlyWholeDumps(folder, "kill " + std::to_string(kill));
  }
  // A restart from the newest dump works, and the start removes what the kills left under temporary names.
  ASSERT_FALSE(dumpSteps(folder).empty()) << "no dump was written before the kills";
  const int newest = std::stoi(dumpSteps(folder).back());
  marvtest::writeText(folder / "input" / "param.txt",
                      "1:nx 129\n2:ny 129\n3:mu 0.01\n4:uinb 1\n5:nfig 0\n6:nfile 0\n7:sts " + std::to_string(newest) +
                          "\n8:latts " + std::to_string(newest + 1) + "\n");
  marv::driverState state;
  EXPECT_EQ(runBatch(folder, state), 0);
  EXPECT_EQ(state.stepsTaken, 2);
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    EXPECT_NE(entry.path().extension(), ".tmp") << entry.path() << " is left of a killed write";
  fs::remove_all(folder);
}

}  // namespace
