// What the live picture costs a run, on the off-screen OpenGL backend:
//
// - frame/N: the frame's own work on an N x N 2D case (quantity, colour
//   mapping and the recording of one box per cell) followed by the clear of
//   a picture nobody looks at, which the layer drops without rasterising;
// - presented/N/0/1 (and a 241 x 61 channel at 5 pixels a cell, the size of
//   the cylinder example's picture): the same frame read back, so that it is rasterised (Mesa's
//   software renderer here): the frames per second a window could show;
// - solverStep/513: one step of the constant-density solver on the same
//   grid with 20 pressure sweeps, one thread, for comparison;
// - batch/<example>/<picture>: the driver's whole run, as marvanesse-batch
//   makes it, on a copy of a bundled example cut to 1000 (2D) or 200 (3D) steps,
//   with the picture drawn (1) and with only the frame's numbers (0).
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "app/batchStages.h"
#include "app/driver.h"
#include "domain/bcDomain.h"
#include "domain/nodeLists.h"
#include "layer/layer.h"
#include "project/applyParameters.h"
#include "scene/sceneView.h"
#include "solver/incompSolver.h"

namespace {

using namespace marv;

bool layerUp() { return startLayer() == 0 && layerDrawsPixels() == 1; }

// A lid-driven cavity of n x n nodes on a screen of one pixel a cell, with
// the layout the parameter stage gives a 2D run.
struct cavity {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<incompSolver> solver;
  fieldViews views{};
  sceneView scene;

  // nx x ny nodes (ny = nx when 0), `ppc` pixels a cell.
  explicit cavity(int nx, int ny = 0, int ppc = 1) {
    ny = ny > 0 ? ny : nx;
    const double h = 1.0 / (nx - 1);
    cfg.nx = nx, cfg.ny = ny;
    cfg.nz = 1;
    cfg.lx = 1.0, cfg.ly = h * (ny - 1), cfg.lz = 0.0;
    cfg.dx = cfg.dy = h, cfg.dz = 1.0;
    cfg.ibm = 0, cfg.mu = 1e-3, cfg.uinb = 1.0, cfg.cs = dashValue;
    cfg.peps = 0.0, cfg.loopmax = 20;  // every step 20 sweeps
    cfg.deltat = 0.2 * cfg.dx, cfg.fixedDeltat = 1;
    cfg.numThreads = 1, cfg.npx = cfg.npy = cfg.npz = 1;
    cfg.threadX.assign(1, 0), cfg.threadY.assign(1, 0), cfg.threadZ.assign(1, 0);
    cfg.tileI0 = {0}, cfg.tileI1 = {nx}, cfg.tileJ0 = {0}, cfg.tileJ1 = {ny}, cfg.tileK0 = {0}, cfg.tileK1 = {1};
    cfg.xCoord.resize(nx), cfg.yCoord.resize(ny), cfg.zCoord.assign(1, 0.0);
    const int w = ppc * (nx - 1), hPix = ppc * (ny - 1);
    cfg.pixPerCell = ppc, cfg.pixPerMetre = ppc / cfg.dx;
    cfg.marginLeft = cfg.marginRight = 10, cfg.marginTop = 30;
    cfg.domPixX = cfg.domPixY = cfg.domPixW = w;
    cfg.domPixH = hPix;
    cfg.screenWidth = cfg.sceneWidth = w + 20;
    cfg.screenHeight = cfg.sceneHeight = 30 + 21 + hPix + 63;
    cfg.pixelX.resize(nx), cfg.pixelY.resize(ny);
    for (int i = 0; i < nx; ++i) {
      cfg.xCoord[i] = i * cfg.dx;
      cfg.pixelX[i] = static_cast<float>(cfg.xCoord[i] * cfg.pixPerMetre) + 10.5f;
    }
    for (int j = 0; j < ny; ++j) {
      cfg.yCoord[j] = j * cfg.dy;
      cfg.pixelY[j] = static_cast<float>((cfg.ly - cfg.yCoord[j]) * cfg.pixPerMetre) + 30.5f;
    }
    setColourTables(cfg);
    cfg.bcTypePresent = {0, 1, 1, 0, 0, 0, 0, 0, 0, 0};
    constructDomain(domain, cfg);
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i)
        domain.bcFlag(i, j, 0) = j == ny - 1 ? 2 : ((i == 0 || i == nx - 1 || j == 0) ? 1 : 0);
    buildNodeLists(domain, cfg);
    solver = std::make_unique<incompSolver>(cfg, domain);
    setInitialFields(*solver);
    for (int i : {fieldU, fieldV, fieldW, fieldP, fieldY, fieldConvX, fieldConvY, fieldConvZ, fieldDivU})
      views[i] = *solver->field(i);
    for (int s = 0; s < 20; ++s) solver->step();  // a flow to show
    setGraphicsMode(cfg.screenWidth, cfg.screenHeight, 32, 60);
    setBackgroundColour(255, 255, 255, 0);
    setDrawTarget(backBuffer);
    constructScene(scene, cfg, domain);
    setUpScene(scene, cfg);
    cfg.ts = 100, cfg.sts = 0, cfg.latts = 1000;
  }
};

