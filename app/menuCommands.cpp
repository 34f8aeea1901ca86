// Menu commands, file dialogs and help pages. See menuCommands.h.
#include "app/menuCommands.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <vector>

#include "app/catalogue.h"
#include "app/dataPaths.h"
#include "layer/layer.h"
#include "widgets/textBox.h"

extern char** environ;

namespace marv {

namespace {

constexpr int openerWaitMs = 1500;  // how long an opener may take to say it failed [ms]
constexpr int maxPathBytes = 4096;  // longest path a dialog may hand back [bytes]

std::string menuText(int number, bool japanese) { return catalogueText(number, japanese); }

struct helpPage {
  int command;
  const char* english;
  const char* japanese;
};

constexpr helpPage helpPages[] = {
    {40013, "param_en.html", "param.html"},
    {40014, "display_en.html", "display.html"},
    {40016, "examples_top_en.html", "examples_top.html"},
    {40015, "updates_en.html", "updates.html"},
};

bool pagesInJapanese = false;

void tell(const menuHook& hook, const std::string& text) {
  if (hook.message)
    hook.message(text.c_str());
  else
    std::fprintf(stderr, "marvanesse: %s\n", text.c_str());
}

// Openers that were still running when last asked; reaped later so that
// none is left as a zombie.
std::vector<pid_t>& pendingOpeners() {
  static std::vector<pid_t> pids;
  return pids;
}

void reapOpeners() {
  std::vector<pid_t>& pids = pendingOpeners();
  for (std::size_t i = 0; i < pids.size();) {
    int status = 0;
    if (waitpid(pids[i], &status, WNOHANG) != 0)
      pids.erase(pids.begin() + static_cast<long>(i));
    else
      ++i;
  }
}

// Runs a program with its standard output into `out`; returns its exit
// status, or -2 when it could not be started.
int runCapturing(const std::vector<std::string>& argv, std::string& out) {
  int fds[2];
  if (pipe(fds) != 0) return -2;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, fds[1], 1);
  posix_spawn_file_actions_addclose(&actions, fds[0]);
  std::vector<char*> args;
  for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  pid_t pid = 0;
  const int spawned = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(fds[1]);
  if (spawned != 0) {
    close(fds[0]);
    return -2;
  }
  char buffer[512];
  for (;;) {
    const ssize_t n = read(fds[0], buffer, sizeof buffer);
    if (n <= 0) break;
    if (out.size() < static_cast<std::size_t>(maxPathBytes) * 2) out.append(buffer, static_cast<std::size_t>(n));
  }
  close(fds[0]);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) == 127) return -2;  // the program was not found
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// zenity, else kdialog.
int desktopDialog(const fileDialogRequest& request, std::string& path) {
  std::string out;
  std::vector<std::string> zenity = {"zenity", "--file-selection", "--title=" + request.title};
  if (request.save) zenity.push_back("--save");
  if (request.inputFilter) {
    zenity.push_back("--file-filter=Input files {*.txt; *.bmp; *.stl} | *.txt *.bmp *.stl");
    zenity.push_back("--file-filter=All files {*.*} | *");
  }
  int status = runCapturing(zenity, out);
  if (status == -2) {
    out.clear();
    std::vector<std::string> kdialog = {"kdialog", "--title", request.title,
                                        request.save ? "--getsavefilename" : "--getopenfilename", "."};
    if (request.inputFilter) kdialog.push_back("Input files (*.txt *.bmp *.stl)\nAll files (*)");
    status = runCapturing(kdialog, out);
  }
  if (status == -2) return -2;
  while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
  if (status != 0 || out.empty() || out.size() > static_cast<std::size_t>(maxPathBytes)) return -1;
  path = out;
  return 0;
}

int askPath(menuHook& hook, const fileDialogRequest& request, bool needStart) {
  driverState& state = *hook.state;
  state.chosenFilePath.clear();
  std::string path;
  const fileDialogRunner run = hook.dialog ? hook.dialog : desktopDialog;
  const int result = run(request, path);
  if (result == -2) {
    tell(hook, "No file dialog could be opened: install zenity (or kdialog), or drop a file on the window.");
    return -1;
  }
  if (result != 0 || path.empty()) return -1;
  // A dialog may have moved the process: back to where the pass began.
  if (!state.startDirectory.empty() && chdir(state.startDirectory.c_str()) != 0)
    tell(hook, "Cannot return to the start folder " + state.startDirectory + ".");
  if (needStart && state.startDirectory.empty()) return -1;
  state.chosenFilePath = path;
  return 0;
}

}  // namespace

