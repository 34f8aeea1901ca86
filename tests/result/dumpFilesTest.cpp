// Dumps: info.txt, schedule, bit-exact round trips, resampling, refusals, XDMF, and restarts that continue bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "batchRun.h"
#include "result/dumpFiles.h"
#include "result/stepResults.h"
#include "testGrid.h"
#include "testSupport.h"

namespace {

using marv::appConfig;
using marv::fieldViews;
using marv::ownedArray3d;

// A case's grid and its solver fields, owned here, with the views the driver
// would hold.
struct dumpCase {
  appConfig cfg;
  std::vector<ownedArray3d<double>> fields;
  fieldViews views{};

  dumpCase(int nx, int ny, int nz, double lx, double ly, double lz, int cmode = 0, int ageFlag = 0) {
    marv::testing::setGrid(cfg, nx, ny, nz, lx, ly, lz);
    cfg.cmode = cmode;
    cfg.ageFlag = static_cast<std::uint8_t>(ageFlag);
    for (int v = 0; v < 12; ++v) fields.emplace_back(nx, ny, nz);
    for (int v = 0; v < 12; ++v) views[v] = fields[v];
  }
  // f(view, x, y, z) into every field.
  template <class F>
  void set(F f) {
    for (int v = 0; v < 12; ++v)
      for (int k = 0; k < cfg.nz; ++k)
        for (int j = 0; j < cfg.ny; ++j)
          for (int i = 0; i < cfg.nx; ++i) views[v](i, j, k) = f(v, cfg.xCoord[i], cfg.yCoord[j], cfg.zCoord[k]);
  }
};

std::vector<std::string> messages;
void keepMessage(appConfig&, const char* text) { messages.push_back(text); }

struct inProject {
  std::filesystem::path folder = marvtest::scratchFolder("dump");
  marvtest::inFolder here{folder};
  inProject() { std::filesystem::create_directories("dump"), std::filesystem::create_directories("input"); }
};

TEST(DumpInfo, FormatAndExtentKeys) {
  dumpCase c(3, 5, 1, 2.0, 1.0, 0.0);
  c.cfg.deltat = 1e-3;
  c.cfg.time = 0.25;
  EXPECT_EQ(marv::formatDumpInfo(c.cfg),
            "cmode:    0\ndeltat:  1.000000e-03\ntime:    2.500000e-01\nmesh:           3          5          1\n"
            "x0-x1(m):   0.000000e+00   2.000000e+00\ny0-y1(m):   0.000000e+00   1.000000e+00\n"
            "z0-z1(m):   0.000000e+00   0.000000e+00\n");
  EXPECT_EQ(marv::extentKey(1.0), marv::extentKey(1.0 + 0.00004));
  EXPECT_NE(marv::extentKey(1.0), marv::extentKey(1.001));
  EXPECT_EQ(marv::extentKey(1e300), 2147483647) << "saturates instead of wrapping";
}

TEST(DumpSearch, PassesOverDumpsThatAreNotWhole) {
  inProject project;
  dumpCase c(3, 3, 1, 1.0, 1.0, 0.0);
  for (int step : {0, 10, 20, 5, 25, 28}) {
    c.cfg.ts = step;
    ASSERT_TRUE(marv::writeDump(c.cfg, c.views));
  }
  std::filesystem::create_directories(marv::dumpFolder(15));  // a folder without info.txt is no dump
  // What a killed write of an older version left: the search passes over it.
  std::filesystem::remove(marv::dumpFolder(25) + "/pfld.raw");
  marvtest::writeText(marv::dumpFolder(5) + "/ufld.raw.tmp", "half");
  marvtest::writeText(marv::dumpFolder(28) + "/vfld.raw", "short");
  marvtest::writeText(marv::dumpFolder(27) + "/info.txt", "cmode: 0\ndeltat: 1\n");
  // Stepping through whole dumps, the start above latts and the ends are driven from the keys in the held-run tests.
  EXPECT_EQ(marv::nearestDump(20, 30, -1), 10);
  EXPECT_EQ(marv::nearestDump(10, 30, -1), 0) << "a dump with a leftover temporary file is passed over";
  EXPECT_EQ(marv::nearestDump(10, 30, +1), 20);
  EXPECT_EQ(marv::nearestDump(20, 30, +1), 20) << "a dump without pfld.raw, a short vfld.raw, a bare info.txt";
  EXPECT_EQ(marv::nearestDump(10, 15, +1), 10) << "nothing beyond latts";
}

TEST(StepResults, DumpScheduleRestartAndDisabledInterval) {
  inProject project;
  dumpCase c(5, 5, 1, 1.0, 1.0, 0.0);
  // The steps that leave a dump when the run goes from sts to last.
  auto dumpsOf = [&](int sts, int nfile, int last) {
    std::filesystem::remove_all("dump");
    std::filesystem::create_directory("dump");
    c.cfg.sts = sts, c.cfg.nfile = nfile, c.cfg.nfig = 1000, c.cfg.latts = 250;
    for (c.cfg.ts = sts; c.cfg.ts <= last; ++c.cfg.ts) marv::writeStepResults(c.cfg, c.views);
    std::vector<int> steps;
    for (int s = 0; s <= last; ++s)
      if (std::filesystem::exists(marv::dumpFolder(s) + "/info.txt")) steps.push_back(s);
    return steps;
  };
  EXPECT_EQ(dumpsOf(0, 100, 260), (std::vector<int>{0, 100, 200, 250}));
  EXPECT_TRUE(std::filesystem::exists("input/viz.txt"));
  EXPECT_EQ(dumpsOf(100, 100, 250), (std::vector<int>{200, 250})) << "a restart writes nothing at its first step";
  EXPECT_EQ(dumpsOf(0, 0, 250), (std::vector<int>{0, 250})) << "nfile 0 turns the periodic dumps off";
}

// One dump of linear fields read back on its own mesh (bit for bit), on a
// mesh half as fine (exact for linear fields), and a constant-density dump
// read by a variable-density run with age (the fields it lacks are kept).
TEST(Dump, ReadBackOnTheSameMeshACoarserMeshAndInAnotherMode) {
  for (int nz : {1, 5}) {
    inProject project;
    const int fz = nz == 1 ? 1 : 2 * nz - 1;
    auto linear = [](int v, double x, double y, double z) { return v + 0.3 * x - 2.0 * y + 0.7 * z; };
    dumpCase fine(17, 9, fz, 2.0, 1.0, 0.5, 1, 1), plain(9, 5, nz, 2.0, 1.0, 0.5);
    fine.set(linear), plain.set(linear);
    fine.cfg.ts = 7, fine.cfg.time = 1.25, fine.cfg.deltat = 3e-4, plain.cfg.ts = 8;
    marv::writeDump(fine.cfg, fine.views), marv::writeDump(plain.cfg, plain.views);

    dumpCase same(17, 9, fz, 2.0, 1.0, 0.5, 1, 1), coarse(9, 5, nz, 2.0, 1.0, 0.5, 1, 1);
    ASSERT_EQ(marv::readDump(same.cfg, same.views, 7), 1);
    EXPECT_EQ(std::pair(same.cfg.time, same.cfg.deltat), std::pair(1.25, 3e-4));
    for (int v = 0; v < 8; ++v)
      EXPECT_EQ(std::memcmp(same.views[v].data, fine.views[v].data, same.views[v].count() * sizeof(double)), 0) << v;
    EXPECT_EQ(same.views[8][0], 0.0) << "bc.raw is not read back";

    ASSERT_EQ(marv::readDump(coarse.cfg, coarse.views, 7), 1);
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < 5; ++j)
        for (int i = 0; i < 9; ++i)
          for (int v : {0, 1, 7})
            EXPECT_NEAR(coarse.views[v](i, j, k),
                        linear(v, coarse.cfg.xCoord[i], coarse.cfg.yCoord[j], coarse.cfg.zCoord[k]), 1e-12)
                << v << " at " << i << "," << j << "," << k;

    coarse.set([](int, double, double, double) { return -1.0; });
    ASSERT_EQ(marv::readDump(coarse.cfg, coarse.views, 8), 1);
    EXPECT_EQ(coarse.views[1](4, 2, 0), plain.views[1](4, 2, 0));
    for (int v : {marv::fieldRho, marv::fieldT, marv::fieldAge}) EXPECT_EQ(coarse.views[v](4, 2, 0), -1.0) << v;
  }
}

