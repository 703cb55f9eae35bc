// How fast the transform of real sound is, beside the library that does other sizes: both of one size one after the
// other. The argument is the size.

#include "qoc/dsp/spectrum/RealFFT.h"

#include <benchmark/benchmark.h>
#include <kiss_fftr.h>

#include <cmath>
#include <complex>
#include <vector>

namespace {

struct Buffers {
    explicit Buffers(std::size_t size) : time(size), spectrum(size / 2 + 1) {
        for (std::size_t i = 0; i < size; ++i)
            time[i] = std::sin(0.1F * static_cast<float>(i * i % size));
    }

    std::vector<float> time;
    std::vector<std::complex<float>> spectrum;
};

void RunForward(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const qoc::dsp::RealFFT fft(size);
    Buffers buffers(size);
    for (auto _ : state) {
        fft.Forward(buffers.time, buffers.spectrum);
        benchmark::ClobberMemory();
    }
}

void RunInverse(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const qoc::dsp::RealFFT fft(size);
    Buffers buffers(size);
    fft.Forward(buffers.time, buffers.spectrum);
    for (auto _ : state) {
        fft.Inverse(buffers.spectrum, buffers.time);
        benchmark::ClobberMemory();
    }
}

void RunKissForward(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    kiss_fftr_state* const plan = kiss_fftr_alloc(static_cast<int>(size), 0, nullptr, nullptr);
    Buffers buffers(size);
    for (auto _ : state) {
        kiss_fftr(plan, buffers.time.data(), reinterpret_cast<kiss_fft_cpx*>(buffers.spectrum.data()));
        benchmark::ClobberMemory();
    }
    kiss_fftr_free(plan);
}

void RunKissInverse(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    kiss_fftr_state* const plan = kiss_fftr_alloc(static_cast<int>(size), 1, nullptr, nullptr);
    Buffers buffers(size);
    buffers.spectrum.assign(buffers.spectrum.size(), {0.5F, 0.25F});
    for (auto _ : state) {
        kiss_fftri(plan, reinterpret_cast<const kiss_fft_cpx*>(buffers.spectrum.data()), buffers.time.data());
        benchmark::ClobberMemory();
    }
    kiss_fftr_free(plan);
}

} // namespace

int main(int argc, char** argv) {
    for (int size = 64; size <= 65536; size *= 2) {
        benchmark::RegisterBenchmark("fft/forward", RunForward)->Arg(size);
        benchmark::RegisterBenchmark("kissfft/forward", RunKissForward)->Arg(size);
        benchmark::RegisterBenchmark("fft/inverse", RunInverse)->Arg(size);
        benchmark::RegisterBenchmark("kissfft/inverse", RunKissInverse)->Arg(size);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
