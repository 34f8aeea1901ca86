// Where the program finds its own files (help pages, bundled examples,
// pictures), whatever the working directory: next to the executable, in the
// install tree (bin/../share/marvanesse) or in the build tree, which the
// build lays out the same way.
#pragma once

#include <string>

namespace marv {

// Folder of the running executable, from /proc/self/exe; "" when unknown.
std::string executableFolder();

// The program's data folder: the first of <exe>/../share/marvanesse and
// <exe>/../../share/marvanesse that holds a help folder, else the source
// tree the program was built from when it still exists, else "".
std::string programDataDir();

// programDataDir() + "/" + relative, or "" when there is no data folder or
// the file does not exist there.
std::string programDataPath(const std::string& relative);

}  // namespace marv
