// Dump writing, reading and resampling, and the XDMF descriptions that let
// visualisation tools open the raw files as they stand.
#include "result/dumpFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "common/textNumbers.h"
#include "domain/gridSampling.h"

namespace marv {

namespace {

// The raw files of a dump in the order they are written, with the view that
// holds each field.
struct rawFile {
  const char* name;   // file name in the dump folder
  const char* label;  // attribute name in the XDMF files
  int view;           // index of the field view
};

constexpr rawFile rawFiles[] = {
    {"ufld.raw", "u", fieldU},      {"vfld.raw", "v", fieldV},     {"wfld.raw", "w", fieldW},
    {"pfld.raw", "p", fieldP},      {"rfld.raw", "rho", fieldRho}, {"tfld.raw", "temperature", fieldT},
    {"yfld.raw", "massfr", fieldY}, {"afld.raw", "age", fieldAge}, {"bc.raw", "boundary", viewBc},
};

bool fileWanted(const rawFile& file, int cmode, int ageFlag, bool reading) {
  if (file.view == fieldRho || file.view == fieldT) return cmode == 1;
  if (file.view == fieldAge) return ageFlag != 0;
  if (file.view == viewBc) return !reading;
  return true;
}

long long fileSize(const std::string& path) {
  struct stat st {};
  return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) ? static_cast<long long>(st.st_size) : -1;
}

// Nodes of a dump's mesh; a mesh beyond any 32-bit index (or with a count
// below 1) gives -1, without overflowing on the way there.
long long dumpNodeCount(const dumpInfo& info) {
  if (info.nx < 1 || info.ny < 1 || info.nz < 1) return -1;
  const long long xy = static_cast<long long>(info.nx) * info.ny;  // each factor below 2^31
  if (xy > 2147483647LL) return -1;
  const long long count = xy * info.nz;
  return count > 2147483647LL ? -1 : count;
}

// One uniform grid of a dump as XDMF, its raw files named with prefix.
std::string xdmfGrid(const dumpInfo& info, int step, const std::string& folder, const std::string& prefix) {
  const long long count = std::max(dumpNodeCount(info), 0LL);
  const double dx = info.nx > 1 ? (info.x1 - info.x0) / (info.nx - 1) : 1.0;
  const double dy = info.ny > 1 ? (info.y1 - info.y0) / (info.ny - 1) : 1.0;
  const double dz = info.nz > 1 ? (info.z1 - info.z0) / (info.nz - 1) : 1.0;
  char text[1024];
  std::string out;
  std::snprintf(text, sizeof text,
                "    <Grid Name=\"step %08d\" GridType=\"Uniform\">\n"
                "      <Time Value=\"%.17g\"/>\n"
                "      <Topology TopologyType=\"3DCoRectMesh\" Dimensions=\"%d %d %d\"/>\n"
                "      <Geometry GeometryType=\"ORIGIN_DXDYDZ\">\n"
                "        <DataItem Dimensions=\"3\" NumberType=\"Float\" Precision=\"8\" Format=\"XML\">"
                "%.17g %.17g %.17g</DataItem>\n"
                "        <DataItem Dimensions=\"3\" NumberType=\"Float\" Precision=\"8\" Format=\"XML\">"
                "%.17g %.17g %.17g</DataItem>\n"
                "      </Geometry>\n",
                step, info.time, info.nz, info.ny, info.nx, info.z0, info.y0, info.x0, dz, dy, dx);
  out += text;
  for (const rawFile& file : rawFiles) {
    if (fileSize(folder + "/" + file.name) != count * 8) continue;
    std::snprintf(text, sizeof text,
                  "      <Attribute Name=\"%s\" AttributeType=\"Scalar\" Center=\"Node\">\n"
                  "        <DataItem Dimensions=\"%d %d %d\" NumberType=\"Float\" Precision=\"8\" "
                  "Format=\"Binary\" Endian=\"Little\">%s%s</DataItem>\n"
                  "      </Attribute>\n",
                  file.label, info.nz, info.ny, info.nx, prefix.c_str(), file.name);
    out += text;
  }
  out += "    </Grid>\n";
  return out;
}

// Step numbers of the folders in ./dump named by eight digits, ascending.
std::vector<int> dumpSteps() {
  std::vector<int> steps;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("./dump", error)) {
    const std::string name = entry.path().filename().string();
    if (name.size() != 8 || !std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; }))
      continue;
    steps.push_back(std::stoi(name));
  }
  std::sort(steps.begin(), steps.end());
  return steps;
}

const char* xdmfHead = "<?xml version=\"1.0\" ?>\n<Xdmf Version=\"3.0\">\n  <Domain>\n";
const char* xdmfTail = "  </Domain>\n</Xdmf>\n";

