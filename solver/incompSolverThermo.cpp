// The variable-density time step: the sub-steps of the constant-density step
// in their variable-density form (timeStepTerms.cpp), the temperature
// integrated between the velocity and the scalars, and a boundary stage that
// ends by recomputing the density on every node.
#include "solver/incompSolverThermo.h"

#include "solver/timeStepTerms.h"

namespace marv {

incompSolverThermo::incompSolverThermo(appConfig& config, bcDomain& domain) : solverCommon(config, domain) {
  const appConfig& c = config;
  rfld = ownedArray3d<double>(c.nx, c.ny, c.nz);
  tfld = ownedArray3d<double>(c.nx, c.ny, c.nz);
  tRhs = ownedArray3d<double>(c.nx, c.ny, c.nz);
  fieldTable[0] = &rfld;
  fieldTable[5] = &tfld;

  fill<double>(ufld, c.uinw);
  fill<double>(vfld, c.vinw);
  fill<double>(wfld, c.winw);
  if (c.speciesFlag) fill<double>(yfld, c.massfrw);
  fill<double>(tfld, c.tempw);
  densityFromTemperatureAll(rfld, tfld);
  applyVelocity(*bc, ufld, vfld, wfld);
  applyScalar(*bc, tfld, c.bcTemp, bc->tempCells);
  applyScalar(*bc, yfld, c.bcMassfr, bc->massfrCells);
  applyPressure(*bc, pfld);
  densityFromTemperatureAll(rfld, tfld);
}

void incompSolverThermo::step() {
  const appConfig& c = *cfg;
  const bool stresses = c.cs != dashValue && c.nz > 1;
  const stepTerms::factors k = stepTerms::factorsOf(c, ufld.nx, ufld.nxy, true);
  const stepTerms::fields f = stepTerms::fieldsOf(*this, &tfld, &rfld, &tRhs);
  runStep([&](int t) {
    const tileRange inner = interiorOf(c, t);
    stepTerms::interiorTerms(f, inner, k, true, c.speciesFlag != 0, c.ageFlag != 0);
    teamBarrier();
    stepTerms::faceTerms(f, c, t, k, true);
    teamBarrier();
    if (stresses) {
      stepTerms::stressDivergence(f, inner, k, true);
      teamBarrier();
    }
    stepTerms::pressureRhs(f, tau11.data, inner, k, c, true);  // ppeRhs shares tau11
    teamBarrier();
    solvePressure(t);
    stepTerms::pressureGradient(f, pfld.data, inner, k, true);
    teamBarrier();
    integrateTransported(t);
    integrate(tfld, tRhs, t);
    teamBarrier();
    thermoBoundaryStage(t);
  });
}

void incompSolverThermo::thermoBoundaryStage(int t) {
  boundaryStage(t, &tfld);
  densityFromTemperature(rfld, tfld, t);
}

}  // namespace marv
