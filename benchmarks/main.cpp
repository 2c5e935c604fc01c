// Times every contender in one run, after comparing their results, and prints a table of times relative to this
// library's. Takes the arguments of Google Benchmark.

#include <benchmark/benchmark.h>

#include "ratio_reporter.h"
#include "work.h"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmarks::addCoding();
    benchmarks::addActivity();
    benchmarks::addReplay();
    benchmarks::addBoards();
    benchmarks::addSmallThings();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmarks::printContactMemory();
    benchmark::Shutdown();
    return 0;
}
