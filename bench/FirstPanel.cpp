// The first panel of a process: opens one, paints it and prints the CPU time since the start of main, in microseconds.
// With an argument the panel of faders, else the form.

#include "PlainPanels.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"

#include <cstdio>
#include <ctime>

namespace {

double Microseconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return 1e6 * static_cast<double>(time.tv_sec) + 1e-3 * static_cast<double>(time.tv_nsec);
}

} // namespace

int main(int argc, char** /*argv*/) {
    const auto panel = argc > 1 ? bench::PlainPanel::kFaders : bench::PlainPanel::kForm;
    const std::string archive = bench::ArchiveOf(panel);
    const double begin = Microseconds();
    const kroui::limner::CairoSupplier supplier;
    kroui::ui::HeadlessWindow window(supplier, bench::SizeOf(panel));
    window.Window().SetContent(bench::OpenPlainPanel(archive));
    window.Paint();
    std::printf("%.1f\n", Microseconds() - begin);
    window.Window().SetContent(nullptr);
}
