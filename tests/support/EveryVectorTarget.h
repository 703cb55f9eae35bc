#pragma once

#include <hwy/targets.h>

#include <cstdint>
#include <string>

namespace test {

// Calls `check(name)` once for every kind of vectors (SIMD) that the program was compiled for and the processor has,
// each as if it were the best one.
template <typename Check>
void WithEveryVectorTarget(const Check& check) {
    struct Restore {
        ~Restore() { Choose(0); }
        static void Choose(std::int64_t targets) {
            hwy::SetSupportedTargetsForTest(targets);
            hwy::GetChosenTarget().DeInit();
        }
    } const restore;
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        Restore::Choose(target);
        check(std::string(hwy::TargetName(target)));
        Restore::Choose(0);
    }
}

} // namespace test
