#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace qoc::dsp {

// A window that makes an impulse response of a length out of a spectrum of that many bins, and what it does to the
// spectrum: each bin is spread over its neighbours with the weights of a kernel, the window's transform. Immutable.
class FIRWindow {
public:
    // `shape` gives the window at -1...1. `size` is even. Allocates.
    FIRWindow(const std::function<double(double)>& shape, std::size_t size);

    std::size_t Size() const noexcept { return fValues.size(); }
    // From -Size() / 2 on, the middle at Size() / 2.
    const std::vector<float>& Values() const noexcept { return fValues; }

    // The weight of a bin at a distance of so many bins; 0 beyond Reach().
    double Kernel(double distance) const noexcept;
    // Bins beyond which a bin has no influence worth counting.
    double Reach() const noexcept;
    // How near, in bins, two details of a spectrum may be without running into one.
    double Resolution() const noexcept { return fResolution; }

private:
    std::vector<float> fValues;
    std::vector<float> fKernel; // in steps of a fraction of a bin
    double fResolution = 0;
};

} // namespace qoc::dsp
