// A model file that cannot be used in a real case: said once, and the case is built and run without it.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "app/appConfig.h"
#include "domain/bitmapDomain.h"
#include "domain/prepareInputs.h"
#include "project/applyParameters.h"
#include "testSupport.h"

namespace marv {
namespace {

struct stlCase {
  appConfig cfg;
  bcDomain domain;
  int result = 0;
  std::vector<std::string> messages;
};

std::vector<std::string>* log = nullptr;
void keep(appConfig&, const char* text) {
  if (log) log->push_back(text);
}

// A 33^3 unit box with the model in input/bc.stl, built as a run builds it.
void build(stlCase& c, const std::vector<std::pair<const char*, const char*>>& extra) {
  parameterEditor editor;
  resetParameterEditor(editor);
  std::vector<std::pair<const char*, const char*>> values = {
      {"nx", "33"}, {"ny", "33"}, {"nz", "33"}, {"domx", "330"}, {"ibm", "1"}};
  values.insert(values.end(), extra.begin(), extra.end());
  for (const auto& [name, value] : values) {
    parameterEntry e = lookupParameter(name);
    e.value = value;
    editor.entries[editor.count++] = e;
  }
  takeChoiceValues(editor);
  constructAppConfig(c.cfg, false, false);
  log = &c.messages;
  c.cfg.showMessage = keep;
  omp_set_num_threads(1);
  c.result = applyParameters(editor, c.cfg, editor.count);
  constructDomain(c.domain, c.cfg);
  prepareFromInputs(c.domain, c.cfg);
  build3D(c.domain, c.cfg);
  log = nullptr;
}

int countType(const bcDomain& d, int type) {
  int n = 0;
  for (int at = 0; at < d.bcFlag.count(); ++at) n += d.bcFlag[at] == type;
  return n;
}

TEST(StlDomain, UnusableModelIsSaidOnceAndTheCaseRunsWithoutIt) {
  marvtest::inFolder here(marvtest::scratchFolder("stlbad"));
  marvtest::writeText("input/bc.stl", std::string(200, 'z') + "\n");
  stlCase c;
  build(c, {});
  ASSERT_EQ(c.result, 1);
  EXPECT_EQ(c.cfg.stlPresent, 0);
  ASSERT_EQ(c.messages.size(), 1u);
  EXPECT_NE(c.messages[0].find("bc.stl"), std::string::npos) << c.messages[0];
  EXPECT_EQ(countType(c.domain, 7), 0);
}

}  // namespace
}  // namespace marv
