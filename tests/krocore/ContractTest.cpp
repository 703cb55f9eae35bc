#include "krocore/debug/Contract.h"

#include "krocore/Localizer.h"
#include "krocore/config/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace krocore {
namespace {

using testing::ElementsAre;

class Contract : public testing::Test {
protected:
    ~Contract() override {
        debug::SetContractDialog({});
        config::SetErrorRaiser({});
        Localizer::Get().Clear();
    }

    void RecordDialog(bool wantsBreak) {
        debug::SetContractDialog([this, wantsBreak](const char* condition, const char* file, int line) {
            fCalls.push_back(std::string("dialog ") + condition + " " + file + " " + std::to_string(line));
            return wantsBreak;
        });
    }
    void RecordRaiser() {
        config::SetErrorRaiser([this](const config::Error& error) {
            fCalls.push_back("raise " + std::to_string(error.Level()) + " " + std::to_string(error.Group()) + " " +
                             std::to_string(error.Code()) + " " + (error.IsContract() ? "contract" : "error"));
            fKey = error.Key();
        });
    }
    void Check(bool condition) {
        KROCORE_CHECK_INPUT_CONTRACT(condition, "sThing != 0", "Module", 51);
        fCalls.emplace_back("after");
    }

    std::vector<std::string> fCalls;
    std::string fKey;
};

TEST_F(Contract, OnlyABrokenContractShowsTheDialogThenRaisesThenGoesOn) {
    for (const bool wantsBreak : {false, true}) { // no debugger is attached, so nothing traps
        fCalls.clear();
        RecordDialog(wantsBreak);
        RecordRaiser();
        Check(true);
        EXPECT_THAT(fCalls, ElementsAre("after"));
        fCalls.clear();
        Check(false);
        EXPECT_THAT(fCalls, ElementsAre("dialog sThing != 0 Module 51", "raise 0 105 25 contract", "after"));
        EXPECT_EQ(fKey, "$$$/krocore/utility/Error/Contract/InputContractViolation=An input contract violation has "
                        "occurred!");
    }
}

TEST_F(Contract, TheDefaultRaiserThrowsTheLocalisedText) {
    RecordDialog(false);
    Localizer::Get().LoadDictionaryText("$$$/krocore/utility/Error/Contract/InputContractViolation=Vertragsbruch", "");
    try {
        Check(false);
        FAIL() << "nothing was thrown";
    } catch (const config::Error& error) {
        EXPECT_STREQ(error.what(), "Vertragsbruch");
    }
    EXPECT_THAT(fCalls, ElementsAre("dialog sThing != 0 Module 51"));
}

TEST_F(Contract, TheDefaultDialogWritesOneLine) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(debug::BreakAfterContractDialog("x > 0", "Some", 7));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Some:7: contract violated: x > 0\n");
}

TEST_F(Contract, AdviceReachesTheDialogAndGoesWithTheCheck) {
    testing::internal::CaptureStderr();
    EXPECT_THROW(KROCORE_CHECK_INPUT_CONTRACT_ADVISED(false, "x > 0", "Some", 7, "make x"), config::Error);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Some:7: contract violated: x > 0; make x\n");
    EXPECT_STREQ(debug::ContractAdvice(), "");
}

TEST_F(Contract, ErrorsFillInTheirPlaceholders) {
    const config::Error error(0, "$$$/A/B=@1 before @0@2", 1, 2, false, {u"zero", u"\u00E9ins", u"", u""});
    EXPECT_STREQ(error.what(), "\xC3\xA9ins before zero");
}

} // namespace
} // namespace krocore
