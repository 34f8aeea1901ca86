// What the three-dimensional live picture costs on a 129 x 129 x 129 mesh,
// on the off-screen OpenGL backend. The case is the bundled duct with its
// block, cut to a 0.5 m cube and meshed with 129 points along each axis; it
// is built by the driver exactly as marvanesse-batch builds it (parameters,
// bitmaps, domain, solver), run for a few steps so that the flow is not at
// rest, and measured from inside the run, where the scene and the fields
// are live:
//
// - frame3d/planes+vectors+streamlines: the whole drawFrame with the XY, YZ
//   and XZ planes, the velocity vectors and the streamlines from the inlet
//   on, then clearDrawTarget, which drops the frame unrasterised: the
//   frame's own work (quantity, colour mapping, primitives);
// - frame3d/planes+vectors+allStreamlines: the same with the streamlines
//   from every lattice point (Shift + L). The duct's inlet lies one node in
//   from the x face, off the lattice, so the lines "from inlets" of the
//   first figure are none: this one is the frame with lines to draw;
// - frame3d/planes, frame3d/vectors, frame3d/streamlines,
//   frame3d/allStreamlines: one of them alone;
// - frame3d/bare: none of them (quantity, statistics, outline, status);
// - solverStep/129^3/threads:1 and :2: one solver step with 20 pressure
//   sweeps on the same case (the two-thread step runs in a second pass of
//   the driver, since the thread layout is fixed when the solver is made).
//
// The frame's figures are CPU times of the main thread, which draws; the
// solver's are CPU times of the whole process (all solver threads) beside
// the wall time. The machine may be shared: note the load average.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "app/batchStages.h"
#include "app/driver.h"
#include "layer/layer.h"
#include "scene/sceneView.h"
#include "scene/streamlines.h"
#include "solver/solverCommon.h"

