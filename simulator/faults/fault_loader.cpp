// Reading of fault documents: every member is checked for form, and for whether it can ever have an effect, so that a
// misspelt name does not become a fault that nothing meets.
#include <algorithm>
#include <cctype>
#include <string_view>

#include "cim/class_repository.h"
#include "faults/fault.h"
#include "model/document_file.h"
#include "model/json_node.h"
#include "orvane/simulator/fault_plan.h"

namespace Orvane::simulator {

namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t kFormatVersion = 1;
constexpr std::uint64_t kHighestOccurrence = 1000000;
constexpr std::uint64_t kLongestSeconds = 31536000;  // a year
constexpr std::uint64_t kLongestRefusalSeconds = 86400;
constexpr std::uint64_t kLongestDelay = 600000;
constexpr std::uint64_t kMostBytes = 16777216;
constexpr std::uint64_t kLowestStatus = 200;
constexpr std::uint64_t kHighestStatus = 599;
constexpr std::uint64_t kHighestCimCode = 65535;
constexpr std::uint64_t kHighestBay = 99;
constexpr std::size_t kLongestHeadText = 16384;
constexpr std::string_view kInvokeMethod = "InvokeMethod";

constexpr std::string_view kOperations[] = {
    "EnumerateInstances", "EnumerateInstanceNames", "GetInstance",    "GetClass",
    "Associators",        "AssociatorNames",        "ModifyInstance", kInvokeMethod};

template <typename Value>
struct Named {
  std::string_view name;
  Value value;
};

constexpr Named<ChassisState> kStates[] = {{"jobRunning", ChassisState::kJobRunning},
                                           {"cmmRebooting", ChassisState::kCmmRebooting},
                                           {"moduleRestarting", ChassisState::kModuleRestarting}};

constexpr Named<TargetKind> kTargets[] = {{"cmm", TargetKind::kCmm},
                                          {"switch", TargetKind::kSwitch},
                                          {"passThru", TargetKind::kPassThru},
                                          {"node", TargetKind::kNode}};

// Whether the job stays new.
constexpr Named<bool> kStuckStates[] = {{"new", true}, {"running", false}};

template <typename Value, std::size_t Count>
Value OneOf(const JsonNode& node, const Named<Value> (&known)[Count]) {
  const std::string text = node.Text();
  std::string names;
  for (const Named<Value>& each : known) {
    if (each.name == text) return each.value;
    names += (names.empty() ? "" : ", ") + std::string(each.name);
  }
  node.Fail("must be one of " + names);
}

milliseconds Seconds(const JsonNode& node, std::uint64_t lowest, std::uint64_t highest) {
  return std::chrono::seconds(node.Number(lowest, highest));
}

void ReadOccurrence(const JsonNode& node, RequestRule& rule) {
  if (node.Json().is_string()) {
    if (node.Text() != "every") node.Fail("must be a number, \"every\", or an object with \"from\" and \"to\"");
    return;
  }
  if (!node.Json().is_object()) {
    rule.from = rule.to = node.Number(1, kHighestOccurrence);
    return;
  }
  node.RequireObject({"from", "to"});
  rule.from = node.Require("from").Number(1, kHighestOccurrence);
  const JsonNode to = node.Require("to");
  rule.to = to.Number(1, kHighestOccurrence);
  if (rule.to < rule.from) to.Fail("must not be below \"from\"");
}

void ReadClass(const JsonNode& node, RequestRule& rule) {
  rule.className = node.Text();
  if (FindClass(rule.className) == nullptr) node.Fail("the class '" + rule.className + "' is not known");
}

// A method implies that methods are meant; it must be one of the class, or of any class when none is named.
void ReadMethod(const JsonNode& node, RequestRule& rule) {
  rule.method = node.Text();
  if (!rule.operation.empty() && rule.operation != kInvokeMethod) {
    node.Fail("only requests of the operation InvokeMethod have a method");
  }
  rule.operation = kInvokeMethod;
  const auto has = [&](const ClassDeclaration& declaration) { return declaration.HasMethod(rule.method); };
  const bool known = rule.className.empty() ? std::any_of(AllClasses().begin(), AllClasses().end(), has)
                                            : has(*FindClass(rule.className));
  if (!known) {
    node.Fail((rule.className.empty() ? "no class" : "the class '" + rule.className + "'") +
              std::string(rule.className.empty() ? " has" : " does not have") + " the method '" + rule.method + "'");
  }
}

RequestRule ReadRequestRule(const JsonNode& node) {
  node.RequireObject({"operation", "class", "method", "occurrence"});
  RequestRule rule;
  if (const auto operation = node.Find("operation")) {
    rule.operation = operation->Text();
    if (std::find(std::begin(kOperations), std::end(kOperations), rule.operation) == std::end(kOperations)) {
      operation->Fail("the operation '" + rule.operation + "' is not known");
    }
  }
  if (const auto className = node.Find("class")) ReadClass(*className, rule);
  if (const auto method = node.Find("method")) ReadMethod(*method, rule);
  if (const auto occurrence = node.Find("occurrence")) ReadOccurrence(*occurrence, rule);
  return rule;
}

Circumstances ReadCircumstances(const JsonNode& node) {
  node.RequireObject({"afterSeconds", "during", "after"});
  Circumstances when;
  if (const auto seconds = node.Find("afterSeconds")) when.after = Seconds(*seconds, 0, kLongestSeconds);
  if (const auto during = node.Find("during")) when.during = OneOf(*during, kStates);
  if (const auto after = node.Find("after")) when.afterState = OneOf(*after, kStates);
  return when;
}

Refuse ReadRefuse(const JsonNode& node) {
  node.RequireObject({"kind", "seconds", "answerFirst"});
  Refuse effect;
  effect.duration = Seconds(node.Require("seconds"), 1, kLongestRefusalSeconds);
  if (const auto answerFirst = node.Find("answerFirst")) effect.answerFirst = answerFirst->Boolean();
  return effect;
}

// No head of an HTTP message holds more than 64 KiB in one place.
void CheckHeadLength(const JsonNode& node, const std::string& text) {
  if (text.size() > kLongestHeadText) {
    node.Fail("must not be longer than " + std::to_string(kLongestHeadText) + " bytes");
  }
}

// What goes into the head of an HTTP message must not end its line.
std::string ReadHeadText(const JsonNode& node) {
  std::string text = node.Text();
  CheckHeadLength(node, text);
  const auto isControl = [](char c) { return std::iscntrl(static_cast<unsigned char>(c)) != 0; };
  if (std::any_of(text.begin(), text.end(), isControl)) node.Fail("must not hold control characters");
  return text;
}

void CheckHeaderName(const JsonNode& node, const std::string& name) {
  const auto isToken = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
  };
  CheckHeadLength(node, name);
  if (name.empty() || !std::all_of(name.begin(), name.end(), isToken)) node.Fail("is no name of a header");
  for (const char* const own : {"Content-Length", "Transfer-Encoding", "Connection"}) {
    if (EqualNames(name, own)) node.Fail("is a header that the server sets itself");
  }
}