// Reads a whole raw file of count doubles into target; false if its size
// differs or it cannot be read completely.
bool readRaw(const std::string& path, double* target, long long count) {
  if (fileSize(path) != count * 8) return false;
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return false;
  const bool ok = std::fread(target, 8, static_cast<std::size_t>(count), f) == static_cast<std::size_t>(count);
  std::fclose(f);
  return ok;
}

// Writes a whole file and flushes it to the disk. False, with the reason in
// why, when any part of that fails; a short file is then removed.
bool writeWholeFile(const std::string& path, const void* bytes, std::size_t size, std::string& why) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) {
    why = path + ": " + std::strerror(errno);
    return false;
  }
  bool ok = size == 0 || std::fwrite(bytes, 1, size, f) == size;
  ok = ok && std::fflush(f) == 0 && fsync(fileno(f)) == 0;
  const int error = errno;
  ok = std::fclose(f) == 0 && ok;
  if (!ok) {
    why = path + ": " + std::strerror(error != 0 ? error : errno);
    std::remove(path.c_str());
  }
  return ok;
}

// Puts the finished folder staging in the place of folder. An existing dump
// of the same step is swapped out in one step, so that the name always holds
// a whole dump, and then removed.
bool publishFolder(const std::string& staging, const std::string& folder, std::string& why) {
  std::error_code ignored;
  if (::rename(staging.c_str(), folder.c_str()) == 0) return true;
  if (errno == EEXIST || errno == ENOTEMPTY) {
    if (::renameat2(AT_FDCWD, staging.c_str(), AT_FDCWD, folder.c_str(), RENAME_EXCHANGE) == 0) {
      std::filesystem::remove_all(staging, ignored);
      return true;
    }
    // A file system without the exchange: the old dump goes first.
    if (errno == EINVAL || errno == ENOSYS) {
      std::filesystem::remove_all(folder, ignored);
      if (::rename(staging.c_str(), folder.c_str()) == 0) return true;
    }
  }
  why = folder + ": " + std::strerror(errno);
  return false;
}

// The field files that every dump of the given mode holds.
bool fileRequired(const rawFile& file, int dumpCmode) {
  if (file.view == fieldRho || file.view == fieldT) return dumpCmode == 1;
  return file.view != fieldAge && file.view != viewBc;
}

}  // namespace

std::string dumpFolder(int step) {
  char text[32];
  std::snprintf(text, sizeof text, "./dump/%08d", step);
  return text;
}

std::string formatDumpInfo(const appConfig& cfg) {
  auto first = [](const std::vector<double>& c) { return c.empty() ? 0.0 : c.front(); };
  auto last = [](const std::vector<double>& c) { return c.empty() ? 0.0 : c.back(); };
  char text[512];
  std::snprintf(text, sizeof text,
                "cmode:   %2d\ndeltat:  %e\ntime:    %e\nmesh:    %8d   %8d   %8d\n"
                "x0-x1(m):   %e   %e\ny0-y1(m):   %e   %e\nz0-z1(m):   %e   %e\n",
                cfg.cmode, cfg.deltat, cfg.time, cfg.nx, cfg.ny, cfg.nz, first(cfg.xCoord), last(cfg.xCoord),
                first(cfg.yCoord), last(cfg.yCoord), first(cfg.zCoord), last(cfg.zCoord));
  return text;
}

bool readDumpInfo(const std::string& path, dumpInfo& info) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return false;
  tokenReader reader{f};
  // Keys are not compared: each line is a key and its values, in order.
  const int valuesPerLine[] = {1, 1, 1, 3, 2, 2, 2};
  double values[12] = {};
  int got = 0;
  bool complete = true;
  std::string token;
  for (int line = 0; line < 7 && complete; ++line) {
    if (!nextToken(reader, token)) complete = false;
    for (int v = 0; v < valuesPerLine[line] && complete; ++v) {
      if (!nextToken(reader, token)) {
        complete = false;
        break;
      }
      values[got++] = parseNumber(token.substr(0, 19));
    }
  }
  std::fclose(f);
  info.cmode = truncToInt(values[0]);
  info.deltat = values[1];
  info.time = values[2];
  info.nx = truncToInt(values[3]);
  info.ny = truncToInt(values[4]);
  info.nz = truncToInt(values[5]);
  info.x0 = values[6];
  info.x1 = values[7];
  info.y0 = values[8];
  info.y1 = values[9];
  info.z0 = values[10];
  info.z1 = values[11];
  return complete;
}

int nearestDump(int from, int latts, int direction) {
  // The folder is listed once instead of trying every step number, so that
  // a huge latts costs nothing.
  long long best = from;
  for (int step : dumpSteps()) {
    if (!dumpIsWhole(step)) continue;
    if (direction > 0 && step > from && step <= latts && (best == from || step < best)) best = step;
    if (direction < 0 && step < from && step >= 0 && (best == from || step > best)) best = step;
  }
  return static_cast<int>(best);
}

