#pragma once

#include <string>

namespace qocui::controls {

// Traces normalised values outside 0...1, at a level and in a category of its own. Whether the category is enabled is
// asked for again only after the trace settings have changed. One object a category; user-interface thread.
class OutOfRangeTrace {
public:
    // `direction` stands at the beginning of the message: "(from UI)".
    OutOfRangeTrace(std::string category, std::string direction);

    void Check(int index, float value) {
        if (value < 0 || value > 1) Write(index, value);
    }

private:
    bool IsEnabled();
    void Write(int index, float value);

    std::string fCategory;
    std::string fDirection;
    unsigned long fChangeCount = 0; // never a count of the trace facility
    bool fEnabled = false;
};

} // namespace qocui::controls
