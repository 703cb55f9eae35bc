// What nodes hear of the tree while those who hear it change the tree.

#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/ui/UI_SubView.h"

#include <boost/function.hpp>
#include <gmock/gmock.h>

#include <map>
#include <random>

using namespace kroui;
using namespace kroui::ui;

namespace {

class Listening;
using NodePtr = boost::intrusive_ptr<Listening>;

// Checks that attached and detaching come in turn and agree with what the node says of itself, and lets a test act in
// the midst of them.
class Listening : public UI_SubView {
public:
    using Act = boost::function<void(Listening&, NodeChange)>;

    Listening(std::string name, Act& act) : fName(std::move(name)), fAct(act) {}

    void UI_NodeChanged(NodeChange change) override {
        UI_SubView::UI_NodeChanged(change);
        if (change != kAttached && change != kDetaching) return;
        EXPECT_EQ(fIsIn, change == kDetaching) << fName << " hears " << change << " twice";
        EXPECT_NE(UI_GetWindow(), nullptr) << fName;
        fIsIn = change == kAttached;
        (fIsIn ? attached : detached)++;
        if (const Act act = fAct) act(*this, change);
    }
    // Whether what it has heard is what it is.
    bool IsConsistent() const { return fIsIn == UI_IsAttached() && attached - detached == (fIsIn ? 1 : 0); }
    const std::string& Name() const { return fName; }

    int attached = 0;
    int detached = 0;

private:
    std::string fName;
    Act& fAct;
    bool fIsIn = false;
};

// root > a > a1, a2; b > b1; c
class TreeChangesTest : public testing::Test {
protected:
    TreeChangesTest() {
        for (const char* name : {"root", "a", "a1", "a2", "b", "b1", "c", "new"})
            fNodes[name] = NodePtr(new Listening(name, fAct));
        Node("a").ChildPushBack(fNodes["a1"]);
        Node("a").ChildPushBack(fNodes["a2"]);
        Node("b").ChildPushBack(fNodes["b1"]);
        for (const char* child : {"a", "b", "c"})
            Node("root").ChildPushBack(fNodes[child]);
    }
    Listening& Node(const std::string& name) { return *fNodes.at(name); }
    static void TakeOut(Listening& node) {
        if (node.UI_GetParent()) node.UI_GetParent()->ChildRemove(&node);
    }
    // Does something once, when that node hears of that change.
    void When(const std::string& name, UI_Node::NodeChange change, boost::function<void()> act) {
        fAct = [this, name, change, act](Listening& node, UI_Node::NodeChange heard) {
            if (heard != change || node.Name() != name) return;
            fAct.clear();
            act();
        };
    }
    // In the tree, and nowhere else, nodes are attached; each has heard as much.
    void ExpectConsistent(const std::string& what) {
        for (const auto& [name, node] : fNodes) {
            const UI_Node* top = node.get();
            while (top->UI_GetParent())
                top = top->UI_GetParent();
            EXPECT_EQ(node->UI_IsAttached(), top == fWindow.Window().Content()) << name << ": " << what;
            EXPECT_TRUE(node->IsConsistent()) << name << ": " << what;
        }
    }

