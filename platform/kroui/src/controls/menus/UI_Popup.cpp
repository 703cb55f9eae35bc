#include "kroui/controls/UI_Popup.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/controls/TextMeasure.h"
#include "kroui/controls/UI_Menu.h"
#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/UI_NodeManager.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kroui::controls {

using drawing::Assign;
using ui::Key;
using ui::MakeProperty;
using ui::MouseEvent;
using ui::PropertyType;
using ChangeMessage = UI_InteractiveControlChangedMessage::ChangeMessage;

namespace {

const ui::AdapterRegistrar<UI_Popup> sRegistrar("kroui::controls::UI_Popup");

// Measures in view units.
constexpr float kTextInset = 10;
constexpr float kArrowRoom = 26;
constexpr float kArrowFromRight = 14;
constexpr float kArrowWidth = 8;
constexpr float kDividerInset = 5;
constexpr float kDividerOpacity = 0.4F;

constexpr float kImageGap = 8;
constexpr float kLeastWidth = 60; // of the natural size

constexpr std::string_view kSeparatorReference = "-";

krocore::string16 CustomText() {
    return krocore::Localize("$$$/kroui/Popup/Custom=Custom");
}

} // namespace

UI_Popup::UI_Popup() = default;

UI_Popup::~UI_Popup() {
    Close();
}

void UI_Popup::AddItem(const krocore::string16& text) {
    Close();
    fItems.emplace_back().text.SetText(text);
    UI_AccessibleInfoChanged();
}

void UI_Popup::AddSeparator() {
    Close();
    Item& item = fItems.emplace_back();
    item.text.SetText(u"-");
    item.separator = true;
    UI_AccessibleInfoChanged();
}

void UI_Popup::DeleteAllItems() {
    Close();
    fItems.clear();
    SetValue(-1);
    UI_AccessibleInfoChanged();
}

const krocore::string16& UI_Popup::GetItemText(int item) const {
    static const krocore::string16 sNone;
    return item >= 0 && item < GetItemCount() ? fItems[item].text.Text() : sNone;
}

void UI_Popup::SetItemEnabled(int item, bool enabled) {
    if (item < 0 || item >= GetItemCount()) return;
    Close();
    fItems[item].enabled = enabled;
    UI_AccessibleInfoChanged();
}

void UI_Popup::SetItemReferences(const std::vector<krocore::string8>& references) {
    DeleteAllItems();
    fItems.resize(references.size());
    for (std::size_t i = 0; i < references.size(); ++i) {
        fItems[i].text.SetReference(references[i]);
        fItems[i].separator = std::string_view(references[i]) == kSeparatorReference;
    }
    UI_AccessibleInfoChanged();
}

std::vector<krocore::string8> UI_Popup::ItemReferences() const {
    std::vector<krocore::string8> references;
    references.reserve(fItems.size());
    for (const Item& item : fItems)
        references.push_back(item.text.Reference());
    return references;
}

void UI_Popup::SetValue(int item) {
    const bool exists = item >= 0 && item < GetItemCount() && !fItems[item].separator;
    if (Assign(fValue, exists ? item : -1)) UI_Invalidate();
}

int UI_Popup::SetValueString(std::u16string_view text, bool select) {
    const auto at = std::find_if(fItems.begin(), fItems.end(), [&](const Item& item) {
        return !item.separator && std::u16string_view(item.text.Text()) == text;
    });
    const int item = at != fItems.end() ? static_cast<int>(at - fItems.begin()) : -1;
    if (select) SetValue(item);
    return item;
}

void UI_Popup::SetItemImage(int item, std::string_view imageName) {
    if (item < 0 || item >= GetItemCount()) return;
    Close();
    fItems[item].image.SetSupplier(fImageSupplier);
    if (fItems[item].image.SetName(imageName) && item == fValue) UI_Invalidate();
}

void UI_Popup::SetImages(ImageSupplier supplier, Size size) {
    Close();
    fImageSupplier = std::move(supplier);
    fImageSize = size;
    for (Item& item : fItems)
        item.image.SetSupplier(fImageSupplier);
    UI_Invalidate();
}

