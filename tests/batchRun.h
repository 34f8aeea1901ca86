// Batch runs of project folders: a copy of a bundled example, its parameters set, one quiet pass of the runner.
#pragma once

#include <filesystem>
#include <map>
#include <sstream>
#include <string>

#include "app/batchStages.h"
#include "app/driver.h"
#include "testSupport.h"

namespace marvtest {

inline int runBatch(const std::filesystem::path& folder, marv::driverState& state, bool analysis = false) {
  marv::batchOptions options;
  options.projectDir = folder.string();
  options.quiet = true;
  options.analysis = analysis;
  return marv::runDriver(marv::batchStages(options), state);
}

// A scratch project with a copy of the example's input and empty figs and dump folders.
inline std::filesystem::path copyExample(const std::string& example) {
  namespace fs = std::filesystem;
  const fs::path folder = scratchFolder(example);
  fs::copy(fs::path(MARV_TEST_DATA) / ".." / ".." / "examples" / example / "input", folder / "input");
  fs::create_directories(folder / "figs");
  fs::create_directories(folder / "dump");
  return folder;
}

// Sets every "NNN:key value" line of each key given (a key may stand twice).
inline void setParameters(const std::filesystem::path& folder, const std::map<std::string, std::string>& values) {
  std::istringstream lines(readText(folder / "input" / "param.txt"));
  std::string text, line;
  while (std::getline(lines, line)) {
    const std::size_t colon = line.find(':'), end = line.find(' ', colon);
    const auto value = colon == std::string::npos ? values.end() : values.find(line.substr(colon + 1, end - colon - 1));
    if (value != values.end()) line = line.substr(0, colon + 1) + value->first + " " + value->second;
    text += line + "\n";
  }
  writeText(folder / "input" / "param.txt", text);
}

}  // namespace marvtest
