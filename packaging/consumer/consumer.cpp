// Uses the installed library as a stranger would: asks a port where nobody listens and expects the code for that.
#include <orvane/cmm.h>
#include <orvane/log.h>

#include <iostream>

int main() {
  Orvane::Log::SetMinLogLevel(0);
  Orvane::CMMInventory inventory("127.0.0.1", 1, "user", "password");
  Orvane::CMMDataList list;
  const int code = inventory.GetCMMData(list);
  std::cout << "GetCMMData: " << code << ", " << list.Size() << " records\n";
  return code == 1 && list.Size() == 0 ? 0 : 1;
}
