// Start tags that an answer repeats are not read again. An instance must not be decoded otherwise for what stands
// before it: each comes out as it does alone, and what is wrong with it is found in the same place.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Pegasus/Client/CIMClientException.h"
#include "thrown.h"
#include "wire/response_reader.h"

namespace Pegasus::wire {
namespace {

using test::Catch;
using test::Thrown;

constexpr std::uint32_t kMessageId = 1000;

std::string Response(const std::vector<std::string>& instances) {
  std::string text =
      R"(<?xml version="1.0"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1000" PROTOCOLVERSION="1.0">)"
      R"(<SIMPLERSP><IMETHODRESPONSE NAME="EnumerateInstances"><IRETURNVALUE>)";
  for (const std::string& instance : instances) {
    text += R"(<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME="CIM_Foo"/><INSTANCE CLASSNAME="CIM_Foo">)" + instance +
            "</INSTANCE></VALUE.NAMEDINSTANCE>";
  }
  return text + "</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

Array<CIMInstance> Read(const std::vector<std::string>& instances) {
  return ReadEnumerateInstances(Response(instances), kMessageId);
}

std::string Text(const std::string& name, const std::string& value) {
  return "<PROPERTY NAME=\"" + name + "\" TYPE=\"string\"><VALUE>" + value + "</VALUE></PROPERTY>";
}

/// Instances that differ from each other in one thing or another.
std::vector<std::string> Instances() {
  const std::string a = Text("A", "1");
  const std::string b = Text("B", "2");
  const std::string c = Text("C", "3");
  return {
      "",
      a,
      a + b + c,
      a + c,
      b + a + c,
      c + b,
      Text("a", "1") + Text("b", "2"),
      R"(<PROPERTY NAME="A" TYPE="uint16"><VALUE>7</VALUE></PROPERTY>)" + b + c,
      R"(<PROPERTY NAME="A" TYPE="string"/>)" + b,
      R"(<PROPERTY NAME="A" TYPE="string"></PROPERTY>)" + b,
      R"(<PROPERTY NAME="A" TYPE="string"><VALUE/></PROPERTY>)" + b,
      R"(<PROPERTY NAME="A" TYPE="string"><VALUE> &lt;&#65; x </VALUE></PROPERTY>)" + b,
      R"(<PROPERTY NAME="A" TYPE="string"><VALUE><![CDATA[ <x> ]]></VALUE></PROPERTY>)" + b,
      R"(<PROPERTY NAME="A" TYPE="string"> <!-- what --> <VALUE>y<!-- z --></VALUE> </PROPERTY> )" + b,
      R"(<PROPERTY NAME="A" TYPE="string"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER>)"
      R"(<VALUE>q</VALUE></PROPERTY>)" +
          b,
      R"(<PROPERTY NAME="&#65;" TYPE="string"><VALUE>1</VALUE></PROPERTY>)" + b,
      R"(<PROPERTY NAME="A" CLASSORIGIN="CIM_Foo" PROPAGATED="true" TYPE="string"><VALUE>1</VALUE></PROPERTY>)" + b,
      R"(<PROPERTY.ARRAY NAME="A" TYPE="uint8"><VALUE.ARRAY><VALUE>1</VALUE><VALUE>2</VALUE></VALUE.ARRAY>)"
      R"(</PROPERTY.ARRAY>)" +
          b,
      R"(<PROPERTY.ARRAY NAME="A" TYPE="uint8" ARRAYSIZE="3"></PROPERTY.ARRAY>)" + b,
      R"(<PROPERTY.ARRAY NAME="A" TYPE="uint8" ARRAYSIZE="1"><VALUE.ARRAY><VALUE>1</VALUE></VALUE.ARRAY>)"
      R"(</PROPERTY.ARRAY>)" +
          b,
      R"(<PROPERTY.REFERENCE NAME="A" REFERENCECLASS="CIM_Bar"><VALUE.REFERENCE><CLASSNAME NAME="CIM_Bar"/>)"
      R"(</VALUE.REFERENCE></PROPERTY.REFERENCE>)" +
          b,
      R"(<PROPERTY NAME="A" TYPE="string" EmbeddedObject="instance"><VALUE>&lt;INSTANCE CLASSNAME="CIM_Bar"&gt;)"
      R"(&lt;PROPERTY NAME="A" TYPE="string"&gt;&lt;VALUE&gt;in&lt;/VALUE&gt;&lt;/PROPERTY&gt;&lt;/INSTANCE&gt;)"
      R"(</VALUE></PROPERTY>)" +
          b,
      R"(<QUALIFIER NAME="Q" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER>)" + a + b,
  };
}

TEST(RepeatedTags, EveryInstanceIsReadAsItIsAlone) {
  const std::vector<std::string> instances = Instances();
  for (std::size_t i = 0; i < instances.size(); ++i) {
    const CIMInstance alone = Read({instances[i]})[0];
    for (std::size_t k = 0; k < instances.size(); ++k) {
      // The one before, the same again, and once more behind another.
      const Array<CIMInstance> read = Read({instances[k], instances[i], instances[i], instances[k], instances[i]});
      ASSERT_EQ(read.size(), 5U);
      for (const Uint32 at : {1U, 2U, 4U}) {
        EXPECT_TRUE(read[at].identical(alone)) << instances[k] << " before " << instances[i];
      }
      for (Uint32 property = 0; property < alone.getPropertyCount(); ++property) {
        const CIMName& name = alone.getProperty(property).getName();
        EXPECT_EQ(read[2].getProperty(property).getName().getString(), name.getString());
        EXPECT_EQ(read[2].findProperty(name), property);
      }
    }
  }
}

TEST(RepeatedTags, DuplicatesAreFoundWhateverStoodBefore) {
  const std::string a = Text("A", "1");
  const std::string b = Text("B", "2");
  const std::string c = Text("C", "3");
  const Thrown duplicate{"CIMClientXmlException", "Semantic error: on line 1: duplicate property"};
  const std::vector<std::vector<std::string>> cases = {
      {a + b + c, a + b + a},  // the third is another one than before
      {a + b + c, a + b + c + a},
      {a + b + c, c + b + c},
      {a + b + c, c, c + b + c},  // nothing is left of the first when the third comes
      {a + b + c, a + Text("b", "2") + b},
      {a + b, b + b},
      {"", a + a},
  };
  for (const auto& instances : cases) {
    EXPECT_EQ(Catch([&] { Read(instances); }), duplicate) << instances.back();
  }
}

TEST(RepeatedTags, DuplicatesAreFoundAmongMoreThanAreRemembered) {
  std::string many;
  for (int i = 0; i < 1000; ++i) many += Text("P" + std::to_string(i), "v");
  EXPECT_EQ(Read({many, many, many})[2].getPropertyCount(), 1000U);
  for (const char* const name : {"P0", "P255", "P256", "P257", "P999"}) {
    EXPECT_THROW(Read({many, many + Text(name, "v")}), CIMClientXmlException) << name;
  }
}

TEST(RepeatedTags, WhatIsWrongIsFoundInTheSamePlace) {
  const std::string begin = "\n<PROPERTY NAME=\"A\" TYPE=\"uint8\">\n<VALUE>1</VALUE>\n</PROPERTY>\n";
  const std::string other = "\n<PROPERTY NAME=\"X\" TYPE=\"uint8\">\n<VALUE>1</VALUE>\n</PROPERTY>\n";
  const std::vector<std::string> broken = {
      "\n<PROPERTY NAME=\"A\" TYPE=\"uint8\">\n<VALUE>256</VALUE>\n</PROPERTY>\n",
      "\n<PROPERTY NAME=\"A\" TYPE=\"uint8\">\n<VALUE>1</VALU>\n</PROPERTY>\n",
      "\n<PROPERTY NAME=\"A\" TYPE=\"uint8\">\n<VALUE>&bad;</VALUE>\n</PROPERTY>\n",
      "\n<PROPERTY NAME=\"A\" TYPE=\"uint8\">\n<VALUE>1</VALUE>\n<VALUE>2</VALUE></PROPERTY>\n",
      "\n<PROPERTY NAME=\"A\" TYPE=\"uint8\">\n<VALUE>1</VALUE>\n</PROPERTY.ARRAY>\n",
      "\n<PROPERTY NAME=\"A\" TYPE=\"uint8\">\n<VALUE>1</VALUE>\n</PROPERTY>\n<PROPERTY NAME=\"1\" TYPE=\"uint8\">",
      "\n<PROPERTY NAME=\"A\" TYPE=\"uint8\">\n<VALUE>1",
  };
  for (const std::string& text : broken) {
    const Thrown expected = Catch([&] { Read({other, text}); });
    EXPECT_FALSE(expected.name.empty()) << text;
    EXPECT_EQ(Catch([&] { Read({begin, text}); }), expected) << text;
  }
}

TEST(RepeatedTags, WhatIsKeptOutlivesTheAnswer) {
  CIMInstance instance;
  CIMProperty property;
  String text;
  {
    const std::string a = Text("A", "first") + Text("B", "second");
    Array<CIMInstance> read = Read(std::vector<std::string>(2000, a));
    instance = read[1000];
    property = read[1500].getProperty(1);
    text = read[1700].getProperty(0).getValue().toString();
  }
  EXPECT_EQ(instance.getProperty(1).getValue().toString(), "second");
  EXPECT_EQ(text, "first");
  // Its instance is gone, so it can be renamed and go into another one.
  property.setName("C");
  instance.addProperty(property);
  EXPECT_THROW(property.setName("D"), Exception);
  EXPECT_EQ(instance.getPropertyCount(), 3U);
  const CIMInstance copy = instance.clone();
  property.setValue(CIMValue(String("third")));
  EXPECT_EQ(instance.getProperty(2).getValue().toString(), "third");
  EXPECT_EQ(copy.getProperty(2).getValue().toString(), "second");
}

}  // namespace
}  // namespace Pegasus::wire