void UI_Popup::SetIncludesCustomItem(bool include) {
    if (!Assign(fIncludesCustomItem, include)) return;
    Close();
    UI_Invalidate();
}

krocore::string16 UI_Popup::ShownText() const {
    return fValue < 0 && fIncludesCustomItem ? CustomText() : GetItemText(fValue);
}

void UI_Popup::SetDrawDivider(bool on) {
    if (Assign(fDrawDivider, on)) UI_Invalidate();
}

void UI_Popup::SetFontSize(float size) {
    if (Assign(fFontSize, drawing::Bounded(size, drawing::kSmallestFont, drawing::kLargestFont))) UI_Invalidate();
}

bool UI_Popup::CanChoose(int item) const {
    return item >= 0 && item < GetItemCount() && fItems[item].enabled && !fItems[item].separator;
}

bool UI_Popup::IsOpen() const {
    return fMenu != nullptr;
}

void UI_Popup::Open() {
    OpenMenu(nullptr);
}

void UI_Popup::OpenMenu(const Point* heldFrom) {
    if (fMenu || fItems.empty() || !IsEnabled() || !UI_IsVisibleInWindow()) return;
    const boost::intrusive_ptr<UI_Menu> menu(new UI_Menu);
    FillMenu(*menu);
    if (heldFrom) menu->SetHeldFrom(UI_LocalToWindow(*heldFrom));
    const Point origin = UI_LocalToWindow({});
    const float textInset = kTextInset + (HasImages() ? fImageSize.width + kImageGap : 0);
    menu->OpenOver(*UI_GetWindow(), UI_GetLocalRect().Offset(origin.x, origin.y), textInset + ContentOffsetX(),
                   [this](int item) { MenuClosed(item); });
    if (menu->IsOpen()) fMenu = menu;
    UI_Invalidate();
}

// The custom item stands first in the menu.
void UI_Popup::FillMenu(UI_Menu& menu) const {
    std::vector<UI_Menu::Item> items;
    items.reserve(fItems.size() + 1);
    if (fIncludesCustomItem) items.push_back({CustomText(), fValue < 0, false});
    for (const Item& item : fItems)
        items.push_back({item.text.Text(), item.enabled, item.separator, item.image.Name()});
    menu.SetItems(std::move(items));
    menu.SetMarkedItem(fIncludesCustomItem ? fValue + 1 : fValue);
    menu.SetFontSize(fFontSize);
    menu.SetTheme(&GetTheme());
    menu.SetSearchable(fIsSearchable);
    if (HasImages()) menu.SetImages(fImageSupplier, fImageSize);
}

void UI_Popup::Close() {
    if (const boost::intrusive_ptr<UI_Menu> menu = fMenu) menu->Close();
}

void UI_Popup::MenuClosed(int item) {
    fMenu.reset();
    UI_Invalidate();
    ChooseByUser(fIncludesCustomItem ? item - 1 : item);
}

void UI_Popup::ChooseByUser(int item) {
    if (!CanChoose(item) || (item == fValue && !fAlwaysNotify)) return;
    SendInteractive(ChangeMessage::kStarted);
    SetValue(item);
    SendInteractive(ChangeMessage::kChanged);
    SendInteractive(ChangeMessage::kEnded);
    SendChanged();
}

int UI_Popup::Step(int from, int direction) const {
    for (int i = from + direction; i >= 0 && i < GetItemCount(); i += direction)
        if (CanChoose(i)) return i;
    return -1;
}

bool UI_Popup::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    if (node || !IsEnabled()) return UI_Button::UI_DoMouseEvent(node, event);
    switch (event.action) {
    case MouseEvent::Action::kPressed:
        if (event.button != 1) return false;
        TakeFocusByClick();
        OpenMenu(&event.position);
        return true;
    case MouseEvent::Action::kDragged:
    case MouseEvent::Action::kReleased: return true;
    case MouseEvent::Action::kWheel: return Wheel(event);
    default: return UI_Button::UI_DoMouseEvent(node, event);
    }
}