int extentKey(double v) { return truncToInt(v / std::max(std::fabs(v), 1.0) * 0.5 + v * 10000.0); }

bool writeDump(const appConfig& cfg, const fieldViews& views, std::string* failure) {
  // The dump is made under a temporary name and renamed when whole: a dump
  // folder that a reader sees is never half written.
  const std::string folder = dumpFolder(cfg.ts);
  const std::string staging = folder + ".tmp";
  std::string why;
  auto fail = [&]() {
    std::error_code ignored;
    std::filesystem::remove_all(staging, ignored);
    if (failure) *failure = why;
    return false;
  };
  std::error_code error;
  std::filesystem::remove_all(staging, error);
  std::filesystem::create_directories(staging, error);
  if (error) {
    why = staging + ": " + error.message();
    return fail();
  }
  const std::string infoText = formatDumpInfo(cfg);
  if (!writeWholeFile(staging + "/info.txt", infoText.data(), infoText.size(), why)) return fail();
  for (const rawFile& file : rawFiles) {
    if (!fileWanted(file, cfg.cmode, cfg.ageFlag, false)) continue;
    const array3d<double>& a = views[file.view];
    const std::size_t bytes = a.data ? static_cast<std::size_t>(a.nx) * a.ny * a.nz * sizeof(double) : 0;
    if (!writeWholeFile(staging + "/" + file.name, a.data, bytes, why)) return fail();
  }
  dumpInfo info;
  if (readDumpInfo(staging + "/info.txt", info)) {
    const std::string xml = std::string(xdmfHead) + xdmfGrid(info, cfg.ts, staging, "") + xdmfTail;
    if (!writeWholeFile(staging + "/dump.xmf", xml.data(), xml.size(), why)) return fail();
  }
  if (!publishFolder(staging, folder, why)) return fail();
  if (!writeDumpSeries()) {
    why = "./dump/series.xmf: " + std::string(std::strerror(errno));
    if (failure) *failure = why;
    return false;
  }
  return true;
}

bool writeDumpSeries() {
  const std::vector<int> steps = dumpSteps();
  std::string xml = xdmfHead;
  xml += "    <Grid Name=\"run\" GridType=\"Collection\" CollectionType=\"Temporal\">\n";
  for (int step : steps) {
    const std::string folder = dumpFolder(step);
    dumpInfo info;
    if (!readDumpInfo(folder + "/info.txt", info)) continue;
    char prefix[16];
    std::snprintf(prefix, sizeof prefix, "%08d/", step);
    xml += xdmfGrid(info, step, folder, prefix);
  }
  xml += "    </Grid>\n";
  xml += xdmfTail;
  return replaceFileAtomically("./dump/series.xmf", xml);
}

bool dumpIsWhole(int step) {
  const std::string folder = dumpFolder(step);
  dumpInfo info;
  if (!readDumpInfo(folder + "/info.txt", info)) return false;
  if (info.nx < 2 || info.ny < 2 || info.nz < 1) return false;
  const long long count = dumpNodeCount(info);
  if (count < 0) return false;
  for (const rawFile& file : rawFiles) {
    const long long size = fileSize(folder + "/" + file.name);
    if (file.view != viewBc && size >= 0 && size != count * 8) return false;
  }
  return missingDumpFile(folder, info).empty();
}

std::string missingDumpFile(const std::string& folder, const dumpInfo& info) {
  for (const rawFile& file : rawFiles) {
    if (fileRequired(file, info.cmode) && fileSize(folder + "/" + file.name) < 0) return file.name;
  }
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    const std::string name = entry.path().filename().string();
    if (name.size() > 4 && name.compare(name.size() - 4, 4, ".tmp") == 0) return name;
  }
  return std::string();
}

void removeDumpLeftovers() {
  // What a killed write leaves: staging folders and files under a
  // temporary name, in ./dump and in each dump folder.
  auto temporary = [](const std::filesystem::path& p) {
    const std::string name = p.filename().string();
    return name.size() > 4 && name.compare(name.size() - 4, 4, ".tmp") == 0;
  };
  std::error_code error;
  std::vector<std::filesystem::path> doomed;
  for (const auto& entry : std::filesystem::directory_iterator("./dump", error)) {
    if (temporary(entry.path())) {
      doomed.push_back(entry.path());
    } else if (entry.is_directory(error)) {
      for (const auto& inner : std::filesystem::directory_iterator(entry.path(), error))
        if (temporary(inner.path())) doomed.push_back(inner.path());
    }
  }
  for (const char* name : {"./input/param.txt.tmp", "./input/viz.txt.tmp", "./input/bmp.txt.tmp"})
    doomed.emplace_back(name);
  for (const auto& path : doomed) std::filesystem::remove_all(path, error);
}

