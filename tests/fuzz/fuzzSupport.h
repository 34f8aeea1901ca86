// Shared by the fuzz targets: each input becomes a file in a private working
// folder (the readers take paths, most of them relative to the project
// folder), read by the reader under test.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace marvfuzz {

// A private folder with an input folder, made once; the process works in it
// and removes it at its end.
inline const char* workFolder() {
  static char folder[] = "/tmp/marv-fuzz-XXXXXX";
  static const bool made = [] {
    if (mkdtemp(folder) == nullptr || chdir(folder) != 0) std::abort();
    std::atexit([] {
      std::error_code ignored;
      std::filesystem::remove_all(folder, ignored);
    });
    std::filesystem::create_directories("input");
    std::filesystem::create_directories("dump/00000001");
    return true;
  }();
  (void)made;
  return folder;
}

// Writes the input to path (relative to the working folder).
inline void writeInput(const std::string& path, const std::uint8_t* data, std::size_t size) {
  workFolder();
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) std::abort();
  if (size > 0 && std::fwrite(data, 1, size, f) != size) std::abort();
  std::fclose(f);
}

}  // namespace marvfuzz
