#include "krotarnlio/UI_Lio.h"

#include "LioRoot.h"
#include "LocalizeFunction.h"

#include "orrin/parse_cache.h"
#include "uit/ImageProvider.h"

#include <algorithm>
#include <cstddef>
#include <istream>
#include <span>
#include <sstream>

namespace krotarnlio {

using kroui::limner::ImagePtr;
using orrin::name_t;

namespace {

std::string ReadAll(std::istream& script) {
    std::ostringstream text;
    if (script.peek() != std::istream::traits_type::eof()) text << script.rdbuf();
    return std::move(text).str();
}

ImagePtr Picture(const kroui::limner::SupplierInterface& supplier, const std::vector<std::uint8_t>& bytes,
                 float pixelsPerUnit) {
    return bytes.empty() ? ImagePtr() : supplier.DecodePNG(std::as_bytes(std::span(bytes)), pixelsPerUnit);
}

name_t DoubleVariant(std::string_view name) {
    const std::size_t end = std::min(name.rfind('.'), name.size());
    return name_t(std::string(name.substr(0, end)) + "_2X" + std::string(name.substr(end)));
}

} // namespace

UI_Lio::UI_Lio(const kroui::limner::SupplierInterface* supplier, kroui::ui::UI_Node* parent)
    : fSupplier(supplier ? supplier
                : parent ? parent->UI_GetDrawSupplier()
                         : nullptr) {
}

UI_Lio::~UI_Lio() = default;

std::shared_ptr<orrin::sheet_t> UI_Lio::ParseTarnScript(std::istream& script, std::shared_ptr<orrin::sheet_t> sheet,
                                                        const std::string& description) {
    sheet->load(ReadAll(script), description);
    return sheet;
}

UI_KROLioRoot* UI_Lio::ParseLioScript(std::istream& script, std::shared_ptr<orrin::sheet_t> sheet,
                                      const std::string& description) {
    const std::string text = ReadAll(script);
    static orrin::parse_cache_t<LioScript> sParsed(ParseLioText);
    const auto parsed = sParsed.find(text, description);
    const WithLocalize localize(fMachine);
    LioRoot::Making making{fSupplier, &fMachine, fClientWidgets, {}};
    making.image = [supplier = fSupplier, resources = fResources](std::string_view name, float scale) {
        if (!supplier || !resources) return ImagePtr();
        const bool isDouble = scale > uit::ImageProvider::kDoubleResolutionScale;
        const ImagePtr picture = isDouble ? Picture(*supplier, resources(DoubleVariant(name)), 2) : ImagePtr();
        return picture ? picture : Picture(*supplier, resources(name_t(name)), 1);
    };
    return new LioRoot(*parsed, std::move(sheet), making);
}

void UI_Lio::Release(const UI_KROLioRoot* root) {
    delete root;
}

} // namespace krotarnlio
