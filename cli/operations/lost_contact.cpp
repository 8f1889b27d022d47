// The statuses are those with which the commands that only read end for the same causes.
#include "cli/operations/lost_contact.h"

#include <algorithm>

#include "cli/operations/common_results.h"

namespace Orvane::cli {

const std::vector<LostContact>& LostContacts() {
  static const std::vector<LostContact> kRows = {
      {CauseKind::kUnknownHost, kNoConnection, "the host name has no address",
       "check the name, and that the name service knows it"},
      {CauseKind::kNoConnection, kNoConnection, "the management module did not accept a connection", kCheckConnection},
      {CauseKind::kClosed, kNoConnection, "the connection was closed before an answer came", kWaitAndRepeat},
      {CauseKind::kTimeout, kNoConnection, "no answer came in time", kWaitAndRepeat},
      {CauseKind::kNotReady, kNotFound, "the CIM server is not ready", kWaitAndRepeat},
      {CauseKind::kNotCim, kNotFound, "an answer was not that of a CIM server",
       "check host and port, and that the CIM server of the management module works"},
  };
  return kRows;
}

const LostContact* FindLostContact(CauseKind kind) {
  const std::vector<LostContact>& rows = LostContacts();
  const auto found =
      std::find_if(rows.begin(), rows.end(), [kind](const LostContact& row) { return row.kind == kind; });
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace Orvane::cli
