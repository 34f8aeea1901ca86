// The colour list of the bitmap stage. Equality of codes is the only test
// made on colours: two colours that differ by 1 in a component are two
// colours, which is why anti-aliased drawings are cleaned by the purge
// threshold rather than by a colour distance.
#include "domain/bitmapColours.h"

#include <algorithm>

#include "domain/boundaryTypes.h"

namespace marv {

namespace {

constexpr int presetCount = 8;            // list entries that are never deleted
constexpr std::uint32_t stlSlotCode = 1;  // code of entry 7: no pixel has it
constexpr std::array<int, 7> presetR{255, 0, 0, 255, 0, 255, 0};
constexpr std::array<int, 7> presetG{255, 0, 0, 0, 255, 255, 255};
constexpr std::array<int, 7> presetB{255, 0, 255, 0, 0, 0, 255};

bool isRemoved(const appConfig& cfg, std::uint32_t code) {
  const int n = std::clamp(cfg.numRemovedColors, 0, maxColourSlots);
  for (int r = 0; r < n; ++r)
    if (cfg.RemovedColorCodes[r] == code) return true;
  return false;
}

void resetEntry(appConfig& cfg, int c) {
  cfg.R[c] = cfg.G[c] = cfg.B[c] = 255;
  cfg.colorPoints[c] = 0;
  cfg.ColorsCodes[c] = 0;
  cfg.colorRows[c].keep = 1;
  cfg.stretchSelectors[c].selected = 3;
  cfg.symmetrySelectors[c].selected = 3;
}

// Deletes entry d; the entries above move down by one.
void deleteEntry(appConfig& cfg, int d) {
  const int last = cfg.iNumBcColor - 1;
  for (int c = d; c < last; ++c) {
    cfg.R[c] = cfg.R[c + 1];
    cfg.G[c] = cfg.G[c + 1];
    cfg.B[c] = cfg.B[c + 1];
    cfg.colorPoints[c] = cfg.colorPoints[c + 1];
    cfg.ColorsCodes[c] = cfg.ColorsCodes[c + 1];
    cfg.colorRows[c].keep = cfg.colorRows[c + 1].keep;
    cfg.stretchSelectors[c].selected = cfg.stretchSelectors[c + 1].selected;
    cfg.symmetrySelectors[c].selected = cfg.symmetrySelectors[c + 1].selected;
  }
  resetEntry(cfg, last);
  cfg.iNumBcColor -= 1;
}

}  // namespace

std::uint32_t colorCode(int r, int g, int b) {
  return 0xFF000000u + 65536u * static_cast<std::uint32_t>(r & 255) + 256u * static_cast<std::uint32_t>(g & 255) +
         static_cast<std::uint32_t>(b & 255);
}

int findColour(const appConfig& cfg, std::uint32_t code) {
  const int n = std::clamp(cfg.iNumBcColor, 0, maxColourSlots);
  for (int c = 0; c < n; ++c)
    if (cfg.ColorsCodes[c] == code) return c;
  return -1;
}

void setPresetColours(appConfig& cfg) {
  for (int c = 0; c < maxColourSlots; ++c) {
    resetEntry(cfg, c);
    cfg.StretchPlane[c] = 3;
    cfg.SymmetricPlane[c] = 3;
    cfg.InverseFlag[c] = 1;
  }
  for (int c = 0; c < 7; ++c) {
    cfg.R[c] = presetR[c];
    cfg.G[c] = presetG[c];
    cfg.B[c] = presetB[c];
    cfg.ColorsCodes[c] = colorCode(presetR[c], presetG[c], presetB[c]);
  }
  cfg.R[stlType] = cfg.G[stlType] = cfg.B[stlType] = -1;
  cfg.ColorsCodes[stlType] = stlSlotCode;
  cfg.iNumBcColor = presetCount;
  std::fill(cfg.colorInBitmap.begin(), cfg.colorInBitmap.end(), 0);
}

void purgeColors(appConfig& cfg, int total) {
  const int threshold = std::max(10, cfg.inumColorsThresMax * (total / 10000));
  for (int c = cfg.iNumBcColor - 1; c >= presetCount; --c) {
    if (cfg.colorRows[c].keep != 0) continue;
    if (!isRemoved(cfg, cfg.ColorsCodes[c])) {
      const int at = std::clamp(cfg.numRemovedColors, 0, maxColourSlots - 1);
      cfg.RemovedColorCodes[at] = cfg.ColorsCodes[c];
      cfg.numRemovedColors = std::min(at + 1, maxColourSlots - 1);
    }
    deleteEntry(cfg, c);
  }
  for (int c = cfg.iNumBcColor - 1; c >= presetCount; --c)
    if (cfg.colorPoints[c] < threshold) deleteEntry(cfg, c);
}

void countColours(appConfig& cfg, const std::vector<std::uint32_t>& codes, int across, int down) {
  const int total = across * down;
  for (int b = 0; b < down; ++b)
    for (int a = 0; a < across; ++a) {
      if (cfg.iNumBcColor == maxColourSlots) purgeColors(cfg, total);
      const std::uint32_t code = codes[static_cast<std::size_t>(b) * across + a];
      const int c = findColour(cfg, code);
      if (c >= 0) {
        cfg.colorPoints[c] += 1;
      } else if (cfg.iNumBcColor < maxColourSlots) {
        const int n = cfg.iNumBcColor;
        cfg.R[n] = static_cast<int>((code >> 16) & 255u);
        cfg.G[n] = static_cast<int>((code >> 8) & 255u);
        cfg.B[n] = static_cast<int>(code & 255u);
        cfg.ColorsCodes[n] = code;
        cfg.colorPoints[n] = 1;
        cfg.iNumBcColor = n + 1;
      }
    }
  for (int c = 0; c < cfg.iNumBcColor; ++c)
    if (cfg.ColorsCodes[c] != 0 && isRemoved(cfg, cfg.ColorsCodes[c])) cfg.colorRows[c].keep = 0;
  purgeColors(cfg, total);
}

void applySavedChoices(appConfig& cfg) {
  for (int c = 0; c < cfg.iNumBcColor; ++c) {
    for (int s = 0; s < maxColourSlots; ++s) {
      if (cfg.savedColorsCodes[s] != cfg.ColorsCodes[c]) continue;
      cfg.stretchSelectors[c].selected = std::clamp(cfg.savedStretchPlane[s], 0, 3);
      cfg.symmetrySelectors[c].selected = std::clamp(cfg.savedSymmetricPlane[s], 0, 3);
      cfg.inverseSelectors[c].selected = std::clamp(cfg.savedInverseFlag[s], 0, 1);
    }
    cfg.StretchPlane[c] = cfg.stretchSelectors[c].selected;
    cfg.SymmetricPlane[c] = cfg.symmetrySelectors[c].selected;
    cfg.InverseFlag[c] = cfg.inverseSelectors[c].selected;
  }
}

int planeAcross(const appConfig& cfg, int plane) { return plane == planeYZ ? cfg.nz : cfg.nx; }
int planeDown(const appConfig& cfg, int plane) { return plane == planeZX ? cfg.nz : cfg.ny; }

std::vector<std::int32_t>& sliceTable(appConfig& cfg, int plane) {
  return plane == planeXY ? cfg.bitmapXY : (plane == planeYZ ? cfg.bitmapYZ : cfg.bitmapZX);
}

void writeSlice(appConfig& cfg, int plane, int slice, const std::vector<std::uint32_t>& codes) {
  const int across = planeAcross(cfg, plane), down = planeDown(cfg, plane);
  std::vector<std::int32_t>& table = sliceTable(cfg, plane);
  if (table.size() < sliceIndex(across, down, maxBitmapSlices, 0, 0)) return;
  for (int b = 0; b < down; ++b)
    for (int a = 0; a < across; ++a) {
      const std::uint32_t code = codes[static_cast<std::size_t>(b) * across + a];
      table[sliceIndex(across, down, slice, a, b)] = findColour(cfg, code) >= 0 ? static_cast<std::int32_t>(code) : 0;
    }
}

void convertSlices(appConfig& cfg) {
  for (int plane = 0; plane < 3; ++plane) {
    const int across = planeAcross(cfg, plane), down = planeDown(cfg, plane);
    std::vector<std::int32_t>& table = sliceTable(cfg, plane);
    if (table.size() < sliceIndex(across, down, maxBitmapSlices, 0, 0)) continue;
    for (int slice = 0; slice < maxBitmapSlices; ++slice)
      for (int b = 0; b < down; ++b)
        for (int a = 0; a < across; ++a) {
          std::int32_t& e = table[sliceIndex(across, down, slice, a, b)];
          const auto code = static_cast<std::uint32_t>(e);
          int index = 0;
          if (code != 0 && !isRemoved(cfg, code)) index = std::max(0, findColour(cfg, code));
          e = index;
          inBitmap(cfg, index, slice, plane) = 1;
        }
  }
}

void setTypePresence(appConfig& cfg) {
  for (int t = 0; t < 8; ++t) cfg.bcTypePresent[t] = cfg.colorPoints[t] != 0 ? 1 : 0;
  cfg.bcTypePresent[nonPresetType] = (cfg.colorPoints[nonPresetType] != 0 || cfg.iNumBcColor >= 9) ? 1 : 0;
}

}  // namespace marv
