// Rows that several operations share.
#pragma once

#include <initializer_list>

#include "cli/operations/results.h"

namespace Orvane::cli {

// The statuses by short names, so that a row of a table fits on its line.
constexpr auto kDone = ExitStatus::kDone;
constexpr auto kFailed = ExitStatus::kFailed;
constexpr auto kNoConnection = ExitStatus::kNoConnection;
constexpr auto kNotFound = ExitStatus::kNotFound;
constexpr auto kRefused = ExitStatus::kRefused;
constexpr auto kGaveUp = ExitStatus::kGaveUp;

constexpr const char* kSeeLog = "run it again with --log-level 3 and look at the last lines";
constexpr const char* kCheckConnection = "check that the management module is up, then run the command again";
constexpr const char* kCheckUser = "check user and password, and that the user may change the chassis";
constexpr const char* kListShows = "the list command shows which version runs; look again later before another try";
constexpr const char* kWaitAndRepeat = "wait a few minutes, then run the command again";
constexpr const char* kJobLogLine = "Parameter Name: Job, Parameter Value: ";

/// The rows of several lists, one list after the other.
ResultTable Join(std::initializer_list<ResultTable> lists);

/// CIM errors as the switch and the pass-through operations number them when they read, apart from 24.
const ResultTable& CimReadRows();

/// Those that only calling a method adds.
const ResultTable& CimMethodRows();

/// Code 24.
const ResultTable& NoModuleRows();

/// The negative codes of a session that does not connect.
const ResultTable& SessionRows();

/// Every other code.
const ResultTable& OtherRows();

/// What a module answered to a request to change its state, under the code that the library gives then.
/// @param code  4 for switches; 0 for pass-through modules, whose result the answer never changes.
ResultTable StateAnswerRows(int code);

}  // namespace Orvane::cli