void localiseMenu(int menuJapanese, int pagesJapanese) {
  const bool jp = menuJapanese != 0;
  // Bar menus and the submenu head by position, the rest by command id.
  setMenuHeadText(0, -1, menuText(5, jp).c_str());
  setMenuHeadText(1, -1, menuText(11, jp).c_str());
  setMenuHeadText(0, 1, menuText(1, jp).c_str());
  const int byId[][2] = {{40006, 0}, {40009, 2}, {40010, 3}, {40012, 4},
                         {40013, 6}, {40014, 7}, {40016, 8}, {40015, 10}};
  for (const auto& item : byId) setMenuItemText(item[0], menuText(item[1], jp).c_str());
  pagesInJapanese = pagesJapanese != 0;
}

void menuMessageBox(const char* text) {
  const int font = makeFont("Segoe UI", 18, 4, 18, -1, 0, 0, 0);
  textBox box = makeTextBox(18, font);
  setTextBoxButtons(box, 6);
  measureTextBox(box, text);
  showTextBox(box, text, 0, 0);
  destroyTextBox(box);
  deleteFont(font);
}

void installMenuHook(menuHook& hook) { setMenuCommandReceiver(windowHook, &hook); }

int askNewProjectPath(menuHook& hook) {
  fileDialogRequest request;
  request.save = true;
  request.title = menuText(13, pagesInJapanese);
  return askPath(hook, request, false);
}

int askExistingProjectPath(menuHook& hook) {
  fileDialogRequest request;
  request.title = menuText(12, pagesInJapanese);
  request.inputFilter = true;
  return askPath(hook, request, true);
}

const char* helpPageName(int commandId, bool japanese) {
  for (const helpPage& p : helpPages)
    if (p.command == commandId) return japanese ? p.japanese : p.english;
  return nullptr;
}

int openHelpPage(int commandId, bool japanese, const char* opener, std::string& failure) {
  failure.clear();
  reapOpeners();
  const char* name = helpPageName(commandId, japanese);
  if (name == nullptr) {
    failure = "There is no help page for this command.";
    return -1;
  }
  const std::string path = programDataPath(std::string("help/") + name);
  if (path.empty()) {
    failure = std::string("The help page ") + name + " is not installed with the program.";
    return -1;
  }
  const std::string url = "file://" + path;
  const std::string program = opener ? opener : "xdg-open";
  char* args[] = {const_cast<char*>(program.c_str()), const_cast<char*>(url.c_str()), nullptr};
  pid_t pid = 0;
  if (posix_spawnp(&pid, args[0], nullptr, nullptr, args, environ) != 0) {
    failure = "No web browser could be started (" + program + " was not found). The page is " + path + ".";
    return -1;
  }
  // An opener that finds no browser says so at once; one that found a
  // browser may stay with it, and is reaped later. The run is not held
  // longer than this.
  for (int waited = 0; waited < openerWaitMs; waited += 20) {
    int status = 0;
    const pid_t done = waitpid(pid, &status, WNOHANG);
    if (done == pid) {
      if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return 0;
      failure = "No web browser could show the help page (" + program + " failed). The page is " + path + ".";
      return -1;
    }
    if (done < 0) return 0;
    poll(nullptr, 0, 20);
  }
  pendingOpeners().push_back(pid);
  return 0;
}

void windowHook(int commandId, void* context) {
  if (context == nullptr) return;
  menuHook& hook = *static_cast<menuHook*>(context);
  if (hook.state == nullptr) return;
  driverState& state = *hook.state;
  switch (commandId) {
    case 40006:
      if (askNewProjectPath(hook) == 0) {
        state.newProjectRequest = 1;
        state.analysisRequest = 0;
      }
      break;
    case 40009:
    case 40010:
      if (askExistingProjectPath(hook) == 0) {
        state.newProjectRequest = 0;
        state.analysisRequest = commandId == 40010 ? 1 : 0;
      }
      break;
    case 40012: closeWindow(); break;
    default: {
      if (helpPageName(commandId, false) == nullptr) break;
      std::string failure;
      if (openHelpPage(commandId, pagesInJapanese, hook.pageOpener, failure) != 0) tell(hook, failure);
      break;
    }
  }
}

}  // namespace marv
