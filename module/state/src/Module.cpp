#include "qocui/module/Module.h"

#include "ModuleEntry.h"
#include "krocore/debug/Contract.h"
#include "kroui/utility/ResourceManager.h"
#include "uit/ImageProvider.h"

#include <new>

namespace {

using qocui::module::kProcessAttach;
using qocui::module::kProcessDetach;

// The names under which contract violations of the slots are reported.
constexpr const char* kContractFile = "Module_WIN";
constexpr int kCreateManagerLine = 51;
constexpr int kDestroyManagerLine = 58;
constexpr int kGetManagerLine = 66;

// What the host has forgotten.
constexpr const char* kNoInstance = "the library's entry point has not run";
constexpr const char* kNotInitialised = "call qocui::module::Initialize(supplier) before anything is made of this "
                                        "library, and qocui::module::Terminate() after the last view is gone";

HINSTANCE sDLLInstance = nullptr;
kroui::utility::OS_ResourceManager* sResourceManager = nullptr;
const kroui::limner::SupplierInterface* sDrawSupplier = nullptr;
uit::ImageProvider* sImageProvider = nullptr;

void CreateResourceManager() {
    KROCORE_CHECK_INPUT_CONTRACT_ADVISED(sDLLInstance != nullptr, "sDLLInstance != 0", kContractFile,
                                         kCreateManagerLine, kNoInstance);
    sResourceManager = new (std::nothrow) kroui::utility::OS_ResourceManager(sDLLInstance);
}

void DestroyResourceManager() {
    KROCORE_CHECK_INPUT_CONTRACT_ADVISED(sResourceManager != nullptr, "sResourceManager != 0", kContractFile,
                                         kDestroyManagerLine, kNotInitialised);
    delete sResourceManager;
    sResourceManager = nullptr;
}

} // namespace

namespace qocui::module {

void Initialize(const kroui::limner::SupplierInterface* supplier) {
    sDrawSupplier = supplier;
    CreateResourceManager();
    sImageProvider = new (std::nothrow) uit::ImageProvider(GetResourceManager(), GetDrawSupplier());
}

void Terminate() {
    delete sImageProvider;
    sImageProvider = nullptr;
    DestroyResourceManager();
    sDrawSupplier = nullptr;
}

const kroui::limner::SupplierInterface* GetDrawSupplier() {
    return sDrawSupplier;
}

kroui::utility::OS_ResourceManager* GetResourceManager() {
    KROCORE_CHECK_INPUT_CONTRACT_ADVISED(sResourceManager != nullptr, "sResourceManager != 0", kContractFile,
                                         kGetManagerLine, kNotInitialised);
    return sResourceManager;
}

uit::ImageProvider* GetImageProvider() {
    return sImageProvider;
}

int ModuleEntered(HINSTANCE instance, unsigned long reason) {
    if (reason == kProcessAttach) sDLLInstance = instance;
    if (reason == kProcessDetach) sDLLInstance = nullptr;
    return 1;
}

HINSTANCE GetModuleInstance() {
    return krocore::ModuleFromAddress(reinterpret_cast<const void*>(&GetModuleInstance));
}

} // namespace qocui::module
