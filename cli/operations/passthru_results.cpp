// The results of the operations on a pass-through module.
#include "cli/operations/common_results.h"

namespace Orvane::cli {
namespace {

constexpr const char* kVerifyNext = "see when it is back with: orvane passthru verify --bay BAY";
constexpr const char* kRestartNext = "the new firmware runs after: orvane passthru reboot --bay BAY";

constexpr const char* kJobText = "JobStatus string that will be used to get the update status = ";

ResultTable StateChangeRows(const char* done) {
  return Join(
      {{
           {0, "Invoke method 'RequestStateChange': Completed with No Error", kDone, done, "", kVerifyNext},
           {0, "unknown error happened when invokeMethod :connection timed out", kDone, done,
            "it did not answer the request in time, which is usual when it restarts at once", kVerifyNext},
       },
       StateAnswerRows(0),
       {
           {0, nullptr, kFailed, "the module gave no usable answer; it may restart all the same", "", kVerifyNext},
           {1, nullptr, kNoConnection, "no connection to the management module; nothing was done", "",
            kCheckConnection},
           {4, "The switch is not ready to change state.", kNotFound, "nothing was done",
            "the module does not offer this at present", kWaitAndRepeat},
           {4, "CIM_ERR_ACCESS_DENIED", kRefused, "the management module denied access", "the user may not do this",
            kCheckUser},
           {4, nullptr, kFailed, "the module gave no usable answer", "the request to change its state failed", kSeeLog},
       },
       NoModuleRows(),
       OtherRows()});
}

}  // namespace

const ResultTable& PassThruUpdateResults() {
  static const ResultTable kRows =
      Join({{
                {0, nullptr, kDone, "installed; the module was not restarted", "an update never restarts the module",
                 kRestartNext},
                {1, kJobLogLine, kGaveUp,
                 "the connection was lost while the job ran; the job goes on at the management module",
                 "the management module did not accept a connection", kListShows},
                {1, nullptr, kNoConnection, "no connection to the management module; nothing was installed",
                 "it accepted none of three connections", kCheckConnection},
                {2, "The JobStatus is Empty because error happened when creats jobinstance.!", kFailed,
                 "the job was lost sight of", "the management module no longer lists it, or says nothing about it",
                 kListShows},
                {2, nullptr, kFailed, "the management module started no job",
                 "it did not accept the request to install", "check the package URI, then run the command again"},
                {5, kJobLogLine, kRefused, "user or password was refused while the job ran; the job goes on",
                 "user or password was changed meanwhile, or the user may not read jobs", kCheckUser},
                {5, nullptr, kRefused, "the management module denied access; nothing was installed",
                 "the user may not install firmware", kCheckUser},
                {6, kJobText, kFailed, "the installation failed at the management module",
                 "the job's state and words are none that are known", kSeeLog},
                {15, kJobText, kFailed, "the installation failed at the management module",
                 "the management module ended the job with an error",
                 "check that the management module can fetch the package and that it fits"},
                {18, nullptr, kNotFound, "another update is in progress; nothing was installed", "", kWaitAndRepeat},
                {212, kJobLogLine, kGaveUp, "the job was lost sight of; it may go on at the management module",
                 "the management module gave no usable answer while it ran", kListShows},
                {212, nullptr, kFailed, "an unexpected error ended it", "the management module gave no usable answer",
                 kSeeLog},
            },
            CimReadRows(),
            CimMethodRows(),
            NoModuleRows(),
            OtherRows()});
  return kRows;
}

const ResultTable& PassThruRebootResults() {
  static const ResultTable kRows = StateChangeRows("the module restarts");
  return kRows;
}

const ResultTable& PassThruReseatResults() {
  static const ResultTable kRows = StateChangeRows("the module is power-cycled");
  return kRows;
}

const ResultTable& PassThruVerifyResults() {
  static const ResultTable kRows =
      Join({{
                {0, nullptr, kDone, "the module has passed its power-on self test", "", ""},
                {16, nullptr, kGaveUp, "the module has not passed its power-on self test",
                 "it was looked at 36 times in six minutes", kWaitAndRepeat},
            },
            CimReadRows(),
            NoModuleRows(),
            OtherRows()});
  return kRows;
}

}  // namespace Orvane::cli
