// Where the system calls no entry point of its own: loading and unloading the library call it from here.

#include "qocui/module/Module.h"

extern "C" const krocore::ModuleResourceTable kQoAudioComponentsUIResources;

namespace {

const krocore::ModuleRegistrar sRegistrar(kQoAudioComponentsUIResources,
                                          reinterpret_cast<const void*>(&qocui::module::GetModuleInstance));

// Before, and after, all other static objects of the library.
constexpr int kFirst = 101;

__attribute__((constructor(kFirst))) void Attach() {
    DllMain(&kQoAudioComponentsUIResources, 1, nullptr);
}

__attribute__((destructor(kFirst))) void Detach() {
    DllMain(&kQoAudioComponentsUIResources, 0, nullptr);
}

} // namespace