TEST(Dump, RefusalsNameTheirCauseAndLeaveFieldsUntouched) {
  inProject project;
  dumpCase written(5, 5, 1, 1.0, 1.0, 0.0);
  written.set([](int, double x, double, double) { return x; });
  for (int step : {2, 3, 4, 5}) written.cfg.ts = step, marv::writeDump(written.cfg, written.views);
  marvtest::writeText(marv::dumpFolder(3) + "/vfld.raw", std::string(100, 'x'));
  std::filesystem::remove(marv::dumpFolder(4) + "/vfld.raw");
  marvtest::writeText(marv::dumpFolder(5) + "/ufld.raw.tmp", "half");  // left of a killed write
  marvtest::writeText(marv::dumpFolder(9) + "/info.txt",
                      "cmode: 0\ndeltat: 1\ntime: 0\nmesh: 1 5 1\nx: 0 1\ny: 0 1\nz: 0 0\n");
  marvtest::writeText(marv::dumpFolder(10) + "/info.txt", "cmode: 0\ndeltat:");
  dumpCase read(5, 5, 1, 1.0, 1.0, 0.0), other(5, 5, 1, 1.01, 1.0, 0.0);
  read.cfg.showMessage = other.cfg.showMessage = keepMessage;
  read.set([](int, double, double, double) { return -7.0; });
  const struct {
    dumpCase* into;
    int step;
    const char* named;
  } refusals[] = {{&other, 2, nullptr},    // another domain size
                  {&read, 3, "vfld.raw"},  // short
                  {&read, 4, "incomplete (vfld.raw is missing)"},
                  {&read, 5, "ufld.raw.tmp"},
                  {&read, 9, ""},         // a single point across x
                  {&read, 10, ""},        // truncated info.txt
                  {&read, 11, nullptr}};  // no such dump
  for (const auto& r : refusals) {
    SCOPED_TRACE(r.step);
    messages.clear();
    EXPECT_EQ(marv::readDump(r.into->cfg, r.into->views, r.step), -1);
    if (!r.named) continue;  // refused without a message
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages.back().find(r.named), std::string::npos) << messages.back();
  }
  EXPECT_EQ(read.views[1](4, 2, 0), -7.0) << "nothing was read";
  EXPECT_EQ(marv::readDump(read.cfg, read.views, 2), 1);
  EXPECT_EQ(read.views[1](4, 0, 0), 1.0);
}

