// The results of updating and rebooting the CMM.
#include "cli/operations/common_results.h"

namespace Orvane::cli {
namespace {

constexpr const char* kRebootLater = "the new firmware runs after: orvane cmm reboot";
constexpr const char* kWentDown = "CMM is doing reboot operation!";
constexpr const char* kRebootFailed = "reboot CMM failed and the return code message is ";
constexpr const char* kNoRebootConnection = "Connect CIMMOM Failed. RC: ";

// What a restart may come to, waited for or not.
const ResultTable& RebootRows() {
  static const ResultTable kRows = {
      {0, nullptr, kFailed, "the CMM was asked to restart, but was not seen to do so",
       "it went on answering for two minutes", kWaitAndRepeat},
      {2, nullptr, kFailed, "nothing was done", "the abilities of the CMM could not be read", kWaitAndRepeat},
      {7, nullptr, kNotFound, "no primary CMM was found", "", kWaitAndRepeat},
      {9, nullptr, kNotFound, "nothing was done", "the CMM does not offer a restart at present", kWaitAndRepeat},
      {-1, nullptr, kFailed, "the CMM gave no usable answer", "it may restart all the same",
       "look in a few minutes with: orvane cmm list"},
  };
  return kRows;
}

}  // namespace

const ResultTable& CmmUpdateResults() {
  static const ResultTable kRows = Join(
      {{
           {0, "No need to reboot CMM now", kDone, "the package is installed; the CMM was not restarted",
            "--no-reboot was given", kRebootLater},
           {0, kWentDown, kDone, "the package is installed, and the CMM answers again after its restart", "", ""},
           {0, nullptr, kFailed, "the package is installed, but the CMM was not seen to restart",
            "it went on answering for two minutes after it had been asked to restart", kRebootLater},
           {1, "Cannot connect to CMM after rebooting CMM.", kGaveUp,
            "the package is installed, but the CMM does not answer after its restart",
            "it answered none of 80 tries in 4000 seconds", kListShows},
           {1, "Cannot connect to CMM before reboot CMM", kNoConnection,
            "the package is installed, but the CMM could not be restarted", "it did not accept a connection",
            kRebootLater},
           {1, kNoRebootConnection, kNoConnection, "the package is installed, but the CMM could not be restarted",
            "it did not accept a connection", kRebootLater},
           {1, kRebootFailed, kGaveUp, "the package is installed, but the CMM does not answer after its restart",
            "it answered none of 80 tries in 4000 seconds", kListShows},
           {1, kJobLogLine, kGaveUp, "the connection was lost while the job ran; the job goes on at the CMM",
            "the CMM accepted none of three connections", kListShows},
           {1, nullptr, kNoConnection, "no connection to the CMM; nothing was installed",
            "it accepted none of three connections", kCheckConnection},
           {2, kRebootFailed, kFailed, "the package is installed, but the CMM could not be restarted",
            "its abilities could not be read", kRebootLater},
           {2, "the return code of installPackage_CMM is 0", kFailed,
            "the package is installed, but the CMM may not have restarted",
            "it gave no usable answer when it was asked to restart", "look in a few minutes with: orvane cmm list"},
           {2, "Installing job is in error state ", kFailed, "the installation failed at the CMM",
            "the CMM ended the job with an error", "check that the CMM can fetch the package and that it is for a CMM"},
           {2, "Job is still not in running after ", kGaveUp, "the job did not begin; it may still do so at the CMM",
            "it was not seen running within 11 looks, about four minutes", kListShows},
           {2, "perform func[EnumerateInstances] failed", kFailed, "nothing was installed",
            "the installation service of the CMM could not be read", kWaitAndRepeat},
           {2, "unknown error happened when invokeMethod ", kFailed, "an unexpected error ended it",
            "the CMM gave no usable answer to a request", kSeeLog},
           {2, kJobLogLine, kGaveUp, "the job was lost sight of; it may go on at the CMM",
            "its state was none that is known for 1000 looks", kListShows},
           {2, nullptr, kFailed, "nothing was installed", "the CMM gave no usable answer to a request", kSeeLog},
           {6, nullptr, kFailed, "the CMM started no job", "it did not accept the request to install",
            "check the package URI, then run the command again"},
           {7, kRebootFailed, kNotFound, "the package is installed, but the CMM could not be restarted",
            "no primary CMM was found", kRebootLater},
           {7, "Failed to enumerate job instance", kGaveUp, "the job was lost sight of; it may go on at the CMM",
            "the CMM listed no job in three tries", kListShows},
           {7, nullptr, kNotFound, "no primary CMM was found; nothing was installed", "", kWaitAndRepeat},
           {8, nullptr, kGaveUp, "the job still runs; it goes on at the CMM", "it ran for 1000 looks, over six hours",
            kListShows},
           {9, nullptr, kNotFound, "the package is installed, but the CMM could not be restarted",
            "it does not offer a restart at present", kRebootLater},
       },
       OtherRows()});
  return kRows;
}

const ResultTable& CmmRebootResults() {
  static const ResultTable kRows =
      Join({{
                {0, kWentDown, kDone, "the CMM was restarted and answers again", "", ""},
                {1, kNoRebootConnection, kNoConnection, "no connection to the CMM; nothing was done",
                 "it did not accept a connection", kCheckConnection},
                {1, nullptr, kGaveUp, "the CMM was restarted, but does not answer",
                 "it answered none of 80 tries in 4000 seconds", "look at the CMM itself"},
            },
            RebootRows(),
            OtherRows()});
  return kRows;
}

const ResultTable& CmmRebootNoWaitResults() {
  static const ResultTable kRows =
      Join({{
                {0, kWentDown, kDone, "the CMM went down to restart", "--no-wait was given",
                 "see in a few minutes whether it answers again with: orvane cmm list"},
                {1, nullptr, kNoConnection, "no connection to the CMM; nothing was done",
                 "it did not accept a connection", kCheckConnection},
            },
            RebootRows(),
            OtherRows()});
  return kRows;
}

}  // namespace Orvane::cli
