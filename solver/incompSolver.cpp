// The constant-density time step. Sub-steps, in the order a step runs them,
// each over the thread's own range and separated by barriers:
//   1 interiorTerms    convection, divergence, stresses, momentum and scalar right sides
//   2 faceTerms        the same quantities on the outer planes, one-sided across them
//   3 stressDivergence (3D with the sub-grid model)
//   4 pressureRhs      source of the pressure equation
//   5-8                the pressure iteration (solvePressure)
//   9 pressureGradient the only place where the pressure reaches the velocity
//  10 integrate        forward Euler of every field
//  11 boundaryStage
// The loop bodies are shared with the variable-density step
// (timeStepTerms.cpp).
#include "solver/incompSolver.h"

#include "solver/timeStepTerms.h"

namespace marv {

incompSolver::incompSolver(appConfig& config, bcDomain& domain) : solverCommon(config, domain) {}

void incompSolver::step() {
  const appConfig& c = *cfg;
  const bool stresses = c.cs != dashValue && c.nz > 1;
  runStep([&](int t) {
    interiorTerms(t);
    teamBarrier();
    faceTerms(t);
    teamBarrier();
    if (stresses) {
      stressDivergence(t);
      teamBarrier();
    }
    pressureRhs(t);
    teamBarrier();
    solvePressure(t);
    pressureGradient(t);
    teamBarrier();
    integrateTransported(t);
    teamBarrier();
    boundaryStage(t);
  });
}

void incompSolver::interiorTerms(int t) {
  const appConfig& c = *cfg;
  stepTerms::interiorTerms(stepTerms::fieldsOf(*this, nullptr, nullptr, nullptr), interiorOf(c, t),
                           stepTerms::factorsOf(c, ufld.nx, ufld.nxy, false), false, c.speciesFlag != 0,
                           c.ageFlag != 0);
}

void incompSolver::faceTerms(int t) {
  stepTerms::faceTerms(stepTerms::fieldsOf(*this, nullptr, nullptr, nullptr), *cfg, t,
                       stepTerms::factorsOf(*cfg, ufld.nx, ufld.nxy, false), false);
}

void incompSolver::stressDivergence(int t) {
  stepTerms::stressDivergence(stepTerms::fieldsOf(*this, nullptr, nullptr, nullptr), interiorOf(*cfg, t),
                              stepTerms::factorsOf(*cfg, ufld.nx, ufld.nxy, false), false);
}

// ppeRhs shares its storage with tau11, which sub-step 3 has finished with.
void incompSolver::pressureRhs(int t) {
  stepTerms::pressureRhs(stepTerms::fieldsOf(*this, nullptr, nullptr, nullptr), tau11.data, interiorOf(*cfg, t),
                         stepTerms::factorsOf(*cfg, ufld.nx, ufld.nxy, false), *cfg, false);
}

void incompSolver::pressureGradient(int t) {
  stepTerms::pressureGradient(stepTerms::fieldsOf(*this, nullptr, nullptr, nullptr), pfld.data, interiorOf(*cfg, t),
                              stepTerms::factorsOf(*cfg, ufld.nx, ufld.nxy, false), false);
}

void setInitialFields(incompSolver& s) {
  const appConfig& c = *s.cfg;
  fill<double>(s.uRhs, 0.0);
  fill<double>(s.vRhs, 0.0);
  fill<double>(s.wRhs, 0.0);
  fill<double>(s.pfld, 0.0);
  fill<double>(s.ufld, c.uinw);
  fill<double>(s.vfld, c.vinw);
  fill<double>(s.wfld, c.winw);
  if (c.speciesFlag) fill<double>(s.yfld, c.massfrw);
  if (c.ageFlag) fill<double>(s.afld, 0.0);
  applyVelocity(*s.bc, s.ufld, s.vfld, s.wfld);
  if (c.speciesFlag) applyScalar(*s.bc, s.yfld, c.bcMassfr, s.bc->massfrCells);
  applyPressure(*s.bc, s.pfld);
}

}  // namespace marv
