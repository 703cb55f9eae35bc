#include "qocui/module/Session.h"

#include "kroui/limner/CairoSupplier.h"
#include "qocui/module/Module.h"

#include <memory>

namespace qocui::module {

namespace {

int sSessions = 0;
// Null while the program's own supplier is in use.
std::unique_ptr<kroui::limner::CairoSupplier> sSharedSupplier;

} // namespace

Session::Session() {
    if (GetDrawSupplier() == nullptr) {
        sSharedSupplier = std::make_unique<kroui::limner::CairoSupplier>();
        Initialize(sSharedSupplier.get());
    }
    ++sSessions;
}

Session::~Session() {
    if (--sSessions > 0 || !sSharedSupplier) return;
    Terminate();
    sSharedSupplier.reset();
}

const kroui::limner::SupplierInterface& Session::Supplier() const {
    return *GetDrawSupplier();
}

} // namespace qocui::module
