// Streamlines. Each line draws one primitive per step and all lines are
// rebuilt in every frame, so nothing is stored between frames and nothing
// is allocated: the steps go straight to the layer.
#include "scene/streamlines.h"

#include <algorithm>
#include <cmath>

#include "domain/gridSampling.h"
#include "scene/camera3d.h"
#include "scene/colourScale.h"
#include "scene/flowLattice.h"

namespace marv {

namespace {

const std::vector<double>& coordOf(const appConfig& cfg, int axis) {
  return axis == 0 ? cfg.xCoord : (axis == 1 ? cfg.yCoord : cfg.zCoord);
}

int pointsOf(const appConfig& cfg, int axis) { return axis == 0 ? cfg.nx : (axis == 1 ? cfg.ny : cfg.nz); }

double spacingOf(const appConfig& cfg, int axis) { return axis == 0 ? cfg.dx : (axis == 1 ? cfg.dy : cfg.dz); }

bool meshReady(const appConfig& cfg, int dims) {
  for (int a = 0; a < dims; ++a)
    if (pointsOf(cfg, a) < 2 || static_cast<int>(coordOf(cfg, a).size()) < pointsOf(cfg, a)) return false;
  return true;
}

double sampleAt(const appConfig& cfg, int dims, const double p[3], const array3d<double>& field) {
  return dims == 2 ? sampleFieldPlane(cfg, p[0], p[1], field) : sampleField(cfg, p[0], p[1], p[2], field);
}

struct seedWalk {
  const appConfig* cfg;
  const array3d<int>* bcFlag;
  int dims;
  bool allInterior, edgeTests;
  seedVisit visit;
  void* user;
  int count = 0;
  std::array<latticeAxis, 3> axis{};

