// What answers cost: ten times as much of anything takes at most twelve times as many allocations, and twelve times the
// processor's time. Answers that are made to be slow are among them.
#include <gtest/gtest.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>

#include "Pegasus/Client/CIMClientException.h"
#include "Pegasus/Common/Exception.h"
#include "testing/refused_memory.h"
#include "transport/http_response.h"
#include "wire/response_reader.h"

namespace Pegasus::wire {
namespace {

constexpr std::uint32_t kMessageId = 1000;
constexpr std::size_t kTimes = 10;
constexpr double kMost = 12;
/// Sanitizers make large blocks of memory dearer than small ones.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr double kMostTime = 24;
#else
constexpr double kMostTime = kMost;
#endif
#else
constexpr double kMostTime = kMost;
#endif

std::string Repeated(const std::string& text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

std::string Response(const std::string& content) {
  return R"(<?xml version="1.0"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1000" PROTOCOLVERSION="1.0">)"
         R"(<SIMPLERSP><IMETHODRESPONSE NAME="EnumerateInstances"><IRETURNVALUE>)" +
         content + "</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

std::string Instance(const std::string& content) {
  return R"(<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME="CIM_Foo"/><INSTANCE CLASSNAME="CIM_Foo">)" + content +
         "</INSTANCE></VALUE.NAMEDINSTANCE>";
}

std::string Property(const std::string& value) {
  return R"(<PROPERTY NAME="S" TYPE="string"><VALUE>)" + value + "</VALUE></PROPERTY>";
}

/// `make` with 0, 1, 2...
std::string Each(std::size_t count, const std::function<std::string(std::size_t)>& make) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += make(i);
  return result;
}

std::string Named(const std::string& name) { return "<PROPERTY NAME=\"" + name + R"(" TYPE="uint8"/>)"; }

/// A name that differs from all others only in characters whose codes differ in the bit that upper and lower case of
/// ASCII differ in.
std::string LatinName(std::size_t number) {
  constexpr unsigned kCharacters = 20;
  std::string name;
  for (unsigned bit = 0; bit < kCharacters; ++bit) name += (number >> bit & 1U) != 0 ? "\xC4\xA0" : "\xC4\x80";
  return name;
}

void ReadDocument(const std::string& text) {
  try {
    ReadEnumerateInstances(std::string(text), kMessageId);
  } catch (const Exception&) {
    // What an answer costs is limited whether it is good or not.
  }
}

void ReadHttp(const std::string& text, std::size_t pieceSize) {
  transport::ResponseReader reader;
  try {
    for (std::size_t at = 0; at < text.size(); at += pieceSize)
      reader.Take(std::string_view(text).substr(at, pieceSize));
    reader.Result();
  } catch (const Exception&) {
  }
}

constexpr char kHead[] = "HTTP/1.1 200 OK\r\nCIMOperation: MethodResponse\r\n";

struct Row {
  const char* name;
  /// How much of it the small answer has.
  std::size_t count;
  std::function<std::string(std::size_t)> make;
  std::function<void(const std::string&)> read = &ReadDocument;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

const std::vector<Row>& Rows() {
  static const std::vector<Row> rows{
      {"Instances", 200, [](std::size_t n) { return Response(Repeated(Instance(Property("v")), n)); }},
      {"InstancesThatAllDiffer", 200,
       [](std::size_t n) {
         return Response(Each(n, [](std::size_t i) { return Instance(Named("P" + std::to_string(i))); }));
       }},
      {"PropertiesOfAnInstance", 500,
       [](std::size_t n) {
         return Response(Instance(Each(n, [](std::size_t i) { return Named("P" + std::to_string(i)); })));
       }},
      {"PropertiesWithNamesMadeToCollide", 1000,
       [](std::size_t n) { return Response(Instance(Each(n, [](std::size_t i) { return Named(LatinName(i)); }))); }},
      {"ElementsOfAnArray", 1000,
       [](std::size_t n) {
         return Response(Instance("<PROPERTY.ARRAY NAME=\"A\" TYPE=\"string\"><VALUE.ARRAY>" +
                                  Repeated("<VALUE>v</VALUE>", n) + "</VALUE.ARRAY></PROPERTY.ARRAY>"));
       }},
      {"LengthOfAValue", 20000, [](std::size_t n) { return Response(Instance(Property(std::string(n, 'x')))); }},
      {"EntitiesInAValue", 4000, [](std::size_t n) { return Response(Instance(Property(Repeated("&amp;", n)))); }},
      {"CharactersOfThreeBytes", 5000,
       [](std::size_t n) { return Response(Instance(Property(Repeated("\xE2\x82\xAC", n)))); }},
      {"LengthOfAnAttribute", 20000,
       [](std::size_t n) { return Response(Instance("<PROPERTY NAME=\"S\" TYPE=\"" + std::string(n, 'x') + "\"/>")); }},
      {"LengthOfAName", 10000, [](std::size_t n) { return Response(Instance(Named(std::string(n, 'x')))); }},
      {"AttributesOfAnElement", 1000,
       [](std::size_t n) {
         return Response(Instance("<PROPERTY NAME=\"S\" TYPE=\"string\"" +
                                  Each(n, [](std::size_t i) { return " a" + std::to_string(i) + "=\"\""; }) + "/>"));
       }},
      {"EntitiesInAttributes", 1000,
       [](std::size_t n) {
         return Response(Instance("<PROPERTY NAME=\"S\" TYPE=\"string\"" + Repeated(" a=\"&lt;\"", n) + "/>"));
       }},
      {"Nesting", 10000, [](std::size_t n) { return Response(Repeated("<A>", n)); }},
      {"Comments", 2000, [](std::size_t n) { return Response(Repeated("<!-- c -->", n) + Instance("")); }},
      {"DashesInAComment", 10000, [](std::size_t n) { return Response("<!-- " + Repeated("- ", n) + "-->"); }},
      {"CDataWithoutEnd", 10000, [](std::size_t n) { return Response("<![CDATA[" + Repeated("]]", n)); }},
      {"LineEnds", 20000, [](std::size_t n) { return Response(std::string(n, '\n') + "<A/>"); }},
      {"Keys", 100,
       [](std::size_t n) {
         return Response(R"(<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME="C">)" +
                         Each(n,
                              [](std::size_t i) {
                                return "<KEYBINDING NAME=\"K" + std::to_string(i) +
                                       "\"><KEYVALUE>v</KEYVALUE></KEYBINDING>";
                              }) +
                         R"(</INSTANCENAME><INSTANCE CLASSNAME="C"/></VALUE.NAMEDINSTANCE>)");
       }},
      {"Qualifiers", 400,
       [](std::size_t n) {
         return Response(Instance(Each(
             n, [](std::size_t i) { return "<QUALIFIER NAME=\"Q" + std::to_string(i) + R"(" TYPE="boolean"/>)"; })));
       }},
      {"LengthOfAnEmbeddedInstance", 300,
       [](std::size_t n) {
         return Response(Instance(
             R"(<PROPERTY NAME="E" TYPE="string" EmbeddedObject="instance"><VALUE>&lt;INSTANCE CLASSNAME="C"&gt;)" +
             Each(
                 n,
                 [](std::size_t i) { return "&lt;PROPERTY NAME=\"P" + std::to_string(i) + R"(" TYPE="uint8"/&gt;)"; }) +
             "&lt;/INSTANCE&gt;</VALUE></PROPERTY>"));
       }},
      {"BytesOfABody", 10000,
       [](std::size_t n) {
         return kHead + ("Content-Length: " + std::to_string(n)) + "\r\n\r\n" + std::string(n, 'x');
       },
       [](const std::string& text) { ReadHttp(text, 100); }},
      {"BytesThatComeOneByOne", 4000,
       [](std::size_t n) {
         return kHead + ("Content-Length: " + std::to_string(n)) + "\r\n\r\n" + std::string(n, 'x');
       },
       [](const std::string& text) { ReadHttp(text, 1); }},
      {"BytesUntilTheEnd", 10000, [](std::size_t n) { return kHead + ("\r\n" + std::string(n, 'x')); },
       [](const std::string& text) { ReadHttp(text, 100); }},
      {"ChunksOfOneByte", 2000,
       [](std::size_t n) {
         return kHead + ("Transfer-Encoding: chunked\r\n\r\n" + Repeated("1\r\nx\r\n", n)) + "0\r\n\r\n";
       },
       [](const std::string& text) { ReadHttp(text, 100); }},
      {"Headers", 95, [](std::size_t n) { return kHead + Repeated("A: b\r\n", n) + "Content-Length: 0\r\n\r\n"; },
       [](const std::string& text) { ReadHttp(text, 100); }},
      {"FoldsOfAHeader", 1000,
       [](std::size_t n) { return kHead + ("A: b\r\n" + Repeated(" c\r\n", n)) + "Content-Length: 0\r\n\r\n"; },
       [](const std::string& text) { ReadHttp(text, 100); }},
      {"InterimResponses", 400,
       [](std::size_t n) {
         return Repeated("HTTP/1.1 100 Continue\r\nA: b\r\n\r\n", n) + kHead + "Content-Length: 0\r\n\r\n";
       },
       [](const std::string& text) { ReadHttp(text, 100); }},
  };
  return rows;
}

/// Of one run. Allocations and bytes are the same each time; time is the least of several runs, as everything else that
/// the machine does only adds to it.
struct Cost {
  std::size_t allocations = 0;
  std::size_t peakBytes = 0;
  double seconds = HUGE_VAL;
};

double ThreadSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  constexpr double kNano = 1e-9;
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * kNano;
}

void Measure(const Row& row, const std::string& text, Cost& cost) {
  Orvane::testing::RestartMemoryCount();
  const double begin = ThreadSeconds();
  row.read(text);
  cost.seconds = std::min(cost.seconds, ThreadSeconds() - begin);
  cost.allocations = Orvane::testing::Allocations();
  cost.peakBytes = Orvane::testing::PeakBytes();
}

class Work : public ::testing::TestWithParam<Row> {};

TEST_P(Work, TenTimesTheInputCostsAtMostTwelveTimesTheWork) {
  const Row& row = GetParam();
  const std::string small = row.make(row.count);
  const std::string large = row.make(row.count * kTimes);
  ASSERT_GT(large.size(), small.size() * 6) << "the frame is too large a part of it";
  const double growth = static_cast<double>(large.size()) / static_cast<double>(small.size());
  Cost ofSmall;
  Cost ofLarge;
  // Until the machine lets both run undisturbed. Work that grows with the square would be a hundred times as much, and
  // no number of runs would help.
  constexpr int kRuns = 40;
  const auto ratio = [&] { return ofLarge.seconds / ofSmall.seconds; };
  for (int run = 0; run < kRuns && (run < 3 || ratio() > kMostTime); ++run) {
    for (int i = 0; i < 3; ++i) Measure(row, small, ofSmall);
    Measure(row, large, ofLarge);
  }
  const double most = kMost / static_cast<double>(kTimes) * growth;
  EXPECT_LE(ofLarge.allocations, static_cast<std::size_t>(most * static_cast<double>(ofSmall.allocations + 1)));
  // A buffer that doubles holds up to three times what it needs while it grows, and one and a half times at least.
  constexpr double kDoubling = 2;
  EXPECT_LE(ofLarge.peakBytes, static_cast<std::size_t>(kDoubling * most * static_cast<double>(ofSmall.peakBytes)));
  EXPECT_LE(ratio(), kMostTime);

  constexpr double kPercent = 100;
  std::ostringstream line;
  line << "fault | Work | " << row.name << " | ten times the input: " << std::round(ratio() * kPercent) / kPercent
       << " times the time, " << ofSmall.allocations << " and " << ofLarge.allocations << " allocations | "
       << std::round(ofLarge.seconds * 1e5) / 1e2 << " ms of the processor | " << ofLarge.peakBytes / 1024
       << " KiB for " << large.size() / 1024 << " KiB | " << (HasFailure() ? "FAILED" : "ok") << '\n';
  std::cout << line.str() << std::flush;
}

INSTANTIATE_TEST_SUITE_P(Wire, Work, ::testing::ValuesIn(Rows()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Pegasus::wire
