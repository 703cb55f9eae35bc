#include "krocore/ModuleResources.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <optional>

namespace krocore {
namespace {

constexpr std::array kPanel{std::byte{'<'}, std::byte{'a'}, std::byte{'>'}};
constexpr std::array kPicture{std::byte{0x89}, std::byte{'P'}};

// As the build lays it out: a count and that many entries behind it.
struct Table {
    ModuleResourceTable head;
    std::array<ResourceEntry, 2> more;
};
static_assert(sizeof(Table) == sizeof(std::uint64_t) + 3 * sizeof(ResourceEntry));
const Table kTable{{3, {{"XML", "AMPLIFY", kPanel.data(), kPanel.size()}}},
                   {{{"PNG", "AMPLIFY", kPicture.data(), kPicture.size()}, {"TRN", "EMPTY", kPanel.data(), 0}}}};
const ModuleInstance kModule = &kTable.head;

void AnyFunctionOfThisProgram() {
}
const void* const kCodeAddress = reinterpret_cast<const void*>(&AnyFunctionOfThisProgram);

TEST(ModuleResources, AModuleIsFoundFromItsAddressesWhileItIsRegistered) {
    EXPECT_EQ(ModuleFromAddress(kCodeAddress), nullptr);
    std::optional<ModuleRegistrar> registrar;
    registrar.emplace(kTable.head, kCodeAddress);
    EXPECT_EQ(ModuleFromAddress(kCodeAddress), kModule);
    EXPECT_EQ(ModuleFromAddress(&kTable), kModule);
    EXPECT_EQ(ModuleFromAddress(reinterpret_cast<const void*>(&std::strtol)), nullptr); // another module's code
    EXPECT_EQ(ModuleFromAddress(nullptr), nullptr);
    registrar.reset();
    EXPECT_EQ(ModuleFromAddress(kCodeAddress), nullptr);
}

TEST(ModuleResources, ResourcesAreFoundByTypeAndNameInAnyCase) {
    EXPECT_EQ(FindResource(kModule, "Amplify", "xml").data(), kPanel.data());
    EXPECT_EQ(FindResource(kModule, "AMPLIFY", "Png").size(), kPicture.size());
    EXPECT_EQ(FindResource(kModule, "EMPTY", "TRN").data(), kPanel.data()); // there, though it has no bytes
    EXPECT_EQ(FindResource(kModule, "AMPLIFY", "TRN").data(), nullptr);
    EXPECT_EQ(FindResource(kModule, "AMPLIF", "XML").data(), nullptr);
    EXPECT_EQ(FindResource(nullptr, "AMPLIFY", "XML").data(), nullptr);
}

TEST(ModuleResources, CopiesBytesOnlyOfAResourceThatIsThere) {
    std::vector<std::uint8_t> bytes{1, 2, 3, 4};
    EXPECT_FALSE(utility::GetBinaryFromModule(kModule, u"Missing", u"XML", bytes));
    EXPECT_FALSE(utility::GetBinaryFromModule(nullptr, u"Amplify", u"XML", bytes));
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{1, 2, 3, 4}));
    EXPECT_TRUE(utility::GetBinaryFromModule(kModule, u"Amplify", u"XML", bytes));
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{'<', 'a', '>'}));
    EXPECT_TRUE(utility::GetBinaryFromModule(kModule, u"Empty", u"TRN", bytes));
    EXPECT_TRUE(bytes.empty());
}

} // namespace
} // namespace krocore
