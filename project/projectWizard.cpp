// The three project screens and the work behind them. Each screen is one
// frame function (drawing and the decision of that frame) called by a small
// loop; the folder work is plain file handling, testable on its own.
#include "project/projectWizard.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "app/screenFrame.h"
#include "layer/layer.h"

namespace marv {

namespace {

const char* const planeFormats[3] = {"bcXY%1d.bmp", "bcYZ%1d.bmp", "bcZX%1d.bmp"};

bool isSeparator(char c) { return c == '/' || c == '\\'; }

std::string withClosingSlash(std::string path) {
  if (path.empty() || !isSeparator(path.back())) path += '/';
  return path;
}

// The part behind the last separator, separators at the end ignored.
std::string lastComponent(std::string path) {
  while (path.size() > 1 && isSeparator(path.back())) path.pop_back();
  const std::size_t cut = path.find_last_of("/\\");
  return cut == std::string::npos ? path : path.substr(cut + 1);
}

bool isFolder(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool copyFile(const std::string& from, const std::string& to) {
  std::error_code error;
  return std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing, error);
}

// Whether a file opens as a picture: only pictures are copied as bitmaps.
bool opensAsImage(const std::string& path) {
  if (!std::filesystem::is_regular_file(path)) return false;
  const int image = loadImage(path.c_str(), 1);
  if (image < 0) return false;
  deleteImage(image);
  return true;
}

// ---------------------------------------------------------------- drawing

const std::uint32_t black = 0x000000u;

std::uint32_t red() { return colour(220, 20, 60); }
std::uint32_t grey() { return colour(190, 190, 190); }

// A translucent rounded box over a rectangle while the mouse stands in it,
// else (with outline) a grey frame; true while the mouse is in it.
bool hoverRow(const appConfig& cfg, const screenInput& in, int x, int y, int width, int height, bool outline,
              bool draw = true) {
  const int radius = cfg.textHeight / 2;
  const bool inside = in.mouseX >= x - radius && in.mouseX < x + width + radius && in.mouseY >= y - radius &&
                      in.mouseY < y + height + radius;
  if (!draw) return inside;
  const float x1 = static_cast<float>(x - radius), y1 = static_cast<float>(y - radius);
  const float x2 = static_cast<float>(x + width + radius), y2 = static_cast<float>(y + height + radius);
  if (inside) {
    setBlend(1, 25);
    drawRoundedBoxF(x1, y1, x2, y2, static_cast<float>(radius), static_cast<float>(radius), 8, black, 1, 1.0f);
    setBlend(0, 0);
  } else if (outline) {
    drawRoundedBoxF(x1, y1, x2, y2, static_cast<float>(radius), static_cast<float>(radius), 8, grey(), 0, 1.0f);
  }
  return inside;
}

// The frame all three screens share: a plain backdrop with drifting circles,
// the product word at the right, the footer, the two buttons and the hint.
void drawCommonFrame(projectWizard& w, appConfig& cfg, const screenInput& in, bool& cancel, bool& proceed) {
  const int width = cfg.startWidth, height = cfg.startHeight;
  drawBox(0, 0, width, height, colour(250, 252, 255), 1);
  drawBackdrop(cfg, 0.03);
  // The product word at the right, its right end listLeft from the edge.
  const int logoWidth = textWidthInFont(cfg.logoFont, "Marvanesse") + textWidthInFont(cfg.logoPlusFont, "+");
  drawLogo(cfg, width - w.listLeft - logoWidth, 8 * cfg.textGap, colour(0, 120, 200), colour(90, 90, 90), 0, nullptr);
  drawText(w.listLeft, height - cfg.textHeight - cfg.textGap, cfg.footerText.c_str(), colour(120, 120, 120),
           cfg.fontTiny, 0, 0);
  cancel = clickButton(w.cancel, cfg.cancelX, cfg.cancelY, cfg.buttonSize, in);
  proceed = clickButton(w.proceed, cfg.proceedX, cfg.proceedY, cfg.buttonSize, in);
  drawScreenButton(w.cancel, w.tiles, tileCancel, "Cancel", cfg.fontCaption);
  drawScreenButton(w.proceed, w.tiles, tileProceed, "Proceed", cfg.fontCaption);
  // The proceed hint, right-aligned to the right edge of "Proceed", its
  // lower line ending textGap above the buttons.
  const int lineH = cfg.tinySize > 0 ? cfg.tinySize : cfg.textHeight * 7 / 10;
  drawProceedHint(cfg, cfg.proceedX + cfg.buttonSize, cfg.proceedY - cfg.textGap - 2 * lineH, cfg.fontTiny, lineH);
}

template <typename frameFunction>
int runScreen(projectWizard& w, appConfig& cfg, frameFunction frame) {
  ensureScreenFonts(cfg);
  if (!w.tiles.loaded) loadButtonTiles(w.tiles);
  for (;;) {
    setDrawTarget(backBuffer);
    const screenInput in = readScreenInput();
    const int result = frame(in);
    endScreenFrame();
    if (result != 0) return result;
  }
}

}  // namespace

void constructWizard(projectWizard& wizard, appConfig& cfg, std::string& chosenFilePath, std::string& startDirectory) {
  wizard = projectWizard{};
  wizard.chosenFilePath = &chosenFilePath;
  wizard.startDirectory = &startDirectory;
  wizard.listLeft = cfg.marginLeft + 8 * cfg.textGap;
  wizard.listTop = static_cast<int>(0.2 * cfg.startHeight);
}

void destroyWizard(projectWizard& wizard) { freeButtonTiles(wizard.tiles); }

std::string displayPath(const std::string& path) {
  std::string out = path;
  for (char& c : out)
    if (c == '\\') c = '/';
  return out;
}

std::string folderOf(const std::string& path) {
  const std::size_t cut = path.find_last_of("/\\");
  return cut == std::string::npos ? std::string() : path.substr(0, cut + 1);
}

std::string projectFromPath(projectWizard& w, const std::string& path, bool isNew) {
  if (isNew) {
    std::string folder = path;
    while (folder.size() > 1 && isSeparator(folder.back())) folder.pop_back();
    w.projectDir = withClosingSlash(folder);
    w.inputDir = w.projectDir + "input/";
    w.paramFilePath = w.inputDir + "param.txt";
    return lastComponent(folder);
  }
  std::string file = path;
  // A project folder itself stands for the parameter file in its input folder.
  if (isFolder(file)) file = withClosingSlash(file) + "input/param.txt";
  w.paramFilePath = file;
  std::string input = folderOf(file);
  while (input.size() > 1 && isSeparator(input.back())) input.pop_back();
  std::string project = folderOf(input);
  while (project.size() > 1 && isSeparator(project.back())) project.pop_back();
  w.inputDir = withClosingSlash(input);
  w.projectDir = project.empty() ? std::string("./") : withClosingSlash(project);
  return project.empty() ? std::string() : lastComponent(project);
}

int openProjectFolder(projectWizard& w, appConfig& cfg) {
  if (w.newProject) {
    std::string folder = w.projectDir;
    while (folder.size() > 1 && isSeparator(folder.back())) folder.pop_back();
    if (folder.empty() || mkdir(folder.c_str(), 0777) != 0) {
      char text[1200];
      std::snprintf(text, sizeof text, "Project directory is not valid. [filepath] %s.",
                    displayPath(w.projectDir).c_str());
      w.message = text;
      return -1;
    }
  }
  // The project folder by its full path, so that the history file can find
  // it again from any working directory.
  std::error_code error;
  const std::filesystem::path full = std::filesystem::absolute(w.projectDir, error);
  if (chdir(w.projectDir.c_str()) != 0) {
    w.message = "Project directory is not valid. [filepath] " + displayPath(w.projectDir) + ".";
    return -1;
  }
  cfg.absProjPath = error ? w.projectDir : withClosingSlash(full.lexically_normal().string());
  for (const char* sub : {"input", "figs", "dump"}) mkdir(sub, 0777);  // an existing one keeps what it has
  if (!w.newProject) return 1;

  std::string source = w.sourceDir;
  // The source as the user gave it, relative to the folder the program started in.
  if (!source.empty() && source[0] != '/' && w.startDirectory != nullptr && !w.startDirectory->empty())
    source = withClosingSlash(*w.startDirectory) + source;
  char name[32];
  for (const char* format : planeFormats)
    for (int slice = 0; slice < maxBitmapSlices; ++slice) {
      std::snprintf(name, sizeof name, format, slice);
      if (opensAsImage(source + name)) copyFile(source + name, std::string("./input/") + name);
    }
  if (std::filesystem::is_regular_file(source + "bc.stl")) copyFile(source + "bc.stl", "./input/bc.stl");
  copyFile(source + "param.txt", "./input/param.txt");  // a missing one shows up in the editor
  return 1;
}

// ---------------------------------------------------------------- start screen

int startScreenFrame(projectWizard& w, appConfig& cfg, const screenInput& in) {
  bool cancel = false, proceed = false;
  drawCommonFrame(w, cfg, in, cancel, proceed);
  const int pitch = 2 * cfg.textHeight + cfg.textGap;
  int y = w.listTop;
  const int x = w.listLeft;

  const std::string t15 = screenText(cfg, 15), t16 = screenText(cfg, 16), t17 = screenText(cfg, 17),
                    t18 = screenText(cfg, 18), t19 = screenText(cfg, 19), t21 = screenText(cfg, 21),
                    t22 = screenText(cfg, 22);
  const std::string last = displayPath(cfg.absProjPath);

  const bool onNew = hoverRow(cfg, in, x, y, textWidthInFont(cfg.fontBold, "%s", t15.c_str()), cfg.textHeight, false);
  drawText(x, y, t15.c_str(), black, cfg.fontBold, 0, 0);
  y += cfg.textHeight + cfg.textGap;
  drawText(x, y, t16.c_str(), colour(80, 80, 80), cfg.fontBody, 0, 0);
  y += pitch;

  const int w17 = textWidthInFont(cfg.fontBold, "%s", t17.c_str());
  const int x19 = x + w17 + 3 * cfg.textHeight;
  const bool onLoad = hoverRow(cfg, in, x, y, w17, cfg.textHeight, false);
  const bool onAnalysis =
      hoverRow(cfg, in, x19, y, textWidthInFont(cfg.fontBold, "%s", t19.c_str()), cfg.textHeight, false);
  drawText(x, y, t17.c_str(), onAnalysis ? grey() : black, cfg.fontBold, 0, 0);
  drawText(x19, y, t19.c_str(), onLoad ? grey() : (onAnalysis ? red() : black), cfg.fontBold, 0, 0);
  y += cfg.textHeight + cfg.textGap;
  drawText(x, y, t18.c_str(), colour(80, 80, 80), cfg.fontBody, 0, 0);
  y += pitch;

  const int blockWidth =
      std::max({textWidthInFont(cfg.fontBold, "%s", t21.c_str()), textWidthInFont(cfg.fontBody, "%s", t22.c_str()),
                textWidthInFont(cfg.fontBold, "%s", last.c_str())});
  const bool onLast = hoverRow(cfg, in, x, y, blockWidth, 3 * cfg.textHeight + 2 * cfg.textGap, true);
  drawText(x, y, t21.c_str(), black, cfg.fontBold, 0, 0);
  drawText(x, y + cfg.textHeight + cfg.textGap, t22.c_str(), colour(80, 80, 80), cfg.fontBody, 0, 0);
  drawText(x, y + 2 * (cfg.textHeight + cfg.textGap), last.c_str(), red(), cfg.fontBold, 0, 0);

  if (rowFires(w.newRow, onNew, in.left)) return 2;
  if (rowFires(w.loadRow, onLoad, in.left)) return 3;
  if (rowFires(w.analysisRow, onAnalysis, in.left)) return 4;
  const bool lastFired = rowFires(w.lastRow, onLast, in.left);
  if (w.chosenFilePath != nullptr && !w.chosenFilePath->empty()) {
    cfg.lastKeyMs = nowMs();
    cfg.lastKeyMs = nowMs();
    return 1;
  }
  if (cancel || in.esc) return -1;
  if (proceed || lastFired || enterAfterDebounce(cfg, in)) {
    if (w.chosenFilePath != nullptr) *w.chosenFilePath = withClosingSlash(cfg.absProjPath) + "input/param.txt";
    w.newProject = 0;
    cfg.lastKeyMs = nowMs();
    return 1;
  }
  return 0;
}

int runStartScreen(projectWizard& w, appConfig& cfg) {
  w.newRow = w.loadRow = w.analysisRow = w.lastRow = rowButton{};
  return runScreen(w, cfg, [&](const screenInput& in) { return startScreenFrame(w, cfg, in); });
}

// ---------------------------------------------------------------- source screen

int sourceScreenFrame(projectWizard& w, appConfig& cfg, const screenInput& in, const std::string& dropped) {
  bool cancel = false, proceed = false;
  drawCommonFrame(w, cfg, in, cancel, proceed);
  const int inset = 3 * cfg.textGap;
  const int x1 = inset, y1 = inset, x2 = cfg.startWidth - inset, y2 = cfg.startHeight - inset;
  const bool onButtons = w.cancel.hover || w.proceed.hover;
  const bool inBox = in.mouseX >= x1 && in.mouseX < x2 && in.mouseY >= y1 && in.mouseY < y2 && !onButtons;
  const float r = static_cast<float>(cfg.textHeight);
  if (inBox) {
    setBlend(1, 25);
    drawRoundedBoxF(static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2), static_cast<float>(y2), r,
                    r, 8, colour(0, 120, 200), 1, 1.0f);
    setBlend(0, 0);
  }
  drawRoundedBoxF(static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2), static_cast<float>(y2), r, r,
                  8, colour(0, 120, 200), 0, 2.0f);
  int y = cfg.startHeight / 4;
  auto centred = [&](const std::string& text, int font, std::uint32_t c, int height) {
    // A line too wide for the box takes the caption font.
    if (textWidthInFont(font, "%s", text.c_str()) > x2 - x1 - 2 * inset) font = cfg.fontCaption;
    drawText((cfg.startWidth - textWidthInFont(font, "%s", text.c_str())) / 2, y, text.c_str(), c, font, 0, 0);
    y += height + cfg.textGap;
  };
  centred(screenText(cfg, 36), cfg.fontBody, black, cfg.textHeight);
  centred(screenText(cfg, 37), cfg.fontTitle, colour(0, 120, 200), cfg.titleSize > 0 ? cfg.titleSize : 54);
  centred(screenText(cfg, 38), cfg.fontBody, black, cfg.textHeight);
  centred(screenText(cfg, 39), cfg.fontBody, black, cfg.textHeight);
  centred(screenText(cfg, 40), cfg.fontBody, black, cfg.textHeight);
  centred(displayPath(w.sourceDir), cfg.fontBold, red(), cfg.textHeight);

  auto done = [&]() {
    w.sourceText = w.sourceDir;
    cfg.lastKeyMs = nowMs();
    setFileDropEnabled(0);
    return 1;
  };
  if (!dropped.empty()) {
    w.sourceDir = folderOf(dropped);
    return done();
  }
  // A click into the box opens the file dialog; the press must begin there.
  if (!inBox) {
    w.sourceArmed = false;
  } else if (!in.left) {
    w.sourceArmed = true;
  } else if (w.sourceArmed) {
    w.sourceArmed = false;
    const std::string picked = w.askFile ? w.askFile(cfg, screenText(cfg, 41), false) : std::string();
    if (w.startDirectory != nullptr && !w.startDirectory->empty() && chdir(w.startDirectory->c_str()) != 0) {
    }
    if (!picked.empty()) {
      w.sourceDir = folderOf(picked);
      return done();
    }
    w.sourceText.clear();
  }
  if (proceed || enterAfterDebounce(cfg, in)) return done();
  if (cancel || in.esc) return -1;
  return 0;
}

