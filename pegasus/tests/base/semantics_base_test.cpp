// Recorded behaviour of the foundation types, case by case: each case of the record is written out as the calls its
// name describes, and must print or throw what was recorded.
#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/CIMDateTime.h>
#include <Pegasus/Common/CIMName.h>
#include <Pegasus/Common/CIMType.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>
#include <type_traits>

#include "semantics_owner.h"
#include "thrown.h"
#include "vector_file.h"

namespace Pegasus {
namespace {

using test::SemanticsOwner;
using test::Utf8;
using test::Vector;

using Out = std::ostringstream;
using Case = std::function<void(Out&)>;

Array<Uint32> OneElement() { return {1, 1}; }

void Print(Out& out, const Array<Uint32>& array) {
  for (Uint32 i = 0; i < array.size(); ++i) {
    out << array[i];
  }
}

void RunArrayOperations(Out& out) {
  Array<Uint32> array(1, 3);
  array.prepend(1);
  array.insert(1, 2);
  array.grow(2, 9);
  Array<Uint32> other;
  array.swap(other);
  out << array.size() << ' ' << other.size() << ' ';
  Print(out, other);
}

void RunWriteByEarlierReference(Out& out) {
  Array<Uint32> original = OneElement();
  Uint32& element = original[0];
  const Array<Uint32> copy(original);
  element = 9;
  out << static_cast<const Array<Uint32>&>(original)[0] << ' ' << copy[0];
}

void RunCatchAsStandard(Out& out) {
  try {
    throw CIMException(CIM_ERR_FAILED, "m");
  } catch (const std::exception&) {
    out << "std";
  } catch (const Exception&) {
    out << "not std";
  }
}

void RunSlice(Out& out) {
  try {
    try {
      throw CIMException(CIM_ERR_FAILED, "m");
    } catch (const CIMException& exception) {
      throw Exception(exception);  // copies the base part alone
    }
  } catch (const Exception& exception) {
    out << exception.getMessage();
  }
}

void RunExceptionCopy(Out& out) {
  CIMException original(CIM_ERR_FAILED, "m");
  const CIMException copy(original);
  out << copy.getMessage();
  original = CIMException(CIM_ERR_FAILED, "n");
  out << original.getMessage() << copy.getMessage();
}

const std::map<std::string, Case>& Cases() {
  static const std::map<std::string, Case> kCases = {
      {"Array default size/capacity",
       [](Out& out) {
         const Array<Uint32> array;
         out << array.size() << " cap " << array.getCapacity();
       }},
      {"Array[] out of range (non-const)",
       [](Out&) {
         Array<Uint32> array = OneElement();
         array[1] = 5;
       }},
      {"Array[] out of range (const)",
       [](Out& out) {
         const Array<Uint32> array = OneElement();
         out << array[1];
       }},
      {"Array remove(0,3) of 1 (remove(0,2) not checked)",
       [](Out& out) {
         Array<Uint32> array = OneElement();
         array.remove(0, 3);
         out << array.size();
       }},
      {"Array insert out of range",
       [](Out&) {
         Array<Uint32> array = OneElement();
         array.insert(2, 5);
       }},
      {"Array(3) initial values",
       [](Out& out) {
         const Array<Uint32> array(3);
         out << array.size() << ':';
         Print(out, array);
       }},
      {"Array(2,x)", [](Out& out) { Print(out, Array<Uint32>(2, 7)); }},
      {"Array copy, write to original by ref obtained before copy", RunWriteByEarlierReference},
      {"Array append self via appendArray",
       [](Out& out) {
         Array<Uint32> array(2);
         array.appendArray(array);
         out << array.size();
       }},
      {"Array clear",
       [](Out& out) {
         Array<Uint32> array = OneElement();
         array.clear();
         out << array.size();
       }},
      {"Array prepend/insert/grow/swap", RunArrayOperations},
      {"Array getData on empty non-null?", [](Out& out) { out << (Array<Uint32>().getData() != nullptr); }},
      {"CIMName() isNull", [](Out& out) { out << CIMName().isNull() << " [" << CIMName().getString() << ']'; }},
      {"CIMName()==CIMName()", [](Out& out) { out << (CIMName() == CIMName()); }},
      {"CIMName()==CIMName(A)", [](Out& out) { out << (CIMName() == CIMName("A")); }},
      {"CIMNamespaceName() toString", [](Out& out) { out << CIMNamespaceName().isNull(); }},
      {"CIMDateTime() toString/isInterval",
       [](Out& out) { out << CIMDateTime().toString() << ' ' << CIMDateTime().isInterval(); }},
      {"CIMDateTime clear",
       [](Out& out) {
         CIMDateTime time("20260131235959.123456+060");
         time.clear();
         out << time.toString();
       }},
      {"CIMDateTime + interval",
       [](Out& out) { out << (CIMDateTime("20260131235959.123456+060") + CIMDateTime(1000000, true)).toString(); }},
      {"String(const char*) null",
       [](Out& out) {
         const char* const nothing = nullptr;
         out << String(nothing);
       }},
      {"String(\"abcdef\",3)", [](Out& out) { out << String("abcdef", 3); }},
      {"String index out of range +5",
       [](Out&) {
         String text("abc");
         text[text.size() + 5] = Char16('x');
       }},
      {"String const index out of range",
       [](Out& out) {
         const String text("abc");
         out << Uint16(text[text.size() + 5]);
       }},
      {"String find char/str/missing",
       [](Out& out) {
         const String text("hello");
         out << text.find(Char16('l')) << ' ' << text.find(3, Char16('l')) << ' ' << text.find("ell") << ' '
             << text.find("lo") << ' ' << text.reverseFind(Char16('l')) << ' ' << text.find("xyz");
       }},
      {"String subString",
       [](Out& out) {
         const String text("hello");
         out << text.subString(1, 3) << ' ' << text.subString(2) << " [" << text.subString(9) << ']';
       }},
      {"String subString n too big", [](Out& out) { out << String("hello").subString(3, 100); }},
      {"String remove",
       [](Out& out) {
         String text("hello");
         text.remove(1, 2);
         out << text << ' ';
         text.remove(1);
         out << text;
       }},
      {"String remove out of range",
       [](Out&) {
         String text("hello");
         text.remove(3, 100);
       }},
      {"String append/operator+",
       [](Out& out) {
         String text("ab");
         text.append("c");
         text.append(Char16('d'));
         out << text + "e" + String("fg");
       }},
      {"String toLower non-ASCII",
       [](Out& out) {
         String text("ÀÉZ");
         text.toLower();
         out << text.getCString();
       }},
      {"String appendPrintf",
       [](Out& out) {
         String text("x");
         text.appendPrintf("%d-%s", 5, "y");
         out << text;
       }},
      {"String stream", [](Out& out) { out << String("abc"); }},
      {"String copy on write",
       [](Out& out) {
         const String original("abc");
         String copy(original);
         copy.append("d");
         out << original << copy;
       }},
      {"String::EMPTY", [](Out& out) { out << String::EMPTY.size(); }},
      {"String getChar16Data terminated", [](Out& out) { out << Uint16(String("abc").getChar16Data()[3]); }},
      {"CString default", [](Out& out) { out << (static_cast<const char*>(CString()) == nullptr); }},
      {"CString copy/assign",
       [](Out& out) {
         const CString first = String("a").getCString();
         CString second(first);
         out << second;
         second = String("b").getCString();
         out << second;
       }},
      {"Char16 compare", [](Out& out) { out << (Char16('a') == 'a') << (Char16('a') != Char16('b')); }},
      {"String(const Char16*)",
       [](Out& out) {
         const Char16 units[] = {Char16('h'), Char16('i'), Char16()};
         out << String(units) << String(units, 1);
       }},
      {"enum CIMType first/last",
       [](Out& out) {
         out << CIMTYPE_BOOLEAN << ' ' << CIMTYPE_STRING << ' ' << CIMTYPE_DATETIME << ' ' << CIMTYPE_REFERENCE << ' '
             << CIMTYPE_OBJECT << ' ' << CIMTYPE_INSTANCE;
       }},
      {"catch as std::exception?", RunCatchAsStandard},
      {"Exception copy", RunExceptionCopy},
      {"CIMException default",
       [](Out& out) { out << CIMException().getCode() << '[' << CIMException().getMessage() << ']'; }},
      {"slice CIMException to Exception", RunSlice},
  };
  return kCases;
}

class SemanticsVector : public testing::TestWithParam<Vector> {};
TEST_P(SemanticsVector, IsAsRecorded) {
  const auto& record = GetParam().record;
  const auto found = Cases().find(record.at("case").get<std::string>());
  ASSERT_NE(found, Cases().end()) << "a recorded case is not written out here";
  Out out;
  EXPECT_EQ(test::Catch([&] { found->second(out); }), test::ExpectedThrow(record));
  EXPECT_EQ(out.str(), record.at("result").get<std::string>());
}
INSTANTIATE_TEST_SUITE_P(Foundation, SemanticsVector, testing::ValuesIn(test::LoadSemantics(SemanticsOwner::kBase)),
                         test::VectorName<testing::TestParamInfo<Vector>>);

TEST(SemanticsOfTheFoundation, EveryCaseIsOnRecord) {
  EXPECT_EQ(test::LoadSemantics(SemanticsOwner::kBase).size(), Cases().size());
}

}  // namespace
}  // namespace Pegasus
