// What whole programs cost until there is something to see, in CPU time: the first panel of a process, and the
// workbench from its start to its first picture. Each time counts a process of its own; run with
// --benchmark_repetitions.

#include "SourcePaths.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

// What a program prints, read as a number.
double NumberFrom(const std::string& command) {
    std::FILE* const output = popen(command.c_str(), "r");
    if (output == nullptr) throw std::runtime_error("cannot run " + command);
    double number = 0;
    const bool isRead = std::fscanf(output, "%lf", &number) == 1;
    if (pclose(output) != 0 || !isRead) throw std::runtime_error(command + " failed");
    return number;
}

void FirstPanel(benchmark::State& state, const char* arguments) {
    for (auto _ : state)
        state.SetIterationTime(1e-6 * NumberFrom(std::string(QO_FIRST_PANEL_PROGRAM) + arguments));
}

// Of several processes the mean.
void RunOften(benchmark::internal::Benchmark* bench) {
    bench->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
}

void Process_FirstPanelOf26Nodes(benchmark::State& state) {
    FirstPanel(state, "");
}
BENCHMARK(Process_FirstPanelOf26Nodes)->Apply(RunOften);

void Process_FirstPanelOf93Nodes(benchmark::State& state) {
    FirstPanel(state, " faders");
}
BENCHMARK(Process_FirstPanelOf93Nodes)->Apply(RunOften);

double SecondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

[[noreturn]] void BecomeWorkbench() {
    setenv("LD_PRELOAD", QO_FIRST_PICTURE_LIBRARY, 1);
    execl(QO_WORKBENCH_PROGRAM, QO_WORKBENCH_PROGRAM, static_cast<char*>(nullptr));
    _exit(EXIT_FAILURE);
}

// Loading the program is counted in.
void Workbench_StartToFirstPicture(benchmark::State& state) {
    if (std::getenv("DISPLAY") == nullptr) return state.SkipWithError("needs a screen: run it under xvfb-run");
    for (auto _ : state) {
        const pid_t child = fork();
        if (child == 0) BecomeWorkbench();
        int status = 0;
        rusage usage{};
        if (wait4(child, &status, 0, &usage) != child || status != 0)
            return state.SkipWithError("the workbench showed nothing");
        state.SetIterationTime(SecondsOf(usage.ru_utime) + SecondsOf(usage.ru_stime));
    }
}
BENCHMARK(Workbench_StartToFirstPicture)->Apply(RunOften);

} // namespace