int runSourceScreen(projectWizard& w, appConfig& cfg) {
  setFileDropEnabled(1);
  cfg.projectName = projectFromPath(w, w.chosenFilePath ? *w.chosenFilePath : std::string(), w.newProject != 0);
  if (!w.newProject) {
    setFileDropEnabled(0);
    return 1;
  }
  if (cfg.absProjPath == "./" && w.startDirectory != nullptr)
    w.sourceDir = withClosingSlash(*w.startDirectory);
  else
    w.sourceDir = withClosingSlash(cfg.absProjPath) + "input/";
  clearDroppedFiles();
  w.cancel = w.proceed = screenButton{};
  const int result = runScreen(w, cfg, [&](const screenInput& in) {
    std::string dropped;
    if (droppedFileCount() > 0) {
      char buffer[4096] = {};
      if (droppedFilePath(buffer, sizeof buffer) >= 0) dropped = buffer;
      clearDroppedFiles();
    }
    return sourceScreenFrame(w, cfg, in, dropped);
  });
  setFileDropEnabled(0);
  return result;
}

// ---------------------------------------------------------------- confirmation screen

int confirmScreenFrame(projectWizard& w, appConfig& cfg, const screenInput& in) {
  bool cancel = false, proceed = false;
  drawCommonFrame(w, cfg, in, cancel, proceed);
  const int pitch = 2 * cfg.textHeight;
  const int labelX = w.listLeft;
  // Values stand one text height right of the widest label.
  int labelWidth = 0;
  for (int label : {24, 27, 28, 29})
    labelWidth = std::max(labelWidth, textWidthInFont(cfg.fontBold, "%s", screenText(cfg, label).c_str()));
  const int valueX = w.listLeft + labelWidth + cfg.textHeight;
  int y = w.listTop;
  auto row = [&](int label, const std::string& value) {
    drawText(labelX, y, screenText(cfg, label).c_str(), black, cfg.fontBold, 0, 0);
    drawText(valueX, y, value.c_str(), red(), cfg.fontBold, 0, 0);
    y += pitch;
  };
  row(24, cfg.projectName + " " + screenText(cfg, w.newProject ? 25 : 26));
  row(27, screenText(cfg, cfg.analysisMode ? 31 : 30));
  row(28, displayPath(w.projectDir));
  if (w.newProject) row(29, displayPath(w.sourceText));
  const std::string closing = screenText(cfg, w.newProject ? 33 : 32);
  // The catalogue's line break stands as "\n" in the text.
  std::size_t start = 0;
  while (start <= closing.size()) {
    const std::size_t cut = closing.find('\n', start);
    const std::string line = closing.substr(start, cut == std::string::npos ? std::string::npos : cut - start);
    drawText(labelX, y, line.c_str(), black, cfg.fontBody, 0, 0);
    y += cfg.textHeight + cfg.textGap;
    if (cut == std::string::npos) break;
    start = cut + 1;
  }
  if (cancel || in.esc) return -1;
  if (proceed || enterAfterDebounce(cfg, in)) {
    cfg.lastKeyMs = nowMs();
    const int opened = openProjectFolder(w, cfg);
    if (opened != 1) {
      waitMs(cfg.keyDelayMs);
      if (cfg.showMessage) cfg.showMessage(cfg, w.message.c_str());
    }
    return opened;
  }
  return 0;
}

int runConfirmScreen(projectWizard& w, appConfig& cfg) {
  w.cancel = w.proceed = screenButton{};
  return runScreen(w, cfg, [&](const screenInput& in) { return confirmScreenFrame(w, cfg, in); });
}

}  // namespace marv
