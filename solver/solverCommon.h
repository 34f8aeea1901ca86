// solverCommon: the base of the two flow solvers. It owns every field and
// publishes them through field(index), holds the thread tiles and the state
// of the pressure iteration, and provides the operations that both time
// steps share: tile copies, forward Euler, the pressure iteration and the
// boundary stage.
//
// A time step is one parallel region of numThreads threads (runStep); each
// thread works on its own tile of appConfig, and barriers and single
// sections order the sub-steps. The derived solvers supply step().
//
// Sections: tile ranges | solverCommon | pressure iteration (pressureSweep.cpp)
// | boundary stage (boundaryStage.cpp) | factory
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "app/appConfig.h"
#include "common/array3d.h"
#include "domain/bcDomain.h"
#include "solver/teamSync.h"

namespace marv {

constexpr int numFieldViews = 12;    // views the driver keeps of the solver's fields
constexpr int numSolverFields = 18;  // entries of the field table

// ---------------------------------------------------------------- tile ranges

// Half-open index ranges of one thread's loops.
struct tileRange {
  int i0 = 0, i1 = 0;  // i from i0 to i1-1
  int j0 = 0, j1 = 0;
  int k0 = 0, k1 = 0;
};

// Thread t's tile: its share of the grid, boundary nodes included. A thread
// without a tile gets an empty range.
tileRange tileOf(const appConfig& cfg, int t);

// The tile without the outer layer of the grid. In two dimensions k runs
// over the one plane k = 0.
tileRange interiorOf(const appConfig& cfg, int t);

// The faces of a tile, in the order of tileNeighbours.
enum tileFace { lowIFace, highIFace, lowJFace, highJFace, lowKFace, highKFace, tileFaces };

// The thread whose tile lies beside thread t's across each face and shares
// the whole face: -1 where the tile ends at the grid's edge, -2 where the
// tiles beside it do not match the face. Only threads below threads count.
std::array<int, tileFaces> tileNeighbours(const appConfig& cfg, int t, int threads);

// Whether every tile of the first threads threads meets the tiles beside it
// face to face (no -2 above), as tiles that split the grid along axes do.
bool tilesMeetFaceToFace(const appConfig& cfg, int threads);

// Whether the tiles of the first threads threads lie beside each other only
// across faces in j (two dimensions) or in k (three): along the axis the
// pressure sweep runs slowest.
bool tilesSplitAlongSlowestAxis(const appConfig& cfg, int threads);

// How far a thread has got through the sweeps of the present pressure
// iteration: the sweeps it has completed, and among them those in which it
// has finished the rows on its low face in j and in k. Back to 0 when the
// iteration ends.
struct tileProgress {
  teamCount lowJ, lowK, whole;
};

struct sweepLinks;

// ---------------------------------------------------------------- solverCommon

class solverCommon {
 public:
  // Allocates every field for the grid of cfg, all zero (afld and aRhs only
  // when ageFlag is set), the per-thread values, and the field table.
  solverCommon(appConfig& cfg, bcDomain& domain);
  virtual ~solverCommon() = default;
  solverCommon(const solverCommon&) = delete;
  solverCommon& operator=(const solverCommon&) = delete;

  // Header of field table entry index (0 rfld, 1-3 velocity, 4 pfld,
  // 5 tfld, 6 yfld, 7 afld, 8-10 convX..Z, 11 divU, 12-17 stresses); null
  // for a field this solver does not have or an index outside the table.
  virtual array3d<double>* field(int index);
  // Advances all fields by deltat.
  virtual void step() = 0;

  // destination = source over thread t's tile.
  void copyTile(const array3d<double>& source, const array3d<double>& destination, int t) const;
  // q += deltat*r over the tile: the forward Euler step of every field.
  void integrate(const array3d<double>& q, const array3d<double>& r, int t) const;
  // integrate for the velocity, the mass fraction and (with ageFlag) the age.
  void integrateTransported(int t) const;
  // rho = (presw*molarMass/gasConstant)/T over the tile, or the whole grid.
  void densityFromTemperature(const array3d<double>& rho, const array3d<double>& T, int t) const;
  void densityFromTemperatureAll(const array3d<double>& rho, const array3d<double>& T) const;

  // Pressure iteration (pressureSweep.cpp).
  // One over-relaxation sweep of p over t's interior range, in place; every
  // 20th sweep also thread t's share of the convergence test against prev.
  void sorSweep(const array3d<double>& p, const array3d<double>& rhs, const array3d<double>& prev, int t, int sweep);
  // sorSweep keeping pace with the tiles beside t's through links when they
  // are given (pressureSweep.cpp).
  void sweepTile(const array3d<double>& p, const array3d<double>& rhs, const array3d<double>& prev, int t, int sweep,
                 const sweepLinks* links);
  // Sub-steps 5 to 8 of a time step: reset, start copies, sweeps with the
  // test every 20, and the under-relaxation. Called by every thread.
  void solvePressure(int t);
  // p = presRelax*p + (1 - presRelax)*old over t's interior range.
  void relaxPressure(const array3d<double>& p, const array3d<double>& old, int t) const;
  // Mean of pfld over all nodes; collective: every one of the n threads calls it.
  double meanPressure(int t, int n);
  // p -= mean over t's tile, when presAdjustFlag is set.
  void removeMean(const array3d<double>& p, double mean, int t) const;
  // Thread t's part of sweepScratch: room for five rows, a cache line apart
  // from the other threads' parts.
  double* scratchOf(int t) { return sweepScratch.data() + static_cast<std::size_t>(t) * scratchStride(); }
  std::size_t scratchStride() const { return 5 * static_cast<std::size_t>(cfg->nx) + 8; }
  // Thread t's slot in threadResidual for the test of sweep: the tests take
  // two slots per thread in turn.
  static std::size_t residualSlot(int t, int sweep) {
    return 2 * static_cast<std::size_t>(t) + static_cast<std::size_t>(sweep / 20 % 2);
  }

