#pragma once

#include "krocore/ModuleResources.h"

#include <memory>
#include <new>
#include <string>
#include <vector>

namespace test {

// A module whose resources a test writes as text. Lives longer than what reads them.
class TestModule {
public:
    // Type and name in upper case.
    void Add(const char* type, const char* name, std::string text) {
        fTexts.push_back(std::make_unique<Text>(Text{type, name, std::move(text)}));
        Build();
    }
    krocore::ModuleInstance Instance() const {
        return reinterpret_cast<const krocore::ModuleResourceTable*>(fTable.data());
    }

private:
    struct Text {
        const char* type;
        const char* name;
        std::string bytes;
    };

    void Build() {
        using Table = krocore::ModuleResourceTable;
        constexpr std::size_t kEntry = sizeof(krocore::ResourceEntry);
        fTable.resize((sizeof(Table) + fTexts.size() * kEntry + 7) / 8);
        auto* const table = new (fTable.data()) Table{};
        table->count = fTexts.size();
        auto* const first = reinterpret_cast<std::byte*>(fTable.data()) + offsetof(Table, entries);
        for (std::size_t i = 0; i < fTexts.size(); ++i) {
            const Text& text = *fTexts[i];
            new (first + i * kEntry) krocore::ResourceEntry{
                text.type, text.name, reinterpret_cast<const std::byte*>(text.bytes.data()), text.bytes.size()};
        }
    }

    std::vector<std::unique_ptr<Text>> fTexts;
    std::vector<std::uint64_t> fTable;
};

} // namespace test
