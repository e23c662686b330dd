#include <benchmark/benchmark.h>

#include <thread>

#include "LoggingWrapper.h"
#include "Rows.h"

int main(int argumentCount, char** arguments) {
    benchmark::Initialize(&argumentCount, arguments);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments)) {
        return 2;
    }
    // What fails is told by its code.
    Tev::LoggingWrapper::instance().set_level(0);
    // A host has threads, and some of the C library's shortcuts are only for programs that never had one.
    std::thread([] {}).join();
    TevBench::addReadRows();
    TevBench::addLifecycleRows();
    TevBench::addCommonRows();
    TevBench::addAgentRows();
    TevBench::addExportRows();
    benchmark::RunSpecifiedBenchmarks();
    // What the rows hold goes before the libraries do.
    benchmark::ClearRegisteredBenchmarks();
    benchmark::Shutdown();
}
