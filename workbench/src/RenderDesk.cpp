#include "workbench/RenderDesk.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"

#include <exception>

namespace workbench {

RenderDesk::RenderDesk(Session& session, StatusLine& status) : fSession(session), fStatus(status) {
}

void RenderDesk::StartOrCancel() {
    if (fJob)
        fJob->Cancel();
    else
        Start();
}

void RenderDesk::Start() {
    try {
        fJob = std::make_unique<RenderJob>(fSession.TaskToRender());
        fShownPercent = -1;
        ShowProgress();
    } catch (const std::exception& error) {
        fStatus.ShowProblem(krocore::ToUTF16(error.what()));
    }
}

void RenderDesk::Follow(TransportBar& bar) {
    if (fJob && fJob->IsOver()) {
        ShowOutcome(fJob->GetOutcome());
        fJob.reset();
    }
    if (fJob) ShowProgress();
    bar.SetRendering(IsRendering());
}

void RenderDesk::ShowProgress() {
    const int percent = static_cast<int>(fJob->PartDone() * 100);
    if (percent == fShownPercent) return;
    fShownPercent = percent;
    fStatus.ShowNews(krocore::ReplacePlaceholders(krocore::Localize("$$$/Workbench/Rendering=Rendering: @0 %"),
                                                  {krocore::FormatNumber(percent, 0)}));
}

void RenderDesk::ShowOutcome(const RenderJob::Outcome& outcome) {
    if (!outcome.problem.empty()) {
        fStatus.ShowProblem(krocore::ToUTF16(outcome.problem));
    } else if (outcome.file.empty()) {
        fStatus.ShowNews(krocore::Localize("$$$/Workbench/RenderCancelled=Rendering was cancelled; no file was made."));
    } else {
        fStatus.ShowNews(krocore::ReplacePlaceholders(krocore::Localize("$$$/Workbench/Rendered=Rendered @0"),
                                                      {krocore::ToUTF16(outcome.file.string())}));
    }
}

} // namespace workbench