void frame(benchmark::State& state) {
  if (!layerUp()) return state.SkipWithError("no OpenGL renderer");
  cavity c(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    drawFrame(c.scene, c.cfg, c.views, 1);
    clearDrawTarget();
  }
  state.counters["frames/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void presented(benchmark::State& state) {
  if (!layerUp()) return state.SkipWithError("no OpenGL renderer");
  cavity c(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
  const int probe = makePixelImage(1, 1);
  for (auto _ : state) {
    drawFrame(c.scene, c.cfg, c.views, 1);
    captureToPixelImage(0, 0, 1, 1, probe);  // every draw of the frame done
    clearDrawTarget();
  }
  state.counters["frames/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  deletePixelImage(probe);
}

void solverStep(benchmark::State& state) {
  cavity c(static_cast<int>(state.range(0)));
  for (auto _ : state) c.solver->step();
  state.counters["steps/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// Copy of a bundled example with latts set to `steps` (images and dumps at
// the example's own intervals), run
// on one thread: on a shared machine the waits of a second solver thread
// would hide what the picture costs.
std::filesystem::path exampleCopy(const std::string& name, int steps) {
  const auto to = std::filesystem::temp_directory_path() / ("marv-bench-" + name);
  std::filesystem::remove_all(to);
  std::filesystem::create_directories(to / "figs");
  std::filesystem::create_directories(to / "dump");
  std::filesystem::copy(std::filesystem::path(MARV_EXAMPLES_DIR) / name / "input", to / "input");
  std::ifstream in(to / "input" / "param.txt");
  std::ostringstream out;
  for (std::string line; std::getline(in, line);) {
    for (const char* key : {"013:latts", "014:latts"})
      if (line.rfind(key, 0) == 0) line = std::string(key) + " " + std::to_string(steps);
    if (line.rfind("005:parallel", 0) == 0) line = "005:parallel 0";
    out << line << "\n";
  }
  in.close();
  std::ofstream(to / "input" / "param.txt") << out.str();
  return to;
}

void batch(benchmark::State& state, const std::string& name, int steps) {
  const bool picture = state.range(0) != 0;
  for (auto _ : state) {
    state.PauseTiming();
    if (!layerUp()) return state.SkipWithError("no OpenGL renderer");
    const auto folder = exampleCopy(name, steps);
    batchOptions options;
    options.projectDir = folder.string();
    options.quiet = true;
    passStages stages = batchStages(options);
    stages.drawPicture = picture;
    driverState run;
    state.ResumeTiming();
    runDriver(stages, run);  // the pass also reads the inputs and builds the domain
    state.PauseTiming();
    state.counters["steps"] = run.stepsTaken;
    std::filesystem::remove_all(folder);
    state.ResumeTiming();
  }
}

}  // namespace

BENCHMARK(frame)->Arg(257)->Arg(513)->Unit(benchmark::kMillisecond)->UseRealTime();
// The last: a channel the size of the cylinder example's picture, 5 pixels a cell.
BENCHMARK(presented)
    ->Args({257, 0, 1})
    ->Args({513, 0, 1})
    ->Args({241, 61, 5})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(solverStep)->Arg(513)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(batch, cylinder2d, "cylinder2d", 1000)
    ->Arg(1)
    ->Arg(0)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(batch, duct3d, "duct3d", 200)
    ->Arg(1)
    ->Arg(0)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

BENCHMARK_MAIN();
