// File choice for the project screens.
#include "app/fileChooser.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "app/screenKit.h"
#include "layer/layer.h"

namespace marv {

namespace fs = std::filesystem;

namespace {

bool endsWith(const std::string& s, const char* tail) {
  const std::string t = tail;
  if (s.size() < t.size()) return false;
  return std::equal(t.rbegin(), t.rend(), s.rbegin(),
                    [](char a, char b) { return std::tolower(a) == std::tolower(b); });
}

// A title fit for a shell argument in single quotes.
std::string quoted(const std::string& text) {
  std::string out = "'";
  for (char c : text) {
    if (c == '\'')
      out += "'\\''";
    else
      out += c;
  }
  return out + "'";
}

// The desktop dialog's answer; nullopt-like "\x01" when no dialog ran.
std::string desktopDialog(const std::string& title, bool saving, bool& ran) {
  ran = false;
  std::string command;
  if (programAvailable("zenity")) {
    command = "zenity --file-selection --title=" + quoted(title) + (saving ? " --save" : "") + " 2>/dev/null";
  } else if (programAvailable("kdialog")) {
    command = std::string("kdialog ") + (saving ? "--getsavefilename" : "--getopenfilename") + " . --title " +
              quoted(title) + " 2>/dev/null";
  } else {
    return std::string();
  }
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return std::string();
  ran = true;
  std::string out;
  char buffer[512];
  while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) out += buffer;
  pclose(pipe);
  while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
  return out;
}

// The chooser drawn in the window.
std::string chooserInWindow(appConfig& cfg, const std::string& title, bool saving) {
  ensureScreenFonts(cfg);
  buttonTiles tiles;
  loadButtonTiles(tiles);
  std::error_code error;
  std::string folder = fs::current_path(error).string();
  const int field = makeTextInput(399, 0, 1, 0, 0, 0);
  setTextInputFont(cfg.fontBody);
  setTextInput((folder + "/").c_str(), field);
  activateTextInput(field);
  setTextInputCursor(static_cast<int>(folder.size()) + 1, field);
  std::vector<std::string> entries = listChoosable(folder);
  screenButton up, open, cancel;
  std::vector<rowButton> rows(entries.size());
  int scroll = 0;
  const int width = cfg.startWidth, height = cfg.startHeight;
  const int h = cfg.textHeight, g = cfg.textGap;
  const int pitch = h + g;
  const int listTop = 4 * h + 2 * g;
  const int listBottom = height - cfg.buttonSize - 3 * g;
  const int visible = std::max(1, (listBottom - listTop) / pitch);
  const int start = nowMs();
  std::string result;
  bool done = false;
  auto enter = [&](const std::string& to) {
    folder = fs::path(to).lexically_normal().string();
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    entries = listChoosable(folder);
    rows.assign(entries.size(), rowButton{});
    scroll = 0;
    setTextInput((folder == "/" ? folder : folder + "/").c_str(), field);
    setTextInputCursor(static_cast<int>(folder.size()) + 1, field);
  };
  auto take = [&](const std::string& typed) {
    const std::string resolved = resolveChosenPath(typed, saving);
    if (!resolved.empty()) {
      result = resolved;
      done = true;
    } else if (fs::is_directory(typed, error)) {
      enter(typed);
    }
  };
  while (!done) {
    setDrawTarget(backBuffer);
    const screenInput in = readScreenInput();
    drawBox(0, 0, width, height, colour(250, 252, 255), 1);
    drawText(g * 2, g, title.c_str(), colour(0, 0, 0), cfg.fontBold, 0, 0);
    const int fieldY = 2 * h;
    drawBox(2 * g, fieldY - g / 2, width - 2 * g, fieldY + h + g, colour(255, 255, 255), 1);
    setTextInputClip(2 * g, fieldY - g / 2, width - 2 * g, fieldY + h + g, field);
    drawTextInput(3 * g, fieldY, field, 1);
    drawLine(2 * g, fieldY + h + g, width - 2 * g, fieldY + h + g, colour(0, 120, 200), 1);
    scroll = std::clamp(scroll - in.wheel * 3, 0, std::max(0, static_cast<int>(entries.size()) - visible));
    for (int i = 0; i < visible && scroll + i < static_cast<int>(entries.size()); ++i) {
      const int e = scroll + i;
      const int y = listTop + i * pitch;
      const bool inside = in.mouseX >= 2 * g && in.mouseX < width - 2 * g && in.mouseY >= y && in.mouseY < y + pitch;
      if (inside) drawBox(2 * g, y, width - 2 * g, y + pitch, colour(230, 240, 255), 1);
      const bool isFolder = entries[e].back() == '/';
      drawText(3 * g, y + g / 2, entries[e].c_str(), isFolder ? colour(0, 90, 170) : colour(0, 0, 0), cfg.fontBody, 0,
               0);
      if (rowFires(rows[e], inside, in.left)) {
        const std::string path = (folder == "/" ? std::string() : folder) + "/" + entries[e];
        if (isFolder) {
          enter(path);
          break;
        }
        take(path);
      }
    }
    const int y0 = height - cfg.buttonSize - g;
    const int x0 = width - 3 * (cfg.buttonSize + g) - g;
    const bool goUp = clickButton(up, x0, y0, cfg.buttonSize, in);
    const bool goOpen = clickButton(open, x0 + cfg.buttonSize + g, y0, cfg.buttonSize, in);
    const bool goCancel = clickButton(cancel, x0 + 2 * (cfg.buttonSize + g), y0, cfg.buttonSize, in);
    drawScreenButton(up, tiles, tileUp, "Up", cfg.fontCaption);
    drawScreenButton(open, tiles, tileProceed, saving ? "Save" : "Open", cfg.fontCaption);
    drawScreenButton(cancel, tiles, tileCancel, "Cancel", cfg.fontCaption);
    const bool settled = in.now - start > cfg.keyDelayMs;
    char typed[400] = {};
    getTextInput(typed, sizeof typed, field);
    if (goUp) enter(fs::path(folder).parent_path().string());
    if (goOpen || (settled && textInputState(field) == 1)) {
      std::string path = typed;
      // A path typed behind the folder shown starts anew at its "/" or "~/",
      // as in the desktop's own dialogs.
      const std::size_t restart = path.rfind("//");
      if (restart != std::string::npos) path = path.substr(restart + 1);
      const std::size_t home = path.rfind("/~/");
      if (home != std::string::npos && std::getenv("HOME") != nullptr)
        path = std::string(std::getenv("HOME")) + path.substr(home + 2);
      if (saving) {
        // A bare name is made in the folder shown.
        if (!path.empty() && path[0] != '/') path = folder + "/" + path;
        while (path.size() > 1 && path.back() == '/') path.pop_back();
      }
      take(path);
      if (!done) setTextInput(typed, field);
    }
    if (goCancel || (settled && in.esc)) done = true;
    endScreenFrame();
  }
  deleteTextInput(field);
  setTextInputFont(cfg.fixedInput);
  freeButtonTiles(tiles);
  cfg.lastKeyMs = nowMs();
  return result;
}

}  // namespace

