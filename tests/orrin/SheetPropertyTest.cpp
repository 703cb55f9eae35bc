#include "orrin/sheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace orrin {
namespace {

// A sheet of sums between whole numbers, a part of them under conditions, and what it takes to check it from outside.
class RandomSums {
public:
    static constexpr int kCells = 9;
    static constexpr int kConditions = 2;

    explicit RandomSums(std::mt19937& random) : fRandom(random) {
        for (int count = 2 + Below(4); count > 0; --count)
            fSums.push_back(RandomSum());
    }

    std::string Script() {
        std::string cells, sums, outputs;
        for (int cell = 0; cell < kCells; ++cell) {
            const std::string name = Name(cell);
            cells += (Below(2) ? "unlink " : "") + name + ": " + std::to_string(Below(10)) + ";\n";
            outputs += "out" + std::to_string(cell) + " <== " + name + " * 2;\n";
        }
        for (const Sum& sum : fSums)
            sums += Relation(sum);
        return "sheet sums {\ninput: when0: true; when1: false;\ninterface:\n" + cells + "logic:\n" + sums +
               "output:\n" + outputs + "}\n";
    }

    // Everything that should hold in this state of the sheet.
    void Check(const sheet_t& sheet) const {
        for (const Sum& sum : fSums)
            if (Holds(sheet, sum.condition)) {
                EXPECT_EQ(Value(sheet, sum.cells[0]) + Value(sheet, sum.cells[1]), Value(sheet, sum.cells[2]));
            }
        for (int cell = 0; cell < kCells; ++cell)
            EXPECT_EQ(sheet[name_t("out" + std::to_string(cell))].get<double>(), 2 * Value(sheet, cell));
    }

    static name_t Cell(int cell) { return name_t(Name(cell)); }
    static name_t Condition(int condition) { return name_t("when" + std::to_string(condition)); }
    static double Value(const sheet_t& sheet, int cell) { return sheet[Cell(cell)].get<double>(); }

private:
    struct Sum {
        std::array<int, 3> cells; // the first two add up to the third
        int condition;            // -1: none
    };

    int Below(int bound) { return static_cast<int>(fRandom() % static_cast<unsigned>(bound)); }

    Sum RandomSum() {
        std::array<int, kCells> cells{};
        for (int cell = 0; cell < kCells; ++cell)
            cells[cell] = cell;
        std::ranges::shuffle(cells, fRandom);
        return {{cells[0], cells[1], cells[2]}, Below(kConditions + 1) - 1};
    }

    static std::string Name(int cell) { return "c" + std::to_string(cell); }

    static std::string Relation(const Sum& sum) {
        const std::string a = Name(sum.cells[0]), b = Name(sum.cells[1]), c = Name(sum.cells[2]);
        const std::string when = sum.condition < 0 ? "" : "when (when" + std::to_string(sum.condition) + ") ";
        return when + "relate { " + a + " <== " + c + " - " + b + "; " + b + " <== " + c + " - " + a + "; " + c +
               " <== " + a + " + " + b + "; }\n";
    }

    static bool Holds(const sheet_t& sheet, int condition) {
        return condition < 0 || sheet[Condition(condition)].get<bool>();
    }

    std::mt19937& fRandom;
    std::vector<Sum> fSums;
};

TEST(SheetProperty, RandomSumsHoldAfterEveryEdit) {
    std::mt19937 random(20240612);
    int edits = 0;
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomSums sums(random);
        sheet_t sheet;
        try {
            sheet.load(sums.Script(), "sums");
        } catch (const error_t&) {
            continue; // the sums go in a circle
        }
        sums.Check(sheet);
        for (int step = 0; step < 30; ++step) {
            const int cell = static_cast<int>(random() % RandomSums::kCells);
            const auto value = static_cast<double>(random() % 100);
            switch (random() % 8) {
            case 0: sheet.set(RandomSums::Condition(random() % 2), random() % 2 == 0); break;
            case 1: sheet.reinitialise(); break;
            default: sheet.set(RandomSums::Cell(cell), value);
            }
            sheet.update();
            if (!sheet.errors().empty()) break; // a circle under this condition
            sums.Check(sheet);
            ++edits;
            const std::uint64_t evaluations = sheet.evaluation_count();
            sheet.update();
            EXPECT_EQ(sheet.evaluation_count(), evaluations);
        }
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << sums.Script();
            return;
        }
    }
    EXPECT_GT(edits, 1000);
}

// Relations that form a tree never stand against a single edit.
TEST(SheetProperty, EditOfATreeOfSumsAlwaysHolds) {
    std::mt19937 random(20240613);
    std::string cells, sums;
    constexpr int kLeaves = 16;
    for (int node = 1; node < 2 * kLeaves; ++node)
        cells += "n" + std::to_string(node) + ": " + std::to_string(node) + "; ";
    for (int node = 1; node < kLeaves; ++node) {
        const std::string a = "n" + std::to_string(2 * node), b = "n" + std::to_string(2 * node + 1);
        const std::string c = "n" + std::to_string(node);
        sums += "relate { " + a + " <== " + c + " - " + b + "; " + b + " <== " + c + " - " + a + "; " + c +
                " <== " + a + " + " + b + "; } ";
    }
    sheet_t sheet;
    sheet.load("sheet tree { interface: " + cells + "logic: " + sums + "}", "tree");
    const auto value = [&](int node) { return sheet[name_t("n" + std::to_string(node))].get<double>(); };
    int lastNode = 1;
    double lastValue = value(1);
    for (int step = 0; step < 300; ++step) {
        const int node = 1 + static_cast<int>(random() % (2 * kLeaves - 1));
        const auto set = static_cast<double>(random() % 1000);
        sheet.set(name_t("n" + std::to_string(node)), set);
        sheet.update();
        EXPECT_EQ(value(node), set);
        if (node != lastNode) {
            EXPECT_EQ(value(lastNode), lastValue) << "two edits can always hold";
        }
        for (int sum = 1; sum < kLeaves; ++sum)
            EXPECT_EQ(value(2 * sum) + value(2 * sum + 1), value(sum));
        lastNode = node;
        lastValue = set;
    }
}

} // namespace
} // namespace orrin
