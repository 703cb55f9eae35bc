#include "spectrum/PowerOfTwoFFT.h"

#include <bit>
#include <cmath>
#include <new>
#include <numbers>

namespace qoc::dsp {

namespace {

std::complex<double> Root(std::size_t turns, std::size_t of) {
    return std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(turns) / static_cast<double>(of));
}

} // namespace

bool PowerOfTwoFFT::Takes(std::size_t size) noexcept {
    return size >= kSmallest && std::has_single_bit(size);
}

PowerOfTwoFFT::PowerOfTwoFFT(std::size_t size) : fHalf(size / 2), fBuffers(hwy::AllocateAligned<float>(4 * fHalf)) {
    if (fBuffers == nullptr) throw std::bad_alloc();
    AddStages();
    AddRealTwiddles();
    AddForward();
    AddInverse();
}

void PowerOfTwoFFT::Forward(std::span<const float> time, std::span<std::complex<float>> spectrum,
                            RealFFT::Part part) noexcept {
    Run(fForward, {.soundIn = time.data(), .spectrumOut = reinterpret_cast<float*>(spectrum.data())}, part);
}

void PowerOfTwoFFT::Inverse(std::span<const std::complex<float>> spectrum, std::span<float> time,
                            RealFFT::Part part) noexcept {
    Run(fInverse, {.spectrumIn = reinterpret_cast<const float*>(spectrum.data()), .soundOut = time.data()}, part);
}

// The first two of radix 4, whose short runs have passes of their own; then as many of radix 8 as there can be.
void PowerOfTwoFFT::AddStages() {
    std::size_t length = fHalf;
    std::size_t stride = 1;
    const auto add = [&](std::size_t radix) {
        fStages.push_back({.radix = radix, .length = length, .stride = stride, .twiddles = fTwiddles.size()});
        AddTwiddles(fStages.back());
        length /= radix;
        stride *= radix;
    };
    add(4);
    add(4);
    while (length > 1) {
        const int bits = std::countr_zero(length);
        const bool isEven = bits % 3 == 2 || bits == 4;
        add(bits == 1 ? 2 : isEven ? 4 : 8);
    }
}

// By place and then by the butterfly's outputs, but for the first stage, which reads many places at once.
void PowerOfTwoFFT::AddTwiddles(const Stage& stage) {
    const std::size_t places = stage.length / stage.radix;
    if (stage.stride > 1) {
        for (std::size_t place = 0; place < places; ++place) {
            for (std::size_t output = 1; output < stage.radix; ++output) {
                const std::complex<float> factor(Root(place * output, stage.length));
                fTwiddles.insert(fTwiddles.end(), {factor.real(), factor.imag()});
            }
        }
        return;
    }
    for (std::size_t output = 1; output < stage.radix; ++output) {
        for (std::size_t place = 0; place < places; ++place)
            fTwiddles.push_back(static_cast<float>(Root(place * output, stage.length).real()));
        for (std::size_t place = 0; place < places; ++place)
            fTwiddles.push_back(static_cast<float>(Root(place * output, stage.length).imag()));
    }
}

// Halved: what they turn is a difference that counts half.
void PowerOfTwoFFT::AddRealTwiddles() {
    fRealTwiddles = fTwiddles.size();
    for (std::size_t bin = 0; bin < fHalf / 2; ++bin)
        fTwiddles.push_back(static_cast<float>(0.5 * Root(bin, 2 * fHalf).real()));
    for (std::size_t bin = 0; bin < fHalf / 2; ++bin)
        fTwiddles.push_back(static_cast<float>(0.5 * Root(bin, 2 * fHalf).imag()));
}

void PowerOfTwoFFT::AddForward() {
    for (std::size_t stage = 0; stage < fStages.size(); ++stage)
        fForward.push_back(PassOf(fStages[stage], (stage + 1) % 2, stage % 2, false));
    const std::size_t from = (fStages.size() + 1) % 2;
    fForward.push_back({.kind = FFTPass::Kind::kSpectrumOfComplex,
                        .count = fHalf,
                        .groups = fHalf / 2 / FFTPass::kGroup,
                        .twiddles = fTwiddles.data() + fRealTwiddles,
                        .fromReal = Reals(from),
                        .fromImaginary = Imaginaries(from)});
}

// The inverse transform is the transform with real and imaginary parts in each other's place, before and after it.
void PowerOfTwoFFT::AddInverse() {
    fInverse.push_back({.kind = FFTPass::Kind::kComplexOfSpectrum,
                        .count = fHalf,
                        .groups = fHalf / 2 / FFTPass::kGroup,
                        .twiddles = fTwiddles.data() + fRealTwiddles,
                        .toReal = Imaginaries(1),
                        .toImaginary = Reals(1)});
    for (std::size_t stage = 0; stage < fStages.size(); ++stage)
        fInverse.push_back(PassOf(fStages[stage], (stage + 1) % 2, stage % 2, true));
}

FFTPass PowerOfTwoFFT::PassOf(const Stage& stage, std::size_t from, std::size_t to, bool isInverse) {
    using Kind = FFTPass::Kind;
    const std::size_t count = fHalf / stage.radix;
    const bool isLast = stage.length == stage.radix;
    Kind kind = Kind::kMiddle;
    if (stage.stride == 1)
        kind = isInverse ? Kind::kFirst : Kind::kFirstOfSound;
    else if (isLast)
        kind = isInverse ? Kind::kLastToSound : Kind::kLast;
    else if (stage.stride == 4)
        kind = Kind::kSecond;
    return {.kind = kind,
            .radix = stage.radix,
            .stride = stage.stride,
            .count = count,
            .groups = count / FFTPass::kGroup,
            .twiddles = fTwiddles.data() + stage.twiddles,
            .fromReal = Reals(from),
            .fromImaginary = Imaginaries(from),
            .toReal = Reals(to),
            .toImaginary = Imaginaries(to)};
}

// All passes go through the same number of values, and count alike.
void PowerOfTwoFFT::Run(std::span<const FFTPass> passes, const FFTEnds& ends, RealFFT::Part part) noexcept {
    const std::size_t whole = fHalf; // of a pass
    const std::size_t begin = part.index * passes.size() * whole / part.count;
    const std::size_t end = (part.index + 1) * passes.size() * whole / part.count;
    for (std::size_t index = begin / whole; index < passes.size() && index * whole < end; ++index) {
        const std::size_t first = std::max(begin, index * whole) - index * whole;
        const std::size_t last = std::min(end - index * whole, whole);
        const std::size_t groups = passes[index].groups;
        RunFFTPass(passes[index], ends, first * groups / whole, last * groups / whole);
    }
}

} // namespace qoc::dsp