    Listening::Act fAct;
    std::map<std::string, NodePtr> fNodes;
    limner::CairoSupplier fSupplier;
    HeadlessWindow fWindow{fSupplier, {200, 100}};
};

struct Change {
    const char* what; // the listener does
    const char* listener;
    void (*act)(std::map<std::string, NodePtr>& nodes, UI_Window& window);
};

void Remove(std::map<std::string, NodePtr>& nodes, const char* name) {
    if (UI_Node* const parent = nodes[name]->UI_GetParent()) parent->ChildRemove(nodes[name].get());
}

constexpr Change kChanges[] = {
    {"removes itself", "a", [](auto& nodes, UI_Window&) { Remove(nodes, "a"); }},
    {"removes an earlier sibling", "b", [](auto& nodes, UI_Window&) { Remove(nodes, "a"); }},
    {"removes a later sibling", "a", [](auto& nodes, UI_Window&) { Remove(nodes, "b"); }},
    {"removes all siblings", "b", [](auto& nodes, UI_Window&) { nodes["root"]->ChildRemoveAll(); }},
    {"removes the parent", "a1", [](auto& nodes, UI_Window&) { Remove(nodes, "a"); }},
    {"removes the parent, last child", "a2", [](auto& nodes, UI_Window&) { Remove(nodes, "a"); }},
    {"adds a child", "a", [](auto& nodes, UI_Window&) { nodes["a"]->ChildPushBack(nodes["new"]); }},
    {"adds a sibling before itself", "b", [](auto& nodes, UI_Window&) { nodes["root"]->ChildInsert(0, nodes["new"]); }},
    {"adds a sibling behind itself", "b", [](auto& nodes, UI_Window&) { nodes["root"]->ChildPushBack(nodes["new"]); }},
    {"adds to a sibling that came before", "b",
     [](auto& nodes, UI_Window&) { nodes["a1"]->ChildPushBack(nodes["new"]); }},
    {"moves itself into a sibling", "a", [](auto& nodes, UI_Window&) { nodes["c"]->ChildPushBack(nodes["a"]); }},
    {"moves its parent into its parent's sibling", "a1",
     [](auto& nodes, UI_Window&) { nodes["c"]->ChildPushBack(nodes["a"]); }},
    {"moves a later sibling into itself", "a", [](auto& nodes, UI_Window&) { nodes["a"]->ChildPushBack(nodes["c"]); }},
    {"moves an earlier sibling into itself", "c",
     [](auto& nodes, UI_Window&) { nodes["c"]->ChildPushBack(nodes["a"]); }},
    {"takes itself out and in again", "b",
     [](auto& nodes, UI_Window&) {
         Remove(nodes, "b");
         nodes["root"]->ChildInsert(0, nodes["b"]);
     }},
    {"takes its parent out and in again", "a2",
     [](auto& nodes, UI_Window&) {
         Remove(nodes, "a");
         nodes["root"]->ChildPushBack(nodes["a"]);
     }},
    {"empties the window", "a1", [](auto&, UI_Window& window) { window.SetContent(nullptr); }},
    {"shows something else", "b1", [](auto& nodes, UI_Window& window) { window.SetContent(nodes["new"]); }},
    {"empties the window and shows the tree again", "a2",
     [](auto& nodes, UI_Window& window) {
         window.SetContent(nullptr);
         window.SetContent(nodes["root"]);
     }},
};

class TreeChangeTest : public TreeChangesTest, public testing::WithParamInterface<std::tuple<Change, bool>> {};

TEST_P(TreeChangeTest, EveryNodeHearsOfEachOnceInTurn) {
    const auto& [change, isAttaching] = GetParam();
    When(change.listener, isAttaching ? UI_Node::kAttached : UI_Node::kDetaching,
         [&] { change.act(fNodes, fWindow.Window()); });
    fWindow.Window().SetContent(fNodes["root"]);
    ExpectConsistent(change.what);
    fWindow.Window().SetContent(nullptr);
    ExpectConsistent("closed");
}

INSTANTIATE_TEST_SUITE_P(, TreeChangeTest, testing::Combine(testing::ValuesIn(kChanges), testing::Bool()));

TEST_F(TreeChangesTest, EveryNodeHearsOfEachOnceInTurnHoweverManyChangesMeet) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        int changes = 0;
        const auto any = [&] { return std::next(fNodes.begin(), static_cast<long>(random() % fNodes.size()))->second; };
        const auto changeSomething = [&] {
            const NodePtr node = any();
            switch (random() % 6) {
            case 0: TakeOut(*node); break;
            case 1: fWindow.Window().SetContent(nullptr); break;
            case 2: fWindow.Window().SetContent(fNodes["root"]); break;
            case 3: node->ChildRemoveAll(); break;
            default:
                if (node != fNodes["root"]) any()->ChildInsert(random() % 3, node);
            }
        };
        fAct = [&](Listening&, UI_Node::NodeChange) {
            if (random() % 2 == 0 && ++changes < 20) changeSomething();
        };
        for (int i = 0; i < 20; ++i, changes = 0) {
            changeSomething();
            ExpectConsistent("seed " + std::to_string(seed));
        }
        fAct.clear();
    }
}

} // namespace
