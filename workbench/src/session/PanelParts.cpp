#include "workbench/session/PanelParts.h"

#include "krocore/ModuleResources.h"
#include "workbench/session/PanelsLibrary.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <map>

namespace workbench {

using qoc::components::EffectDescription;

namespace {

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

std::string Upper(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

WatchedFolder::Names FindPanelFiles(const EffectDescription& effect) {
    WatchedFolder::Names files;
    if (effect.create == nullptr) return files;
    {
        const ResourceListener listener(files);
        try {
            NewPanel(effect.create());
        } catch (const std::exception&) {
            // What a watched folder has broken is still what the panel is made of.
        }
    }
    std::erase_if(files, [](const ResourceName& file) { return file.type == "png"; });
    return files;
}

const std::map<const EffectDescription*, WatchedFolder::Names>& AllPanelFiles() {
    static const auto files = [] {
        std::map<const EffectDescription*, WatchedFolder::Names> all;
        for (const EffectDescription& effect : qoc::components::AllEffects())
            all.emplace(&effect, FindPanelFiles(effect));
        return all;
    }();
    return files;
}

} // namespace

ResourceListener::ResourceListener(WatchedFolder::Names& names) {
    krocore::SetResourceObserver([&names](std::string_view name, std::string_view type) {
        names.insert({Lower(name), Lower(type)});
    });
}

ResourceListener::~ResourceListener() {
    krocore::SetResourceObserver({});
}

WatchedFolder::Names PanelFilesOf(const EffectDescription& effect) {
    const auto found = AllPanelFiles().find(&effect);
    return found != AllPanelFiles().end() ? found->second : WatchedFolder::Names();
}

std::string PanelFilesText(const EffectDescription& effect) {
    std::string text;
    std::string stem;
    for (const ResourceName& file : PanelFilesOf(effect)) {
        if (!text.empty()) text += ", ";
        text += (file.name == stem ? "" : Upper(file.name)) + "." + file.type;
        stem = file.name;
    }
    return text.empty() ? "-" : text;
}

const EffectDescription* EffectWithFile(const ResourceName& file) {
    const auto found =
        std::ranges::find_if(AllPanelFiles(), [&](const auto& entry) { return entry.second.contains(file); });
    return found != AllPanelFiles().end() ? found->first : nullptr;
}

} // namespace workbench
