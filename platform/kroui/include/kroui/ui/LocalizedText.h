#pragma once

#include "krocore/Localizer.h"
#include "krocore/String.h"

#include <string_view>

namespace kroui::ui {

// A text that a user sees, together with the archive's way of writing it: either a reference
// "($$$/Group/Entry=Default)" or the text itself.
class LocalizedText {
public:
    // From an archive: a reference is resolved now.
    void SetReference(std::string_view reference) {
        fReference = reference;
        fText = krocore::Localizer::Get().LocalizeReference(reference);
    }
    // From code: the text as it stands.
    void SetText(std::u16string_view text) {
        fText = text;
        fReference = krocore::ToUTF8(text);
    }

    const krocore::string16& Text() const { return fText; }
    const krocore::string8& Reference() const { return fReference; }
    friend bool operator==(const LocalizedText&, const LocalizedText&) = default;

private:
    krocore::string8 fReference;
    krocore::string16 fText;
};

} // namespace kroui::ui