bool UI_Popup::Wheel(const MouseEvent& event) {
    if (event.Has(ui::kCommand) || event.wheelY == 0) return false;
    if (fWheelRest * event.wheelY < 0) fWheelRest = 0;
    fWheelRest += event.wheelY;
    while (fWheelRest >= 1 || fWheelRest <= -1) {
        const int direction = fWheelRest > 0 ? -1 : 1;
        fWheelRest += static_cast<float>(direction);
        const int item = Step(fValue, direction);
        if (item >= 0) ChooseByUser(item);
    }
    return true;
}

bool UI_Popup::UI_DoKeyEvent(const ui::KeyEvent& event) {
    if (!IsEnabled()) return false;
    const bool isArrow = event.key == Key::kDown || event.key == Key::kUp;
    if (isArrow && event.modifiers == ui::kAlt) {
        Open();
        return true;
    }
    return event.modifiers == ui::kNoModifier && DoPlainKey(event);
}

bool UI_Popup::DoPlainKey(const ui::KeyEvent& event) {
    switch (event.key) {
    case Key::kSpace:
        if (fTypeAhead.IsTyping(ui::UI_NodeManager::Get().Now())) return Search(u" ");
        [[fallthrough]];
    case Key::kEnter:
        if (!event.isRepeat) Open();
        return true;
    case Key::kDown: ChooseByUser(Step(fValue, 1)); return true;
    case Key::kUp: ChooseByUser(Step(fValue, -1)); return true;
    case Key::kHome: ChooseByUser(Step(-1, 1)); return true;
    case Key::kEnd: ChooseByUser(Step(GetItemCount(), -1)); return true;
    // The letter comes as text as well; what it does then is no shortcut of the program.
    case Key::kCharacter: return TypeAhead().Type({&event.character, 1}, 0, -1, GetItemCount(), TextOfItem()) >= 0;
    default: return false;
    }
}

bool UI_Popup::UI_DoTextEvent(const ui::TextEvent& event) {
    // The space bar comes as a key too, and is taken there.
    return IsEnabled() && event.text != u" " && Search(event.text);
}

TypeAhead::TextOfItem UI_Popup::TextOfItem() const {
    return [this](int item) -> std::u16string_view {
        return CanChoose(item) ? std::u16string_view(fItems[item].text.Text()) : std::u16string_view();
    };
}

bool UI_Popup::Search(std::u16string_view typed) {
    const double now = ui::UI_NodeManager::Get().Now();
    const int item = fTypeAhead.Type(typed, now, fValue, GetItemCount(), TextOfItem());
    if (item != fValue) ChooseByUser(item);
    return item >= 0;
}

void UI_Popup::UI_NodeChanged(NodeChange change) {
    UI_Button::UI_NodeChanged(change);
    if (change == kThemeChanged)
        for (Item& item : fItems)
            item.image.Forget();
    if (change == kDetaching || change == kHidden) Close();
}

void UI_Popup::ControlStateChanged() {
    if (!IsEnabled()) Close();
    UI_Button::ControlStateChanged();
}

Size UI_Popup::UI_GetNaturalSize() const {
    const limner::Font font{fFontSize};
    float text = fIncludesCustomItem ? TextWidth(*this, CustomText(), font) : 0;
    for (const Item& item : fItems)
        text = std::max(text, TextWidth(*this, item.text.Text(), font));
    if (fMaximumWidthCharacters > 0) text = std::min(text, DigitsWidth(*this, fMaximumWidthCharacters, font));
    const float image = HasImages() ? fImageSize.width + kImageGap : 0;
    const float height = HasImages() ? std::max(kRowHeight, fImageSize.height + kImageGap) : kRowHeight;
    return {std::max(kLeastWidth, kTextInset + image + text + kArrowRoom), height};
}

float UI_Popup::UI_GetBaseline() const {
    return CentredBaseline(*this, UI_GetNaturalSize().height, {fFontSize});
}