AnswerHttpStatus ReadHttpStatus(const JsonNode& node) {
  node.RequireObject({"kind", "status", "reason", "headers", "body"});
  AnswerHttpStatus effect;
  effect.status = static_cast<int>(node.Require("status").Number(kLowestStatus, kHighestStatus));
  if (const auto reason = node.Find("reason")) effect.reason = ReadHeadText(*reason);
  if (const auto headers = node.Find("headers")) {
    for (const auto& [name, value] : headers->Members()) {
      CheckHeaderName(value, name);
      effect.headers.emplace_back(name, ReadHeadText(value));
    }
  }
  if (const auto body = node.Find("body")) effect.body = body->Text();
  return effect;
}

AnswerCimError ReadCimError(const JsonNode& node) {
  node.RequireObject({"kind", "code", "description"});
  AnswerCimError effect;
  effect.code = static_cast<int>(node.Require("code").Number(1, kHighestCimCode));
  if (const auto description = node.Find("description")) effect.description = description->Text();
  return effect;
}

MalformedBody ReadMalformedBody(const JsonNode& node) {
  node.RequireObject({"kind", "body"});
  MalformedBody effect;
  if (const auto body = node.Find("body")) effect.text = body->Text();
  return effect;
}

JobStuck ReadJobStuck(const JsonNode& node) {
  node.RequireObject({"kind", "state"});
  const auto state = node.Find("state");
  return {state && OneOf(*state, kStuckStates)};
}

JobFails ReadJobFails(const JsonNode& node) {
  node.RequireObject({"kind", "text"});
  const JsonNode text = node.Require("text");
  if (text.Text().empty()) text.Fail("must not be empty");
  return {text.Text()};
}

