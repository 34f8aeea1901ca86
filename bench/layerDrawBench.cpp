// Frames per second of the drawing layer under the load of a run, off-screen:
// one filled box per cell of a 512 x 512 mesh in 2D (262,144 boxes), and two
// lit triangles per cell of a 500 x 500 plane in 3D (500,000 triangles). Each
// frame ends by reading one pixel back, so the time includes the GPU's work
// (Mesa's software renderer on machines without a GPU).
#include <benchmark/benchmark.h>

#include <cstdio>

#include "layer/layer.h"

namespace {

using namespace marv;

constexpr int screenWidth = 1080;  // back buffer [px]
constexpr int screenHeight = 560;  // back buffer [px]

bool startOnce() {
  static const bool started = [] {
    setGraphicsMode(screenWidth, screenHeight, 32, 60);
    return startLayer() == 0 && layerDrawsPixels() == 1;
  }();
  return started;
}

// Waits for the frame to be drawn: reading a pixel needs every draw done.
void finishFrame(int probe) {
  present();
  captureToPixelImage(0, 0, 1, 1, probe);
}

void contourBoxes(benchmark::State& state) {
  if (!startOnce()) {
    state.SkipWithError("no OpenGL renderer");
    return;
  }
  constexpr int n = 512;  // cells per side
  const int probe = makePixelImage(1, 1);
  const int before = drawCallCount();
  for (auto _ : state) {
    clearDrawTarget();
    // A 512 x 512 mesh on 1024 x 512 pixels: each cell 2 x 1 pixels.
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i) drawBox(2 * i, j, 2 * i + 2, j + 1, colour(i / 2, j / 2, (i + j) / 4), 1);
    finishFrame(probe);
  }
  state.counters["fps"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["drawCalls/frame"] =
      static_cast<double>(drawCallCount() - before) / static_cast<double>(state.iterations());
  deletePixelImage(probe);
}

void planeTriangles(benchmark::State& state) {
  if (!startOnce()) {
    state.SkipWithError("no OpenGL renderer");
    return;
  }
  constexpr int n = 500;  // cells per side, two triangles each
  const int probe = makePixelImage(1, 1);
  setZBuffer(1);
  setZWrite(1);
  setLighting(1);
  setCamera({540, 280, -700}, {540, 280, 250}, {0, 1, 0});
  setPerspective(1.0471976f);
  setPointLight({540, 280, -700}, 5000.0f, 0.7f, 0.0006f, 0.0f);
  const int before = drawCallCount();
  for (auto _ : state) {
    clearDrawTarget();
    // A slanted plane 1000 x 500 units across the view.
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i) {
        const float x0 = 40.0f + 2.0f * i, x1 = x0 + 2.0f;
        const float y0 = 30.0f + j, y1 = y0 + 1.0f;
        const float z0 = 0.6f * j, z1 = z0 + 0.6f;
        const std::uint32_t c = colour(i / 2, j / 2, 128);
        drawTriangle3d({x0, y0, z0}, {x1, y0, z0}, {x1, y1, z1}, c, 1);
        drawTriangle3d({x0, y0, z0}, {x1, y1, z1}, {x0, y1, z1}, c, 1);
      }
    finishFrame(probe);
  }
  state.counters["fps"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["drawCalls/frame"] =
      static_cast<double>(drawCallCount() - before) / static_cast<double>(state.iterations());
  setLighting(0);
  setZBuffer(0);
  setZWrite(0);
  deletePixelImage(probe);
}

BENCHMARK(contourBoxes)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);
BENCHMARK(planeTriangles)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

}  // namespace

BENCHMARK_MAIN();
