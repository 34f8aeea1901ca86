// The parameter table: one row per parameter, in parameter-number order,
// with its name, kind, field of appConfig, limits and description.
// Descriptions go into param.txt verbatim.
#include "project/parameterTable.h"

#include <cctype>
#include <cmath>
#include <cstring>

#include "common/textNumbers.h"

namespace marv {

namespace {

// Field references of the table: each row names the member of appConfig
// that holds the parameter, and how a value is stored into it.
constexpr parameterField field(double appConfig::*member) { return {fieldKind::real, member}; }
constexpr parameterField field(int appConfig::*member) { return {fieldKind::whole, nullptr, member}; }
constexpr parameterField field(float appConfig::*member) { return {fieldKind::single, nullptr, nullptr, member}; }
constexpr parameterField field(std::uint8_t appConfig::*member) {
  return {fieldKind::flag, nullptr, nullptr, nullptr, member};
}

constexpr valueLimits anyValue{-HUGE_VAL, HUGE_VAL};
constexpr valueLimits atLeastZero{0.0, HUGE_VAL};  // presRelax: no negative relaxation
constexpr valueLimits zeroToOne{0.0, 1.0};         // wfilWallBC: a filter weight

// clang-format off
const parameterRow parameterRows[numParameters] = {
    {"cmode", 0, 1, 2, field(&appConfig::cmode), anyValue,
     "Simulation mode. [0] Fluid simulation mode (constant density and temperature, suitable for gas and liquid single-phase flows). [1] Thermo-fluid simulation mode (variable density and temperature, suitable for gas phase flows)."},
    {"ibm", 0, 1, 2, field(&appConfig::ibm), anyValue,
     "Immersed Boundary Method (IBM) usage. [0] IBM off (conventional boundary). [1] IBM on (recommended)."},
    {"domx", 0, 0, 5, field(&appConfig::domx), anyValue,
     "Nominal screen size (horizontal) during simulations. (unit: pixels)"},
    {"parallel", 0, 1, 5, field(&appConfig::parallel), anyValue,
     "Level of parallelism. [0] Serial (no parallelism). [1] Two, parallelism=2. [2] Low, max(2, maxThreadsAvail/4). [3] Medium, max(2, maxThreadsAvail/2). [4] High, max(2, maxThreadsAvail)."},
    {"nprocs", 0, 0, 5, field(&appConfig::nprocs), anyValue,
     "Total number of processing elements (threads) during the computation. If set, this number is priotized over the parameter 'parallel'. This has to be smaller than the maximum number of threads available on your machine."},
    {"npx", 0, 0, 5, field(&appConfig::npx), anyValue,
     "Number of processing elements (threads) in x-direction. The total number of processing elements 'numparallel' is automatically taken as npx*npy*npz."},
    {"npy", 0, 0, 5, field(&appConfig::npy), anyValue,
     "Number of processing elements (threads) in y-direction. The total number of processing elements 'numparallel' is automatically taken as npx*npy*npz."},
    {"npz", 0, 0, 5, field(&appConfig::npz), anyValue,
     "Number of processing elements (threads) in z-direction. The total number of processing elements 'numparallel' is automatically taken as npx*npy*npz."},
    {"nx", 0, 0, 5, field(&appConfig::nx), anyValue,
     "Number of mesh points in x-direction. This number may be set independent from physical domain dimensions."},
    {"ny", 0, 0, 5, field(&appConfig::ny), anyValue,
     "Number of mesh points in y-direction. This number may be set independent from physical domain dimensions."},
    {"nz", 0, 0, 5, field(&appConfig::nz), anyValue,
     "Number of mesh points in z-direction. This number may be set independent from physical domain dimensions."},
    {"lx", 1, 0, 5, field(&appConfig::lx), anyValue,
     "Physical domain size in x-direction. (unit: m)"},
    {"ly", 1, 0, 5, field(&appConfig::ly), anyValue,
     "Physical domain size in y-direction. (unit: m)"},
    {"lz", 1, 0, 5, field(&appConfig::lz), anyValue,
     "Physical domain size in z-direction. (unit: m)"},
    {"deltat", 1, 0, 5, field(&appConfig::deltat), anyValue,
     "The constant timestepping in (s) during the simulation. If this is set, 'cfl' is no longer effective for adaptive timestepping."},
    {"sts", 0, 0, 5, field(&appConfig::sts), anyValue,
     "Start time step. A new simulation starts from sts=0. To restart, sts should be a timestep at which dump data was output in the previous simulation."},
    {"latts", 0, 0, 5, field(&appConfig::latts), anyValue,
     "End time step."},
    {"cfl", 1, 0, 5, field(&appConfig::cfl), anyValue,
     "Target  Courant-Friedrichs-Lewy (CFL) number, based on which the timestepping is dynamically adjusted during the simulation. Usually, cfl=0.2~0.3."},
    {"nfil", 0, 0, 5, field(&appConfig::nfil), anyValue,
     "Interval time steps for spatial filtering opeation for additional stability. The filtering opeartion is performed one in every nfil timesteps. Usually, this should be 0 (zero). (unit: time steps)"},
    {"wfil", 1, 0, 5, field(&appConfig::wfil), anyValue,
     "Relative weight of the additional spatial filtering operation. q := wfil * qfil + (1 - wfil) * q. 0<= wfil <=1."},
    {"npfil", 0, 0, 5, field(&appConfig::npfil), anyValue,
     "Interval time steps for spatial filtering opeation for pressure field. The filtering opeartion is performed one in every npfil timesteps. Usually, this should be 0 (zero). (unit: time steps)"},
    {"wpfil", 1, 0, 5, field(&appConfig::wpfil), anyValue,
     "Relative weight of the additional spatial filtering operation for pressure field. p := wpfil * pfil + (1 - wpfil) * p. 0<= wpfil <=1."},
    {"omega", 1, 0, 5, field(&appConfig::omega), anyValue,
     "Relaxation parameter for the Poisson equation. Usually, omega takes around 1.8."},
    {"peps", 1, 0, 5, field(&appConfig::peps), anyValue,
     "Tolerancy for the Poisson equation residual error. A smaller value makes simulation more expensive. A too large value leads to divergence. Usually peps = 1E-5 ~ 1E-10."},
    {"loopmax", 0, 0, 5, field(&appConfig::loopmax), anyValue,
     "Maximum number of interation caluculation for the Poisson equation. The iteration calculation is terminated at loopmax-th."},
    {"presw", 1, 0, 5, field(&appConfig::presw), anyValue,
     "Mean pressure. Atmospheric pressure is 1.013E+5 (Pa). (unit: Pa)"},
    {"uinw", 1, 0, 5, field(&appConfig::uinw), anyValue,
     "X-velocity component for the initial field (WHITE color). If set properly, the simulation reaches (quasi-) steady state quickly, but zero value is just fine for most cases. (unit: m/s)"},
    {"vinw", 1, 0, 5, field(&appConfig::vinw), anyValue,
     "Y-velocity component for the initial field (WHITE color). If set properly, the simulation reaches (quasi-) steady state quickly, but zero value is just fine for most cases. (unit: m/s)"},
    {"winw", 1, 0, 5, field(&appConfig::winw), anyValue,
     "Z-velocity component for the initial field (WHITE color). If set properly, the simulation reaches (quasi-) steady state quickly, but zero value is just fine for most cases. (unit: m/s)"},
    {"rhow", 1, 0, 5, field(&appConfig::rhow), anyValue,
     "Mean density. Approximately 1.225 (kg/m^3) for the air at 15 (deg.C), and 1.20 (kg/m^3) at 20 (deg.C). The water density is 997 (kg/m^3) independent of temperature. (unit: kg/m^3) [*] This parameter is effective for 'cmode=0'. "},
    {"tempw", 1, 0, 5, field(&appConfig::tempw), anyValue,
     "Temperature of the initial field (WHITE color). (unit: K, Kelvin) T (K) = 273 + T (deg.C). For example, a room temperature of 20 (deg.C) is 293 (K). [*] This parameter is effective for 'cmode=1'. "},
    {"massfrw", 1, 0, 5, field(&appConfig::massfrw), anyValue,
     "Mass fraction of a species (if simulated) in the initial field (WHITE color)."},
    {"uinb", 1, 0, 5, field(&appConfig::uinb), anyValue,
     "X-velocity component for the BLUE inflow boundry. If the value is set as '-', this boundary is slip boundary in x-direction. (unit: m/s)"},
    {"vinb", 1, 0, 5, field(&appConfig::vinb), anyValue,
     "Y-velocity component for the BLUE inflow boundry. If the value is set as '-', this boundary is slip boundary in y-direction. (unit: m/s)"},
    {"winb", 1, 0, 5, field(&appConfig::winb), anyValue,
     "Z-velocity component for the BLUE inflow boundry. If the value is set as '-', this boundary is slip boundary in z-direction. (unit: m/s)"},
    {"tempb", 1, 0, 5, field(&appConfig::tempb), anyValue,
     "Temperature for the BLUE inflow boundry. If zero value is set, the boundary is treated as adiabatic. If the value is set as '-', no temperature constraint is imposed on this boundary. (unit: K) [*] This parameter is effective for 'cmode=1'. "},
    {"massfrb", 1, 0, 5, field(&appConfig::massfrb), anyValue,
     "A species mass fraction for the BLUE inflow boundry. If the value is set as '-', no mass fraction constraint is imposed on this boundary. (unit: K)"},
    {"uinr", 1, 0, 5, field(&appConfig::uinr), anyValue,
     "X-velocity component for the RED inflow boundry. If the value is set as '-', this boundary is slip boundary in x-direction. (unit: m/s)"},
    {"vinr", 1, 0, 5, field(&appConfig::vinr), anyValue,
     "Y-velocity component for the RED inflow boundry. If the value is set as '-', this boundary is slip boundary in y-direction. (unit: m/s)"},
    {"winr", 1, 0, 5, field(&appConfig::winr), anyValue,
     "Z-velocity component for the RED inflow boundry. If the value is set as '-', this boundary is slip boundary in z-direction. (unit: m/s)"},
    {"tempr", 1, 0, 5, field(&appConfig::tempr), anyValue,
     "Temperature for the RED inflow boundry. If zero value is set, the boundary is treated as adiabatic. If the value is set as '-', no temperature constraint is imposed on this boundary. (unit: K) [*] This parameter is effective for 'cmode=1'. "},
    {"massfrr", 1, 0, 5, field(&appConfig::massfrr), anyValue,
     "A species mass fraction for the RED inflow boundry. If the value is set as '-', no mass fraction constraint is imposed on this boundary. (unit: K)"},
    {"uing", 1, 0, 5, field(&appConfig::uing), anyValue,
     "X-velocity component for the GREEN inflow boundry. If the value is set as '-', this boundary is slip boundary in x-direction. (unit: m/s)"},
    {"ving", 1, 0, 5, field(&appConfig::ving), anyValue,
     "Y-velocity component for the GREEN inflow boundry. If the value is set as '-', this boundary is slip boundary in y-direction. (unit: m/s)"},
    {"wing", 1, 0, 5, field(&appConfig::wing), anyValue,
     "Z-velocity component for the GREEN inflow boundry. If the value is set as '-', this boundary is slip boundary in z-direction. (unit: m/s)"},
    {"tempg", 1, 0, 5, field(&appConfig::tempg), anyValue,
     "Temperature for the GREEN inflow boundry. If zero value is set, the boundary is treated as adiabatic. If the value is set as '-', no temperature constraint is imposed on this boundary. (unit: K) [*] This parameter is effective for 'cmode=1'. "},
    {"massfrg", 1, 0, 5, field(&appConfig::massfrg), anyValue,
     "A species mass fraction for the GREEN inflow boundry. If the value is set as '-', no mass fraction constraint is imposed on this boundary. (unit: K)"},
    {"uiny", 1, 0, 5, field(&appConfig::uiny), anyValue,
     "X-velocity component for the YELLOW inflow boundry. If the value is set as '-', this boundary is slip boundary in x-direction. (unit: m/s)"},
    {"viny", 1, 0, 5, field(&appConfig::viny), anyValue,
     "Y-velocity component for the YELLOW inflow boundry. If the value is set as '-', this boundary is slip boundary in y-direction. (unit: m/s)"},
    {"winy", 1, 0, 5, field(&appConfig::winy), anyValue,
     "Z-velocity component for the YELLOW inflow boundry. If the value is set as '-', this boundary is slip boundary in z-direction. (unit: m/s)"},
    {"tempy", 1, 0, 5, field(&appConfig::tempy), anyValue,
     "Temperature for the YELLOW inflow boundry. If zero value is set, the boundary is treated as adiabatic. If the value is set as '-', no temperature constraint is imposed on this boundary. (unit: K) [*] This parameter is effective for 'cmode=1'. "},
    {"massfry", 1, 0, 5, field(&appConfig::massfry), anyValue,
     "A species mass fraction for the YELLOW inflow boundry. If the value is set as '-', no mass fraction constraint is imposed on this boundary. (unit: K)"},
    {"uinc", 1, 0, 5, field(&appConfig::uinc), anyValue,
     "X-velocity component for the CYAN inflow boundry. If the value is set as '-', this boundary is slip boundary in x-direction. (unit: m/s)"},
    {"vinc", 1, 0, 5, field(&appConfig::vinc), anyValue,
     "Y-velocity component for the CYAN inflow boundry. If the value is set as '-', this boundary is slip boundary in y-direction. (unit: m/s)"},
    {"winc", 1, 0, 5, field(&appConfig::winc), anyValue,
     "Z-velocity component for the CYAN inflow boundry. If the value is set as '-', this boundary is slip boundary in z-direction. (unit: m/s)"},
    {"tempc", 1, 0, 5, field(&appConfig::tempc), anyValue,
     "Temperature for the CYAN inflow boundry. If zero value is set, the boundary is treated as adiabatic. If the value is set as '-', no temperature constraint is imposed on this boundary. (unit: K) [*] This parameter is effective for 'cmode=1'. "},
    {"massfrc", 1, 0, 5, field(&appConfig::massfrc), anyValue,
     "A species mass fraction for the CYAN inflow boundry. If the value is set as '-', no mass fraction constraint is imposed on this boundary. (unit: K)"},
    {"tempwallk", 1, 0, 5, field(&appConfig::tempwallk), anyValue,
     "Temperature for the wall boundry specified with preset BLACK color. If zero value is set, the boundary is treated as adiabatic. (unit: K) [*] This parameter is effective for 'cmode=1'. "},
    {"tempwall", 1, 0, 5, field(&appConfig::tempwall), anyValue,
     "Temperature for the wall boundry specified with non-preset color. If zero value is set, the boundary is treated as adiabatic. (unit: K) [*] This parameter is effective for 'cmode=1'. "},
    {"tempwallSTL", 1, 0, 5, field(&appConfig::tempwallSTL), anyValue,
     "Temperature for the wall boundry specified with a STL file. If zero value is set, the boundary is treated as adiabatic. (unit: K) [*] This parameter is effective for 'cmode=1'. "},
    {"xoffstSTL", 1, 0, 5, field(&appConfig::xoffstSTL), anyValue,
     "X-offset distance of a STL model. (unit: m)"},
    {"yoffstSTL", 1, 0, 5, field(&appConfig::yoffstSTL), anyValue,
     "Y-offset distance of a STL model. (unit: m)"},
    {"zoffstSTL", 1, 0, 5, field(&appConfig::zoffstSTL), anyValue,
     "Z-offset distance of a STL model. (unit: m)"},
    {"normVecDirSTL", 0, 1, 2, field(&appConfig::normVecDirSTL), anyValue,
     "Direction of normal vector of STL polygons. Usually they point outward. [0] Normal vectors point outward. [1] Normal vectors point inward."},
    {"coordSTL", 0, 1, 2, field(&appConfig::coordSTL), anyValue,
     "Coordinate of STL polygons. Usually, they are constructed in right-hand coordinate in most CAD softwares. [0] Right-hand coordinate. [1] Left-hand coordinate."},
    {"unitSTL", 0, 1, 5, field(&appConfig::unitSTL), anyValue,
     "Unit used in STL polygons. [0] m. [1] cm. [2] mm. [3] inch. [4] ft."},
    {"xRotSTL", 1, 0, 5, field(&appConfig::xRotSTL), anyValue,
     "Rotation angle of STL model in X-direction. (unit: degrees)"},
    {"yRotSTL", 1, 0, 5, field(&appConfig::yRotSTL), anyValue,
     "Rotation angle of STL model in Y-direction. (unit: degrees)"},
    {"zRotSTL", 1, 0, 5, field(&appConfig::zRotSTL), anyValue,
     "Rotation angle of STL model in Z-direction. (unit: degrees)"},
    {"mu", 1, 0, 5, field(&appConfig::mu), anyValue,
     "Dynamic viscosity of the fluid. mu is approximately 1.8E-5 (kg/m/s) for the atmospheric air at 15~25 (deg.C). For water at 20 (deg.C), mu is 1.0E-3 (kg/m/s). (unit: kg/m/s)"},
    {"pr", 1, 0, 5, field(&appConfig::pr), anyValue,
     "Prandtl number of the mixture (def: viscous diffusion rate/thermal diffusion rate). Pr is approximately 0.7 for air. [*] This parameter is effective for 'cmode=1'. "},
    {"sc", 1, 0, 5, field(&appConfig::sc), anyValue,
     "Schmidt number of the mixture (def: viscous / molecular diffusion rates). A unity Sc is a decent guess for most of mixtures. [*] This parameter is effective when simulating a species mass fraction."},
    {"cs", 1, 0, 5, field(&appConfig::cs), anyValue,
     "Constant for the static Smagorinsky model. Cs usually takes approximately 0.17."},
    {"sct", 1, 0, 5, field(&appConfig::sct), anyValue,
     "Turbulent Schmidt number. ScT usually takes 0.7. [*] This parameter is effective for 'cmode=1', or when simulating a species mass fraction. "},
    {"nfig", 0, 0, 5, field(&appConfig::nfig), anyValue,
     "Interval time step for image output. Result images are saved in the 'image' directory once in every 'nfig' time steps. Setting zero value disable image output."},
    {"nfile", 0, 0, 5, field(&appConfig::nfile), anyValue,
     "Interval time step for dump data output. Result dump data are saved in the 'dump' directory once in every 'nfile' time steps. Setting zero value disable dump output."},
    {"ndiv", 0, 0, 5, field(&appConfig::ndiv), anyValue,
     "Interval mesh points between displayed visualization related objects such as vectors, streamlines and particles."},
    {"gfx", 1, 0, 5, field(&appConfig::gfx), anyValue,
     "Body force in x-direction. (unit: m/s^2)"},
    {"gfy", 1, 0, 5, field(&appConfig::gfy), anyValue,
     "Body force in y-direction. Gravitational force is approximately -9.8 m/s^2. (unit: m/s^2)"},
    {"presRelax", 1, 0, 5, field(&appConfig::presRelax), atLeastZero,
     "Relaxation parameter for pressure evolution. Usually 1.0, but 0.5 is used by default. Set a lower velue if there is unphysical pressure oscillation inside the domain."},
    {"openPresFlag", 0, 1, 2, field(&appConfig::openPresFlag), anyValue,
     "Pressure treatment for open computational boundary. [0] Nuemann (zero gradient). [1] Dirichlet (pressure is set to be presW; reccommended for (quasi-)confined configuration."},
    {"presAdjustFlag", 0, 1, 2, field(&appConfig::presAdjustFlag), anyValue,
     "[0] Not adjusting mean pressure (default). [1] Adjusting mean pressure to be 'presW' in the domain."},
    {"wfilWallBC", 1, 0, 5, field(&appConfig::wfilWallBC), zeroToOne,
     "Filter weight (0.0 <= wfilWallBC <= 1.0) for wall bcoundary construction. Default value is 0.25. Using a higher value makes the constructed wall boundary smoother, but less accurate respect to the bitmap images the boundary was constructed with."},
    {"inumColorsThresMax", 0, 0, 5, field(&appConfig::inumColorsThresMax), anyValue,
     "inumColorsThresMax"},
    {"mLoopMax", 0, 0, 5, field(&appConfig::mLoopMax), anyValue,
     "mLoopMax"},
    {"bcFactor", 1, 0, 5, field(&appConfig::bcFactor), anyValue,
     "bcFactor"},
    {"ageFlag", 0, 1, 2, field(&appConfig::ageFlag), anyValue,
     "Whether or not including the age variable in the simulation."},
};
// clang-format on

}  // namespace

bool sameName(const std::string& a, const char* b) {
  const std::size_t n = std::strlen(b);
  if (a.size() != n) return false;
  for (std::size_t i = 0; i < n; ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) return false;
  }
  return true;
}

