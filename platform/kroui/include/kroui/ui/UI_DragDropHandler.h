#pragma once

#include "kroui/Geometry.h"

#include <filesystem>
#include <span>

namespace kroui::ui {

// What a node does with files that the user drags onto it.
class UI_DragDropHandler {
public:
    // Whether dropping here would do anything.
    virtual bool UI_CanAcceptFiles(std::span<const std::filesystem::path> /*files*/) const { return false; }
    // Position in the node's coordinates; true if the files were taken.
    virtual bool UI_DropFiles(std::span<const std::filesystem::path> /*files*/, Point /*position*/) { return false; }

protected:
    ~UI_DragDropHandler() = default;
};

} // namespace kroui::ui
