// The results of the operations on a switch.
#include "cli/operations/common_results.h"

namespace Orvane::cli {
namespace {

constexpr const char* kStateChanged = "Invoke method 'RequestStateChange': Completed with No Error";
constexpr const char* kSkipped = "deferedupdatesupported==null or 0 and have fallback section";
constexpr const char* kNoDeferredConnection = "cmm connection error while getting deferedupdatesupported property";
constexpr const char* kNoDeferredProperty = "cmm check deferedupdatesupported property not supported";
constexpr const char* kRebootLater = "restart it with: orvane switch reboot --bay BAY";
constexpr const char* kActivateLater =
    "activate it with: orvane switch activate --bay BAY; then restart the switch if it does not do so by itself";
constexpr const char* kCheckPackage = "check that the management module can fetch the package and that it fits";
constexpr const char* kVerifyNext = "see when it is back with: orvane switch verify --bay BAY";

// How the management module's own words about a failed job are classified.
const ResultTable& JobFailureRows() {
  constexpr const char* kJobFailed = "the installation failed at the management module";
  static const ResultTable kRows = {
      {7, nullptr, kFailed, kJobFailed, "fetching the package ended in an unknown error of the transfer",
       kCheckPackage},
      {8, nullptr, kFailed, kJobFailed, "the switch did not answer the management module in time", kWaitAndRepeat},
      {9, nullptr, kFailed, kJobFailed, "the management module got no answer from the switch", kWaitAndRepeat},
      {10, nullptr, kFailed, kJobFailed, "the package's fingerprint does not match",
       "fetch the package anew from its maker"},
      {11, nullptr, kFailed, kJobFailed, "the package could not be fetched", kCheckPackage},
      {12, nullptr, kFailed, kJobFailed, "the switch could not take the package", kCheckPackage},
      {13, nullptr, kFailed, kJobFailed, "the package server's host key was not accepted",
       "make the server's key known to the management module"},
      {14, nullptr, kFailed, kJobFailed, "the package server could not be reached", kCheckPackage},
      {15, nullptr, kFailed, kJobFailed, "writing the image ended with an error", kWaitAndRepeat},
      {16, nullptr, kFailed, kJobFailed, "it took too long", kWaitAndRepeat},
      {35, nullptr, kFailed, kJobFailed, "the package does not exist at its URI", "check the package URI"},
      {17, nullptr, kFailed, kJobFailed, "the job ended with an error that is not known", kSeeLog},
      {18, nullptr, kNotFound, "another update is in progress; nothing was installed", "", kWaitAndRepeat},
  };
  return kRows;
}

const ResultTable& StateRequestRows() {
  static const ResultTable kRows = Join(
      {StateAnswerRows(4),
       {{4, nullptr, kFailed, "the switch gave no usable answer", "the request to change its state failed", kSeeLog}},
       NoModuleRows(),
       SessionRows(),
       OtherRows()});
  return kRows;
}

}  // namespace

const ResultTable& SwitchUpdateResults() {
  static const ResultTable kRows = Join(
      {{
           {0, "Failed to collect instancesIOMElement instances.", kFailed,
            "installed, but the new image was not activated", "the images of the switches could not be read",
            kActivateLater},
           {0, "Error happened when reboot the switch", kFailed, "installed, but the switch could not be restarted",
            "the request to restart it failed", kRebootLater},
           {0, kNoDeferredConnection, kFailed, "installed, but the switch was not restarted",
            "the connection was lost before it could be asked how it restarts", kRebootLater},
           {0, "Failed to connect to the CMM", kFailed, "installed, but the new image was not activated",
            "the connection was lost before", kActivateLater},
           {0, kNoDeferredProperty, kFailed, "installed, but the switch was not restarted",
            "it could not be found out how it restarts", kRebootLater},
           {0, kSkipped, kDone, "installed; the switch was not asked to restart",
            "it does not defer updates: it restarts by itself, or takes the image over while it runs", kVerifyNext},
           {0, kStateChanged, kDone, "installed, and the switch was restarted", "", kVerifyNext},
           {0, nullptr, kDone, "installed; the switch was not restarted", "--no-reboot was given",
            "it runs after activation and a restart; activate it with: orvane switch activate --bay BAY"},
           {1, "Failed to connect the CMM when try to get the result of the InstallFromURI call!", kGaveUp,
            "the connection was lost while the job ran; the job goes on at the management module",
            "the management module did not accept a connection", kListShows},
           {1, nullptr, kNoConnection, "no connection to the management module; the package was not installed",
            "it accepted none of three connections", kCheckConnection},
           {2, "The JobStatus is Empty because error happened when creats jobinstance.", kFailed,
            "the job was lost sight of", "the management module no longer lists it, or says nothing about it",
            kListShows},
           {2, "StartUpdate ended by an exception: ", kFailed, "installed, but the new image was not activated",
            "the management module refused the change", kActivateLater},
           {2, "Error to get the job InstanceID of the InstallFromURI method!", kFailed,
            "the management module started no job", "it did not accept the request to install",
            "check the package URI, then run the command again"},
           {2, "Update failed with an unknown error.", kFailed, "the installation failed at the management module",
            "the job's state and words are none that are known", kSeeLog},
           {2, kJobLogLine, kGaveUp, "the job was lost sight of; it may go on at the management module",
            "the management module gave no usable answer while it ran", kListShows},
           {2, nullptr, kFailed, "an unexpected error ended it", "the management module gave no usable answer",
            kSeeLog},
           {5, nullptr, kRefused, "user or password was refused while the job ran; the job goes on",
            "user or password was changed meanwhile, or the user may not read jobs", kCheckUser},
       },
       JobFailureRows(),
       CimReadRows(),
       CimMethodRows(),
       NoModuleRows(),
       OtherRows()});
  return kRows;
}

const ResultTable& SwitchActivateResults() {
  static const ResultTable kRows = Join(
      {{
           {0, nullptr, kDone, "the fallback image is the next one", "",
            "it runs after: orvane switch reboot --bay BAY"},
           {1, nullptr, kNoConnection, "no connection to the management module",
            "it accepted none of three connections", kCheckConnection},
           {2, nullptr, kFailed, "the image could not be activated", "the management module refused the change",
            kSeeLog},
           {3, "Failed to locate the property VORTA_IOMElementFirmwareIdentity.ElementSoftwareStatus=6,4.", kNotFound,
            "there is nothing to activate", "the switch has no fallback image; usually it does not support activation",
            "a switch without activation takes a new image at its next start"},
           {3, nullptr, kFailed, "nothing was activated", "the images of the switches could not be read", kSeeLog},
       },
       OtherRows()});
  return kRows;
}

const ResultTable& SwitchRebootResults() {
  static const ResultTable kRows =
      Join({{
                {0, kStateChanged, kDone, "the switch restarts", "", kVerifyNext},
                {0, kNoDeferredConnection, kNoConnection, "the switch was not restarted",
                 "no connection to the management module", kCheckConnection},
                {0, kNoDeferredProperty, kFailed, "the switch was not restarted",
                 "it could not be found out whether it defers updates", kSeeLog},
                {0, kSkipped, kNotFound, "the switch was not restarted",
                 "it does not defer updates: it restarts by itself, or takes an image over while it runs",
                 "restart it all the same with: orvane switch reseat --bay BAY"},
                {0, nullptr, kFailed, "the switch was not restarted", "", kSeeLog},
            },
            StateRequestRows()});
  return kRows;
}

const ResultTable& SwitchReseatResults() {
  static const ResultTable kRows =
      Join({{{0, nullptr, kDone, "the switch is power-cycled", "", kVerifyNext}}, StateRequestRows()});
  return kRows;
}

const ResultTable& SwitchVerifyResults() {
  static const ResultTable kRows =
      Join({{
                {0, nullptr, kDone, "the switch has passed its power-on self test", "", ""},
                {6, nullptr, kFailed, "the switch could not be read", "", kSeeLog},
                {16, nullptr, kGaveUp, "the switch has not passed its power-on self test",
                 "it was looked at 36 times in six minutes", kWaitAndRepeat},
            },
            CimReadRows(),
            NoModuleRows(),
            OtherRows()});
  return kRows;
}

const ResultTable& SwitchEhcmResults() {
  static const ResultTable kRows =
      Join({{
                {0, nullptr, kDone, "the switch is ready for a firmware update", "", ""},
                {1, nullptr, kNoConnection, "no connection to the management module",
                 "it accepted none of three connections", kCheckConnection},
                {29, nullptr, kNotFound, "the switch tells no EHCM state that is known",
                 "it was not found, could not be read, or its state is none of 0, 1, 2 and 5", kSeeLog},
                {30, nullptr, kNotFound, "the switch is not ready for a firmware update", "its EHCM state is 0",
                 kWaitAndRepeat},
                {32, nullptr, kNotFound, "the switch did not become ready for a firmware update",
                 "it was busy for about five minutes, or failed meanwhile", kWaitAndRepeat},
            },
            OtherRows()});
  return kRows;
}

const ResultTable& SwitchDeferredResults() {
  static const ResultTable kRows =
      Join({{
                {33, nullptr, kDone, "supported", "an installed image runs after a restart that has to be asked for",
                 "restart the switch after an update: orvane switch reboot --bay BAY"},
                {34, nullptr, kDone, "not supported",
                 "the switch restarts by itself, or takes an image over while it runs", ""},
                {1, nullptr, kNoConnection, "no connection to the management module",
                 "it accepted none of three connections", kCheckConnection},
                {6, nullptr, kNotFound, "the switch was not found", "no switch is in the bay",
                 "look at the bay with: orvane bay type BAY"},
                {29, nullptr, kFailed, "the switches could not be read", "", kSeeLog},
            },
            OtherRows()});
  return kRows;
}

}  // namespace Orvane::cli
