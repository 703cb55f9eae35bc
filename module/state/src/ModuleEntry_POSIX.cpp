// Where the system calls no entry point of its own: loading and unloading the library call it from here.

#include "ModuleEntry.h"

extern "C" int DllMain(HINSTANCE instance, unsigned long reason, void* /*reserved*/) {
    return qocui::module::ModuleEntered(instance, reason);
}

extern "C" const krocore::ModuleResourceTable kQoAudioComponentsUIResources;

namespace {

const krocore::ModuleRegistrar sRegistrar(kQoAudioComponentsUIResources,
                                          reinterpret_cast<const void*>(&qocui::module::GetModuleInstance));

// Before, and after, all other static objects of the library.
constexpr int kFirst = 101;

__attribute__((constructor(kFirst))) void Attach() {
    DllMain(&kQoAudioComponentsUIResources, qocui::module::kProcessAttach, nullptr);
}

__attribute__((destructor(kFirst))) void Detach() {
    DllMain(&kQoAudioComponentsUIResources, qocui::module::kProcessDetach, nullptr);
}

} // namespace
