#include "kroaudiofilterhostui/AudioFilterEditorViewBase.h"

namespace kroaudiofilterhostui {

AudioFilterEditorViewBase::AudioFilterEditorViewBase(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : fFilter(std::move(filter)) {
}

AudioFilterEditorViewBase::~AudioFilterEditorViewBase() = default;

} // namespace kroaudiofilterhostui
