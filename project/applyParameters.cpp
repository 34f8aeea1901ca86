// applyParameters and what it derives, in the order in which later steps read
// what earlier steps wrote: transfer table, fields, colour tables, grid,
// screen geometry, first time step, bitmap storage, viz.txt, threads, tiles.
#include "project/applyParameters.h"

#include <omp.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>

#include "app/meshMemory.h"
#include "common/textNumbers.h"
#include "domain/bmpTxt.h"
#include "domain/boundaryTypes.h"
#include "project/parameterTable.h"
#include "project/vizFile.h"

namespace marv {

namespace {

constexpr int tilePrimes[] = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47, 53};
constexpr std::int64_t largestField = 2147483647;  // nodes a field can index with 32 bits

int refuse(appConfig& cfg, const std::string& text) {
  if (cfg.showMessage) cfg.showMessage(cfg, text.c_str());
  return -1;
}

bool isInflowVelocity(int index) { return index >= paramUinb && index <= paramMassfrc && (index - paramUinb) % 5 < 3; }

// 1. Transfer table from the entries; a later entry of a number wins.
void fillTransferTable(parameterEditor& editor, int count) {
  editor.transferTable.fill(notGiven);
  for (int i = 0; i < count && i < maxParameterEntries; ++i) {
    const parameterEntry& e = editor.entries[i];
    if (e.isTextLine || e.index < 0 || e.index >= maxParameterEntries) continue;
    if (e.isChoice)
      editor.transferTable[e.index] = e.choiceValue;
    else if (e.value == "-")
      editor.transferTable[e.index] = dashValue;
    else
      editor.transferTable[e.index] = parseNumber(e.value);
  }
}

// 2. and 3. Copy the given values into the fields.
void copyParameters(const parameterEditor& editor, appConfig& cfg) {
  for (int n = 0; n < numParameters; ++n) {
    const double v = editor.transferTable[n];
    if (v == notGiven) continue;
    setParameterField(cfg, n, v);
  }
  holdToLimits(cfg);
  if (cfg.cs == 0.0) cfg.cs = dashValue;
  if (cfg.sct == 0.0) cfg.sct = dashValue;
}

// Reals that no grid or time step can use. The dash is a value of its own
// for the inflow colours only.
std::string firstNonFiniteParameter(const parameterEditor& editor) {
  for (int n = 0; n < numParameters; ++n) {
    const double v = editor.transferTable[n];
    if (v == notGiven || (v == dashValue && isInflowVelocity(n))) continue;
    if (!std::isfinite(v)) return parameterName(n);
  }
  return std::string();
}

// Values that are taken as they come but cannot give a meaningful run,
// named in one warning; empty when there is none. nzGiven is nz as the file
// gave it, before a value below 2 made the case two-dimensional.
std::string meaninglessValues(const appConfig& cfg, int nzGiven) {
  std::string text;
  auto add = [&text](const std::string& item) { text += (text.empty() ? "" : "; ") + item; };
  auto number = [](double v) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%g", v);
    return std::string(buffer);
  };
  if (cfg.mu <= 0.0) add("\"mu\" is " + number(cfg.mu) + ": a viscosity must be above 0");
  if (cfg.cmode == 0 && cfg.rhow <= 0.0) add("\"rhow\" is " + number(cfg.rhow) + ": a density must be above 0");
  if (cfg.fixedDeltat == 0 && (cfg.cfl <= 0.0 || cfg.cfl > 1.0))
    add("\"cfl\" is " + number(cfg.cfl) + ": a stable run needs a value in (0, 1], usually about 0.3");
  if (cfg.latts < cfg.sts)
    add("\"latts\" (" + std::to_string(cfg.latts) + ") is below \"sts\" (" + std::to_string(cfg.sts) +
        "): no step will run");
  if (nzGiven <= 0) add("\"nz\" is " + std::to_string(nzGiven) + ": the case is taken as two-dimensional (nz 1)");
  return text.empty() ? text : "[WARNING] " + text + ".";
}