bool programAvailable(const char* name) {
  const char* path = std::getenv("PATH");
  if (path == nullptr) return false;
  std::string all = path;
  std::size_t start = 0;
  while (start <= all.size()) {
    const std::size_t cut = all.find(':', start);
    const std::string dir = all.substr(start, cut == std::string::npos ? std::string::npos : cut - start);
    if (!dir.empty() && access((dir + "/" + name).c_str(), X_OK) == 0) return true;
    if (cut == std::string::npos) break;
    start = cut + 1;
  }
  return false;
}

std::vector<std::string> listChoosable(const std::string& folder) {
  std::vector<std::string> folders, files;
  std::error_code error;
  for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
    const std::string name = it->path().filename().string();
    if (name.empty() || name[0] == '.') continue;
    std::error_code kindError;
    if (it->is_directory(kindError))
      folders.push_back(name + "/");
    else if (endsWith(name, ".txt") || endsWith(name, ".bmp") || endsWith(name, ".stl"))
      files.push_back(name);
  }
  std::sort(folders.begin(), folders.end());
  std::sort(files.begin(), files.end());
  folders.insert(folders.end(), files.begin(), files.end());
  return folders;
}

std::string resolveChosenPath(const std::string& given, bool saving) {
  std::string path = given;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  if (path.empty()) return std::string();
  std::error_code error;
  if (saving) {
    const fs::path p(path);
    const fs::path parent = p.has_parent_path() ? p.parent_path() : fs::path(".");
    if (fs::exists(p, error) || !fs::is_directory(parent, error)) return std::string();
    return p.lexically_normal().string();
  }
  path = fs::path(path).lexically_normal().string();
  if (fs::is_regular_file(path, error)) return path;
  if (fs::is_regular_file(path + "/input/param.txt", error)) return path + "/input/param.txt";
  return std::string();
}

std::string askPathInWindow(appConfig& cfg, const std::string& title, bool saving) {
  bool ran = false;
  const std::string chosen = desktopDialog(title, saving, ran);
  if (ran) return chosen;
  return chooserInWindow(cfg, title, saving);
}

}  // namespace marv
