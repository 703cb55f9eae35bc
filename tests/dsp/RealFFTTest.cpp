#include "qoc/dsp/spectrum/RealFFT.h"

#include "EveryVectorTarget.h"

#include <gtest/gtest.h>

#include <kiss_fftr.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

using namespace qoc::dsp;

namespace {

using Spectrum = std::vector<std::complex<float>>;

std::vector<float> Noise(std::size_t size) {
    std::mt19937 generator(static_cast<unsigned>(size));
    std::uniform_real_distribution<float> sample(-1, 1);
    std::vector<float> noise(size);
    std::ranges::generate(noise, [&] { return sample(generator); });
    return noise;
}

Spectrum Forward(const RealFFT& fft, std::span<const float> time, std::size_t parts = 1) {
    Spectrum spectrum(fft.Bins());
    for (std::size_t part = 0; part < parts; ++part)
        fft.Forward(time, spectrum, {part, parts});
    return spectrum;
}

std::vector<float> Inverse(const RealFFT& fft, std::span<const std::complex<float>> spectrum, std::size_t parts = 1) {
    std::vector<float> time(fft.Size());
    for (std::size_t part = 0; part < parts; ++part)
        fft.Inverse(spectrum, time, {part, parts});
    return time;
}

// Of the difference against what is expected, in decibels of the powers.
template <typename Values>
double ErrorOf(const Values& values, const Values& expected) {
    double error = 0;
    double power = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        error += std::norm(values[i] - expected[i]);
        power += std::norm(expected[i]);
    }
    return 10 * std::log10(error / power);
}

template <typename Values>
bool HaveSameBits(const Values& a, const Values& b) {
    return std::memcmp(a.data(), b.data(), a.size() * sizeof(a[0])) == 0;
}

TEST(RealFFT, TransformsACosineIntoItsBinAndBack) {
    constexpr std::size_t kSize = 64;
    const RealFFT fft(kSize);
    std::vector<float> time(kSize);
    for (std::size_t i = 0; i < kSize; ++i)
        time[i] = static_cast<float>(0.25 + std::cos(2 * std::numbers::pi * 5 * static_cast<double>(i) / kSize + 0.5));
    const Spectrum spectrum = Forward(fft, time);
    // Half the size times the amplitude, at the cosine's angle; the mean times the size at bin 0.
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin) {
        const std::complex<double> expected = bin == 5 ? std::polar(32.0, 0.5) : bin == 0 ? 16.0 : 0.0;
        EXPECT_NEAR(spectrum[bin].real(), expected.real(), 1e-5) << bin;
        EXPECT_NEAR(spectrum[bin].imag(), expected.imag(), 1e-5) << bin;
    }
    const std::vector<float> back = Inverse(fft, spectrum);
    for (std::size_t i = 0; i < kSize; ++i)
        EXPECT_NEAR(back[i], time[i], 1e-6);
}

TEST(RealFFT, IsTheSumThatItIsDefinedAs) {
    for (const std::size_t size : {2, 6, 32, 64, 96, 128, 256, 512, 1024, 1920}) {
        const std::vector<float> time = Noise(size);
        Spectrum expected(size / 2 + 1);
        for (std::size_t bin = 0; bin < expected.size(); ++bin) {
            std::complex<double> sum;
            for (std::size_t i = 0; i < size; ++i) {
                const double turns = static_cast<double>(i * bin % size) / static_cast<double>(size);
                sum += std::polar(double{time[i]}, -2 * std::numbers::pi * turns);
            }
            expected[bin] = std::complex<float>(sum);
        }
        EXPECT_LT(ErrorOf(Forward(RealFFT(size), time), expected), -135) << size;
    }
}

// A library of others' is the measure for the long ones.
TEST(RealFFT, AgreesWithAnotherTransformAtEveryPowerOfTwo) {
    for (std::size_t size = 64; size <= 131072; size *= 2) {
        const RealFFT fft(size);
        const std::vector<float> time = Noise(size);
        kiss_fftr_state* const plan = kiss_fftr_alloc(static_cast<int>(size), 0, nullptr, nullptr);
        Spectrum expected(fft.Bins());
        kiss_fftr(plan, time.data(), reinterpret_cast<kiss_fft_cpx*>(expected.data()));
        kiss_fftr_free(plan);
        const Spectrum spectrum = Forward(fft, time);
        EXPECT_LT(ErrorOf(spectrum, expected), -130) << size;
        EXPECT_LT(ErrorOf(Inverse(fft, spectrum), time), -130) << size;
    }
}

// The ends of a spectrum are real: what else stands there is left out.
TEST(RealFFT, InverseLeavesOutWhatNoRealSoundHas) {
    for (const std::size_t size : {64, 96}) {
        const RealFFT fft(size);
        Spectrum spectrum = Forward(fft, Noise(size));
        const std::vector<float> expected = Inverse(fft, spectrum);
        spectrum.front() += std::complex<float>(0, 5);
        spectrum.back() += std::complex<float>(0, 5);
        EXPECT_LT(ErrorOf(Inverse(fft, spectrum), expected), -130) << size;
    }
}

TEST(RealFFT, PartsGiveTheBitsOfTheWhole) {
    for (const std::size_t size : {64, 96, 128, 256, 512, 1024, 2048, 4096, 8192, 32768}) {
        const RealFFT fft(size);
        const std::vector<float> time = Noise(size);
        const Spectrum spectrum = Forward(fft, time);
        const std::vector<float> back = Inverse(fft, spectrum);
        for (const std::size_t parts : {2, 3, 7, 16, 61, 1000}) {
            EXPECT_TRUE(HaveSameBits(Forward(fft, time, parts), spectrum)) << size << " in " << parts;
            EXPECT_TRUE(HaveSameBits(Inverse(fft, spectrum, parts), back)) << size << " in " << parts;
        }
    }
}

// Sounds don't depend on the machine.
TEST(RealFFT, HasTheSameBitsOnEveryKindOfProcessor) {
    for (std::size_t size = 64; size <= 8192; size *= 2) {
        const RealFFT fft(size);
        const std::vector<float> time = Noise(size);
        const Spectrum spectrum = Forward(fft, time);
        const std::vector<float> back = Inverse(fft, spectrum);
        test::WithEveryVectorTarget([&](const std::string& target) {
            EXPECT_TRUE(HaveSameBits(Forward(fft, time), spectrum)) << size << " with " << target;
            EXPECT_TRUE(HaveSameBits(Inverse(fft, spectrum), back)) << size << " with " << target;
        });
    }
}

} // namespace