  // Boundary stage of the constant-density solver (boundaryStage.cpp),
  // called by every thread: the list walks, each field's whole on one
  // thread, then the collective mean removal, then the age passes.
  void boundaryStage(int t, const array3d<double>* temperature = nullptr);

  appConfig* cfg = nullptr;                                       // parameters, grid and tiles; not owned
  ownedArray3d<double> ufld, vfld, wfld;                          // velocity [m/s]
  ownedArray3d<double> yfld;                                      // species mass fraction
  ownedArray3d<double> afld;                                      // age [s]; empty unless ageFlag
  ownedArray3d<double> uRhs, vRhs, wRhs;                          // time derivatives [m/s^2]
  ownedArray3d<double> yRhs;                                      // [1/s]
  ownedArray3d<double> aRhs;                                      // [1]; empty unless ageFlag
  ownedArray3d<double> pfld;                                      // pressure relative to presw [Pa]
  ownedArray3d<double> convX, convY, convZ;                       // convective acceleration [m/s^2]; convZ is also pOld
  ownedArray3d<double> divU;                                      // divergence [1/s]; also pPrev
  ownedArray3d<double> tau11, tau12, tau13, tau22, tau23, tau33;  // sub-grid stresses [m^2/s^2]; tau11 is also ppeRhs
  bcDomain* bc = nullptr;                                         // boundary lists and flags; not owned
  std::array<array3d<double>*, numSolverFields> fieldTable{};     // the getter's table
  std::uint8_t converged = 0;                                     // the pressure iteration met peps
  std::vector<double> threadResidual;                             // per thread, two tests: largest pressure change [Pa]
  std::vector<double> threadSum;                                  // per thread: sum of the pressure [Pa]
  std::vector<double> sweepScratch;         // per thread: copies of the rows of a shared sweep row [Pa]
  std::vector<tileProgress> sweepProgress;  // per thread: its sweeps of the present iteration
  int sweepCount = 0;                       // sweeps of the present iteration
  bool pacedTiles = false;                  // tiles that meet face to face, one thread each, more than one
  bool orderedTiles = false;                // and lie beside each other along the slowest axis alone
  double invPresw = 1.0e-5;                 // 1/presw of the present step [1/Pa]

 protected:
  // Runs body(t) on numThreads threads as the one parallel region of a step,
  // after fixing 1/presw for it.
  template <class Body>
  void runStep(Body&& body) {
    invPresw = 1.0 / cfg->presw;
    findPacing();
    runTeam(cfg->numThreads > 0 ? cfg->numThreads : 1, body);
  }
  // Sets pacedTiles and orderedTiles from the tiles of cfg, before a step's
  // region: the whole team then takes the same choice.
  void findPacing();
};

// ---------------------------------------------------------------- boundary operations (boundaryStage.cpp)
// Each walks the lists of bc in their order and is run whole by one thread; fields
// are indexed with bc's grid. S(q) below is sampleField of q at a node's
// image point.

// Zero-gradient copy on every outer plane, then walls and inlets: u = v = w
// = 0 on wallCells and the fixed components of inletCells (staircase), or
// ghost values -0.5 S(u) on walls, 0 on faceWallCells and 1.5 U - 0.5 S(u)
// at inlets (immersed, ibm = 1).
void applyVelocity(const bcDomain& bc, const array3d<double>& u, const array3d<double>& v, const array3d<double>& w);
// applyVelocity for one component q: 0 u, 1 v, 2 w; the components do not
// depend on each other.
void applyVelocityComponent(const bcDomain& bc, const array3d<double>& q, int component);
// Zero-gradient copy on the outer planes, then on cells: a value V of its
// type that is not 0 is imposed (1.5 V - 0.5 S(q) immersed); V = 0 is an
// adiabatic node that copies its last fluid neighbour (S(q) immersed).
void applyScalar(const bcDomain& bc, const array3d<double>& q, const std::array<double, numColourTypes>& values,
                 const cellList& cells);
// q = values[type] on cells.
void setScalar(const array3d<double>& q, const std::array<double, numColourTypes>& values, const cellList& cells);
// Zero-gradient copy on the outer planes, 0 on openCells when openPresFlag
// is 1, and the wall condition on wallCells (neighbour copy or S(p)).
void applyPressure(const bcDomain& bc, const array3d<double>& p);

// ---------------------------------------------------------------- factory

// The solver of cmode: incompSolver for 0, incompSolverThermo for 1; null
// while no solver of that mode exists in this build.
std::unique_ptr<solverCommon> makeSolver(appConfig& cfg, bcDomain& domain);

}  // namespace marv
