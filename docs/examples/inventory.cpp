#include <orvane/cmm.h>

#include <cstdlib>
#include <iostream>

// Usage: inventory HOST PORT USER, with the password in the environment variable CMM_PASSWORD.
int main(int argc, char** argv) {
  const char* password = std::getenv("CMM_PASSWORD");
  if (argc != 4 || password == nullptr) return 2;
  const auto port = static_cast<unsigned short>(std::atoi(argv[2]));  // 0: the standard ports
  Orvane::CMMInventory inventory(argv[1], port, argv[3], password);

  Orvane::ChassisInfo chassis;
  Orvane::CIMIODataList switches;
  if (inventory.GetChassisInfo(chassis) != 0 || inventory.GetIOModuleData(switches) != 0) {
    std::cerr << "the inventory failed; the log on standard error says why\n";
    return 1;
  }
  std::cout << "chassis " << chassis.Name << ", serial number " << chassis.SerialNumber << "\n";
  for (std::size_t i = 0; i < switches.Size(); ++i) {
    const Orvane::Physicallnfo& vpd = switches.Get(i).Physical;
    std::cout << "switch in bay " << vpd.SlotNumber << ": " << vpd.ProductName << "\n";
  }
  return 0;
}