void UI_Popup::UI_Draw(limner::Limner* context) {
    Face face;
    face.hot = IsEnabled() && (IsHovered() || IsOpen());
    face.focused = ShowsFocus();
    DrawFace(*context, face);

    const Rect area = ContentRect();
    const ui::PixelGrid grid(*this, *context);
    const limner::Color color = ContentColor(face);
    const float textRight = area.Right() - kArrowRoom;
    float textLeft = area.left + kTextInset;
    if (HasImages() && fValue >= 0) {
        const Rect room{textLeft, area.Centre().y - fImageSize.height / 2, fImageSize.width, fImageSize.height};
        fItems[fValue].image.Draw(*context, grid.Snap(room), IsEnabled());
        textLeft = room.Right() + kImageGap;
    }
    context->DrawText(ShownText(), {fFontSize}, color, {textLeft, area.top, textRight - textLeft, area.height},
                      {limner::TextAlignment::kLeft, limner::TextTruncation::kEnd});
    if (fDrawDivider) {
        const Rect line{grid.X(textRight), area.top + kDividerInset, grid.Line(), area.height - 2 * kDividerInset};
        context->FillRect(line, GetColor(ui::kColorDimText).WithAlpha(kDividerOpacity));
    }
    const Point arrow{area.Right() - kArrowFromRight, area.Centre().y};
    drawing::DrawChevron(*context, arrow, kArrowWidth, 1, IsEnabled() ? GetColor(ui::kColorDimText) : color);
}

ui::AccessibleInfo UI_Popup::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_Button::UI_GetAccessibleInfo();
    info.role = ui::Role::kPopup;
    info.value = ShownText();
    info.checked.reset();
    info.expanded = IsOpen();
    using Action = ui::AccessibleAction;
    if (IsEnabled())
        info.actions = ui::AccessibleActions(Action::kPress, Action::kExpand, Action::kIncrease, Action::kDecrease,
                                             Action::kSetValue);
    return info;
}

ui::AccessiblePart UI_Popup::UI_GetAccessiblePart(int part) const {
    ui::AccessiblePart item;
    item.info.role = fItems[part].separator ? ui::Role::kNone : ui::Role::kMenuItem;
    if (!fItems[part].separator) item.info.name = GetItemText(part);
    item.info.selected = part == fValue;
    item.info.enabled = IsEnabled() && CanChoose(part);
    if (item.info.enabled) item.info.actions = ui::AccessibleActions(ui::AccessibleAction::kPress);
    return item;
}

bool UI_Popup::UI_DoAccessibleAction(const ui::AccessibleRequest& request) {
    if (!IsEnabled()) return false;
    if (request.part >= 0) return ChooseByAction(request.part);
    switch (request.action) {
    case ui::AccessibleAction::kPress:
    case ui::AccessibleAction::kExpand: Open(); return IsOpen();
    case ui::AccessibleAction::kIncrease: return ChooseByAction(Step(fValue, 1));
    case ui::AccessibleAction::kDecrease: return ChooseByAction(Step(fValue, -1));
    case ui::AccessibleAction::kSetValue: {
        const double item = std::round(request.value);
        return item >= 0 && item < GetItemCount() && ChooseByAction(static_cast<int>(item));
    }
    default: return false;
    }
}

bool UI_Popup::ChooseByAction(int item) {
    if (!CanChoose(item)) return false;
    ChooseByUser(item);
    return true;
}

const ui::PropertyTable& UI_Popup::UI_GetPropertyTable() const {
    return PropertiesOfPopup();
}

const ui::PropertyTable& UI_Popup::PropertiesOfPopup() {
    using T = UI_Popup;
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kBool, &T::AlwaysNotify, &T::SetAlwaysNotify>("alwaysNotify"),
        MakeProperty<PropertyType::kBool, &T::DrawDivider, &T::SetDrawDivider>("drawDivider"),
        MakeProperty<PropertyType::kFloat, &T::FontSize, &T::SetFontSize>("fontSize"),
        MakeProperty<PropertyType::kTextList, &T::ItemReferences, &T::SetItemReferences>("popupItems"),
        MakeProperty<PropertyType::kEnumeration, &T::PopupType, &T::SetPopupType>("popupType"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_Popup", kRows, &PropertiesOfButton()};
    return sTable;
}

} // namespace kroui::controls
