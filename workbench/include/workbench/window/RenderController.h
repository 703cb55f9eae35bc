#pragma once

#include "workbench/session/Session.h"
#include "workbench/sound/RenderJob.h"
#include "workbench/views/TransportBar.h"
#include "workbench/window/StatusLine.h"

#include <memory>

namespace workbench {

// Renders at the user's wish, one job at a time; how far it is and what has come of it is said on the status line.
// Owned by the view, which lives no longer than the session; a job that runs at its end is cancelled.
class RenderController {
public:
    RenderController(Session& session, StatusLine& status);

    // Cancels the job that runs, or starts one.
    void StartOrCancel();
    bool IsRendering() const { return fJob != nullptr; }
    // To be called often. The bar's button tells whether a job runs.
    void Follow(TransportBar& bar);

private:
    void Start(const RenderJob::Wishes& wishes);
    void ShowClipping(const RenderJob::Outcome& outcome);
    void ShowProgress();
    void ShowOutcome(const RenderJob::Outcome& outcome);

    Session& fSession;
    StatusLine& fStatus;
    std::unique_ptr<RenderJob> fJob;
    int fShownPercent = 0;
};

} // namespace workbench