namespace {

using namespace marv;

constexpr int meshPoints = 129;
constexpr int warmSteps = 20;  // streamlines show from step 10 on

// The live case of the running pass, seen from the driver's hooks.
struct liveCase {
  driverState* driver = nullptr;
  passObjects objects;
  appConfig* cfg = nullptr;
  int threads = 1;
  void (*batchRunStep)(appConfig&, bool) = nullptr;
  bool measured = false;
};

liveCase live;

int keepObjects(appConfig&, passObjects& objects) {
  live.objects = objects;
  return 1;
}

// The picture's switches; every other viz.txt value stays as the example
// has it.
struct pictureFlags {
  int planes, vectors, streamlines;  // streamlines: showStreamlineFlag, 0 off, 1 from inlets, 2 everywhere
};

void frameWith(benchmark::State& state, pictureFlags flags) {
  appConfig& cfg = *live.cfg;
  const int saved[6] = {cfg.showCrosssectionXYFlag, cfg.showCrosssectionYZFlag, cfg.showCrosssectionXZFlag,
                        cfg.showVectorFlag,         cfg.showStreamlineFlag,     cfg.showCrosssectionVectorFlag};
  cfg.showCrosssectionXYFlag = cfg.showCrosssectionYZFlag = cfg.showCrosssectionXZFlag = flags.planes;
  cfg.showVectorFlag = flags.vectors;
  cfg.showStreamlineFlag = flags.streamlines;
  cfg.showCrosssectionVectorFlag = 0;
  for (auto _ : state) {
    drawFrame(*live.objects.scene, cfg, *live.objects.views, 1);
    clearDrawTarget();
  }
  cfg.showCrosssectionXYFlag = saved[0], cfg.showCrosssectionYZFlag = saved[1], cfg.showCrosssectionXZFlag = saved[2];
  cfg.showVectorFlag = saved[3], cfg.showStreamlineFlag = saved[4], cfg.showCrosssectionVectorFlag = saved[5];
  state.counters["frames/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void solverStep(benchmark::State& state) {
  solverCommon& solver = *live.driver->solver;
  for (auto _ : state) solver.step();
  state.counters["threads"] = live.threads;
}

void registerPass() {
  using benchmark::RegisterBenchmark;
  if (live.threads == 1) {
    RegisterBenchmark("frame3d/planes+vectors+streamlines", frameWith, pictureFlags{1, 1, 1})
        ->Unit(benchmark::kMillisecond);
    RegisterBenchmark("frame3d/planes+vectors+allStreamlines", frameWith, pictureFlags{1, 1, 2})
        ->Unit(benchmark::kMillisecond);
    RegisterBenchmark("frame3d/planes", frameWith, pictureFlags{1, 0, 0})->Unit(benchmark::kMillisecond);
    RegisterBenchmark("frame3d/vectors", frameWith, pictureFlags{0, 1, 0})->Unit(benchmark::kMillisecond);
    RegisterBenchmark("frame3d/streamlines", frameWith, pictureFlags{0, 0, 1})->Unit(benchmark::kMillisecond);
    RegisterBenchmark("frame3d/allStreamlines", frameWith, pictureFlags{0, 0, 2})->Unit(benchmark::kMillisecond);
    RegisterBenchmark("frame3d/bare", frameWith, pictureFlags{0, 0, 0})->Unit(benchmark::kMillisecond);
  }
  const std::string name = "solverStep/129^3/threads:" + std::to_string(live.threads);
  RegisterBenchmark(name.c_str(), solverStep)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

// What the frame has to draw: the seeds and steps of the streamlines, so
// that a figure can be read against the flow it was taken on.
struct lineCount {
  const appConfig* cfg;
  flowSample flow;
  double stepLength, vmax;
  int maxSteps;
  long long steps = 0;
  int seeds = 0;
};

void countLine(void* user, const std::array<double, 3>& seed) {
  lineCount& c = *static_cast<lineCount*>(user);
  c.steps += traceStreamline(*c.cfg, c.flow, seed, 3, c.stepLength, c.vmax, c.maxSteps, nullptr, nullptr);
  ++c.seeds;
}

void countLines(const appConfig& cfg, int mode) {
  const sceneView& scene = *live.objects.scene;
  const fieldViews& views = *live.objects.views;
  const bcDomain& domain = *scene.domain;
  lineCount c{&cfg,
              {&views[fieldU], &views[fieldV], &views[fieldW], &domain.solidMask},
              std::sqrt(cfg.dx * cfg.dx + cfg.dy * cfg.dy + cfg.dz * cfg.dz) * 0.4000000059604645,
              std::max(scene.stats.maxSpeed, 1e-6),
              static_cast<int>(std::sqrt(static_cast<double>(cfg.nx) * cfg.ny * cfg.nz) * cfg.nLoopStreamline)};
  timespec t0{}, t1{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t0);
  walkSeeds(cfg, domain.bcFlag, 3, mode == 2, true, countLine, &c);
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t1);
  const double ms = (t1.tv_sec - t0.tv_sec) * 1e3 + (t1.tv_nsec - t0.tv_nsec) * 1e-6;
  std::printf("streamlines %s: %d lines of %lld steps in all, traced in %.1f ms CPU without drawing\n",
              mode == 2 ? "from every lattice point" : "from inlets", c.seeds, c.steps, ms);
}

void describeCase(const appConfig& cfg) {
  const velocityStatistics& stats = live.objects.scene->stats;
  std::printf("case: %d x %d x %d, step %d, ndiv %d, %d pressure sweeps (tolerance %g), speed %.3g to %.3g m/s\n",
              cfg.nx, cfg.ny, cfg.nz, cfg.ts, cfg.ndiv, cfg.loopmax, cfg.peps, stats.minSpeed, stats.maxSpeed);
  countLines(cfg, 1);
  countLines(cfg, 2);
}

// With MARV_PLANES_PICTURE set to a folder, the measured frames are kept
// there as binary PPM pictures (streamlines from inlets, and from
// everywhere), so that a change to the drawing can be checked byte for
// byte against the pictures of the code before it. The status band at the
// bottom is left out: it shows the time a frame took.
void savePictures(appConfig& cfg) {
  const char* folder = std::getenv("MARV_PLANES_PICTURE");
  if (folder == nullptr || folder[0] == '\0') return;
  const int saved[4] = {cfg.showCrosssectionXYFlag, cfg.showVectorFlag, cfg.showStreamlineFlag,
                        cfg.showCrosssectionVectorFlag};
  cfg.showCrosssectionXYFlag = cfg.showCrosssectionYZFlag = cfg.showCrosssectionXZFlag = 1;
  cfg.showVectorFlag = 1;
  cfg.showCrosssectionVectorFlag = 0;
  for (int mode : {1, 2}) {
    cfg.showStreamlineFlag = mode;
    drawFrame(*live.objects.scene, cfg, *live.objects.views, 1);
    const int w = cfg.screenWidth, h = cfg.screenHeight - cfg.marginBottom - cfg.bottomStrip;
    const int image = makePixelImage(w, h);
    captureToPixelImage(0, 0, w - 1, h - 1, image);
    const std::string path = std::string(folder) + "/planes129-streamlines" + std::to_string(mode) + ".ppm";
    std::ofstream out(path, std::ios::binary);
    out << "P6\n" << w << " " << h << "\n255\n";
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) {
        int r = 0, g = 0, b = 0, a = 0;
        readPixel(image, x, y, &r, &g, &b, &a);
        out.put(static_cast<char>(r)).put(static_cast<char>(g)).put(static_cast<char>(b));
      }
    deletePixelImage(image);
    clearDrawTarget();
  }
  cfg.showCrosssectionXYFlag = cfg.showCrosssectionYZFlag = cfg.showCrosssectionXZFlag = saved[0];
  cfg.showVectorFlag = saved[1], cfg.showStreamlineFlag = saved[2], cfg.showCrosssectionVectorFlag = saved[3];
}

// After each step of the run: at the end of the warm-up, measure, then end
// the run.
void measureAfterWarmUp(appConfig& cfg, bool final) {
  if (live.batchRunStep != nullptr) live.batchRunStep(cfg, final);
  if (final || live.measured || cfg.ts < warmSteps) return;
  live.measured = true;
  live.cfg = &cfg;
  if (live.driver->solver && live.objects.scene != nullptr && live.objects.views != nullptr) {
    if (live.threads == 1) {
      describeCase(cfg);
      savePictures(cfg);
    }
    registerPass();
    // A reporter of its own for each pass: the library's default one
    // serves a single run only.
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_Tabular);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks();
  } else {
    std::fprintf(stderr, "planesFrameBench: the case has no solver or scene\n");
  }
  cfg.latts = cfg.ts;  // the run ends after this step
}

