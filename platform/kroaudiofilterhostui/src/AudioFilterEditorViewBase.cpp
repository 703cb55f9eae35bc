#include "kroaudiofilterhostui/AudioFilterEditorViewBase.h"

namespace kroaudiofilterhostui {

AudioFilterEditorViewBase::AudioFilterEditorViewBase(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : fFilter(std::move(filter)) {
}

AudioFilterEditorViewBase::~AudioFilterEditorViewBase() = default;

AudioFilterEditorViewBase::ContentSizeChangedSignal& AudioFilterEditorViewBase::GetContentSizeChangedSignal() {
    if (!fContentSizeChanged) fContentSizeChanged = std::make_unique<ContentSizeChangedSignal>();
    return *fContentSizeChanged;
}

} // namespace kroaudiofilterhostui
