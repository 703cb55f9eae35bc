#include "qoc/dsp/filters/FIRWindow.h"

#include "qoc/dsp/spectrum/RealFFT.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace qoc::dsp {

namespace {

constexpr std::size_t kStepsPerBin = 32;
constexpr std::size_t kFurthestBin = 256;
// A kernel ends where it stays below this part of its middle.
constexpr float kNegligible = 1e-5F;
// The kernel of a window of this size is that of all longer ones, but for what does not count.
constexpr std::size_t kLargestKernelSize = 1024;
// Where the kernel is as weak as this beside its middle, two details stand apart.
constexpr float kApart = 0.02F;

std::vector<float> Sampled(const std::function<double(double)>& shape, std::size_t size) {
    std::vector<float> values(size);
    // What lies at the very beginning has no partner at the end.
    for (std::size_t i = 1; i < size; ++i)
        values[i] = static_cast<float>(shape(2.0 * static_cast<double>(i) / static_cast<double>(size) - 1));
    return values;
}

} // namespace

FIRWindow::FIRWindow(const std::function<double(double)>& shape, std::size_t size) : fValues(Sampled(shape, size)) {
    const std::size_t kernelSize = std::min(size, kLargestKernelSize);
    const std::vector<float> values = Sampled(shape, kernelSize);
    const RealFFT transform(kernelSize * kStepsPerBin);
    std::vector<float> padded(transform.Size());
    std::copy(values.begin() + static_cast<std::ptrdiff_t>(kernelSize / 2), values.end(), padded.begin());
    std::copy_n(values.begin(), kernelSize / 2, padded.end() - static_cast<std::ptrdiff_t>(kernelSize / 2));
    std::vector<std::complex<float>> spectrum(transform.Bins());
    transform.Forward(padded, spectrum);
    const std::size_t furthest = std::min(kFurthestBin, kernelSize / 2 - 1);
    fKernel.resize(furthest * kStepsPerBin);
    for (std::size_t i = 0; i < fKernel.size(); ++i)
        fKernel[i] = spectrum[i].real() / static_cast<float>(kernelSize);
    const auto last = std::find_if(fKernel.rbegin(), fKernel.rend(),
                                   [this](float k) { return std::abs(k) > kNegligible * fKernel.front(); });
    fKernel.erase(last.base(), fKernel.end());
    const auto apart = std::ranges::find_if(fKernel, [this](float k) { return k < kApart * fKernel.front(); });
    fResolution = static_cast<double>(apart - fKernel.begin()) / kStepsPerBin;
}

double FIRWindow::Kernel(double distance) const noexcept {
    const double place = std::abs(distance) * kStepsPerBin;
    const auto index = static_cast<std::size_t>(place);
    if (index + 1 >= fKernel.size()) return 0;
    const double t = place - static_cast<double>(index);
    return fKernel[index] + t * (double{fKernel[index + 1]} - fKernel[index]);
}

double FIRWindow::Reach() const noexcept {
    return static_cast<double>(fKernel.size()) / kStepsPerBin;
}

} // namespace qoc::dsp
