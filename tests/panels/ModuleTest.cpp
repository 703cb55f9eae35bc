#include "qocui/module/Module.h"
#include "krocore/config/Error.h"
#include "krocore/debug/Contract.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/utility/ResourceManager.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qocui/module/ComponentUIFactory.h"
#include "qocui/module/Session.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>

using namespace qocui::module;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Collects contract violations instead of showing and throwing them.
class ModuleTest : public testing::Test {
protected:
    ModuleTest() {
        krocore::debug::SetContractDialog([this](const char* condition, const char* file, int line) {
            fViolations.push_back(std::string(condition) + " @ " + file + ":" + std::to_string(line));
            return false;
        });
        krocore::config::SetErrorRaiser(
            [this](const krocore::config::Error& error) { fCodes.push_back(error.Code()); });
    }
    ~ModuleTest() override {
        krocore::debug::SetContractDialog({});
        krocore::config::SetErrorRaiser({});
    }

    kroui::limner::CairoSupplier fSupplier;
    std::vector<std::string> fViolations;
    std::vector<int> fCodes;
};

TEST_F(ModuleTest, InitializeAndTerminateFillAndEmptyTheSlots) {
    Initialize(&fSupplier);
    EXPECT_EQ(GetDrawSupplier(), &fSupplier);
    ASSERT_NE(GetResourceManager(), nullptr);
    EXPECT_NE(GetImageProvider(), nullptr);
    EXPECT_FALSE(GetResourceManager()->GetResource("amplify", "xml").empty());
    Terminate();
    EXPECT_EQ(GetDrawSupplier(), nullptr);
    EXPECT_EQ(GetImageProvider(), nullptr);
    EXPECT_THAT(fViolations, IsEmpty());
}

TEST_F(ModuleTest, MisuseIsAContractViolationAndTheRestGoesOn) {
    EXPECT_EQ(GetImageProvider(), nullptr);
    EXPECT_THAT(fViolations, IsEmpty());
    EXPECT_EQ(GetResourceManager(), nullptr);
    EXPECT_EQ(fViolations.size(), 1U);
    EXPECT_THAT(fCodes, ElementsAre(25));
    fViolations.clear();
    Terminate();
    EXPECT_THAT(fViolations, ElementsAre("sResourceManager != 0 @ Module_WIN:58"));
}

TEST_F(ModuleTest, TheDefaultDialogSaysWhatAForgetfulHostHasToCall) {
    krocore::debug::SetContractDialog({});
    for (const auto& misuse :
         {std::function<void()>([] { GetResourceManager(); }), std::function<void()>(&Terminate)}) {
        testing::internal::CaptureStderr();
        misuse();
        EXPECT_THAT(testing::internal::GetCapturedStderr(),
                    testing::AllOf(testing::HasSubstr("contract violated: sResourceManager != 0"),
                                   testing::HasSubstr("qocui::module::Initialize")));
    }
}

TEST_F(ModuleTest, WithoutAnInstanceInitializeReportsIt) {
    const HINSTANCE instance = GetModuleInstance();
    ASSERT_NE(instance, nullptr);
    EXPECT_EQ(DllMain(instance, 0, nullptr), 1);
    Initialize(&fSupplier);
    EXPECT_THAT(fViolations, ElementsAre("sDLLInstance != 0 @ Module_WIN:51"));
    Terminate();
    for (const unsigned long reason : {2UL, 3UL, 77UL, 1UL})
        EXPECT_EQ(DllMain(instance, reason, nullptr), 1);
    fViolations.clear();
    Initialize(&fSupplier);
    EXPECT_FALSE(GetResourceManager()->GetResource("AMPLIFY", "XML").empty());
    Terminate();
    EXPECT_THAT(fViolations, IsEmpty());
}

TEST_F(ModuleTest, SessionsOfOwnersThatDoNotKnowOfEachOtherShareOneModule) {
    auto first = std::make_unique<Session>();
    auto second = std::make_unique<Session>();
    EXPECT_EQ(&first->Supplier(), &second->Supplier());
    const auto filter = qoc::components::CreateEffect(qoc::components::kAmplifyComponentID);
    auto view = ComponentUIFactory::GetInstance().CreateViewForComponent(filter);
    first.reset();
    EXPECT_NE(GetImageProvider(), nullptr) << "the second still lives";
    view.reset();
    second.reset();
    EXPECT_EQ(GetDrawSupplier(), nullptr);
    {
        const Session third;
        EXPECT_NE(GetResourceManager(), nullptr);
    }
    EXPECT_EQ(GetDrawSupplier(), nullptr);

    Initialize(&fSupplier);
    {
        const Session guest;
        EXPECT_EQ(&guest.Supplier(), &fSupplier);
    }
    EXPECT_EQ(GetDrawSupplier(), &fSupplier) << "the program that has called Initialize calls Terminate";
    Terminate();
    EXPECT_THAT(fViolations, IsEmpty());
}

} // namespace
