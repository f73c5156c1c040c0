// orva_bench: runs every registered suite, or only those named on the command line
// (e.g. `orva_bench frame_copy`). `orva_bench --list` prints the suite names.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "bench.h"

int main(int argc, char** argv) {
  // Registration order follows static initialisation, which differs between toolchains.
  auto& all = orva::bench::suites();
  std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) {
    return std::strcmp(a.name, b.name) < 0;
  });
  if (argc > 1 && std::strcmp(argv[1], "--list") == 0) {
    for (const auto& suite : orva::bench::suites()) std::printf("%s\n", suite.name);
    return 0;
  }
  int ran = 0;
  for (const auto& suite : orva::bench::suites()) {
    bool wanted = argc <= 1;
    for (int i = 1; i < argc; ++i) wanted = wanted || std::strcmp(argv[i], suite.name) == 0;
    if (!wanted) continue;
    std::printf("== %s\n", suite.name);
    std::fflush(stdout);
    suite.run();
    std::printf("\n");
    ++ran;
  }
  if (ran == 0) {
    std::fprintf(stderr, "orva_bench: no suite matched (try --list)\n");
    return 2;
  }
  return 0;
}
