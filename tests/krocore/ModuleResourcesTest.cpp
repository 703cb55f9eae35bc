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

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

std::string TextOf(std::string_view name, std::string_view type) {
    const auto found = FindResource(kModule, name, type);
    return {reinterpret_cast<const char*>(found.data()), found.size()};
}

TEST(ModuleResources, AnOverrideStandsInFrontOfEveryModuleUntilItIsRemoved) {
    const std::uint32_t generation = ResourceGeneration();
    std::string edited = "<b>";
    SetResourceOverride("Amplify", "xml", Bytes(edited));
    edited = "gone";
    SetResourceOverride("NEW", "TRN", {});
    EXPECT_EQ(TextOf("AMPLIFY", "XML"), "<b>");
    EXPECT_EQ(FindResource(kModule, "AMPLIFY", "PNG").data(), kPicture.data());
    EXPECT_NE(FindResource(kModule, "new", "trn").data(), nullptr); // there, though it has no bytes
    EXPECT_EQ(FindResource(nullptr, "AMPLIFY", "XML").data(), nullptr);
    EXPECT_NE(ResourceGeneration(), generation);

    SetResourceOverride("AMPLIFY", "XML", Bytes("<c/>"));
    EXPECT_EQ(TextOf("amplify", "xml"), "<c/>");

    RemoveResourceOverride("amplify", "Xml");
    RemoveResourceOverride("New", "TRN");
    EXPECT_EQ(TextOf("AMPLIFY", "XML"), "<a>");
    EXPECT_EQ(FindResource(kModule, "NEW", "TRN").data(), nullptr);
    const std::uint32_t last = ResourceGeneration();
    RemoveResourceOverride("NEW", "TRN"); // is not there any more: nothing happens
    EXPECT_EQ(ResourceGeneration(), last);
}

TEST(ModuleResources, AnObserverHearsWhatIsLookedForWhetherItIsThereOrNot) {
    std::vector<std::string> heard;
    SetResourceObserver([&](std::string_view name, std::string_view type) {
        heard.push_back(std::string(name) + "." + std::string(type));
    });
    FindResource(kModule, "AMPLIFY", "XML");
    std::vector<std::uint8_t> bytes;
    utility::GetBinaryFromModule(kModule, u"Missing", u"TRN", bytes);
    SetResourceObserver({});
    FindResource(kModule, "EMPTY", "TRN");
    EXPECT_EQ(heard, (std::vector<std::string>{"AMPLIFY.XML", "Missing.TRN"}));
}

} // namespace
} // namespace krocore
