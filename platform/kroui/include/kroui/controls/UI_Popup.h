#pragma once

#include "kroui/controls/ImageSlot.h"
#include "kroui/controls/TypeAhead.h"
#include "kroui/controls/UI_Button.h"

#include <vector>

namespace kroui::controls {

class UI_Menu;

// Shows the chosen one of several items and opens a menu of them. The menu opens at the press; an item is chosen by
// releasing over it or by a second press. Enter, Space or Alt+Down open it too; while it is closed the arrow keys, the
// wheel and typed letters choose directly.
class UI_Popup : public UI_Button {
public:
    UI_Popup();

    // Items, from code: no messages. An item that is shown keeps being shown while others come and go behind it.
    void AddItem(const krocore::string16& text);
    void AddSeparator();
    void DeleteAllItems();
    int GetItemCount() const { return static_cast<int>(fItems.size()); }
    // Empty for an item that does not exist.
    const krocore::string16& GetItemText(int item) const;
    // A disabled item is shown, but the user can't choose it. No effect on an item that does not exist.
    void SetItemEnabled(int item, bool enabled);
    // As archives write them; "-" is a separator. Nothing is chosen afterwards.
    void SetItemReferences(const std::vector<krocore::string8>& references);
    std::vector<krocore::string8> ItemReferences() const;

    // A picture before an item's text, in the control and in the menu; all get the same size. Names are found by the
    // supplier. No effect on an item that does not exist.
    void SetItemImage(int item, std::string_view imageName);
    void SetImages(ImageSupplier supplier, Size size);
    // An item before the others that stands for values that no item has: it is shown while none of the others is, and
    // can't be chosen. It is not counted.
    void SetIncludesCustomItem(bool include);
    // A field on top of the open menu leaves only the items that hold what is typed.
    void SetSearchable(bool searchable) { fIsSearchable = searchable; }
    // The natural size has room for no more than so many characters of text, 0: for every item.
    void SetMaximumWidthCharacters(std::uint32_t characters) { fMaximumWidthCharacters = characters; }

    // The number of the item that is shown, -1 for none. Setting one that does not exist shows none.
    void SetValue(int item) override;
    int GetValue() const override { return fValue; }
    // The first item with the text, none if there is no such item. `select`: show it (or none) now; otherwise only its
    // number is told. Returns the number or -1.
    int SetValueString(std::u16string_view text, bool select);

    // Tells listeners also when the user chooses the item that is shown already.
    void SetAlwaysNotify(bool on) { fAlwaysNotify = on; }
    bool AlwaysNotify() const { return fAlwaysNotify; }
    // A line between the text and the arrow.
    void SetDrawDivider(bool on);
    bool DrawDivider() const { return fDrawDivider; }
    void SetFontSize(float size);
    float FontSize() const { return fFontSize; }
    // 0: a drop-down menu, the only kind; others are kept and look the same.
    void SetPopupType(int type) { fPopupType = type; }
    int PopupType() const { return fPopupType; }

    bool IsOpen() const;
    // The menu while it is open; null otherwise.
    UI_Menu* Menu() const { return fMenu.get(); }
    void Open();
    void Close();

    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    bool UI_DoTextEvent(const ui::TextEvent& event) override;
    void UI_NodeChanged(NodeChange change) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    int UI_GetAccessiblePartCount() const override { return GetItemCount(); }
    ui::AccessiblePart UI_GetAccessiblePart(int part) const override;
    bool UI_DoAccessibleAction(const ui::AccessibleRequest& request) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfPopup();

protected:
    ~UI_Popup() override;

    void ControlStateChanged() override;

private:
    struct Item {
        ui::LocalizedText text;
        bool enabled = true;
        bool separator = false;
        ImageSlot image;
    };

    krocore::string16 ShownText() const;
    bool HasImages() const { return fImageSupplier && fImageSize.width > 0; }
    void FillMenu(UI_Menu& menu) const;
    bool CanChoose(int item) const;
    bool ChooseByAction(int item);
    bool DoPlainKey(const ui::KeyEvent& event);
    TypeAhead::TextOfItem TextOfItem() const;
    bool Search(std::u16string_view typed);
    int Step(int from, int direction) const;
    void ChooseByUser(int item);
    void MenuClosed(int item);
    void OpenMenu(const Point* heldFrom);
    bool Wheel(const ui::MouseEvent& event);

    std::vector<Item> fItems;
    boost::intrusive_ptr<UI_Menu> fMenu;
    TypeAhead fTypeAhead;
    ImageSupplier fImageSupplier;
    Size fImageSize;
    float fWheelRest = 0;
    float fFontSize = 12;
    int fValue = -1;
    int fPopupType = 0;
    std::uint32_t fMaximumWidthCharacters = 0;
    bool fIncludesCustomItem = false;
    bool fIsSearchable = false;
    bool fAlwaysNotify = false;
    bool fDrawDivider = false;
};

} // namespace kroui::controls
