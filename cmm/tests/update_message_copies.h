// The update messages as one including source has them, so that a test can compare the copies of two sources.
#pragma once

#include <string>
#include <vector>

#include "cmm/inventory_update/cmm_update_messages.h"

namespace Orvane::testing {

struct UpdateMessageCopies {
  std::vector<const std::string*> messages;  ///< in the order of declaration
  const UpdateErrorCode* table;
  LogMessageCallBack* callback;
};

/// Those of the source that calls it.
static UpdateMessageCopies CopiesOfThisSource() {
  return {{&kMessageConnectFailed, &kMessageOpenFileFailed, &kMessageFlashFailed, &kMessageResultNotFound,
           &kMessageInvalidParameters, &kMessageInvocationError, &kMessageInstanceCount, &kMessageInstallFailed,
           &kMessageNotSupported, &kMessageUnknownError, &kMessageTimeout},
          UpdateErrorCodeTable.data(),
          &emptyLogMessageCallBack};
}

/// Those of update_error_code_test.cpp.
UpdateMessageCopies CopiesOfAnotherSource();

}  // namespace Orvane::testing
