// The program orvane: reads a blade chassis through its management module.
#include "cli/app.h"

int main(int argc, char** argv) { return Orvane::cli::RunApp(argc, argv); }