parameterEntry lookupParameter(const std::string& name) {
  parameterEntry e;
  e.name = name;
  e.enabled = 1;
  e.index = unknownParameter;
  e.valueType = 0;
  e.isChoice = 0;
  e.choiceCount = 5;
  for (int i = 0; i < numParameters; ++i) {
    if (sameName(name, parameterRows[i].name)) {
      e.index = i;
      e.valueType = parameterRows[i].valueType;
      e.isChoice = parameterRows[i].isChoice;
      e.choiceCount = parameterRows[i].choiceCount;
      break;
    }
  }
  return e;
}

const char* parameterDescription(int index) {
  return index >= 0 && index < numParameters ? parameterRows[index].description : "NA";
}

const char* parameterName(int index) { return index >= 0 && index < numParameters ? parameterRows[index].name : "NA"; }

const parameterRow* parameterRowOf(int index) {
  return index >= 0 && index < numParameters ? &parameterRows[index] : nullptr;
}

void setParameterField(appConfig& cfg, int index, double value) {
  const parameterRow* row = parameterRowOf(index);
  if (row == nullptr) return;
  const parameterField& f = row->field;
  switch (f.kind) {
    case fieldKind::real: cfg.*f.real = value; break;
    case fieldKind::whole: cfg.*f.whole = truncToInt(value); break;
    case fieldKind::single: cfg.*f.single = narrowToFloat(value); break;
    case fieldKind::flag: cfg.*f.flag = truncToInt(value) != 0 ? 1 : 0; break;
  }
}

double parameterFieldValue(const appConfig& cfg, int index) {
  const parameterRow* row = parameterRowOf(index);
  if (row == nullptr) return 0.0;
  const parameterField& f = row->field;
  switch (f.kind) {
    case fieldKind::real: return cfg.*f.real;
    case fieldKind::whole: return cfg.*f.whole;
    case fieldKind::single: return cfg.*f.single;
    case fieldKind::flag: return cfg.*f.flag;
  }
  return 0.0;
}

void holdToLimits(appConfig& cfg) {
  for (int n = 0; n < numParameters; ++n) {
    const double v = parameterFieldValue(cfg, n);
    const valueLimits& limits = parameterRows[n].limits;
    if (v < limits.lowest) setParameterField(cfg, n, limits.lowest);
    if (v > limits.highest) setParameterField(cfg, n, limits.highest);
  }
}

}  // namespace marv
