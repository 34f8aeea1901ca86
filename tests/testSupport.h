// Shared test helpers: scratch folders, whole-file reads and writes, a guard that runs a scope inside a folder.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace marvtest {

// A fresh, empty folder under the system's temporary folder.
inline std::filesystem::path scratchFolder(const std::string& name) {
  std::string pattern = (std::filesystem::temp_directory_path() / ("marv-" + name + "-XXXXXX")).string();
  const char* made = mkdtemp(pattern.data());
  return made ? std::filesystem::path(made) : std::filesystem::path();
}

inline void writeText(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string readText(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

// Runs the enclosing scope inside folder; returns to the previous folder and removes the scratch folder at the end.
class inFolder {
 public:
  explicit inFolder(const std::filesystem::path& folder) : previous_(std::filesystem::current_path()), folder_(folder) {
    std::filesystem::current_path(folder);
  }
  ~inFolder() {
    std::filesystem::current_path(previous_);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  inFolder(const inFolder&) = delete;
  inFolder& operator=(const inFolder&) = delete;

 private:
  std::filesystem::path previous_;
  std::filesystem::path folder_;
};

}  // namespace marvtest
