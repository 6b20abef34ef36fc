// The main() of every benchmark program without a main of its own.
#include "BenchRunner.h"

int main(int argc, char** argv) { return bench::runBenchmarks(argc, argv); }
