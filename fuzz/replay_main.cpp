// The program around a fuzz target in builds without libFuzzer: replays a corpus folder.
#include <iostream>

#include "replay.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: " << argv[0] << " CORPUS_FOLDER\n";
    return 2;
  }
  return Orvane::fuzz::Replay(argv[1], std::cout, std::cerr);
}
