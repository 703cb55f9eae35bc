#include "workbench/window/RenderController.h"

#include "krocore/FilePath.h"
#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "krocore/Units.h"
#include "workbench/commands/ProblemText.h"
#include "workbench/commands/TextOfSound.h"

#include <exception>
#include <utility>

namespace workbench {

RenderController::RenderController(Session& session, StatusLine& status) : fSession(session), fStatus(status) {
}

void RenderController::StartOrCancel() {
    if (fJob)
        fJob->Cancel();
    else
        Start({});
}

void RenderController::Start(const RenderJob::Wishes& wishes) {
    try {
        RenderJob::Task task = fSession.TaskToRender();
        task.wishes = wishes;
        fJob = std::make_unique<RenderJob>(std::move(task));
        fShownPercent = -1;
        ShowProgress();
    } catch (const std::exception& error) {
        fStatus.ShowProblem(krocore::ToUTF16(ProblemText(error)));
    }
}

void RenderController::Follow(TransportBar& bar) {
    if (fJob && fJob->IsOver()) {
        ShowOutcome(fJob->GetOutcome());
        fJob.reset();
    }
    if (fJob) ShowProgress();
    bar.SetRendering(IsRendering());
}

void RenderController::ShowProgress() {
    const int percent = static_cast<int>(krocore::PercentOfFraction(fJob->PartDone()));
    if (percent == fShownPercent) return;
    fShownPercent = percent;
    fStatus.ShowNews(krocore::ReplacePlaceholders(krocore::Localize("$$$/Workbench/Rendering=Rendering: @0 %"),
                                                  {krocore::FormatNumber(percent, 0)}));
}

void RenderController::ShowOutcome(const RenderJob::Outcome& outcome) {
    if (!outcome.problem.empty()) {
        fStatus.ShowProblem(krocore::ToUTF16(outcome.problem));
    } else if (outcome.file.empty()) {
        fStatus.ShowNews(krocore::Localize("$$$/Workbench/RenderCancelled=Rendering was cancelled; no file was made."));
    } else if (outcome.clipping.samples > 0) {
        ShowClipping(outcome);
    } else {
        fStatus.ShowNews(krocore::ReplacePlaceholders(krocore::Localize("$$$/Workbench/Rendered=Rendered @0"),
                                                      {krocore::ToUTF16(krocore::PathText(outcome.file))}));
    }
}

void RenderController::ShowClipping(const RenderJob::Outcome& outcome) {
    constexpr double kSafePeak = -1; // dB
    const auto text = krocore::ReplacePlaceholders(
        krocore::Localize("$$$/Workbench/RenderedClipped=Rendered @0: @1"),
        {krocore::ToUTF16(krocore::PathText(outcome.file.filename())), ClippingText(outcome.clipping)});
    const auto again = [this](RenderJob::Wishes wishes) {
        return [this, wishes] {
            if (!fJob) Start(wishes);
        };
    };
    fStatus.ShowProblem(text, {{krocore::Localize("$$$/Workbench/RenderFloat=Render Again in 32-Bit Float"),
                                again({.format = qohost::SampleFormat::kFloat, .peakDecibels = {}})},
                               {krocore::Localize("$$$/Workbench/RenderNormalized=Render Again with the Peak at -1 dB"),
                                again({.format = {}, .peakDecibels = kSafePeak})}});
}

} // namespace workbench
