// What the records measure (force, heat flux, probe values) against fields whose answer is known in closed form;
// the record files: exact columns, choices found again in their tails, half-written and foreign files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "domain/bcDomain.h"
#include "domain/polygonise.h"
#include "result/forceRecord.h"
#include "result/frameRecords.h"
#include "result/heatLossRecord.h"
#include "result/probes.h"
#include "result/recordFiles.h"
#include "testGrid.h"
#include "testSupport.h"

namespace marv {
namespace {

using fieldFunction = std::function<double(double, double, double)>;

// Fills a field from a function of the physical node position.
void setField(const appConfig& cfg, ownedArray3d<double>& f, const fieldFunction& value) {
  f = ownedArray3d<double>(cfg.nx, cfg.ny, cfg.nz);
  for (int k = 0; k < cfg.nz; ++k)
    for (int j = 0; j < cfg.ny; ++j)
      for (int i = 0; i < cfg.nx; ++i) f(i, j, k) = value(cfg.xCoord[i], cfg.yCoord[j], cfg.zCoord[k]);
}

// A domain whose colour 1 mask is 1 on the nodes for which inside(i, j, k)
// holds (k counted in the mask's reversed order), outlined or surfaced as
// the domain build does it.
void buildBody(bcDomain& domain, appConfig& cfg, const std::function<bool(int, int, int)>& inside) {
  constructDomain(domain, cfg);
  ownedArray3d<float>& mask = domain.typeMasks[1];
  for (int k = 0; k < cfg.nz; ++k)
    for (int j = 0; j < cfg.ny; ++j)
      for (int i = 0; i < cfg.nx; ++i) mask(i, j, k) = inside(i, j, k) ? 1.0f : 0.0f;
  if (cfg.nz == 1) {
    domain.outlines[1].field = &mask;
    ASSERT_EQ(polygoniseOutline(domain.outlines[1], domain.isoLevel), 0);
  } else {
    domain.surfaces[1].field = &mask;
    ASSERT_EQ(polygoniseSurface(domain.surfaces[1], domain.isoLevel), 0);
  }
}

TEST(Force, UniformGradientOnASquareGivesItsAreaTimesTheGradient) {
  // The iso-line at 0.8 of a mask of 1 on the body's nodes lies 0.2 cells
  // outside them, with each corner cut off by a right triangle of legs 0.2
  // cells: the enclosed area follows from the geometry alone.
  const double gx = 3.0e3, gy = -1.2e3;  // [Pa/m]
  for (int n : {21, 41, 83}) {
    appConfig cfg;
    testing::setGrid(cfg, n, n, 1, 1.0, 1.0);
    const double h = cfg.dx;
    const int i0 = n / 4, i1 = n / 2, j0 = n / 3, j1 = 2 * n / 3;
    bcDomain domain;
    buildBody(domain, cfg, [&](int i, int j, int) { return i >= i0 && i <= i1 && j >= j0 && j <= j1; });
    ownedArray3d<double> p;
    setField(cfg, p, [&](double x, double y, double) { return 1.0e5 + gx * x + gy * y; });
    const double w = (i1 - i0) * h + 0.4 * h, d = (j1 - j0) * h + 0.4 * h;
    const double area = w * d - 4 * 0.5 * (0.2 * h) * (0.2 * h);
    const forceVector f = outlineForce(cfg, p, domain.outlines[1]);
    // Single precision against a mean pressure of 1e5 Pa.
    EXPECT_NEAR(f[0], -area * gx, 1e-3 * area * gx) << "grid " << n;
    EXPECT_NEAR(f[1], -area * gy, 1e-3 * area * std::fabs(gy)) << "grid " << n;
    EXPECT_EQ(f[2], 0.0f);
  }
}

TEST(Force, UniformGradientOnABoxGivesItsVolumeTimesTheGradient) {
  // Marching cubes cuts edges and corners of the box, so the enclosed volume
  // is taken from the triangles by the divergence theorem, V = -sum(C.n A)/3,
  // which needs no pressure.
  const double g[3] = {2.0e3, -1.0e3, 4.0e3};  // [Pa/m]
  for (int n : {13, 25}) {
    appConfig cfg;
    testing::setGrid(cfg, n, n, n, 1.0, 1.0, 1.0);
    bcDomain domain;
    // Off the centre in z, so that a wrong mirror would show.
    buildBody(domain, cfg, [&](int i, int j, int k) {
      return i >= n / 4 && i <= n / 2 && j >= n / 3 && j <= 2 * n / 3 && k >= 1 && k <= n / 3;
    });
    ownedArray3d<double> p;
    setField(cfg, p, [&](double x, double y, double z) { return 1.0e5 + g[0] * x + g[1] * y + g[2] * z; });
    // The iso-surface of a mask carries its normals into the mask: -C.n.
    double volume = 0.0;
    for (const bcTriangle& t : domain.surfaces[1].triangles) {
      const float* a = t.vertex[0];
      const double e[3] = {t.vertex[1][0] - a[0], t.vertex[1][1] - a[1], t.vertex[1][2] - a[2]};
      const double f[3] = {t.vertex[2][0] - a[0], t.vertex[2][1] - a[1], t.vertex[2][2] - a[2]};
      const double area =
          0.5 * std::hypot(e[1] * f[2] - e[2] * f[1], e[2] * f[0] - e[0] * f[2], e[0] * f[1] - e[1] * f[0]);
      volume -= (t.centroid[0] * t.normal[0] + t.centroid[1] * t.normal[1] + t.centroid[2] * t.normal[2]) * area / 3.0;
    }
    ASSERT_GT(volume, 0.0) << "normals point into the body";
    const forceVector f = surfaceForce(cfg, p, domain.surfaces[1], 1);
    for (int c = 0; c < 3; ++c)
      EXPECT_NEAR(f[c], -volume * g[c], 2e-3 * volume * std::fabs(g[c])) << n << " axis " << c;

    // A pressure z^2 of the physical height gives Fz = -2 V zc, zc the
    // body's mid-height (mask nodes 1..n/3 from the top): a height not taken
    // back from the world's mirrored z puts zc near the bottom instead.
    const double zc = 1.0 - 0.5 * (1 + n / 3) * cfg.dz;
    setField(cfg, p, [](double, double, double z) { return z * z; });
    const double fz = surfaceForce(cfg, p, domain.surfaces[1], 1)[2];
    EXPECT_NEAR(fz, -2.0 * volume * zc, 0.05 * 2.0 * volume * zc) << n;
    // The model's triangles carry outward normals: the same surface turned
    // round, as colour 7, gives the same force.
    bcSurface model = domain.surfaces[1];
    for (bcTriangle& t : model.triangles)
      for (float& c : t.normal) c = -c;
    EXPECT_NEAR(surfaceForce(cfg, p, model, stlType)[2], fz, 1e-6 * std::fabs(fz)) << n;
  }
}

TEST(HeatLoss, ConductionThroughTheWallsMatchesTheAnalyticFlux) {
  // Steady conduction between a hot left wall and a cold right wall: a linear
  // profile between the walls' fluid-side nodes, q = k (Th - Tc) / gap with
  // k = cp mu / Pr, leaving the hot wall and entering the cold one. The walls
  // are two nodes thick, as bitmaps make them, and the cold one has the
  // fractional mask (0.1, 0.9, 1) that a bitmap scaled onto the grid leaves:
  // the wall's heat must not depend on where its outline falls.
  for (int n : {33, 65}) {
    appConfig cfg;
    testing::setGrid(cfg, n, 17, 1, 0.1, 0.05);
    cfg.cmode = 1, cfg.showHeatLoss = 1, cfg.mu = 1.8e-5, cfg.pr = 0.71;
    const double hot = 310.0, cold = 290.0, H = 0.05;
    bcDomain domain;
    buildBody(domain, cfg, [&](int i, int, int) { return i <= 1; });
    ownedArray3d<float>& right = domain.typeMasks[8];
    for (int j = 0; j < cfg.ny; ++j) right(n - 3, j, 0) = 0.1f, right(n - 2, j, 0) = 0.9f, right(n - 1, j, 0) = 1.0f;
    domain.outlines[8].field = &right;
    ASSERT_EQ(polygoniseOutline(domain.outlines[8], domain.isoLevel), 0);
    const double xHot = cfg.xCoord[1], xCold = cfg.xCoord[n - 2], gap = xCold - xHot;
    ownedArray3d<double> T;
    setField(cfg, T,
             [&](double x, double, double) { return std::clamp(hot - (hot - cold) * (x - xHot) / gap, cold, hot); });
    const double qHot = H * (hot - cold) / gap * specificHeat(hot) * cfg.mu / cfg.pr;
    const double qCold = H * (hot - cold) / gap * specificHeat(cold) * cfg.mu / cfg.pr;
    EXPECT_NEAR(outlineHeatLoss(cfg, T, domain.outlines[1]), qHot, 1e-4 * qHot) << n;
    EXPECT_NEAR(outlineHeatLoss(cfg, T, domain.outlines[8]), -qCold, 1e-4 * qCold) << n;
  }
  // The specific heat of air near room temperature, about 1005 J/(kg K).
  EXPECT_NEAR(specificHeat(300.0), 1005.0, 3.0);
  EXPECT_NEAR(specificHeat(590.0), specificHeat(589.9999), 1.0) << "the two fits meet";
}

// Sampling itself is exact for linear fields (checked with the grid sampler);
// here each recorded quantity comes from its own field.
TEST(Probes, EachQuantityFromItsField) {
  appConfig cfg;
  testing::setGrid(cfg, 9, 7, 5, 0.8, 0.6, 0.4);
  cfg.cmode = 1, cfg.ageFlag = 1;
  ownedArray3d<double> store[8];
  fieldViews views{};
  const int used[] = {fieldRho, fieldU, fieldV, fieldW, fieldP, fieldT, fieldY, fieldAge};
  for (int n = 0; n < 8; ++n)
    setField(cfg, store[n], [n](double, double, double) { return n + 1.0; }), views[used[n]] = store[n];
  const probePoint at{0.33f, 0.41f, 0.17f};
  const probeSample got = sampleProbe(cfg, views, at);
  const double values[] = {got.rho, got.u, got.v, got.w, got.dP, got.T, got.massfr, got.age};
  for (int n = 0; n < 8; ++n) EXPECT_NEAR(values[n], n + 1.0, 1e-12) << "field " << used[n];
  // Without the thermo fields the density is the constant one and the
  // temperature and age read 0.
  cfg.cmode = 0, cfg.ageFlag = 0, cfg.rhow = 998.0;
  const probeSample plain = sampleProbe(cfg, views, at);
  EXPECT_EQ(std::tuple(plain.rho, plain.T, plain.age), std::tuple(998.0, 0.0, 0.0));
}

TEST(Records, RecordedColoursOnlyAndNoBlowingInlet) {
  appConfig cfg;
  testing::setGrid(cfg, 21, 21, 1);
  cfg.showForce = 1;
  bcDomain domain;
  buildBody(domain, cfg, [](int i, int j, int) { return i >= 8 && i <= 12 && j >= 8 && j <= 12; });
  // The same square as a Blue inlet: counted only while it stands still.
  domain.typeMasks[2] = ownedArray3d<float>(21, 21, 1);
  copyFrom<float>(domain.typeMasks[2], domain.typeMasks[1]);
  domain.outlines[2].field = &domain.typeMasks[2];
  ASSERT_EQ(polygoniseOutline(domain.outlines[2], domain.isoLevel), 0);
  ownedArray3d<double> p;
  setField(cfg, p, [](double x, double, double) { return 100.0 * x; });
  fieldViews views{};
  views[fieldP] = p;
  cfg.forceRecordOn[1] = cfg.forceRecordOn[2] = 1;
  cfg.forceValues[3] = {1.0f, 2.0f, 3.0f};  // a stale value of a colour no longer recorded
  cfg.bcNoFlow[2] = 0;
  computeRecordValues(cfg, domain, views);
  EXPECT_LT(cfg.forceValues[1][0], 0.0f);
  EXPECT_EQ(cfg.forceValues[2][0], 0.0f) << "an inlet that blows is not measured";
  EXPECT_EQ(cfg.forceValues[3][0], 0.0f);
  EXPECT_EQ(cfg.numRecForce, 2);
  cfg.bcNoFlow[2] = 1;
  computeRecordValues(cfg, domain, views);
  EXPECT_FLOAT_EQ(cfg.forceValues[2][0], cfg.forceValues[1][0]);
  EXPECT_TRUE(forceHeatNotice(cfg, 3, {0.0f, 0.0f, 0.0f}, 5.0).empty()) << "no notice for a force of exactly 0";
}

int messages = 0;
std::string lastMessage;
void countMessage(appConfig&, const char* text) {
  ++messages;
  lastMessage = text;
}

struct recordFolder {
  std::filesystem::path folder = marvtest::scratchFolder("records");
  marvtest::inFolder here{folder};
  appConfig cfg;
  recordFolder() {
    std::filesystem::create_directories("dump");
    testing::setGrid(cfg, 11, 11, 1, 1.0, 1.0);
    cfg.showMessage = countMessage;
    cfg.latts = 1000;
    messages = 0;
  }
};

// A data line as the program writes it, with the step and probe position,
// of a still fluid of density 1 (rhow) without fields.
std::string probeLine(int ts, double x, double y, double z) {
  appConfig cfg;
  cfg.ts = ts;
  cfg.time = ts * 0.01;
  probeSample still;
  still.rho = 1.0;
  return probeDataLine(cfg, probePoint{float(x), float(y), float(z)}, still);
}

TEST(RecordFiles, ColumnsAreThoseOfTheFileFormats) {
  appConfig cfg;
  cfg.ts = 120, cfg.time = 0.5;
  cfg.forceRecordOn[1] = 1;
  cfg.forceValues[1] = {1.5f, -2.0f, 0.0f};
  const std::string head = forceHeadLine(cfg), data = forceDataLine(cfg);
  EXPECT_EQ(head.substr(0, 44), "          ts      time(s)        Black_flag ");
  EXPECT_NE(head.find("  Non-Preset_flag        Black_Fx(N)        Black_Fy(N) "), std::string::npos) << head;
  EXPECT_EQ(data.substr(0, 44), "         120  5.00000e-01                 1 ");
  EXPECT_NE(data.find("                0        1.50000e+00       -2.00000e+00 "), std::string::npos) << data;
  std::istringstream columns(data);
  int count = 0;
  for (std::string w; columns >> w;) ++count;
  EXPECT_EQ(count, 34);

  cfg.heatRecordOn[8] = 1, cfg.heatValues[8] = 3.25;
  EXPECT_NE(
      heatLossHeadLine(cfg).find("        Cyan_flag          STL_flag   Non-Preset_flag        Black_heatLoss(W/m^2) "),
      std::string::npos);
  EXPECT_EQ(heatLossDataLine(cfg).substr(heatLossDataLine(cfg).size() - 20), "       3.25000e+00 \n");
  EXPECT_EQ(probeHeadLine(),
            "          ts      time(s)         x(m)         y(m)         z(m)  rho(kg/m^3)       u(m/s)       v(m/s)"
            "       w(m/s)         T(K)       massfr       age(s)       dP(Pa)\n");
  EXPECT_EQ(probeFilePath(7), "./dump//probe_007_ascii.dat");
}

TEST(RecordFiles, ProbeSetupComesFromTheLastWholeLine) {
  recordFolder f;
  const std::string head = probeHeadLine();
  marvtest::writeText(probeFilePath(0), head + probeLine(0, 0.1, 0.2, 0.5) + probeLine(10, 0.3, 0.4, 0.5));
  // Killed while writing: the last line stops half way.
  marvtest::writeText(probeFilePath(1), head + probeLine(10, 0.6, 0.7, 0.0) + probeLine(20, 0.9, 0.9, 0).substr(0, 40));
  marvtest::writeText(probeFilePath(2), head);
  f.cfg.numProbes = 3;
  readProbeSetup(f.cfg);
  // Two dimensions: z is 0; a file with its head line only gives 0; probe 3 stays unset.
  EXPECT_EQ(f.cfg.numProbes, 3);
  EXPECT_EQ((std::vector<float>{f.cfg.probes[0].x, f.cfg.probes[0].y, f.cfg.probes[0].z, f.cfg.probes[1].x,
                                f.cfg.probes[2].x, f.cfg.probes[3].x}),
            (std::vector<float>{0.3f, 0.4f, 0.0f, 0.6f, 0.0f, -1.0f}));
  EXPECT_EQ(messages, 0);

  // A missing file in the middle, and a count beyond the table.
  std::filesystem::remove(probeFilePath(1));
  f.cfg.numProbes = 3;
  readProbeSetup(f.cfg);
  EXPECT_EQ(f.cfg.numProbes, 0) << "one below the missing file's index";
  f.cfg.numProbes = 50;
  marvtest::writeText(probeFilePath(1), head + probeLine(10, 0.6, 0.7, 0.0));
  readProbeSetup(f.cfg);
  EXPECT_EQ(f.cfg.numProbes, 2) << "the table holds ten; file 3 is missing";

  // A last position outside the domain drops the probe.
  marvtest::writeText(probeFilePath(2), head + probeLine(0, 0.5, 0.5, 0.0) + probeLine(10, 1.5, 0.5, 0.0));
  f.cfg.numProbes = 3;
  readProbeSetup(f.cfg);
  EXPECT_EQ(f.cfg.numProbes, 1);
  EXPECT_EQ(f.cfg.probes[2].x, -1.0f);
}

TEST(RecordFiles, ForeignFilesGiveAMessageAndAreNeverWritten) {
  recordFolder f;
  const std::string foreign = "my notes\n1 2 3\n";
  marvtest::writeText(probeFilePath(0), foreign);
  const std::string binary("\177ELF\0\0binary", 11);
  marvtest::writeText(forceFilePath, binary);
  marvtest::writeText(heatLossFilePath, heatLossHeadLine(f.cfg) + "          10  1.0 0 0 0\n");
  f.cfg.numProbes = 1;
  f.cfg.showForce = f.cfg.showHeatLoss = 1;
  f.cfg.numRecForce = f.cfg.numRecHeatLoss = 2;
  readProbeSetup(f.cfg);
  readForceSetup(f.cfg);
  readHeatLossSetup(f.cfg);
  EXPECT_EQ(messages, 3);
  EXPECT_NE(lastMessage.find("./dump/heatLoss.txt is not a record file"), std::string::npos) << lastMessage;
  EXPECT_EQ(f.cfg.numRecForce + f.cfg.numRecHeatLoss + f.cfg.numProbes, 0);

  // The user goes on recording in the window: still nothing touches them,
  // neither a new start at step 0 nor an append later.
  f.cfg.numProbes = 1, f.cfg.probes[0] = {0.5f, 0.5f, 0.0f};
  f.cfg.numRecForce = f.cfg.numRecHeatLoss = 1;
  f.cfg.forceRecordOn[1] = f.cfg.heatRecordOn[1] = 1;
  f.cfg.cmode = 1;
  fieldViews none{};
  for (int ts : {0, 10}) {
    f.cfg.ts = ts;
    EXPECT_TRUE(writeProbes(f.cfg, none));
    EXPECT_FALSE(writeForce(f.cfg));
    EXPECT_FALSE(writeHeatLoss(f.cfg));
  }
  EXPECT_EQ(marvtest::readText(probeFilePath(0)), foreign);
  EXPECT_EQ(marvtest::readText(forceFilePath), binary);
  EXPECT_EQ(messages, 3) << "one message per file and pass";
}

TEST(RecordFiles, ForceFlagsComeFromTheLastWholeLine) {
  recordFolder f;
  appConfig writer;
  writer.forceRecordOn[1] = writer.forceRecordOn[8] = 1;
  std::string text = forceHeadLine(writer) + forceDataLine(writer);
  writer.forceRecordOn[8] = 0, writer.forceRecordOn[3] = 1, writer.ts = 10;
  text += forceDataLine(writer);
  writer.forceRecordOn[5] = 1, writer.ts = 20;
  const std::string half = forceDataLine(writer).substr(0, 100);
  marvtest::writeText(forceFilePath, text + half);
  f.cfg.showForce = 1, f.cfg.numRecForce = 1;
  readForceSetup(f.cfg);
  EXPECT_EQ(f.cfg.numRecForce, 2);
  EXPECT_EQ((std::vector<int>{f.cfg.forceRecordOn[1], f.cfg.forceRecordOn[3], f.cfg.forceRecordOn[5],
                              f.cfg.forceRecordOn[8]}),
            (std::vector<int>{1, 1, 0, 0}))
      << "the half line does not count";
  EXPECT_EQ(messages, 0);

  // Without showForce in viz.txt the file is not consulted; a missing file
  // clears the count.
  appConfig off;
  off.numRecForce = 3;
  readForceSetup(off);
  EXPECT_EQ(off.forceRecordOn[1], 0);
  std::filesystem::remove(forceFilePath);
  f.cfg.numRecForce = 2;
  readForceSetup(f.cfg);
  EXPECT_EQ(f.cfg.numRecForce, 0);
}

// A restart continuing the records line for line is checked on whole runs;
// here the start of a new run (sts 0) over an old file.
TEST(RecordFiles, ANewRunStartsTheFileAnewAndAHeldStepAppends) {
  recordFolder f;
  const std::string head = probeHeadLine();
  marvtest::writeText(probeFilePath(0), head + probeLine(0, 0.5, 0.5, 0.0) + probeLine(10, 0.5, 0.5, 0.0));
  f.cfg.numProbes = 1;
  readProbeSetup(f.cfg);
  ASSERT_EQ(f.cfg.numProbes, 1);
  fieldViews none{};
  writeProbes(f.cfg, none);
  writeProbes(f.cfg, none);
  EXPECT_EQ(marvtest::readText(probeFilePath(0)), head + probeLine(0, 0.5, 0.5, 0.0) + probeLine(0, 0.5, 0.5, 0.0));
}

}  // namespace
}  // namespace marv
