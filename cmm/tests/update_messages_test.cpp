// The update messages that every including source has a copy of, and the lookup of the codes in the 200 range.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <vector>

#include "cmm/inventory_update/cmm_update_messages.h"
#include "cmm/tests/update_message_copies.h"

namespace Orvane {
namespace {

using testing::UpdateMessageCopies;

TEST(UpdateMessages, HaveTheirTexts) {
  EXPECT_EQ(kMessageConnectFailed, "Failed connecting to server");
  EXPECT_EQ(kMessageOpenFileFailed, "Failed open file");
  EXPECT_EQ(kMessageFlashFailed, "Failed flashing ZEQ package");
  EXPECT_EQ(kMessageResultNotFound, "CMM Package Installation Result not found!");
  EXPECT_EQ(kMessageInvalidParameters, "Invalid parameters to connect to CMM");
  EXPECT_EQ(kMessageInvocationError, "CMM Method Invocation Error occurred");
  EXPECT_EQ(kMessageInstanceCount, "More than one instance or no instance for given class");
  EXPECT_EQ(kMessageInstallFailed, "Update package installation failed");
  EXPECT_EQ(kMessageNotSupported, "Package is not supported currently");
  EXPECT_EQ(kMessageUnknownError, "Unknown Error");
  EXPECT_EQ(kMessageTimeout, "Time out when updating the remote CMM host");
}

TEST(UpdateMessages, TableHasFourEntriesInOrder) {
  static_assert(std::is_same_v<decltype(UpdateErrorCodeTable[0].code), std::int32_t>);
  ASSERT_EQ(UpdateErrorCodeTable.size(), 4U);
  EXPECT_EQ(UpdateErrorCodeTable[0].code, 207);
  EXPECT_EQ(UpdateErrorCodeTable[0].message, "Failed connecting to server");
  EXPECT_EQ(UpdateErrorCodeTable[1].code, 207);
  EXPECT_EQ(UpdateErrorCodeTable[1].message, "Update package installation failed");
  EXPECT_EQ(UpdateErrorCodeTable[2].code, 212);
  EXPECT_EQ(UpdateErrorCodeTable[2].message, "CMM Method Invocation Error occurred");
  EXPECT_EQ(UpdateErrorCodeTable[3].code, 213);
  EXPECT_EQ(UpdateErrorCodeTable[3].message, "CMM Package Installation Result not found!");
}

TEST(UpdateMessages, TableHoldsCopiesOfTheMessages) {
  EXPECT_NE(&UpdateErrorCodeTable[0].message, &kMessageConnectFailed);
  EXPECT_NE(UpdateErrorCodeTable[0].message.data(), kMessageConnectFailed.data());
}

TEST(UpdateMessages, EverySourceHasCopiesOfItsOwn) {
  const UpdateMessageCopies here = testing::CopiesOfThisSource();
  const UpdateMessageCopies there = testing::CopiesOfAnotherSource();
  ASSERT_EQ(here.messages.size(), 11U);
  ASSERT_EQ(there.messages.size(), here.messages.size());
  for (std::size_t i = 0; i < here.messages.size(); ++i) {
    EXPECT_NE(here.messages[i], there.messages[i]);
    EXPECT_EQ(*here.messages[i], *there.messages[i]);
    EXPECT_NE(here.messages[i]->data(), there.messages[i]->data()) << "the bytes are not shared either";
  }
  EXPECT_NE(here.table, there.table);
  EXPECT_NE(here.callback, there.callback);
}

TEST(UpdateMessages, CallbackDoesNothing) {
  LogMessageCallBack& callback = emptyLogMessageCallBack;
  EXPECT_NO_THROW(callback.OnMessage("start up update CMM"));
}

TEST(UpdateErrorMessage, OfTheCodesInTheTable) {
  EXPECT_EQ(GetUpdateErrorMessage(207), "Failed connecting to server") << "the first of the two entries";
  EXPECT_EQ(GetUpdateErrorMessage(212), "CMM Method Invocation Error occurred");
  EXPECT_EQ(GetUpdateErrorMessage(213), "CMM Package Installation Result not found!");
}

TEST(UpdateErrorMessage, OfEveryOtherCodeIsUnknown) {
  for (const int code :
       {0, 1, -207, 206, 208, 211, 214, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_EQ(GetUpdateErrorMessage(code), "Unknown Error") << code;
  }
}

TEST(UpdateErrorMessage, IsANewStringEachTime) {
  std::string text = GetUpdateErrorMessage(212);
  text += " changed";
  EXPECT_EQ(GetUpdateErrorMessage(212), "CMM Method Invocation Error occurred");
}

}  // namespace
}  // namespace Orvane