TEST(Dump, ARewrittenDumpIsReplacedWholeAndLeftoversGoAtTheStart) {
  inProject project;
  dumpCase c(4, 3, 1, 1.0, 1.0, 0.0);
  c.cfg.ts = 5;
  for (double value : {1.0, 2.0}) {
    c.set([value](int, double, double, double) { return value; });
    ASSERT_TRUE(marv::writeDump(c.cfg, c.views)) << "a held step writes its dump again";
  }
  dumpCase read(4, 3, 1, 1.0, 1.0, 0.0);
  ASSERT_EQ(marv::readDump(read.cfg, read.views, 5), 1);
  EXPECT_EQ(read.views[marv::fieldU](3, 2, 0), 2.0) << "the second write stands";

  // What killed writes leave, beside a user's own file that merely ends in .tmp.
  const std::vector<std::string> leftovers{marv::dumpFolder(6) + ".tmp/ufld.raw", marv::dumpFolder(5) + "/pfld.raw.tmp",
                                           "dump/series.xmf.tmp", "input/param.txt.tmp"};
  for (const std::string& name : leftovers) marvtest::writeText(name, "x");
  marvtest::writeText("input/notes.tmp", "mine");
  EXPECT_FALSE(marv::dumpIsWhole(5));
  marv::removeDumpLeftovers();
  for (const std::string& gone : leftovers) EXPECT_FALSE(std::filesystem::exists(gone)) << gone;
  EXPECT_FALSE(std::filesystem::exists(marv::dumpFolder(6) + ".tmp"));
  EXPECT_TRUE(std::filesystem::exists("input/notes.tmp"));
  EXPECT_TRUE(marv::dumpIsWhole(5)) << "the dump itself is untouched";
}

