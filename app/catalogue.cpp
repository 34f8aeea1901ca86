// The catalogue's table: one row per text number, English then Japanese,
// with the place where the text shows. Numbers that are missing from the
// table are not used by the program.
#include "app/catalogue.h"

#include <array>

namespace marv {

namespace {

struct catalogueRow {
  int number;            // text number
  const char* english;   // UTF-8
  const char* japanese;  // UTF-8
};

// clang-format off
const catalogueRow rows[] = {
    {0, "Create New Project (&N)",
     "新規プロジェクトの作成 (&N)"},  // menu: File
    {1, "Load Existing Project (&L)",
     "既存プロジェクトをロード (&L)"},  // menu: File, submenu head
    {2, "In Simulation Mode (&S)",
     "シミュレーション・モードでロード (&S)"},  // menu: submenu
    {3, "In Analysis Mode (&A)",
     "分析モードでロード (&A)"},  // menu: submenu
    {4, "Exit (&X)",
     "プログラムの終了 (&X)"},  // menu: File
    {5, "File (&F)",
     "ファイル (&F)"},  // menu bar
    {6, "Parameters (&P)",
     "入力パラメータ (&P)"},  // menu: Help
    {7, "User Interface (&I)",
     "ツール操作方法 (&I)"},  // menu: Help
    {8, "Examples (&E)",
     "シミュレーション例 (&E)"},  // menu: Help
    {10, "Updates (&U)",
     "更新情報 (&U)"},  // menu: Help
    {11, "Help (&H)",
     "ヘルプ (&H)"},  // menu bar
    {12, "Select One of Input Files (eg. param.txt) in the Existing Project.",
     "既存のプロジェクトから、入力ファイルの1つ（例：param.txt）を開いてください。"},  // open dialog title
    {13, "Enter a New Project Name and Click Save.",
     "新規プロジェクト名を入力し保存をクリックしてください。"},  // save dialog title
    {15, "Create a new project",
     "新規プロジェクトの作成"},  // start screen
    {16, "In the Explorer window, enter the new project name and save.",
     "保存場所を決定後、プロジェクト名を入力し、保存をクリックすると、空プロジェクトが作成されます。"},  // start screen
    {17, "Load existing project (Simulation mode)",
     "既存プロジェクトのロード（シミュレーション・モード）"},  // start screen
    {18, "Locate the existing project by opening one of the input files (eg. param.txt).",
     "既存プロジェクトの入力ファイルの1つ（例：param.txt）を開くと、既存プロジェクトがロードされます。"},  // start screen
    {19, "Load in Analysis mode",
     "分析モードでロード"},  // start screen
    {21, "Proceed without choosing a project (Enter or right arrow button)",
     "何も選択せず次へ進む（またはEnterや右矢印ボタン）"},  // start screen
    {22, "Previous project (below) will be loaded in a simulation mode",
     "履歴から前回プロジェクト（下記ファイル場所）がシミュレーション・モードでロードされます。"},  // start screen
    {24, "Project name",
     "プロジェクト名"},  // confirmation
    {25, "(New project)",
     "（新規プロジェクト）"},  // confirmation
    {26, "(Existing project)",
     "（既存のプロジェクト）"},  // confirmation
    {27, "Execution mode",
     "実行モード"},  // confirmation
    {28, "Path to the project",
     "プロジェクトの場所"},  // confirmation
    {29, "Path to the source input files",
     "コピー元の入力ファイルの場所"},  // confirmation
    {30, "Simulation mode",
     "シミュレーション・モード"},  // confirmation
    {31, "Analysis mode",
     "分析モード"},  // confirmation
    {32, "Proceed to next. The input files will be loaded.",
     "以上でよろしければ、次へ進んでください。入力ファイルが順番にロードされます。"},  // confirmation
    {33, "Proceed to next. Project files will be created and the input files will be \ncopied and then loaded.",
     "以上でよろしければ、次へ進んでください。プロジェクト・ファイルが生成され、コピーされた\n入力ファイルが順番にロードされます。"},  // confirmation
    {34, "Enter/right-arrow button : Proceed",
     "ENTERキー／右矢印ボタン：次へ進む"},  // proceed hint
    {35, "ESC/return button: Cancel",
     "ESCキー／戻るボタン：始めに戻る"},  // proceed hint
    {36, "Use the Explorer (click here) to open, or",
     "新規の空プロジェクトへコピーする入力ファイルの一つ（例：param.txt）を"},  // source screen
    {37, "Drop",
     "ここにドロップする"},  // source screen
    {38, "one of the input files (eg. param.txt).",
     "または、エクスプローラー（画面クリック）から開いてください。"},  // source screen
    {39, "All input files in the same directory as this input file will be copied to the new project,",
     "このファイルと同じ階層にある全ての入力ファイルが新規プロジェクトへコピーされます。"},  // source screen
    {40, "Or just proceed to next to copy the input files from the previous project (below).",
     "何もせずに次へ進むと、前回プロジェクトの入力ファイル（下記）がコピーされます。"},  // source screen
    {41, "Choose one of the input files (eg. param.txt) from the source project.",
     "コピーする入力ファイルの1つ（例：param.txt）を選択してください。"},  // source dialog title
    {42, "Do you want to terminate the simulation? Press OK to terminate. Press CANCEL to continue the simulation.",
     "シミュレーションを終了しますか？終了する場合は OK を押してください。終了を取りやめる場合は CANCEL を押してください。"},  // quit prompt
    {43, "Enter a min color scale value.",
     "カラースケールの最小値を入力してください。"},  // colour scale dialog
    {44, "Enter a max color scale value.",
     "カラースケールの最大値を入力してください。"},  // colour scale dialog
    {45, "Input files do not exist. Please check the path or create a new project.",
     "入力ファイルが存在ません。パスを確認するか、新しいプロジェクトを作成してください。"},  // missing files message
    {46, "Do you want to remove this parameter from the list?",
     "このパラメータを削除してもよろしいですか？削除後、シミュレーションにて本パラメータが有効な場合、既定値が考慮されます。"},  // remove prompt
    {47, "Enter a parameter name you want to add below.",
     "追加したいパラメータ名を入力して下さい。"},  // add prompt
    {48, "Editing param.txt...",
     "パラメータリスト (param.txt) の編集中・・・。"},  // editor foot bar
    {49, "Loading and processing %s. DRAG for 3D view. Press ENTER to proceed, ESC to cancel.",
     "境界条件画像ファイル %s の読み込み中。3次元配置方向の表示はマウスドラッグ。ENTER（右矢印ボタン）で次へ進む。ESC（戻るボタン）でキャンセル。"},  // bitmap stage, 3D
    {50, "Loading and processing %s. Press ENTER to proceed, ESC to cancel.",
     "境界条件画像ファイル %s の読み込み中。ENTER（右矢印ボタン）で次へ進む、ESC（戻るボタン）でキャンセル。"},  // bitmap stage, 2D
    {51, "Constructed 3D domain. Press ENTER to start the simulation, ESC to cancel.",
     "構築された3次元境界条件の表示。ENTER（右矢印ボタン）でシミュレーションの開始、ESC（戻るボタン）でキャンセル。"},  // placement, 3D
    {52, "Constructed 2D domain. Press ENTER to start the simulation, ESC to cancel.",
     "構築された2次元境界条件の表示。ENTER（右矢印ボタン）でシミュレーションの開始、ESC（戻るボタン）でキャンセル。"},  // placement, 2D
};
// clang-format on

// The rows by number; null where a number is unused.
struct catalogueIndex {
  std::array<const catalogueRow*, catalogueSize> byNumber{};
  catalogueIndex() {
    for (const catalogueRow& row : rows)
      if (row.number >= 0 && row.number < catalogueSize) byNumber[row.number] = &row;
  }
};

const catalogueRow* rowOf(int number) {
  static const catalogueIndex index;
  return number >= 0 && number < catalogueSize ? index.byNumber[number] : nullptr;
}

}  // namespace

std::string catalogueText(int number, bool japanese) {
  const catalogueRow* row = rowOf(number);
  if (row == nullptr) return std::string();
  return japanese ? row->japanese : row->english;
}

bool catalogueHas(int number) { return rowOf(number) != nullptr; }

}  // namespace marv
