// prepareFromInputs: labels, masks, polygons and bcField, in the order the
// domain build relies on: mirroring of all colours before any inversion,
// softening before the filters, and the masks polygonised as filtered, so the
// drawn boundary is the one the final build classifies.
#include "domain/prepareInputs.h"

#include <algorithm>

#include "domain/bitmapDomain.h"
#include "domain/modelPlacement.h"
#include "domain/polygonise.h"
#include "domain/progressLine.h"
#include "domain/stlReader.h"

namespace marv {

void prepareFromInputs(bcDomain& domain, appConfig& cfg) {
  if (cfg.stageInterrupted == 1) return;
  const int nx = cfg.nx, ny = cfg.ny, nz = cfg.nz;
  maskWork scratch;
  scratch.active = ownedArray3d<std::uint8_t>(nx, ny, nz);
  scratch.work = ownedArray3d<float>(nx, ny, nz);

  cfg.progressCount = 0;
  // A huge mLoopMax would carry the sum past 32 bits: it saturates.
  long long total = 3LL * cfg.iNumBcColor - 2;
  if (nz != 1) total += static_cast<long long>(domain.endType - domain.firstType) + cfg.mLoopMax + 1;
  cfg.progressTotal = static_cast<int>(std::clamp(total, 0LL, 2147483647LL));
  showProgress(cfg, 0);

  if (cfg.iNumBcColor > 1) {
    stretchColors(cfg, domain);
    mirrorColors(cfg, domain);
  }
  invertColors(cfg, domain);
  makeTypeMasks(cfg, domain, scratch);
  if (cfg.mLoopMax >= 2) softenCorners(cfg, domain, scratch);
  filterTypeMasks(cfg, domain, scratch);

  for (int t = domain.firstType; t < domain.endType; ++t) {
    showProgress(cfg, 0);
    if (t == stlType) continue;
    if (nz == 1) {
      domain.outlines[t].field = &domain.typeMasks[t];
      polygoniseOutline(domain.outlines[t], domain.isoLevel);
    } else {
      domain.surfaces[t].field = &domain.typeMasks[t];
      polygoniseSurface(domain.surfaces[t], domain.isoLevel);
    }
  }

  // The boundary field for the dumps: the sum of the masks, in the solver's z.
  const array3d<double>& field = domain.bcField;
  fill(field, 0.0);
  for (int k = 0; k < nz; ++k)
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i)
        for (int t = 1; t < numColourTypes; ++t)
          if (domain.typeMasks[t].count() > 0) field(i, j, k) += domain.typeMasks[t](i, j, nz - 1 - k);

  // The model: read, then placed as the parameters say. A present file that
  // gives no model is said once; the case runs with its bitmaps.
  if (nz >= 2) {
    const char* path = "./input/bc.stl";
    const stlResult model = readStlFile(domain.surfaces[stlType], path, cfg.normVecDirSTL);
    cfg.stlPresent = model.stored;
    const std::string problem = stlProblemText(model.problem, path);
    if (!problem.empty() && cfg.showMessage) cfg.showMessage(cfg, problem.c_str());
    if (cfg.stlPresent == 1) {
      cfg.bcTypePresent[stlType] = 1;
      placeModelAtLoad(domain.surfaces[stlType], cfg);
    }
  }
  showProgress(cfg, 0);
}

}  // namespace marv