// 9. Screen geometry from domx and the domain's aspect.
void screenGeometry(appConfig& cfg) {
  cfg.pixPerCell = cfg.domx / cfg.nx;
  cfg.pixPerMetre = cfg.pixPerCell / cfg.dx;
  // A domain far longer than wide gives sizes at the end of the 32-bit
  // range; the sums below saturate there instead of wrapping.
  auto sum = [](std::initializer_list<int> terms) {
    std::int64_t total = 0;
    for (int t : terms) total += t;
    return static_cast<int>(std::clamp<std::int64_t>(total, INT_MIN, INT_MAX));
  };
  cfg.domPixX = truncToInt(cfg.pixPerMetre * cfg.lx);
  cfg.domPixY = truncToInt(cfg.pixPerMetre * cfg.ly);
  cfg.domPixZ = truncToInt(cfg.pixPerMetre * cfg.lz);
  if (cfg.nz == 1) cfg.marginTop *= 3;
  cfg.sceneWidth = sum({cfg.domPixX, cfg.marginLeft, cfg.marginRight});
  cfg.sceneHeight = sum({cfg.marginTop, cfg.domPixY, cfg.marginBottom, cfg.bottomStrip});
  cfg.colourBarX += cfg.pixPerCell;
  cfg.bitmapScreenWidth = sum({std::max(cfg.domPixX, cfg.domPixZ), cfg.marginLeft, cfg.marginRight});
  cfg.bitmapScreenHeight = sum({std::max(cfg.domPixY, cfg.domPixZ), cfg.bitmapGap, cfg.marginTop, cfg.marginBottom});
  cfg.domPixW = cfg.domPixX;
  cfg.domPixH = cfg.domPixY;
  if (cfg.nz > 1 && cfg.domPixH < cfg.domPixX / 2) cfg.domPixH = cfg.domPixX / 2;
  cfg.screenWidth = cfg.sceneWidth;
  cfg.screenHeight = sum({cfg.marginTop, cfg.marginBottom, cfg.domPixH, cfg.bottomStrip});
}

// 8. and 10. Node coordinates and their screen positions.
void coordinates(appConfig& cfg) {
  cfg.xCoord.assign(cfg.nx, 0.0);
  cfg.yCoord.assign(cfg.ny, 0.0);
  cfg.zCoord.assign(cfg.nz, 0.0);
  cfg.pixelX.assign(cfg.nx, 0.0f);
  cfg.pixelY.assign(cfg.ny, 0.0f);
  cfg.pixelZ.assign(cfg.nz, 0.0f);
  const float ppm = narrowToFloat(cfg.pixPerMetre);
  for (int i = 0; i < cfg.nx; ++i) {
    cfg.xCoord[i] = i * cfg.dx;
    cfg.pixelX[i] = narrowToFloat(cfg.xCoord[i]) * ppm + static_cast<float>(cfg.marginLeft) + 0.5f;
  }
  for (int j = 0; j < cfg.ny; ++j) {
    cfg.yCoord[j] = j * cfg.dy;
    cfg.pixelY[j] = narrowToFloat(cfg.ly * cfg.pixPerMetre - cfg.yCoord[j] * cfg.pixPerMetre) +
                    static_cast<float>(cfg.marginTop) + 0.5f;
  }
  for (int k = 0; k < cfg.nz; ++k) cfg.zCoord[k] = k * cfg.dz;
}

// 12. The first time step. Returns false for an adaptive run without cfl.
bool firstTimeStep(appConfig& cfg) {
  if (cfg.deltat > 0.0) {
    cfg.fixedDeltat = 1;
    return true;
  }
  double peak = 1.0;
  for (int t = 0; t < numColourTypes; ++t) {
    const double u = cfg.bcU[t] == dashValue ? 0.0 : cfg.bcU[t];
    const double v = cfg.bcV[t] == dashValue ? 0.0 : cfg.bcV[t];
    const double w = cfg.bcW[t] == dashValue ? 0.0 : cfg.bcW[t];
    peak = std::max(peak, std::sqrt(u * u + v * v + w * w));
  }
  double h = std::min(cfg.dx, cfg.dy);
  if (cfg.nz > 1) h = std::min(h, cfg.dz);
  cfg.deltat = 0.5 * std::min(cfg.cfl * h / peak, 0.5 * cfg.cfl * h * h / (cfg.mu / cfg.rhow));
  return cfg.cfl > 0.0;
}

// 17. Thread count from the level, nprocs and a given layout.
int threadCount(appConfig& cfg, int maxAvailable) {
  const int m = maxAvailable;
  int count = 1;
  switch (cfg.parallel) {
    case 0: count = 1; break;
    case 1: count = 2; break;
    case 2: count = std::max(2, m / 4); break;
    case 3: count = std::max(2, m / 2); break;
    case 4: count = m; break;
    default: count = 1; break;
  }
  if (cfg.nprocs != 0) count = std::min(cfg.nprocs, m);
  if (cfg.npx + cfg.npy + cfg.npz != 0) {
    if (cfg.nz == 1) cfg.npz = 1;
    count = cfg.npx * cfg.npy * cfg.npz;
  }
  return std::max(1, std::min(count, m));
}

