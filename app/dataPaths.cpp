// The program's data folder, found from the executable's own path so that
// neither the working directory nor the environment matters.
#include "app/dataPaths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>

#ifndef MARV_SOURCE_DATA_DIR
#define MARV_SOURCE_DATA_DIR ""
#endif

namespace marv {

namespace {

bool isFolder(const std::string& path) {
  struct stat info {};
  return !path.empty() && ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isFile(const std::string& path) {
  struct stat info {};
  return !path.empty() && ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// The folder without "..", for messages that show it.
std::string canonical(const std::string& folder) {
  char buffer[PATH_MAX];
  return ::realpath(folder.c_str(), buffer) ? std::string(buffer) : folder;
}

// A data folder is recognised by its help pages.
bool holdsData(const std::string& folder) { return isFolder(folder + "/help"); }

}  // namespace

std::string executableFolder() {
  char buffer[4096];
  const ssize_t n = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (n <= 0) return std::string();
  buffer[n] = '\0';
  std::string path(buffer);
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash == 0 ? 1 : slash);
}

std::string programDataDir() {
  const std::string exe = executableFolder();
  if (!exe.empty()) {
    // bin/ of an install tree and app/ of a build tree stand at the same depth
    // below share/marvanesse; tests stand one folder deeper.
    for (const char* up : {"/../share/marvanesse", "/../../share/marvanesse"}) {
      const std::string candidate = exe + up;
      if (holdsData(candidate)) return canonical(candidate);
    }
  }
  const std::string source = MARV_SOURCE_DATA_DIR;
  return holdsData(source) ? source : std::string();
}

std::string programDataPath(const std::string& relative) {
  const std::string folder = programDataDir();
  if (folder.empty()) return std::string();
  const std::string path = folder + "/" + relative;
  return isFile(path) || isFolder(path) ? path : std::string();
}

}  // namespace marv
