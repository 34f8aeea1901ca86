// Menu commands as the driver sees them: requests, the chosen path, the working folder, the help pages.
#include "app/menuCommands.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/dataPaths.h"
#include "layer/layer.h"
#include "layer/windowMenu.h"
#include "testSupport.h"

namespace {

std::string here() { return std::filesystem::current_path().string(); }

// A stand-in for the desktop's dialog: it wanders off to another folder, as real dialogs may, and answers as told.
struct dialogScript {
  int result = 0;
  std::string path;
  std::string wanderTo = "/";
  std::vector<marv::fileDialogRequest> asked;
};
dialogScript script;

int scriptedDialog(const marv::fileDialogRequest& request, std::string& path) {
  script.asked.push_back(request);
  if (chdir(script.wanderTo.c_str()) != 0) return -1;
  if (script.result == 0) path = script.path;
  return script.result;
}

std::vector<std::string> messages;
void collect(const char* text) { messages.emplace_back(text); }

class menuCommandsTest : public ::testing::Test {
 protected:
  const std::filesystem::path scratch = marvtest::scratchFolder("menu-start");
  marvtest::inFolder inside{scratch};
  marv::driverState state;
  marv::menuHook hook;
  // The chosen path and the new-project and analysis requests.
  std::string requests() const {
    return state.chosenFilePath + " " + std::to_string(state.newProjectRequest) + std::to_string(state.analysisRequest);
  }
  void SetUp() override {
    script = dialogScript{};
    messages.clear();
    state.startDirectory = scratch.string();
    hook.state = &state;
    hook.dialog = scriptedDialog;
    hook.message = collect;
    marv::localiseMenu(0, 0);
  }
  void TearDown() override { marv::stopLayer(); }
};

TEST_F(menuCommandsTest, chosenPathsSetTheRequestsAndTheWorkingDirectoryComesBack) {
  script.path = "/home/user/projects/newOne";
  state.analysisRequest = 1;
  marv::windowHook(40006, &hook);
  EXPECT_EQ(requests(), "/home/user/projects/newOne 10");
  EXPECT_EQ(here(), state.startDirectory) << "the dialog's wandering is undone";
  script.path = "/data/cavity/input/param.txt";
  marv::windowHook(40010, &hook);
  EXPECT_EQ(requests(), "/data/cavity/input/param.txt 01");
  ASSERT_EQ(script.asked.size(), 2u);
  EXPECT_EQ(script.asked[0].title, "Enter a New Project Name and Click Save.");
  EXPECT_EQ((std::vector<bool>{script.asked[0].save, script.asked[1].save, script.asked[1].inputFilter}),
            (std::vector<bool>{true, false, true}));
  EXPECT_TRUE(messages.empty());
}

TEST_F(menuCommandsTest, aCancelledOrMissingDialogOrNoStartDirectoryLeavesTheRequests) {
  state.chosenFilePath = "/an/earlier/path";
  state.newProjectRequest = 0;
  state.analysisRequest = 1;
  script.result = -1;
  script.wanderTo = state.startDirectory;  // a cancelled dialog changes nothing but the path
  marv::windowHook(40006, &hook);
  EXPECT_EQ(requests(), " 01") << "the path is cleared before the dialog";
  EXPECT_TRUE(messages.empty());
  script.result = -2;  // no dialog program on this desktop
  marv::windowHook(40009, &hook);
  EXPECT_EQ(state.analysisRequest, 1);
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_NE(messages[0].find("zenity"), std::string::npos);
  // Without a start directory an existing project is refused.
  state.startDirectory.clear();
  script.result = 0;
  script.path = "/data/cavity/input/param.txt";
  EXPECT_EQ(marv::askExistingProjectPath(hook), -1);
  EXPECT_EQ(state.chosenFilePath, "");
  // A new project needs no start directory.
  EXPECT_EQ(marv::askNewProjectPath(hook), 0);
  EXPECT_EQ(state.chosenFilePath, "/data/cavity/input/param.txt");
}

TEST_F(menuCommandsTest, thePagesOfBothLanguagesShipWithTheProgramAndAreFoundFromAnyFolder) {
  // The working folder is a scratch folder: the data folder is found from the executable.
  for (int command : {40013, 40014, 40015, 40016})
    for (bool japanese : {false, true}) {
      const std::string text =
          marvtest::readText(marv::programDataPath(std::string("help/") + marv::helpPageName(command, japanese)));
      EXPECT_NE(text.find("<link rel=\"stylesheet\" href=\"help.css\">"), std::string::npos) << command << japanese;
    }
  EXPECT_FALSE(marv::programDataPath("help/help.css").empty());
  EXPECT_EQ(marv::programDataPath("examples/no_such_example/input/param.txt"), "");
  EXPECT_TRUE(marv::programDataDir().starts_with("/")) << "a relative folder would move with the working folder";
  const std::string exe = marv::executableFolder();
  EXPECT_TRUE(exe.starts_with("/") && !exe.ends_with("/")) << exe;
}

}  // namespace