// 18. Tile layout of a count, by its prime factors, largest first.
void tileLayout(appConfig& cfg) {
  cfg.npx = cfg.npy = cfg.npz = 1;
  int direction = 0;
  int remaining = cfg.numThreads;
  bool first = true;
  while (remaining > 1) {
    int prime = 0;
    for (int p : tilePrimes) {
      if (remaining % p == 0) prime = p;
    }
    if (prime == 0) {
      // A prime beyond the table: the whole count goes to one axis. In two
      // dimensions z has a single node, so y takes it.
      cfg.npx = 1;
      cfg.npy = cfg.nz == 1 ? cfg.numThreads : 1;
      cfg.npz = cfg.nz == 1 ? 1 : cfg.numThreads;
      return;
    }
    remaining /= prime;
    if (cfg.nz == 1 && direction == 0) direction = 1;
    if (direction == 0) cfg.npz *= prime;
    if (direction == 1) cfg.npy *= prime;
    if (direction == 2) cfg.npx *= prime;
    if (!first) direction = (direction + 1) % 3;
    first = false;
  }
}

// 19. Thread coordinates and tile ranges.
void tiles(appConfig& cfg) {
  const int n = cfg.numThreads;
  cfg.threadX.assign(n, 0);
  cfg.threadY.assign(n, 0);
  cfg.threadZ.assign(n, 0);
  for (int t = 0; t < n; ++t) {
    const int q = t / cfg.npx;
    cfg.threadX[t] = t % cfg.npx;
    cfg.threadY[t] = q % cfg.npy;
    cfg.threadZ[t] = q / cfg.npy;
  }
  splitAxis(cfg.nx, cfg.npx, cfg.threadX, n, cfg.tileI0, cfg.tileI1);
  splitAxis(cfg.ny, cfg.npy, cfg.threadY, n, cfg.tileJ0, cfg.tileJ1);
  splitAxis(cfg.nz, cfg.npz, cfg.threadZ, n, cfg.tileK0, cfg.tileK1);
}

}  // namespace

void setColourTables(appConfig& cfg) {
  // 1. Reset.
  for (int t = 0; t < numColourTypes; ++t) {
    cfg.bcU[t] = cfg.bcV[t] = cfg.bcW[t] = cfg.bcTemp[t] = cfg.bcMassfr[t] = dashValue;
    cfg.bcAge[t] = 0.0;
    cfg.bcFixU[t] = cfg.bcFixV[t] = cfg.bcFixW[t] = 0.0;
    cfg.bcFixTemp[t] = cfg.bcFixMassfr[t] = cfg.bcNoFlow[t] = 0;
    cfg.forceRecordOn[t] = cfg.heatRecordOn[t] = 0;
    cfg.forceValues[t] = {};
    cfg.heatValues[t] = 0.0;
  }
  cfg.showBoundaryFlagBlack = cfg.showBoundaryFlagBlue = cfg.showBoundaryFlagRed = 0;
  cfg.showBoundaryFlagGreen = cfg.showBoundaryFlagMagenta = cfg.showBoundaryFlagCyan = 0;
  cfg.showBoundaryFlagSTL = cfg.showBoundaryFlagUser = 1;

  // 2. Initial field and inflow colours.
  const double given[7][5] = {
      {cfg.uinw, cfg.vinw, cfg.winw, cfg.tempw, cfg.massfrw}, {0, 0, 0, 0, 0},
      {cfg.uinb, cfg.vinb, cfg.winb, cfg.tempb, cfg.massfrb}, {cfg.uinr, cfg.vinr, cfg.winr, cfg.tempr, cfg.massfrr},
      {cfg.uing, cfg.ving, cfg.wing, cfg.tempg, cfg.massfrg}, {cfg.uiny, cfg.viny, cfg.winy, cfg.tempy, cfg.massfry},
      {cfg.uinc, cfg.vinc, cfg.winc, cfg.tempc, cfg.massfrc},
  };
  for (int t : {fluidType, blueType, redType, greenType, yellowType, cyanType}) {
    cfg.bcU[t] = given[t][0];
    cfg.bcV[t] = given[t][1];
    cfg.bcW[t] = given[t][2];
    cfg.bcTemp[t] = given[t][3];
    cfg.bcMassfr[t] = given[t][4];
  }

  // 3. Walls.
  cfg.bcTemp[blackType] = cfg.tempwallk;
  cfg.bcTemp[nonPresetType] = cfg.tempwall;
  cfg.bcTemp[stlType] = cfg.tempwallSTL;
  cfg.bcMassfr[blackType] = cfg.massfrwallk;
  cfg.bcMassfr[nonPresetType] = cfg.massfrwall;
  cfg.bcMassfr[stlType] = cfg.massfrwallSTL;
  for (int t : {blackType, stlType, nonPresetType}) cfg.bcFixTemp[t] = cfg.bcFixMassfr[t] = 1;

  // 4. Inflow colours: what is imposed, and which are walls.
  for (int t = cfg.firstInletType; t <= cfg.lastInletType; ++t) {
    cfg.bcFixU[t] = cfg.bcU[t] != dashValue ? 1.0 : 0.0;
    cfg.bcFixV[t] = cfg.bcV[t] != dashValue ? 1.0 : 0.0;
    cfg.bcFixW[t] = cfg.bcW[t] != dashValue ? 1.0 : 0.0;
    cfg.bcFixMassfr[t] = cfg.bcMassfr[t] != dashValue ? 1 : 0;
    cfg.bcFixTemp[t] = cfg.bcTemp[t] != dashValue ? 1 : 0;
    cfg.bcNoFlow[t] = std::fabs(cfg.bcU[t]) + std::fabs(cfg.bcV[t]) + std::fabs(cfg.bcW[t]) == 0.0 ? 1 : 0;
  }

  // 5. A species is simulated when any mass fraction is non-zero; a dash counts.
  double sum = std::fabs(cfg.bcMassfr[0]);
  for (int t = 2; t <= 6; ++t) sum += std::fabs(cfg.bcMassfr[t]);
  if (sum > 0.0) cfg.speciesFlag = 1;
}