void resampleDumpField(const appConfig& cfg, const array3d<double>& target, const array3d<double>& source,
                       const dumpInfo& info) {
  if (target.data == nullptr || source.data == nullptr || info.nx < 2 || info.ny < 2) return;
  std::vector<double> xs(info.nx), ys(info.ny), zs(std::max(1, info.nz));
  for (int i = 0; i < info.nx; ++i) xs[i] = info.x0 + i * (info.x1 - info.x0) / (info.nx - 1);
  for (int j = 0; j < info.ny; ++j) ys[j] = info.y0 + j * (info.y1 - info.y0) / (info.ny - 1);
  for (int k = 0; k < info.nz; ++k) zs[k] = info.z0 + k * (info.z1 - info.z0) / std::max(1, info.nz - 1);
  const int sourceNz = cfg.nz == 1 ? 1 : info.nz;  // a 2D case reads the source's plane k = 0
  for (int k = 0; k < target.nz; ++k) {
    for (int j = 0; j < target.ny; ++j) {
      for (int i = 0; i < target.nx; ++i) {
        const double z = cfg.nz == 1 ? zs[0] : cfg.zCoord[k];
        target.data[i + target.nx * j + target.nxy * k] = sampleFieldOnGrid(
            cfg.xCoord[i], cfg.yCoord[j], z, source, xs.data(), ys.data(), zs.data(), info.nx, info.ny, sourceNz);
      }
    }
  }
}

int readDumpFields(appConfig& cfg, fieldViews& views, int step) {
  const std::string folder = dumpFolder(step);
  dumpInfo info;
  if (std::FILE* f = std::fopen((folder + "/info.txt").c_str(), "rb")) {
    std::fclose(f);
  } else {
    return -1;
  }
  const bool complete = readDumpInfo(folder + "/info.txt", info);
  cfg.time = info.time;
  // info.txt holds seven digits: a run with a fixed time step keeps the
  // exact value of its parameter, so that a restart continues it unchanged.
  if (!cfg.fixedDeltat) cfg.deltat = info.deltat;
  auto refuse = [&](const std::string& why) {
    if (cfg.showMessage) cfg.showMessage(cfg, ("[ERROR] The dump " + folder + " cannot be read: " + why).c_str());
    return -1;
  };
  if (!complete) return refuse("its info.txt is incomplete.");
  if (info.nx < 2 || info.ny < 2 || info.nz < 1) return refuse("its mesh has fewer than two points in x or y.");
  const long long count = dumpNodeCount(info);
  if (count < 0) return refuse("its mesh is too large.");
  const std::string missing = missingDumpFile(folder, info);
  if (!missing.empty())
    return refuse("it is incomplete (" + missing +
                  (missing.find(".tmp") != std::string::npos ? " is left of a write" : " is missing") +
                  "); a run was probably stopped while it wrote the dump.");

  const double current[6] = {cfg.xCoord.front(), cfg.xCoord.back(),  cfg.yCoord.front(),
                             cfg.yCoord.back(),  cfg.zCoord.front(), cfg.zCoord.back()};
  const double stored[6] = {info.x0, info.x1, info.y0, info.y1, info.z0, info.z1};
  for (int e = 0; e < 6; ++e) {
    if (extentKey(current[e]) != extentKey(stored[e])) return -1;
  }

  // Every file present must hold the whole mesh, so that no field is left
  // half read: a short or long file refuses the dump before anything changes.
  for (const rawFile& file : rawFiles) {
    if (!fileWanted(file, cfg.cmode, cfg.ageFlag, true)) continue;
    const long long size = fileSize(folder + "/" + file.name);
    if (size >= 0 && size != count * 8)
      return refuse(std::string(file.name) + " holds " + std::to_string(size) + " bytes instead of " +
                    std::to_string(count * 8) + ".");
  }

  const bool sameMesh = info.cmode == cfg.cmode && info.nx == cfg.nx && info.ny == cfg.ny && info.nz == cfg.nz;
  ownedArray3d<double> temporary;
  if (!sameMesh) temporary = ownedArray3d<double>(info.nx, info.ny, info.nz);
  for (const rawFile& file : rawFiles) {
    if (!fileWanted(file, cfg.cmode, cfg.ageFlag, true)) continue;
    const array3d<double>& target = views[file.view];
    if (target.data == nullptr) continue;
    const std::string path = folder + "/" + file.name;
    if (sameMesh) {
      readRaw(path, target.data, count);
    } else if (readRaw(path, temporary.data, count)) {
      resampleDumpField(cfg, target, temporary, info);
    }
  }
  return 1;
}

}  // namespace marv
