// Dumps: the flow state of one step in ./dump/%08d (info.txt and one raw
// little-endian double file per field), read back for a restart or for
// Analysis mode, resampled when the dump's mesh differs from the case's.
// Beside the raw files each dump carries an XDMF description, and
// ./dump/series.xmf lists every dump, so that ParaView or VisIt open a run
// directly.
#pragma once

#include <string>

#include "app/appConfig.h"
#include "solver/fieldViews.h"

namespace marv {

// What info.txt of a dump states.
struct dumpInfo {
  int cmode = 0;
  double deltat = 0.0;  // [s]
  double time = 0.0;    // [s]
  int nx = 0, ny = 0, nz = 0;
  double x0 = 0.0, x1 = 0.0, y0 = 0.0, y1 = 0.0, z0 = 0.0, z1 = 0.0;  // extents [m]
};

std::string dumpFolder(int step);                  // "./dump/%08d"
std::string formatDumpInfo(const appConfig& cfg);  // the seven lines of info.txt

// Reads info.txt; false when it cannot be opened or holds fewer values than
// its seven lines need.
bool readDumpInfo(const std::string& path, dumpInfo& info);

// The 32-bit key that two extents must share to count as equal.
int extentKey(double v);

// Writes the dump of step ts: folder, info.txt, the fields of the views in
// file order, bc.raw from view 8, and the XDMF files. The folder is made as
// "./dump/%08d.tmp" and renamed when whole. False when a write failed, with
// the file and the reason in failure; the dump then is absent or the old one
// of that step stands.
bool writeDump(const appConfig& cfg, const fieldViews& views, std::string* failure = nullptr);

// Fills target (the case's mesh) from source on the dump's mesh. A dump mesh
// of a single node in x or y leaves target as it is.
void resampleDumpField(const appConfig& cfg, const array3d<double>& target, const array3d<double>& source,
                       const dumpInfo& info);

// Loads the dump of step into the fields of the views, resampled when its
// mesh or mode differs. Returns -1 when the dump is missing, belongs to
// another domain, or (with a message) cannot be read whole.
int readDumpFields(appConfig& cfg, fieldViews& views, int step);

// Analysis mode's search: the nearest step after from (direction +1, up to
// latts) or before it (direction -1, down to 0) whose dump is whole; from
// itself when there is none. The search never wraps around.
int nearestDump(int from, int latts, int direction);

// A dump is whole when its info.txt is complete and states a usable mesh,
// every field file that a dump of its mode holds is there, each field file
// holds the whole mesh, and no temporary file of a write is left in it.
bool dumpIsWhole(int step);

// The first file that makes the dump in folder incomplete: a field file that
// a dump of info's mode holds and that is missing, or a leftover temporary
// file. Empty when there is none.
std::string missingDumpFile(const std::string& folder, const dumpInfo& info);

// Removes what a killed write left: "*.tmp" folders and files in ./dump and
// in its dump folders, and the temporary files of the input folder's files.
void removeDumpLeftovers();

// Writes ./dump/series.xmf over every dump folder that holds an info.txt.
// False when it cannot be written.
bool writeDumpSeries();

}  // namespace marv