void splitAxis(int n, int np, const std::vector<int>& coordinates, int threads, std::vector<int>& starts,
               std::vector<int>& ends) {
  starts.assign(threads, 0);
  ends.assign(threads, 0);
  if (np <= 0) return;
  int width = n / np + (n % np != 0 ? 1 : 0);
  if (static_cast<std::int64_t>(width) * (np - 1) > n) width -= 1;
  for (int t = 0; t < threads && t < static_cast<int>(coordinates.size()); ++t) {
    const int c = coordinates[t];
    starts[t] = c * width;
    ends[t] = c == np - 1 ? n : c * width + width;
  }
}

int applyParameters(parameterEditor& editor, appConfig& cfg, int count) {
  fillTransferTable(editor, count);
  const std::string nonFinite = firstNonFiniteParameter(editor);
  if (!nonFinite.empty())
    return refuse(cfg, "[ERROR] Invalid \"" + nonFinite + "\" is specified. Its value is not a finite number.");
  copyParameters(editor, cfg);
  if (cfg.cmode != 0 && cfg.cmode != 1)
    return refuse(cfg, "[ERROR] Invalid \"cmode\" is specified. \"cmode\" should be 0 (fluid) or 1 (thermo-fluid).");

  setColourTables(cfg);

  const int nzGiven = cfg.nz;

  // 5. A mesh needs at least two points along x and y.
  if (cfg.nx <= 0 || cfg.ny <= 0)
    return refuse(cfg, "[ERROR] Invalid \"nx\" or \"ny\" is specified. Both must be at least 2.");
  if (cfg.nx == 1 || cfg.ny == 1) return -1;

  // 6. Grid spacing; below two z points the case is two-dimensional.
  cfg.dx = cfg.lx / (cfg.nx - 1);
  cfg.dy = cfg.ly / (cfg.ny - 1);
  if (cfg.nz < 2) {
    cfg.lz = 0.0;
    cfg.dz = 1.0;
    cfg.nz = 1;
    cfg.ibm = 0;
  } else {
    cfg.dz = cfg.lz / (cfg.nz - 1);
  }
  // The product of three 32-bit counts can leave 64 bits: checked.
  std::int64_t nodes = 0;
  if (__builtin_mul_overflow(static_cast<std::int64_t>(cfg.nx), static_cast<std::int64_t>(cfg.ny), &nodes) ||
      __builtin_mul_overflow(nodes, static_cast<std::int64_t>(cfg.nz), &nodes) || nodes > largestField) {
    char count[32];
    std::snprintf(count, sizeof count, "%.4g", static_cast<double>(cfg.nx) * cfg.ny * cfg.nz);
    return refuse(cfg, "[ERROR] The mesh nx*ny*nz = " + std::string(count) +
                           " points is too large. A mesh may hold at most 2147483647 points.");
  }
  if (!(cfg.dx > 0.0) || !(cfg.dy > 0.0) || !(cfg.dz > 0.0))
    return refuse(cfg, "[ERROR] Invalid \"lx\", \"ly\" or \"lz\" is specified. Domain sizes must be above 0.");

  // 7. Display sampling.
  cfg.ndiv = std::max(cfg.ndiv, 1);
  cfg.ndivX = cfg.ndiv;
  const double s = cfg.ndiv * cfg.dx;
  cfg.ndivZ = truncToInt(s / cfg.dz + 0.5);
  cfg.ndivY = truncToInt(s / cfg.dy + 0.5);

  // 9. Screen geometry; a screen narrower than the mesh has no pixel per cell.
  if (cfg.domx < cfg.nx)
    return refuse(cfg, "[ERROR] Invalid \"domx\" is specified. The screen width \"domx\" (" + std::to_string(cfg.domx) +
                           " pixels) must be at least \"nx\" (" + std::to_string(cfg.nx) + ").");
  screenGeometry(cfg);
  coordinates(cfg);

  // 11. Thermo-fluid mode: the density follows from pressure and temperature.
  if (cfg.cmode == 1) cfg.rhow = cfg.presw * cfg.molarMass / cfg.gasConstant / cfg.tempw;

  // 12. Time step.
  if (!firstTimeStep(cfg))
    return refuse(cfg,
                  "[ERROR] Invalid \"cfl\" is specified. A valid \"cfl\" value should be between 0.0 and 1.0, but "
                  "usually around 0.3.");

  // 13. A fixed open-boundary pressure leaves no mean to adjust.
  if (cfg.openPresFlag == 1) cfg.presAdjustFlag = 0;

  // The memory that the fields will take, before any of them is allocated.
  std::string memoryWarning;
  const std::string shortfall = memoryShortfall(meshMemoryBytes(cfg), availableMemoryBytes());
  if (!shortfall.empty()) {
    if (cfg.refuseOversizedMesh) return refuse(cfg, "[ERROR] " + shortfall);
    memoryWarning = "[WARNING] " + shortfall + " The run may end for lack of memory.";
  }

  // 14. Boundary bitmap storage and the colour slots.
  cfg.bitmapXY.assign(static_cast<std::size_t>(cfg.nx) * cfg.ny * maxBitmapSlices, 0);
  cfg.bitmapYZ.assign(static_cast<std::size_t>(cfg.ny) * cfg.nz * maxBitmapSlices, 0);
  cfg.bitmapZX.assign(static_cast<std::size_t>(cfg.nx) * cfg.nz * maxBitmapSlices, 0);
  for (int slot = 0; slot < maxColourSlots; ++slot) {
    cfg.ColorsCodes[slot] = 0;
    cfg.StretchPlane[slot] = cfg.SymmetricPlane[slot] = 3;
    cfg.R[slot] = cfg.G[slot] = cfg.B[slot] = 255;
  }

  // 15. and 16. Cross-sections, then bmp.txt and viz.txt may override them.
  cfg.zCrosssectionXY = cfg.lz * 0.5 - cfg.dz;
  cfg.xCrosssectionYZ = cfg.lx * 0.5;
  cfg.yCrosssectionXZ = cfg.ly * 0.5;
  readBmpTxt(cfg);
  syncViz(cfg, 0);

  // 17. and 18. Threads and their layout.
  const int available = std::max(1, omp_get_max_threads());
  cfg.maxThreads = available;
  const bool layoutGiven = cfg.npx + cfg.npy + cfg.npz != 0;
  if (layoutGiven) {
    if (cfg.nz == 1) cfg.npz = 1;
    if (cfg.npx <= 0 || cfg.npy <= 0 || cfg.npz <= 0)
      return refuse(cfg,
                    "[ERROR] Invalid \"npx\", \"npy\" or \"npz\" is specified. When a tile layout is given, each of "
                    "them must be at least 1.");
    const std::int64_t tiles = static_cast<std::int64_t>(cfg.npx) * cfg.npy * cfg.npz;
    if (tiles > available)
      return refuse(cfg, "[ERROR] The tile layout npx*npy*npz = " + std::to_string(tiles) +
                             " needs more threads than the " + std::to_string(available) + " this machine offers.");
  }
  cfg.numThreads = threadCount(cfg, available);
  cfg.nprocs = cfg.numThreads;
  if (!layoutGiven) tileLayout(cfg);

  // 19. Tiles.
  tiles(cfg);

  std::string warning = meaninglessValues(cfg, nzGiven);
  if (!memoryWarning.empty()) warning = memoryWarning + (warning.empty() ? "" : "\n" + warning);
  if (!warning.empty() && cfg.showMessage) cfg.showMessage(cfg, warning.c_str());
  return 1;
}

}  // namespace marv
