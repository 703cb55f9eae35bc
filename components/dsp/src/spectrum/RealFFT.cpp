#include "qoc/dsp/spectrum/RealFFT.h"

#include "spectrum/PowerOfTwoFFT.h"

#include <kiss_fftr.h>

#include <new>
#include <optional>

namespace qoc::dsp {

namespace {

static_assert(sizeof(kiss_fft_cpx) == sizeof(std::complex<float>));

struct FreePlan {
    void operator()(kiss_fftr_state* plan) const noexcept { kiss_fftr_free(plan); }
};
using Plan = std::unique_ptr<kiss_fftr_state, FreePlan>;

Plan MakePlan(std::size_t size, bool inverse) {
    Plan plan(kiss_fftr_alloc(static_cast<int>(size), inverse ? 1 : 0, nullptr, nullptr));
    if (plan == nullptr) throw std::bad_alloc();
    return plan;
}

} // namespace

// Of powers of two our own, of other sizes the library's.
struct RealFFT::Plans {
    explicit Plans(std::size_t size) {
        if (PowerOfTwoFFT::Takes(size)) {
            powerOfTwo.emplace(size);
            return;
        }
        forward = MakePlan(size, false);
        inverse = MakePlan(size, true);
    }

    std::optional<PowerOfTwoFFT> powerOfTwo;
    Plan forward;
    Plan inverse;
};

RealFFT::RealFFT(std::size_t size) : fSize(size), fPlans(std::make_unique<Plans>(size)) {
}

RealFFT::~RealFFT() = default;
RealFFT::RealFFT(RealFFT&& other) noexcept = default;
RealFFT& RealFFT::operator=(RealFFT&& other) noexcept = default;

void RealFFT::Forward(std::span<const float> time, std::span<std::complex<float>> spectrum, Part part) const noexcept {
    if (fPlans->powerOfTwo) return fPlans->powerOfTwo->Forward(time, spectrum, part);
    if (part.index + 1 < part.count) return;
    kiss_fftr(fPlans->forward.get(), time.data(), reinterpret_cast<kiss_fft_cpx*>(spectrum.data()));
}

void RealFFT::Inverse(std::span<const std::complex<float>> spectrum, std::span<float> time, Part part) const noexcept {
    if (fPlans->powerOfTwo) return fPlans->powerOfTwo->Inverse(spectrum, time, part);
    if (part.index + 1 < part.count) return;
    kiss_fftri(fPlans->inverse.get(), reinterpret_cast<const kiss_fft_cpx*>(spectrum.data()), time.data());
    const float scale = 1.0F / static_cast<float>(fSize);
    for (float& sample : time)
        sample *= scale;
}

} // namespace qoc::dsp