// Reads the XDMF files back as a visualisation tool would: each binary data
// item names a raw file of 8 bytes times the product of its dimensions.
TEST(Dump, XdmfFilesDescribeTheRawFiles) {
  inProject project;
  dumpCase c(6, 4, 3, 1.0, 1.0, 1.0);
  for (int step : {0, 5, 10}) {
    c.cfg.ts = step, c.cfg.time = step * 0.1;
    marv::writeDump(c.cfg, c.views);
  }
  auto check = [](const std::string& xmf, const std::filesystem::path& base, std::size_t expectedItems) {
    const std::string text = marvtest::readText(xmf), open = "<DataItem Dimensions=\"";
    std::size_t items = 0;
    for (std::size_t at = text.find(open); at != std::string::npos; at = text.find(open, at + 1)) {
      const std::string item = text.substr(at, text.find("</DataItem>", at) - at);
      if (item.find("Format=\"Binary\" Endian=\"Little\"") == std::string::npos) continue;
      std::istringstream dims(item.substr(open.size()));
      long long a = 0, b = 0, d = 0;
      dims >> a >> b >> d;
      const std::string file = item.substr(item.find('>') + 1);
      EXPECT_EQ(static_cast<long long>(std::filesystem::file_size(base / file)), a * b * d * 8) << file;
      ++items;
    }
    EXPECT_EQ(items, expectedItems) << xmf;
    return text;
  };
  check(marv::dumpFolder(5) + "/dump.xmf", marv::dumpFolder(5), 6);  // u v w p massfr boundary
  const std::string series = check("dump/series.xmf", "dump", 18);
  for (const char* part : {"CollectionType=\"Temporal\"", "<Time Value=\"0.5\"/>", "Dimensions=\"3 4 6\""})
    EXPECT_NE(series.find(part), std::string::npos) << part;  // times, and z, y, x order
}

// Runs an example's project in folder from sts to latts; the lines go behind
// the example's own, where a later line of a name wins.
marv::driverState run(const char* example, const std::filesystem::path& folder, const std::string& lines) {
  const std::filesystem::path param = folder / "input" / "param.txt";
  if (!std::filesystem::exists(param))
    std::filesystem::copy(std::filesystem::path(MARV_TEST_DATA) / ".." / ".." / "examples" / example / "input",
                          param.parent_path());
  marvtest::writeText(param, marvtest::readText(param) + "\n" + lines);
  marv::driverState state;
  EXPECT_EQ(marvtest::runBatch(folder, state), 0) << folder << " " << lines;
  return state;
}

void expectRestartContinues(const char* example, const std::string& extra, std::initializer_list<const char*> files) {
  const std::filesystem::path whole = marvtest::scratchFolder(std::string("restart-") + example),
                              parts = marvtest::scratchFolder(std::string("restart-") + example);
  EXPECT_EQ(run(example, whole, extra + "990:sts 0\n991:latts 30\n").stepsTaken, 31);
  run(example, parts, extra + "990:sts 0\n991:latts 20\n");
  EXPECT_EQ(run(example, parts, "990:sts 10\n991:latts 30\n").stepsTaken, 21) << "the restart runs steps 10 to 30";
  for (const char* name : files) {
    const std::string a = marvtest::readText(whole / "dump" / "00000030" / name);
    EXPECT_FALSE(a.empty()) << example << " " << name;
    EXPECT_TRUE(a == marvtest::readText(parts / "dump" / "00000030" / name)) << example << " " << name << " differs";
  }
  std::filesystem::remove_all(whole);
  std::filesystem::remove_all(parts);
}

TEST(Restart, AdaptiveConstantDensityRunContinuesBitForBit) {
  expectRestartContinues("cavity2d", "992:parallel 0\n993:nfile 10\n994:nfig 0\n",
                         {"ufld.raw", "vfld.raw", "pfld.raw"});
}

// With deltat given, the restart keeps the parameter's step instead of the
// seven digits of info.txt, so that the time runs on exactly; the step here
// has more digits than info.txt keeps.
TEST(Restart, FixedStepVariableDensityRunContinuesBitForBit) {
  expectRestartContinues("thermo2d", "992:parallel 0\n993:nfile 10\n994:nfig 0\n995:deltat 4.87654321e-4\n",
                         {"ufld.raw", "vfld.raw", "pfld.raw", "rfld.raw", "tfld.raw", "info.txt"});
}

}  // namespace
