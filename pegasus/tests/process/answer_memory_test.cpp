// Memory that runs out while an answer is read: the answer is lost, and what is still to come of it must not be met by
// the next request, so that one has to go over a new connection.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>

#include <chrono>
#include <new>
#include <string>
#include <thread>
#include <utility>

#include "testing/raw_server.h"
#include "testing/refused_memory.h"
#include "thrown.h"

namespace Pegasus {
namespace {

using Orvane::testing::RawAction;
using Orvane::testing::RawActions;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using Orvane::testing::RefuseMemory;
using Orvane::testing::StopRefusingMemory;

// Below the buffer for what the socket has and the body of the answer below; smaller allocations always succeed.
constexpr std::size_t kBig = 16 * 1024;
/// Long enough for the second request to be sent meanwhile, if it is sent over the same connection.
constexpr std::chrono::milliseconds kPause{500};
/// Of blanks in front of the end of the answer, more than kBig and few enough to come in one piece.
constexpr std::size_t kBlanks = 20 * 1000;

const std::string kAnswerBegin =
    "HTTP/1.1 200 OK\r\nContent-Type: application/xml\r\nCIMOperation: MethodResponse\r\nContent-Length: ";
const std::string kBodyBegin =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
    "<MESSAGE ID=\"@ID@\" PROTOCOLVERSION=\"1.0\">\n<SIMPLERSP>\n<IMETHODRESPONSE NAME=\"EnumerateInstances\">\n"
    "<IRETURNVALUE>\n" +
    std::string(kBlanks, ' ');
const std::string kBodyEnd = "</IRETURNVALUE>\n</IMETHODRESPONSE>\n</SIMPLERSP>\n</MESSAGE>\n</CIM>\n";

/// Message ids have four digits, as many bytes as the mark that stands for them.
const std::string kFirstPart =
    kAnswerBegin + std::to_string(kBodyBegin.size() + kBodyEnd.size()) + "\r\n\r\n" + kBodyBegin;

Uint32 Enumerate(CIMClient& client) {
  return client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo")).size();
}

/// Waits until the server has read a request; false when it takes too long.
bool WaitForRequest(const RawServer& server) {
  constexpr int kMostMilliseconds = 10000;
  for (int waited = 0; waited < kMostMilliseconds && server.Requests().empty(); ++waited) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return !server.Requests().empty();
}

/// Makes two requests, the first answered by `first`, and refuses one allocation of the first; the second succeeds,
/// over a connection of its own.
void ExpectSecondRequestUntouched(RawActions first, int spared) {
  RawServerOptions options;
  options.script = {std::move(first), {RawAction::Send(kFirstPart + kBodyEnd)}};
  const RawServer server(options);
  CIMClient client;
  client.connect("127.0.0.1", server.Port(), "", "");

  RefuseMemory(kBig, spared);
  EXPECT_THROW(Enumerate(client), std::bad_alloc);
  ASSERT_TRUE(StopRefusingMemory()) << "nothing was refused";
  // The script counts requests over all connections: the first has to be read before there is a second.
  ASSERT_TRUE(WaitForRequest(server));

  EXPECT_EQ(test::Catch([&] { EXPECT_EQ(Enumerate(client), 0U); }), test::Thrown{});
  const auto requests = server.Requests();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_EQ(requests[0].connection, 1U);
  EXPECT_EQ(requests[1].connection, 2U);
}

TEST(OutOfMemory, AnAnswerThatComesLateIsNotTakenForTheNextOne) {
  ExpectSecondRequestUntouched({RawAction::Sleep(kPause), RawAction::Send(kFirstPart + kBodyEnd)}, 0);
}

TEST(OutOfMemory, TheRestOfAnAnswerIsNotTakenForTheNextOne) {
  ExpectSecondRequestUntouched({RawAction::Send(kFirstPart), RawAction::Sleep(kPause), RawAction::Send(kBodyEnd)}, 1);
}

}  // namespace
}  // namespace Pegasus