// A copy of the duct example as a 129^3 cube run for warmSteps steps with
// no images or dumps, 20 pressure sweeps a step, on `threads` solver
// threads.
std::filesystem::path makeCase(int threads) {
  const auto to = std::filesystem::temp_directory_path() / "marv-bench-planes129";
  std::filesystem::remove_all(to);
  std::filesystem::create_directories(to / "figs");
  std::filesystem::create_directories(to / "dump");
  std::filesystem::copy(std::filesystem::path(MARV_EXAMPLES_DIR) / "duct3d" / "input", to / "input");
  std::ifstream in(to / "input" / "param.txt");
  std::ostringstream out;
  const std::string n = std::to_string(meshPoints);
  const std::pair<const char*, std::string> changes[] = {{"005:parallel", threads == 1 ? "0" : "1"},
                                                         {"006:nx", n},
                                                         {"007:ny", n},
                                                         {"008:nz", n},
                                                         {"009:lx", "0.5"},
                                                         {"014:latts", std::to_string(warmSteps + 1000)},
                                                         {"022:nfig", "0"},
                                                         {"023:nfile", "0"}};
  for (std::string line; std::getline(in, line);) {
    for (const auto& [key, value] : changes)
      if (line.rfind(key, 0) == 0) line = std::string(key) + " " + value;
    // Every step makes exactly 20 pressure sweeps: no tolerance ends them
    // early, and no more than 20 are made.
    if (line.rfind("#End of file", 0) == 0) out << "024:peps 0\n025:loopmax 20\n";
    out << line << "\n";
  }
  in.close();
  std::ofstream(to / "input" / "param.txt") << out.str();
  // Later keys of viz.txt win: walls hidden so that the planes show; the
  // planes through the middle of the cube.
  std::ofstream(to / "input" / "viz.txt", std::ios::app)
      << "showBoundaryFlagUser 0\nshowStreamlineFlag 1\nshowVectorFlag 1\nshowCrosssectionVectorFlag 0\n"
         "zCrosssectionXY 0.25\nxCrosssectionYZ 0.25\nyCrosssectionXZ 0.25\n";
  return to;
}

// The driver stops the layer at the end of its pass; each pass starts it.
bool layerUp() { return startLayer() == 0 && layerDrawsPixels() == 1; }

int runPassWith(int threads) {
  if (!layerUp()) {
    std::fprintf(stderr, "planesFrameBench: no OpenGL renderer\n");
    return 1;
  }
  const auto folder = makeCase(threads);
  batchOptions options;
  options.projectDir = folder.string();
  options.quiet = true;
  passStages stages = batchStages(options);
  live = liveCase{};
  live.threads = threads;
  live.batchRunStep = stages.runStep;
  stages.placementStage = keepObjects;
  stages.runStep = measureAfterWarmUp;
  driverState state;
  live.driver = &state;
  const int status = runDriver(stages, state);
  std::filesystem::remove_all(folder);
  if (!live.measured) {
    std::fprintf(stderr, "planesFrameBench: the run ended after %d steps, before the measurement\n", state.stepsTaken);
    return 1;
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  double load[3] = {0, 0, 0};
  if (getloadavg(load, 3) == 3) std::printf("load average at start: %.2f %.2f %.2f\n", load[0], load[1], load[2]);
  int status = runPassWith(1);
  if (status == 0) status = runPassWith(2);
  if (getloadavg(load, 3) == 3) std::printf("load average at end: %.2f %.2f %.2f\n", load[0], load[1], load[2]);
  benchmark::Shutdown();
  return status;
}
