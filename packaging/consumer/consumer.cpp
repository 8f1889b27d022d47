// Uses the installed library as a stranger would, with nothing but its own header: asks a port where nobody listens and
// expects the codes for that.
#include <orvane/cmm.h>
#include <orvane/log.h>

#include <iostream>
#include <string>

namespace {

constexpr char kHost[] = "127.0.0.1";
constexpr unsigned short kClosedPort = 1;

bool Expect(const char* what, int code, int expected) {
  std::cout << what << ": " << code << "\n";
  if (code != expected) std::cerr << what << " gave " << code << ", expected " << expected << "\n";
  return code == expected;
}

bool UsesInventory() {
  Orvane::CMMInventory inventory(kHost, kClosedPort, "user", "password");
  Orvane::CMMDataList list;
  return Expect("GetCMMData", inventory.GetCMMData(list), 1) && list.Size() == 0;
}

// The lookups speak in types of the CIM client, so this needs its headers and its library.
bool UsesBladeReseat() {
  Orvane::Cmm_Blade_Reseat reseat(kHost, kClosedPort, "user", "password", 0);
  Pegasus::CIMInstance element;
  std::string states;
  return Expect("GetManagedElementREF", reseat.GetManagedElementREF("node03", element), 1) &&
         element.isUninitialized() &&
         Expect("GetAvailableRequestedPowerStates", reseat.GetAvailableRequestedPowerStates("node03", states), 1) &&
         Expect("ParseError", reseat.ParseError(Pegasus::CIM_ERR_ACCESS_DENIED), 5) &&
         Expect("ReseatBlade", reseat.ReseatBlade(3), 9);
}

bool UsesModuleUpdates() {
  Orvane::EmptyLogMessageCallBack callback;
  Orvane::SwitchPassThruUpdate passThru(kHost, "user", "password", kClosedPort, "http://10.0.0.9/package.zip", 2);
  Orvane::SwitchPassThruUpdate copy(passThru);
  copy.SetLogCallBack(&callback);
  Orvane::SwitchIOModuleUpdate ioModule(kHost, "user", "password", kClosedPort, "http://10.0.0.9/package.zip", "", 1);
  ioModule.SetLogCallBack(&callback);
  return Expect("SwitchPassThruUpdate::Reboot", passThru.Reboot(2), 24) &&
         Expect("SwitchIOModuleUpdate::Reseat", ioModule.Reseat(1), 24);
}

}  // namespace

int main() {
  Orvane::Log::SetMinLogLevel(0);
  return UsesInventory() && UsesBladeReseat() && UsesModuleUpdates() ? 0 : 1;
}