  bool inlet(int i, int j, int k) const { return isInletFlag((*bcFlag)(i, j, k)); }
  double at(int a, int index, bool shifted) const { return coordOf(*cfg, a)[index] + (shifted ? axis[a].shift : 0.0); }
  void seed(int i, int j, int k, bool si, bool sj, bool sk) {
    std::array<double, 3> p{at(0, i, si), at(1, j, sj), dims == 3 ? at(2, k, sk) : 0.0};
    visit(user, p);
    ++count;
  }
};

struct lineDraw {
  sceneView* scene;
  const appConfig* cfg;
  const array3d<double>* display;
  int dims;
  double lo, hi;
  int thickness2d;
  float radius3d;
  // The end of the last step, whose start is the end of the one before:
  // its world point is found once.
  double lastEnd[3] = {NAN, NAN, NAN};  // none yet: not a number equals nothing
  vec3 lastEndWorld{};
};

std::uint32_t objectColour(const sceneView& scene, const appConfig& cfg, const lineDraw& d, const double p[3]) {
  if (cfg.nonBcObjectColorFlag != 1 || d.display == nullptr || d.display->data == nullptr)
    return d.dims == 2 ? scene.colours.black : colour(scene.objectColourR, scene.objectColourG, scene.objectColourB);
  return scene.colourTable[colourSlot(sampleAt(cfg, d.dims, p, *d.display), d.lo, d.hi)];
}

void drawStep(void* user, const double p[3], const double q[3]) {
  lineDraw& d = *static_cast<lineDraw*>(user);
  const sceneView& scene = *d.scene;
  const appConfig& cfg = *d.cfg;
  const std::uint32_t c = objectColour(scene, cfg, d, p);
  if (d.dims == 2) {
    const double s = cfg.pixPerMetre, x0 = cfg.xCoord[0], y0 = cfg.yCoord[0];
    auto px = [&](double x) { return static_cast<int>((x - x0) * s + cfg.marginLeft + 0.5); };
    auto py = [&](double y) { return static_cast<int>(s * cfg.ly - (y - y0) * s + cfg.marginTop + 0.5); };
    drawLine(px(p[0]), py(p[1]), px(q[0]), py(q[1]), c, d.thickness2d);
    return;
  }
  const bool follows = p[0] == d.lastEnd[0] && p[1] == d.lastEnd[1] && p[2] == d.lastEnd[2];
  const vec3 a = follows ? d.lastEndWorld : worldPoint(scene, cfg, p[0], p[1], p[2]);
  const vec3 b = worldPoint(scene, cfg, q[0], q[1], q[2]);
  d.lastEnd[0] = q[0], d.lastEnd[1] = q[1], d.lastEnd[2] = q[2];
  d.lastEndWorld = b;
  if (cfg.streamLineThickness > 0.0f)
    drawCapsule3d(a, b, d.radius3d, 4, c, c, 1);
  else
    drawLine3d(a, b, c);
}

struct frameLines {
  const appConfig* cfg;
  flowSample flow;
  int dims;
  double stepLength, vmax;
  int maxSteps;
  lineDraw draw;
  float seedRadius;
};

void traceAndDraw(void* user, const std::array<double, 3>& seed) {
  frameLines& f = *static_cast<frameLines*>(user);
  const appConfig& cfg = *f.cfg;
  traceStreamline(cfg, f.flow, seed, f.dims, f.stepLength, f.vmax, f.maxSteps, drawStep, &f.draw);
  if (f.dims == 3) {
    bool inside = true;
    for (int a = 0; a < 3; ++a)
      inside = inside && seed[a] >= coordOf(cfg, a).front() && seed[a] <= coordOf(cfg, a)[pointsOf(cfg, a) - 1];
    if (inside) {
      const sceneView& scene = *f.draw.scene;
      drawSphere3d(worldPoint(scene, cfg, seed[0], seed[1], seed[2]), f.seedRadius, cfg.particleDivNum,
                   scene.colours.red, scene.colours.red, 1);
    }
  }
}

bool fieldsFit(const appConfig& cfg, const fieldViews& views, const array3d<int>& bcFlag, int dims) {
  const int count = cfg.nx * cfg.ny * std::max(cfg.nz, 1);
  for (int f : {static_cast<int>(fieldU), static_cast<int>(fieldV), viewDisplay})
    if (views[f].data == nullptr || views[f].count() != count) return false;
  if (dims == 3 && (views[fieldW].data == nullptr || views[fieldW].count() != count)) return false;
  return bcFlag.data != nullptr && bcFlag.count() == count;
}

void drawLines(sceneView& scene, const appConfig& cfg, const fieldViews& views, int dims) {
  if (scene.domain == nullptr || !meshReady(cfg, dims)) return;
  const array3d<int>& bcFlag = scene.domain->bcFlag;
  if (!fieldsFit(cfg, views, bcFlag, dims)) return;
  const array3d<int>& solid = scene.domain->solidMask;
  frameLines f{};
  f.cfg = &cfg;
  f.flow = {&views[fieldU], &views[fieldV], &views[fieldW], solid.count() == bcFlag.count() ? &solid : nullptr};
  f.dims = dims;
  f.vmax = std::max(scene.stats.maxSpeed, 1e-6);
  if (dims == 2) {
    f.stepLength = std::sqrt(cfg.dx * cfg.dx + cfg.dy * cfg.dy) * 0.5;
    f.maxSteps = cfg.nLoopStreamline * cfg.nx * cfg.ny;
  } else {
    f.stepLength = std::sqrt(cfg.dx * cfg.dx + cfg.dy * cfg.dy + cfg.dz * cfg.dz) * 0.4000000059604645;
    f.maxSteps = static_cast<int>(std::sqrt(static_cast<double>(cfg.nx) * cfg.ny * cfg.nz) * cfg.nLoopStreamline);
  }
  const int ndiv = std::max(cfg.ndiv, 1);
  f.draw = {&scene,
            &cfg,
            &views[viewDisplay],
            dims,
            rangeLow(scene, cfg),
            rangeHigh(scene, cfg),
            static_cast<int>(ndiv * cfg.streamLineThickness * scene.cellScale),
            static_cast<float>(ndiv * cfg.streamLineThickness * 0.5 * scene.cellScale)};
  f.seedRadius = static_cast<float>(ndiv * 0.5 * cfg.particleSize * scene.cellScale);
  walkSeeds(cfg, bcFlag, dims, cfg.showStreamlineFlag == 2, true, traceAndDraw, &f);
}

}  // namespace

int traceStreamline(const appConfig& cfg, const flowSample& flow, std::array<double, 3> seed, int dims,
                    double stepLength, double vmax, int maxSteps, streamlineStep onStep, void* user) {
  if (flow.u == nullptr || flow.v == nullptr || (dims == 3 && flow.w == nullptr) || !meshReady(cfg, dims)) return 0;
  const double* coord[3] = {cfg.xCoord.data(), cfg.yCoord.data(), cfg.zCoord.data()};
  double lo[3] = {0, 0, 0}, hi[3] = {0, 0, 0}, h[3] = {1, 1, 1};
  int n[3] = {1, 1, 1};
  for (int a = 0; a < dims; ++a) {
    n[a] = pointsOf(cfg, a);
    lo[a] = coord[a][0], hi[a] = coord[a][n[a] - 1], h[a] = spacingOf(cfg, a);
  }
  double p[3] = {seed[0], seed[1], dims == 3 ? seed[2] : 0.0};
  for (int a = 0; a < dims; ++a)
    if (!(p[a] >= lo[a] && p[a] <= hi[a])) return 0;
  // The position of p in cells along each axis, (p - first node) / spacing:
  // one division an axis and step, shared by the cell search of the three
  // components and by the solid test of the step's end.
  double cells[3] = {0, 0, 0};
  for (int a = 0; a < dims; ++a) cells[a] = (p[a] - lo[a]) / h[a];
  // 2D fields are read with the cell index rounded to the nearest node.
  const double rounding = dims == 2 ? 0.5 : 0.0;
  const double scale = stepLength / vmax;
  int steps = 0;
  while (steps < maxSteps) {
    axisSpot at[3] = {{}, {}, {0, 0, 0.0, true}};
    bool inMesh = true;
    for (int a = 0; a < dims; ++a) {
      at[a] = spotOn(p[a], cells[a] + rounding, coord[a], n[a]);
      inMesh = inMesh && at[a].inside;
    }
    if (!inMesh) break;  // reads as still water
    const double vel[3] = {blendAt(*flow.u, at), blendAt(*flow.v, at), dims == 3 ? blendAt(*flow.w, at) : 0.0};
    const double speed = std::sqrt(vel[0] * vel[0] + vel[1] * vel[1] + vel[2] * vel[2]);
    if (!(speed / vmax >= 0.01)) break;  // still water, or a velocity that is not a number
    double q[3] = {p[0], p[1], p[2]};
    bool inside = true;
    for (int a = 0; a < dims; ++a) {
      q[a] = p[a] + vel[a] * scale;
      inside = inside && q[a] >= lo[a] && q[a] <= hi[a];
    }
    if (!inside) break;
    for (int a = 0; a < dims; ++a) cells[a] = (q[a] - lo[a]) / h[a];
    if (flow.solid != nullptr) {
      int node[3] = {0, 0, 0};
      for (int a = 0; a < dims; ++a)
        node[a] = h[a] > 0.0 ? std::clamp(static_cast<int>(std::floor(cells[a] + 0.5)), 0, n[a] - 1) : 0;
      if ((*flow.solid)(node[0], node[1], node[2]) != 0) break;
    }
    if (onStep != nullptr) onStep(user, p, q);
    p[0] = q[0], p[1] = q[1], p[2] = q[2];
    ++steps;
  }
  return steps;
}

int walkSeeds(const appConfig& cfg, const array3d<int>& bcFlag, int dims, bool allInterior, bool edgeTests,
              seedVisit visit, void* user) {
  if (!meshReady(cfg, dims) || bcFlag.data == nullptr || visit == nullptr) return 0;
  seedWalk w{&cfg, &bcFlag, dims, allInterior, edgeTests, visit, user};
  const std::array<int, 3> steps = latticeSteps(cfg);
  for (int a = 0; a < dims; ++a) w.axis[a] = makeLatticeAxis(pointsOf(cfg, a), steps[a], spacingOf(cfg, a));
  const int nx = cfg.nx, ny = cfg.ny, nz = dims == 3 ? cfg.nz : 1;
  const latticeAxis &ax = w.axis[0], &ay = w.axis[1], &az = w.axis[2];
  const int faces[3][2] = {{0, nx - 1}, {0, ny - 1}, {0, nz - 1}};
  if (dims == 2) {
    for (int j = ay.first; j < ny - ay.first; j += ay.step)
      for (int i : faces[0])
        if (w.inlet(i, j, 0)) w.seed(i, j, 0, false, true, false);
    for (int j : faces[1])
      for (int i = ax.first; i < nx - ax.first; i += ax.step)
        if (w.inlet(i, j, 0) && (!edgeTests || (i != 0 && i != nx - 1))) w.seed(i, j, 0, true, false, false);
    for (int j = ay.first + ay.step; j < ny - ay.first - ay.step; j += ay.step)
      for (int i = ax.first + ax.step; i < nx - ax.first - ax.step; i += ax.step) {
        const bool onEdge = i == 0 || i == nx - 1 || j == 0 || j == ny - 1;
        if ((allInterior && edgeTests) || (w.inlet(i, j, 0) && !(edgeTests && onEdge)))
          w.seed(i, j, 0, true, true, false);
      }
    return w.count;
  }
  auto onFace = [&](int index, int n) { return index == 0 || index == n - 1; };
  for (int k = az.first; k < nz - az.first; k += az.step)
    for (int j = ay.first; j < ny - ay.first; j += ay.step)
      for (int i : faces[0])
        if (w.inlet(i, j, k)) w.seed(i, j, k, false, true, true);
  for (int k = az.first; k < nz - az.first; k += az.step)
    for (int j : faces[1])
      for (int i = ax.first; i < nx - ax.first; i += ax.step)
        if (w.inlet(i, j, k) && (!edgeTests || (!onFace(k, nz) && !onFace(i, nx)))) w.seed(i, j, k, true, false, true);
  for (int k : faces[2])
    for (int j = ay.first; j < ny - ay.first; j += ay.step)
      for (int i = ax.first; i < nx - ax.first; i += ax.step)
        if (w.inlet(i, j, k) && (!edgeTests || (!onFace(j, ny) && !onFace(i, nx)))) w.seed(i, j, k, true, true, false);
  for (int k = az.first + az.step; k < nz - az.first - az.step; k += az.step)
    for (int j = ay.first + ay.step; j < ny - ay.first - ay.step; j += ay.step)
      for (int i = ax.first + ax.step; i < nx - ax.first - ax.step; i += ax.step) {
        const bool face = onFace(i, nx) || onFace(j, ny) || onFace(k, nz);
        if ((allInterior && edgeTests) || (w.inlet(i, j, k) && !(edgeTests && face))) w.seed(i, j, k, true, true, true);
      }
  return w.count;
}

namespace {

// Streamlines are traced only when the picture is rasterised: the velocity
// fields stand until then (the run loop presents, saves or clears the frame
// before it steps). Lines in the quantity's colours read the display view,
// which is reused before the picture is saved, so they are traced at once;
// so are lines from every lattice point, which can outgrow the pending
// frame: drawn at once, the layer rasterises them in parts.
struct laterLines {
  sceneView* scene;
  const appConfig* cfg;
  const fieldViews* views;
  int dims;
};

bool tracedAtOnce(const appConfig& cfg) { return cfg.nonBcObjectColorFlag == 1 || cfg.showStreamlineFlag == 2; }

void drawLaterLines(const void* context) {
  const laterLines& l = *static_cast<const laterLines*>(context);
  // A key pressed after the frame can ask for lines that must be traced at
  // once; this frame then shows none, the next frame draws them.
  if (tracedAtOnce(*l.cfg) || l.cfg->showStreamlineFlag == 0) return;
  drawLines(*l.scene, *l.cfg, *l.views, l.dims);
}

void drawStreamlines(sceneView& scene, const appConfig& cfg, const fieldViews& views, int dims) {
  if (tracedAtOnce(cfg)) return drawLines(scene, cfg, views, dims);
  const laterLines l{&scene, &cfg, &views, dims};
  drawLater(drawLaterLines, &l, sizeof l);
}

}  // namespace

void drawStreamlines2d(sceneView& scene, const appConfig& cfg, const fieldViews& views) {
  drawStreamlines(scene, cfg, views, 2);
}

void drawStreamlines3d(sceneView& scene, const appConfig& cfg, const fieldViews& views) {
  if (cfg.ts < 10) return;
  drawStreamlines(scene, cfg, views, 3);
}

}  // namespace marv
