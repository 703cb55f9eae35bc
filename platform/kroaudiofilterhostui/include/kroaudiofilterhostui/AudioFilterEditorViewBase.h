#pragma once

#include "kroaudiofilterhost/AudioFilter.h"
#include "kroui/ui/UI_SubView.h"

#include <boost/signals2/signal.hpp>

#include <memory>

namespace kroaudiofilterhostui {

// What every editor of an audio filter is to a host: a view around a filter that can tell when its content's size has
// changed. The host owns it by reference count and puts it into a window. User-interface thread.
class AudioFilterEditorViewBase : public kroui::ui::UI_SubView {
public:
    // The filter that the view edits; one reference is held for the view's whole life.
    explicit AudioFilterEditorViewBase(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> GetAudioFilter() const { return fFilter; }

    // Fires after the view has changed its own size (UI_GetFrame has it), as when a section of it opens or closes. A
    // host that does not answer, by fitting the window around it or by scrolling, shows the view cut off at the
    // window's edge.
    using ContentSizeChangedSignal = boost::signals2::signal<void()>;
    ContentSizeChangedSignal& GetContentSizeChangedSignal();

protected:
    ~AudioFilterEditorViewBase() override;

private:
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    std::unique_ptr<ContentSizeChangedSignal> fContentSizeChanged; // made when first asked for
};

} // namespace kroaudiofilterhostui