TargetGone ReadTargetGone(const JsonNode& node) {
  node.RequireObject({"kind", "target", "bay"});
  return {OneOf(node.Require("target"), kTargets), static_cast<unsigned>(node.Require("bay").Number(1, kHighestBay))};
}

std::uint64_t ReadBytes(const JsonNode& node, const char* name) {
  node.RequireObject({"kind", name});
  return node.Require(name).Number(0, kMostBytes);
}

Delay ReadDelay(const JsonNode& node) {
  node.RequireObject({"kind", "milliseconds"});
  return {milliseconds(node.Require("milliseconds").Number(1, kLongestDelay))};
}

using Effect = std::variant<WireEffect, ChassisEffect>;

// A kind that has no members of its own.
template <typename Kind>
Kind ReadPlain(const JsonNode& node) {
  node.RequireObject({"kind"});
  return {};
}

constexpr Named<Effect (*)(const JsonNode&)> kKinds[] = {
    {"refuse", [](const JsonNode& node) -> Effect { return WireEffect(ReadRefuse(node)); }},
    {"dropBeforeAnswer", [](const JsonNode& node) -> Effect { return WireEffect(ReadPlain<DropBeforeAnswer>(node)); }},
    {"dropInAnswer",
     [](const JsonNode& node) -> Effect { return WireEffect(DropInAnswer{ReadBytes(node, "afterBytes")}); }},
    {"delay", [](const JsonNode& node) -> Effect { return WireEffect(ReadDelay(node)); }},
    {"httpStatus", [](const JsonNode& node) -> Effect { return WireEffect(ReadHttpStatus(node)); }},
    {"cimError", [](const JsonNode& node) -> Effect { return WireEffect(ReadCimError(node)); }},
    {"malformedBody", [](const JsonNode& node) -> Effect { return WireEffect(ReadMalformedBody(node)); }},
    {"truncatedBody",
     [](const JsonNode& node) -> Effect { return WireEffect(TruncatedBody{ReadBytes(node, "bytes")}); }},
    {"jobStuck", [](const JsonNode& node) -> Effect { return ChassisEffect(ReadJobStuck(node)); }},
    {"jobVanished", [](const JsonNode& node) -> Effect { return ChassisEffect(ReadPlain<JobVanished>(node)); }},
    {"jobFails", [](const JsonNode& node) -> Effect { return ChassisEffect(ReadJobFails(node)); }},
    {"cmmStaysDown", [](const JsonNode& node) -> Effect { return ChassisEffect(ReadPlain<CmmStaysDown>(node)); }},
    {"twoPrimaries", [](const JsonNode& node) -> Effect { return ChassisEffect(ReadPlain<TwoPrimaries>(node)); }},
    {"targetGone", [](const JsonNode& node) -> Effect { return ChassisEffect(ReadTargetGone(node)); }},
};

Effect ReadEffect(const JsonNode& node) {
  if (!node.Json().is_object()) node.Fail("must be an object");
  return OneOf(node.Require("kind"), kKinds)(node);
}

Fault ReadFault(const JsonNode& node) {
  node.RequireObject({"comment", "request", "when", "effect"});
  if (const auto comment = node.Find("comment")) comment->Text();
  Fault fault;
  fault.request = ReadRequestRule(node.Require("request"));
  if (const auto when = node.Find("when")) fault.when = ReadCircumstances(*when);
  fault.effect = ReadEffect(node.Require("effect"));
  return fault;
}

}  // namespace

FaultPlan::FaultPlan() : faults_(std::make_shared<const std::vector<Fault>>()) {}

FaultPlan ParseFaultPlan(const std::string& name, const std::string& text) {
  const nlohmann::json document = ParseDocument(name, text);
  const JsonNode root(document, name);
  root.RequireObject({"$schema", "formatVersion", "faults"});
  if (const auto schema = root.Find("$schema")) schema->Text();
  root.Require("formatVersion").Number(kFormatVersion, kFormatVersion);
  auto faults = std::make_shared<std::vector<Fault>>();
  for (const JsonNode& node : root.Require("faults").Elements()) faults->push_back(ReadFault(node));
  return FaultPlan(std::move(faults));
}

FaultPlan LoadFaultPlan(const std::string& path) { return ParseFaultPlan(path, ReadDocumentFile(path)); }

}  // namespace Orvane::simulator
