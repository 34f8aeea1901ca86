// The running record files of ./dump (probes, force, heat loss): one head
// line, then one line of plain columns per recorded step. This file holds
// what the three kinds share: reading a file's tail to find the choices of
// the last run again, telling a record from a file that is none, and opening
// a file for the line of a step so that a restarted run goes on where the
// records of its restart step end.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "app/appConfig.h"

namespace marv {

// How one kind of record file looks: the words of its head line and the
// number of columns of a data line.
struct recordLayout {
  std::vector<std::string> headWords;
  int columns = 0;
};

// What a look through a record file found.
struct recordScan {
  bool exists = false;                // the file could be opened for reading
  bool garbage = false;               // it holds a line that is neither head nor data line
  std::string problem;                // why it is garbage, for the message
  std::vector<std::string> lastData;  // words of the last whole data line; empty when none
  std::uintmax_t size = 0;            // bytes in the file
  std::uintmax_t keepEnd = 0;         // end of what a run restarted at keepUpTo keeps [bytes]
  bool headKept = false;              // a head line stands before keepEnd
};

// Reads the file line by line. A last line without its line end is a line
// that a killed run left half written: it counts for nothing. keepEnd is the
// end of the last data line whose step is at most keepUpTo, or, with no such
// line, the end of a head line that stands before every data line.
recordScan scanRecordFile(const std::string& path, const recordLayout& layout, int keepUpTo);

// The words of the last whole data line of a record file, for the readers of
// a pass's start. Returns 0 when the file cannot be opened, 1 when it was
// read (words empty when it holds no data line), and -1 when it is no record
// file: a message is then shown and refused is set, so that this pass never
// writes to it.
int readRecordTail(appConfig& cfg, const std::string& path, const recordLayout& layout, std::vector<std::string>& words,
                   std::uint8_t& refused);

// Opens a record file for the line of step ts, or returns null when the line
// is to be passed over (refused file, no access). The first line of a pass
// decides how the file goes on: a new run (sts 0, or ts 0) starts the file
// anew; a restarted run keeps the lines up to its restart step, moves
// anything after them to the file's ".cut" companion and appends. The head
// line is written when the kept part has none. A file that is no record is
// never truncated nor written: a message is shown and refused set.
std::FILE* openRecordForLine(appConfig& cfg, const std::string& path, const recordLayout& layout,
                             const std::string& headLine, int& headerDone, std::uint8_t& refused);

// The colours a pass records again, from the flag columns (after ts and
// time) of the last line of force.txt or heatLoss.txt: on[c] for colours 1
// to 8, count how many are on; count 0 when the file is missing, holds no
// data line or is refused.
void readColourFlags(appConfig& cfg, const std::string& path, const recordLayout& layout,
                     std::array<std::uint8_t, numColourTypes>& on, int& count, std::uint8_t& refused);

// Writes text with one call and closes the file.
void finishRecordLine(std::FILE* file, const std::string& text);

// The word as a number; false when it is not one as a whole.
bool recordNumber(const std::string& word, double& value);

// Shows a message through the pass's message sink, or on stderr without one.
void showRecordMessage(appConfig& cfg, const std::string& text);

// printf into a std::string.
std::string formatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace marv
