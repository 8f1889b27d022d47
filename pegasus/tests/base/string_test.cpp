// Strings: UTF-8 at the borders, the recorded comparisons, shared buffers that stay independent, and every change.
#include <Pegasus/Common/String.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>

#include "thrown.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using test::Catch;
using test::ExpectedThrow;
using test::TextOf;
using test::Thrown;
using test::Utf8;
using test::Vector;

const Thrown kOutOfBounds{"IndexOutOfBoundsException", "index out of bounds"};

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

std::string Streamed(const String& text) {
  std::ostringstream out;
  out << text;
  return out.str();
}

class Utf8Vector : public testing::TestWithParam<Vector> {};
TEST_P(Utf8Vector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const std::string bytes = FromHex(record.at("inputHex").get<std::string>());
  String text;
  EXPECT_EQ(Catch([&] { text = String(bytes.c_str()); }), ExpectedThrow(record));
  EXPECT_EQ(Catch([&] { text.assign(bytes.data(), static_cast<Uint32>(bytes.size())); }), ExpectedThrow(record));
  if (record.contains("throws")) {
    EXPECT_EQ(text.size(), 0U);
    return;
  }
  ASSERT_EQ(text.size(), record.at("size").get<Uint32>());
  std::vector<unsigned> units;
  for (Uint32 i = 0; i < text.size(); ++i) {
    units.push_back(Uint16(text.getChar16Data()[i]));
  }
  EXPECT_EQ(units, record.at("units").get<std::vector<unsigned>>());
  EXPECT_EQ(Utf8(text), FromHex(record.at("cstringHex").get<std::string>()));
  EXPECT_EQ(Streamed(text), FromHex(record.at("streamHex").get<std::string>()));
}
INSTANTIATE_TEST_SUITE_P(Bytes, Utf8Vector, testing::ValuesIn(test::LoadVectors("strings_utf8.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

int Sign(int value) { return (value > 0 ? 1 : 0) - (value < 0 ? 1 : 0); }

class StringComparison : public testing::TestWithParam<Vector> {};
TEST_P(StringComparison, IsAsRecorded) {
  const auto& record = GetParam().record;
  const String a = TextOf(record.at("a"));
  const String b = TextOf(record.at("b"));
  const int order = record.at("compare").get<int>();
  EXPECT_EQ(Sign(String::compare(a, b)), order);
  EXPECT_EQ(Sign(String::compare(b, a)), -order);
  EXPECT_EQ(Sign(String::compareNoCase(a, b)), record.at("compareNoCase").get<int>());
  EXPECT_EQ(String::equal(a, b), record.at("equal").get<bool>());
  EXPECT_EQ(String::equalNoCase(a, b), record.at("equalNoCase").get<bool>());
  EXPECT_EQ(a == b, order == 0);
  EXPECT_EQ(a != b, order != 0);
  EXPECT_EQ(a < b, order < 0);
  EXPECT_EQ(a <= b, order <= 0);
  EXPECT_EQ(a > b, order > 0);
  EXPECT_EQ(a >= b, order >= 0);
  EXPECT_EQ(a == Utf8(b).c_str(), order == 0);
  EXPECT_EQ(Utf8(a).c_str() == b, order == 0);
}
INSTANTIATE_TEST_SUITE_P(Pairs, StringComparison, testing::ValuesIn(test::LoadVectors("strings_compare.json")),
                         test::VectorName<testing::TestParamInfo<Vector>>);

TEST(String, EveryCodePointSurvivesTheWayThroughUtf8) {
  for (const Uint32 point : {0x1U, 0x7FU, 0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
    Char16 units[2] = {Uint16(point), Uint16(0)};
    Uint32 n = 1;
    if (point >= 0x10000) {
      units[0] = Uint16(0xD800 + ((point - 0x10000) >> 10));
      units[1] = Uint16(0xDC00 + (point & 0x3FF));
      n = 2;
    }
    const String text(units, n);
    EXPECT_EQ(String(text.getCString()), text) << point;
  }
}

TEST(String, UnpairedSurrogatesBecomeTheReplacementCharacter) {
  const Char16 high(Uint16(0xD800));
  const Char16 low(Uint16(0xDC00));
  String text;
  text.append(high).append(high).append(low).append(low).append(Char16('x')).append(high);
  EXPECT_EQ(Utf8(text), "\xEF\xBF\xBD\xF0\x90\x80\x80\xEF\xBF\xBDx\xEF\xBF\xBD");
}

TEST(String, RefusesTheOtherInvalidSequences) {
  // Overlong in three and four bytes, 6-byte form, the bytes FE and FF, a lone continuation, sequences cut short.
  for (const char* bytes : {"\xE0\x80\x80", "\xF0\x80\x80\x80", "\xFC\x84\x80\x80\x80\x80", "\xFE", "\xFF", "\xBF",
                            "\xC3", "\xF0\x9F\x98", "\xF4\x90\x80\x80"}) {
    EXPECT_EQ(Catch([&] { String text(bytes); }).name, "Exception");
  }
  EXPECT_EQ(
      Catch([] { String text("plain ASCII of some length \xC3\xA9\xFF"); }).message,
      "The byte sequence starting at index 29 is not valid UTF-8 encoding: plain ASCII of some length \xC3\xA9 0xFF");
}

TEST(String, HoldsAMegabyteOfText) {
  const std::string bytes(1 << 20, 'x');
  const String text(bytes.c_str());
  EXPECT_EQ(text.size(), bytes.size());
  EXPECT_EQ(Utf8(text), bytes);
  std::string mixed = bytes;
  mixed += "\xE6\x97\xA5";
  EXPECT_EQ(Utf8(String(mixed.c_str())), mixed);
}

TEST(String, KeepsZeroUnitsThatACountGives) {
  const String text("a\0b", 3);
  EXPECT_EQ(text.size(), 3U);
  EXPECT_EQ(Uint16(text[1]), 0U);
  EXPECT_FALSE(text == "a");
}

TEST(String, RefusesNullPointers) {
  const Thrown nullPointer{"NullPointer", "null pointer"};
  const char* const noText = nullptr;
  const Char16* const noUnits = nullptr;
  EXPECT_EQ(Catch([&] { String text(noText); }), nullPointer);
  EXPECT_EQ(Catch([&] { String text(noText, 2); }), nullPointer);
  EXPECT_EQ(Catch([&] { String text(noUnits); }), nullPointer);
  EXPECT_EQ(Catch([&] { String text(noUnits, 2); }), nullPointer);
  EXPECT_EQ(Catch([&] { static_cast<void>(String("a") == noText); }), nullPointer);
}

TEST(String, IsMadeFromPartsOfOthers) {
  const String text("abcdef");
  EXPECT_EQ(String(text, 3), "abc");
  EXPECT_EQ(String(text, 6), text);
  EXPECT_EQ(String(text, 60), text);
  EXPECT_EQ(String(text, 0), "");
  EXPECT_EQ(String("abcdef", 2), "ab");
  EXPECT_EQ(String(text.getChar16Data() + 2, 2), "cd");
  EXPECT_EQ(String(text.getChar16Data() + 2), "cdef");
}

TEST(String, AssignsEveryForm) {
  const String text("abc");
  String target("x");
  EXPECT_EQ(target.assign(text), "abc");
  EXPECT_EQ(target.assign("de"), "de");
  EXPECT_EQ(target.assign("def", 1), "d");
  EXPECT_EQ(target.assign(text.getChar16Data()), "abc");
  EXPECT_EQ(target.assign(text.getChar16Data(), 2), "ab");
  const String& same = target;
  target = same;
  EXPECT_EQ(target, "ab");
  target.assign(target.getChar16Data() + 1);
  EXPECT_EQ(target, "b");
}

TEST(String, CopiesAreIndependent) {
  String original("abc");
  String copy(original);
  copy[0] = Char16('x');
  EXPECT_EQ(original, "abc");
  EXPECT_EQ(copy, "xbc");
  copy = original;
  original.append("d");
  EXPECT_EQ(copy, "abc");
  copy.toLower();
  copy.remove(0, 1);
  EXPECT_EQ(original, "abcd");
  String empty;
  String emptyCopy(empty);
  emptyCopy[0] = Char16('!');
  EXPECT_EQ(Uint16(static_cast<const String&>(empty)[0]), 0U);
  EXPECT_EQ(Uint16(static_cast<const String&>(String::EMPTY)[0]), 0U);
}

TEST(String, CopiesMayBeUsedFromSeveralThreads) {
  const String shared("shared text of the threads");
  std::vector<std::thread> threads;
  std::vector<Uint32> sizes(4);
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    threads.emplace_back([copy = shared, &size = sizes[i]] {
      for (int round = 0; round < 1000; ++round) {
        String mine(copy);
        mine.append("!");
        size = mine.size();
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(shared, "shared text of the threads");
  EXPECT_EQ(sizes, std::vector<Uint32>(4, shared.size() + 1));
}

TEST(String, IndexesUpToTheTerminatingZero) {
  String text("ab");
  const String& constant = text;
  EXPECT_EQ(Uint16(text[2]), 0U);
  EXPECT_EQ(Uint16(constant[2]), 0U);
  EXPECT_TRUE(constant[1] == 'b');
  EXPECT_EQ(Catch([&] { text[3] = Char16('x'); }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { static_cast<void>(constant[3]); }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { static_cast<void>(text[PEG_NOT_FOUND]); }), kOutOfBounds);
}

TEST(String, InvalidUtf8IsQuotedFromTheBeginningOfACharacterOn) {
  // The quotation begins 32 bytes before the fault, which is the second half of the first character here.
  const std::string before(31, 'x');
  const std::string text = "\xC3\xA9" + before + "\xFF";
  EXPECT_EQ(
      Catch([&] { const String string(text.c_str()); }),
      (Thrown{"Exception", "The byte sequence starting at index 33 is not valid UTF-8 encoding: " + before + " 0xFF"}));
}

TEST(String, ToLowerOfNothingIsNothing) {
  String empty;
  empty.toLower();
  EXPECT_EQ(empty.size(), 0U);
}

TEST(CStringText, AssignmentToItselfChangesNothing) {
  CString text = String("text").getCString();
  CString& same = text;
  text = same;
  EXPECT_STREQ(text, "text");
}

TEST(String, AppendsItselfAndPartsOfItself) {
  String text("abc");
  text.append(text);
  EXPECT_EQ(text, "abcabc");
  text.append(text.getChar16Data() + 1, 2);
  EXPECT_EQ(text, "abcabcbc");
  text.reserveCapacity(100);
  text.append(text.getChar16Data(), 3);
  EXPECT_EQ(text, "abcabcbcabc");
  text.append(String());
  EXPECT_EQ(text.size(), 11U);
  EXPECT_TRUE(text.getChar16Data()[11] == Char16());
}

TEST(String, RemovesParts) {
  String text("hello");
  text.remove(1, 2);
  EXPECT_EQ(text, "hlo");
  text.remove(3, 0);
  text.remove(1);
  EXPECT_EQ(text, "h");
  EXPECT_EQ(Catch([&] { text.remove(0, 2); }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { text.remove(2, 0); }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { text.remove(2); }), kOutOfBounds);
  EXPECT_EQ(text, "h");
}

TEST(String, CutsSubStringsToWhatThereIs) {
  const String text("hello");
  EXPECT_EQ(text.subString(1, 3), "ell");
  EXPECT_EQ(text.subString(2), "llo");
  EXPECT_EQ(text.subString(3, 100), "lo");
  EXPECT_EQ(text.subString(5), "");
  EXPECT_EQ(text.subString(50, 2), "");
}

TEST(String, FindsUnitsAndTexts) {
  const String text("hello");
  EXPECT_EQ(text.find("l"), 2U);
  EXPECT_EQ(text.find("lo"), 3U);
  EXPECT_EQ(text.find(String("")), PEG_NOT_FOUND);
  EXPECT_EQ(String().find(String("")), PEG_NOT_FOUND);
  EXPECT_EQ(text.find("hellos"), PEG_NOT_FOUND);
  EXPECT_EQ(text.find(3, Char16('l')), 3U);
  EXPECT_EQ(text.find(4, Char16('l')), PEG_NOT_FOUND);
  EXPECT_EQ(text.find(400, Char16('l')), PEG_NOT_FOUND);
  EXPECT_EQ(text.reverseFind(Char16('l')), 3U);
  EXPECT_EQ(text.reverseFind(Char16('x')), PEG_NOT_FOUND);
}

TEST(String, ComparesTheFirstUnits) {
  EXPECT_EQ(String::compare("abc", "abd", 2), 0);
  EXPECT_LT(String::compare("abc", "abd", 3), 0);
  EXPECT_LT(String::compare("ab", "abd", 3), 0);
  EXPECT_EQ(String::compare("a", "b", 0), 0);
}

TEST(String, FormatsAtAnyLength) {
  String text("x");
  text.appendPrintf("%d-%s", 5, "y");
  EXPECT_EQ(text, "x5-y");
  const std::string longText(5000, 'z');
  text.appendPrintf("%s", longText.c_str());
  EXPECT_EQ(text.size(), 5004U);
  text.appendPrintf("%s", "");
  EXPECT_EQ(text.size(), 5004U);
}

TEST(String, ReservesWithoutChangingTheText) {
  String text;
  text.reserveCapacity(10);
  EXPECT_EQ(text, "");
  text.append("abc");
  String copy(text);
  text.reserveCapacity(500);
  EXPECT_EQ(text, "abc");
  text.clear();
  EXPECT_EQ(text.size(), 0U);
  EXPECT_EQ(copy, "abc");
}

TEST(CString, OwnsShortAndLongTexts) {
  EXPECT_EQ(static_cast<const char*>(CString()), nullptr);
  const std::string longText(500, 'q');
  for (const std::string& expected :
       {std::string(), std::string("short"), std::string(47, 'a'), std::string(48, 'b'), longText}) {
    const CString text = String(expected.c_str()).getCString();
    CString copy(text);
    EXPECT_EQ(std::string(copy), expected);
    EXPECT_NE(static_cast<const char*>(copy), static_cast<const char*>(text));
    CString moved(std::move(copy));
    EXPECT_EQ(std::string(moved), expected);
    CString assigned = String("other").getCString();
    assigned = moved;
    EXPECT_EQ(std::string(assigned), expected);
    const CString& same = assigned;
    assigned = same;
    EXPECT_EQ(std::string(assigned), expected);
    assigned = CString();
    EXPECT_EQ(static_cast<const char*>(assigned), nullptr);
    assigned = std::move(moved);
    EXPECT_EQ(std::string(assigned), expected);
  }
}

TEST(Char16, ComparesWithUnitsAndCharacters) {
  EXPECT_EQ(Uint16(Char16()), 0U);
  Char16 unit(Uint16(65));
  EXPECT_TRUE(unit == 'A');
  EXPECT_TRUE('A' == unit);
  EXPECT_TRUE(unit != 'B');
  EXPECT_TRUE('B' != unit);
  EXPECT_TRUE(unit == Char16('A'));
  unit = Uint16(233);
  EXPECT_TRUE(unit != Char16('A'));
  EXPECT_TRUE(unit == '\xE9');
}

}  // namespace
}  // namespace Pegasus
