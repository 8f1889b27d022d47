// Links against both libraries of the stand-in, and runs only where it finds them again.
#include <Pegasus/Client/CIMClient.h>

#include <iostream>

int main() {
  std::cout << Pegasus::ClientPart() << " and " << Pegasus::CommonPart() << std::endl;
  return 0;
}
