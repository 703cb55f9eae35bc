#pragma once

#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/UI_SubView.h"

namespace kroui::ui::test {

// A node class with a property of every type that archives know.
class EveryType : public UI_SubView {
public:
    bool On() const { return fOn; }
    void SetOn(bool on) { fOn = on; }
    int Count() const { return fCount; }
    void SetCount(int count) { fCount = count; }
    unsigned Mask() const { return fMask; }
    void SetMask(unsigned mask) { fMask = mask; }
    float Size() const { return fSize; }
    void SetSize(float size) { fSize = size; }
    double Level() const { return fLevel; }
    void SetLevel(double level) { fLevel = level; }
    const krocore::string8& Text() const { return fText; }
    void SetText(std::string_view text) { fText = text; }
    const krocore::string8& Image() const { return fImage; }
    void SetImage(std::string_view image) { fImage = image; }
    const Rect& Area() const { return fArea; }
    void SetArea(const Rect& area) { fArea = area; }
    int Choice() const { return fChoice; }
    void SetChoice(int choice) { fChoice = choice; }
    const std::vector<krocore::string8>& Items() const { return fItems; }
    void SetItems(const std::vector<krocore::string8>& items) { fItems = items; }

    const PropertyTable& UI_GetPropertyTable() const override;

private:
    bool fOn = false;
    int fCount = -1;
    unsigned fMask = 0;
    float fSize = 0;
    double fLevel = 0;
    krocore::string8 fText = "unset";
    krocore::string8 fImage;
    Rect fArea;
    int fChoice = 0;
    std::vector<krocore::string8> fItems;
};

} // namespace kroui::ui::test
