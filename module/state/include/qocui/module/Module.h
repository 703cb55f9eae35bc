#pragma once

#include "krocore/ModuleResources.h"
#include "qocui/module/Export.h"

namespace kroui::limner {
class SupplierInterface;
}
namespace kroui::utility {
class OS_ResourceManager;
}
namespace uit {
class ImageProvider;
}

// The library's process-wide state: its own module, the drawing supplier that the host hands over, and the resource
// manager and image provider made for it. Main thread only; views live between Initialize and Terminate.
namespace qocui::module {

// Called once by the host before it asks for a view. The supplier stays the host's and outlives Terminate. A second
// call replaces what the first one made without destroying it.
QOCUI_API void Initialize(const kroui::limner::SupplierInterface* supplier);

// Called once by the host after it has released the last view. Without Initialize: an input contract violation.
QOCUI_API void Terminate();

// Null outside the initialised time.
const kroui::limner::SupplierInterface* GetDrawSupplier();

// Outside the initialised time: an input contract violation, then (if that returns) null.
kroui::utility::OS_ResourceManager* GetResourceManager();

// Null outside the initialised time.
uit::ImageProvider* GetImageProvider();

// This library's own module, found from the address of its code.
HINSTANCE GetModuleInstance();

} // namespace qocui::module

// The entry point. Process attach (1) keeps the instance, process detach (0) forgets it; TRUE for every reason.
extern "C" int QOCUI_ENTRY DllMain(HINSTANCE instance, unsigned long reason, void* reserved);
