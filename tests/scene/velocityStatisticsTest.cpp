// The frame's velocity statistics and the adaptive time step taken from them.
#include <gtest/gtest.h>

#include <cmath>

#include "scene/velocityStatistics.h"

namespace {

using marv::ownedArray3d;

TEST(VelocityStatistics, PeaksSpeedsAndAdaptiveStep) {
  ownedArray3d<double> u(3, 2, 1), v(3, 2, 1), w;
  u(0, 0, 0) = -4.0;
  u(2, 1, 0) = 3.0;
  v(1, 1, 0) = 0.5;
  const marv::velocityStatistics s = marv::scanVelocity(u, v, w);
  EXPECT_DOUBLE_EQ(s.peakU, 4.0) << "the negative extreme counts by magnitude";
  EXPECT_DOUBLE_EQ(s.peakV, 0.5);
  EXPECT_DOUBLE_EQ(s.peakW, 0.0) << "an empty w counts as 0";
  EXPECT_DOUBLE_EQ(s.maxSpeed, 4.0);
  EXPECT_DOUBLE_EQ(s.minSpeed, 0.0);
  EXPECT_DOUBLE_EQ(marv::adaptiveDeltat(0.25, 0.1, 0.2, s), 0.00625) << "cfl dx / peak u, the smaller one";

  ownedArray3d<double> still(4, 4, 4);
  const marv::velocityStatistics calm = marv::scanVelocity(still, still, still);
  EXPECT_DOUBLE_EQ(calm.minSpeed, 0.0) << "equal extremes: half of the largest";
  EXPECT_DOUBLE_EQ(marv::adaptiveDeltat(0.25, 0.1, 0.2, calm), 2500.0) << "still fluid";

  // Values are rounded to single precision.
  ownedArray3d<double> one(1, 1, 1);
  one(0, 0, 0) = 1.0 + 1e-12;
  EXPECT_EQ(marv::scanVelocity(one, one, one).peakU, 1.0);
}

TEST(VelocityStatistics, AnyValueThatIsNotFiniteMakesThePeaksNonFinite) {
  // max and min pass over NaN, so one NaN among calm values would otherwise
  // look like a calm field.
  for (double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300}) {
    for (int component = 0; component < 3; ++component) {
      ownedArray3d<double> u(4, 3, 2), v(4, 3, 2), w(4, 3, 2);
      u(1, 1, 1) = 2.0;
      ownedArray3d<double>* fields[] = {&u, &v, &w};
      (*fields[component])(3, 2, 1) = bad;
      const marv::velocityStatistics s = marv::scanVelocity(u, v, w);
      EXPECT_FALSE(marv::peaksFinite(s)) << bad << " in component " << component;
    }
  }
}

}  // namespace
