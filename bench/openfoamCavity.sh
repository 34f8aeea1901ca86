#!/bin/bash
# The lid-driven cavity of bench/cavityRunBench for OpenFOAM's icoFoam, built
# from scratch, for a side-by-side timing. OpenFOAM is not a dependency of
# the program; this script only runs where it is installed (Debian package
# `openfoam`).
#
# Case: unit square, 128 x 128 cells (the 129 x 129 nodes of the program's
# grid), lid at 1 m/s along +x, nu = 0.01 m^2/s (Re 100), first-order upwind
# convection as the program uses, fixed step 0.15*h/U (the program's cfl of
# 0.15 at the lid speed), to t = 20 s, one write at the end. Pressure by
# OpenFOAM's multigrid (GAMG) to 1e-6, two PISO correctors: its usual setup.
#
# Usage: bench/openfoamCavity.sh [work folder] [repetitions]
# Prints one line per run: the wall time of icoFoam and the load average.
set -eu

work=${1:-/tmp/marv-openfoam-cavity}
repeats=${2:-3}
cells=128
endTime=20
deltaT=$(awk "BEGIN { printf \"%.10g\", 0.15 / $cells }")

# OpenFOAM's tools find their own settings through its environment.
if [ -z "${WM_PROJECT_DIR:-}" ] && [ -f /usr/share/openfoam/etc/bashrc ]; then
  set +u
  # shellcheck disable=SC1091
  . /usr/share/openfoam/etc/bashrc >/dev/null 2>&1 || true
  set -u
fi
if ! command -v icoFoam >/dev/null 2>&1 || ! command -v blockMesh >/dev/null 2>&1; then
  echo "icoFoam or blockMesh not found: install OpenFOAM (Debian: apt-get install openfoam)" >&2
  exit 1
fi

rm -rf "$work"
mkdir -p "$work/system" "$work/constant" "$work/0"

header() {  # class object [location]
  cat <<EOF
FoamFile
{
    version     2.0;
    format      ascii;
    class       $1;
    object      $2;
}
EOF
}

{
  header dictionary blockMeshDict
  cat <<EOF
scale 1;
vertices ( (0 0 0) (1 0 0) (1 1 0) (0 1 0) (0 0 0.01) (1 0 0.01) (1 1 0.01) (0 1 0.01) );
blocks ( hex (0 1 2 3 4 5 6 7) ($cells $cells 1) simpleGrading (1 1 1) );
edges ();
boundary
(
    lid { type wall; faces ( (3 7 6 2) ); }
    walls { type wall; faces ( (0 4 7 3) (2 6 5 1) (1 5 4 0) ); }
    frontAndBack { type empty; faces ( (0 3 2 1) (4 5 6 7) ); }
);
mergePatchPairs ();
EOF
} >"$work/system/blockMeshDict"

{
  header dictionary controlDict
  cat <<EOF
application     icoFoam;
startFrom       startTime;
startTime       0;
stopAt          endTime;
endTime         $endTime;
deltaT          $deltaT;
writeControl    runTime;
writeInterval   $endTime;
purgeWrite      0;
writeFormat     binary;
writePrecision  8;
writeCompression off;
timeFormat      general;
timePrecision   6;
runTimeModifiable false;
EOF
} >"$work/system/controlDict"

{
  header dictionary fvSchemes
  cat <<EOF
ddtSchemes { default Euler; }
gradSchemes { default Gauss linear; grad(p) Gauss linear; }
divSchemes { default none; div(phi,U) Gauss upwind; }
laplacianSchemes { default Gauss linear orthogonal; }
interpolationSchemes { default linear; }
snGradSchemes { default orthogonal; }
EOF
} >"$work/system/fvSchemes"

{
  header dictionary fvSolution
  cat <<EOF
solvers
{
    p { solver GAMG; smoother GaussSeidel; tolerance 1e-06; relTol 0.05; }
    pFinal { \$p; relTol 0; }
    U { solver smoothSolver; smoother symGaussSeidel; tolerance 1e-05; relTol 0; }
}
PISO { nCorrectors 2; nNonOrthogonalCorrectors 0; pRefCell 0; pRefValue 0; }
EOF
} >"$work/system/fvSolution"

{
  header dictionary transportProperties
  echo "nu 0.01;"
} >"$work/constant/transportProperties"

{
  header volVectorField U
  cat <<EOF
dimensions [0 1 -1 0 0 0 0];
internalField uniform (0 0 0);
boundaryField
{
    lid { type fixedValue; value uniform (1 0 0); }
    walls { type noSlip; }
    frontAndBack { type empty; }
}
EOF
} >"$work/0/U"

{
  header volScalarField p
  cat <<EOF
dimensions [0 2 -2 0 0 0 0];
internalField uniform 0;
boundaryField
{
    lid { type zeroGradient; }
    walls { type zeroGradient; }
    frontAndBack { type empty; }
}
EOF
} >"$work/0/p"

cd "$work"
blockMesh >log.blockMesh 2>&1 || { echo "blockMesh failed, see $work/log.blockMesh" >&2; exit 1; }
run=1
while [ "$run" -le "$repeats" ]; do
  rm -rf "$work/$endTime"
  load=$(cut -d' ' -f1 /proc/loadavg)
  start=$(date +%s.%N)
  icoFoam >log.icoFoam 2>&1 || { echo "icoFoam failed, see $work/log.icoFoam" >&2; exit 1; }
  end=$(date +%s.%N)
  steps=$(grep -c '^Time = ' log.icoFoam)
  awk -v s="$start" -v e="$end" -v l="$load" -v n="$steps" -v r="$run" \
    'BEGIN { printf "icoFoam run %d: t = 20 s in %d steps, wall %.1f s, load average %s\n", r, n, e - s, l }'
  run=$((run + 1))
done
