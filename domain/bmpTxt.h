// bmp.txt: the colour choices of the bitmap stage, kept between runs in the
// project's input folder. Reading fills the saved columns and the removed
// colours of appConfig; writing stores the present colour list.
#pragma once

#include <string>

#include "app/appConfig.h"

namespace marv {

constexpr const char* bmpTxtPath = "./input/bmp.txt";  // relative to the project folder

// Reads path into savedColorsCodes, savedStretchPlane, savedSymmetricPlane,
// savedInverseFlag, RemovedColorCodes and numRemovedColors. A missing file
// changes nothing. A short or damaged file changes the rows read whole
// before the damage and leaves the rest as it was; nothing beyond the 102
// rows and five lines of the format is read.
void readBmpTxt(appConfig& cfg, const std::string& path = bmpTxtPath);

// Writes all 51 rows of the colour list and of the removed colours to path,
// through a temporary file and a rename. Returns false (and leaves any old
// file) when it could not be written; the program does not report it.
bool writeBmpTxt(const appConfig& cfg, const std::string& path = bmpTxtPath);

}  // namespace marv
