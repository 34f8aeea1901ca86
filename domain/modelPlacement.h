// Placing the STL model in the domain: the elementary operations on its
// triangles (move, scale, mirror, rotate), the order in which the parameters
// apply them at load, and the actions of the placement buttons. Every
// operation ends by recomputing each triangle's centroid.
#pragma once

#include "app/appConfig.h"
#include "domain/bcDomain.h"

namespace marv {

// Factor from the model's unit to metres: m, cm, mm, inch, feet; 0 outside 0..4.
double unitFactor(int unitSTL);

// x += a, y += b, z -= c: the model's z runs opposite to the solver's.
void translateModel(bcSurface& model, float a, float b, float c);
void scaleModel(bcSurface& model, float f);
// Mirrors z so that the model lies centred on its former lowest z.
void mirrorModel(bcSurface& model);
// Rotations about the origin by angle degrees; each also mirrors z.
void rotateModelX(bcSurface& model, float angle);
void rotateModelY(bcSurface& model, float angle);
void rotateModelZ(bcSurface& model, float angle);
// Mean of all vertices into model.centre.
void computeModelCentre(bcSurface& model);

// The parameters applied to a model just read: mirror (coordSTL 0), unit,
// rotations about x, y, z (non-zero angles only), then the offsets.
void placeModelAtLoad(bcSurface& model, const appConfig& cfg);

// Button actions; each does nothing unless cfg.stlPresent is 1.
void turnModelX(bcDomain& domain, appConfig& cfg);
void turnModelY(bcDomain& domain, appConfig& cfg);
void turnModelZ(bcDomain& domain, appConfig& cfg);
void centreModel(bcDomain& domain, appConfig& cfg);
// Takes the unit selector's choice into unitSTL, scaling about the centre.
void rescaleModel(bcDomain& domain, appConfig& cfg);

}  // namespace marv
