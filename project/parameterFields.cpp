// Parameter numbers mapped to the fields of appConfig.
#include "project/parameterFields.h"

#include "project/parameterTable.h"
#include "project/textNumbers.h"

namespace marv {

namespace {

// Fields by parameter number: a double member, an int member, or neither
// (the single-precision and flag fields, handled by name below).
struct fieldRef {
  double appConfig::*real = nullptr;
  int appConfig::*whole = nullptr;
};

// clang-format off
const fieldRef parameterFieldRefs[numParameters] = {
    {nullptr, &appConfig::cmode},  // 0
    {nullptr, &appConfig::ibm},  // 1
    {nullptr, &appConfig::domx},  // 2
    {nullptr, &appConfig::parallel},  // 3
    {nullptr, &appConfig::nprocs},  // 4
    {nullptr, &appConfig::npx},  // 5
    {nullptr, &appConfig::npy},  // 6
    {nullptr, &appConfig::npz},  // 7
    {nullptr, &appConfig::nx},  // 8
    {nullptr, &appConfig::ny},  // 9
    {nullptr, &appConfig::nz},  // 10
    {&appConfig::lx, nullptr},  // 11
    {&appConfig::ly, nullptr},  // 12
    {&appConfig::lz, nullptr},  // 13
    {&appConfig::deltat, nullptr},  // 14
    {nullptr, &appConfig::sts},  // 15
    {nullptr, &appConfig::latts},  // 16
    {&appConfig::cfl, nullptr},  // 17
    {nullptr, &appConfig::nfil},  // 18
    {&appConfig::wfil, nullptr},  // 19
    {nullptr, &appConfig::npfil},  // 20
    {&appConfig::wpfil, nullptr},  // 21
    {&appConfig::omega, nullptr},  // 22
    {&appConfig::peps, nullptr},  // 23
    {nullptr, &appConfig::loopmax},  // 24
    {&appConfig::presw, nullptr},  // 25
    {&appConfig::uinw, nullptr},  // 26
    {&appConfig::vinw, nullptr},  // 27
    {&appConfig::winw, nullptr},  // 28
    {&appConfig::rhow, nullptr},  // 29
    {&appConfig::tempw, nullptr},  // 30
    {&appConfig::massfrw, nullptr},  // 31
    {&appConfig::uinb, nullptr},  // 32
    {&appConfig::vinb, nullptr},  // 33
    {&appConfig::winb, nullptr},  // 34
    {&appConfig::tempb, nullptr},  // 35
    {&appConfig::massfrb, nullptr},  // 36
    {&appConfig::uinr, nullptr},  // 37
    {&appConfig::vinr, nullptr},  // 38
    {&appConfig::winr, nullptr},  // 39
    {&appConfig::tempr, nullptr},  // 40
    {&appConfig::massfrr, nullptr},  // 41
    {&appConfig::uing, nullptr},  // 42
    {&appConfig::ving, nullptr},  // 43
    {&appConfig::wing, nullptr},  // 44
    {&appConfig::tempg, nullptr},  // 45
    {&appConfig::massfrg, nullptr},  // 46
    {&appConfig::uiny, nullptr},  // 47
    {&appConfig::viny, nullptr},  // 48
    {&appConfig::winy, nullptr},  // 49
    {&appConfig::tempy, nullptr},  // 50
    {&appConfig::massfry, nullptr},  // 51
    {&appConfig::uinc, nullptr},  // 52
    {&appConfig::vinc, nullptr},  // 53
    {&appConfig::winc, nullptr},  // 54
    {&appConfig::tempc, nullptr},  // 55
    {&appConfig::massfrc, nullptr},  // 56
    {&appConfig::tempwallk, nullptr},  // 57
    {&appConfig::tempwall, nullptr},  // 58
    {&appConfig::tempwallSTL, nullptr},  // 59
    {&appConfig::xoffstSTL, nullptr},  // 60
    {&appConfig::yoffstSTL, nullptr},  // 61
    {&appConfig::zoffstSTL, nullptr},  // 62
    {nullptr, &appConfig::normVecDirSTL},  // 63
    {nullptr, &appConfig::coordSTL},  // 64
    {nullptr, &appConfig::unitSTL},  // 65
    {&appConfig::xRotSTL, nullptr},  // 66
    {&appConfig::yRotSTL, nullptr},  // 67
    {&appConfig::zRotSTL, nullptr},  // 68
    {&appConfig::mu, nullptr},  // 69
    {&appConfig::pr, nullptr},  // 70
    {&appConfig::sc, nullptr},  // 71
    {&appConfig::cs, nullptr},  // 72
    {&appConfig::sct, nullptr},  // 73
    {nullptr, &appConfig::nfig},  // 74
    {nullptr, &appConfig::nfile},  // 75
    {nullptr, &appConfig::ndiv},  // 76
    {&appConfig::gfx, nullptr},  // 77
    {&appConfig::gfy, nullptr},  // 78
    {nullptr, nullptr},  // 79 presRelax
    {nullptr, &appConfig::openPresFlag},  // 80
    {nullptr, nullptr},  // 81 presAdjustFlag
    {&appConfig::wfilWallBC, nullptr},  // 82
    {nullptr, &appConfig::inumColorsThresMax},  // 83
    {nullptr, &appConfig::mLoopMax},  // 84
    {nullptr, nullptr},  // 85 bcFactor
    {nullptr, nullptr},  // 86 ageFlag
};
// clang-format on

}  // namespace

void setParameterField(appConfig& cfg, int index, double value) {
  if (index < 0 || index >= numParameters) return;
  const fieldRef& ref = parameterFieldRefs[index];
  if (ref.real) {
    cfg.*ref.real = value;
  } else if (ref.whole) {
    cfg.*ref.whole = truncToInt(value);
  } else if (index == paramPresRelax) {
    cfg.presRelax = narrowToFloat(value);
  } else if (index == paramPresAdjustFlag) {
    cfg.presAdjustFlag = truncToInt(value) != 0 ? 1 : 0;
  } else if (index == paramBcFactor) {
    cfg.bcFactor = narrowToFloat(value);
  } else if (index == paramAgeFlag) {
    cfg.ageFlag = value != 0.0 ? 1 : 0;
  }
}

double parameterFieldValue(const appConfig& cfg, int index) {
  if (index < 0 || index >= numParameters) return 0.0;
  const fieldRef& ref = parameterFieldRefs[index];
  if (ref.real) return cfg.*ref.real;
  if (ref.whole) return cfg.*ref.whole;
  if (index == paramPresRelax) return cfg.presRelax;
  if (index == paramPresAdjustFlag) return cfg.presAdjustFlag;
  if (index == paramBcFactor) return cfg.bcFactor;
  return cfg.ageFlag;
}

}  // namespace marv
