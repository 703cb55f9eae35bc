// Panels in a process that loads them at run time: what a plug-in host does.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <fstream>
#include <string>

using testing::HasSubstr;
using testing::Not;

namespace {

std::string LoadedFiles() {
    std::ifstream maps("/proc/self/maps");
    return {std::istreambuf_iterator<char>(maps), {}};
}

TEST(Unloading, TheLibrariesLeaveTheProcessAfterTheirPanelsWereUsed) {
    for (int round = 0; round < 3; ++round) {
        void* const plugin = dlopen(QO_UNLOADING_PLUGIN, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(plugin, nullptr) << dlerror();
        auto* const use = reinterpret_cast<int (*)()>(dlsym(plugin, "UsePanels"));
        ASSERT_NE(use, nullptr);
        EXPECT_EQ(use(), 28);
        EXPECT_THAT(LoadedFiles(), HasSubstr("/libkro.so"));
        dlclose(plugin);
        for (const char* library : {"/libkro.so", "/libqoc.so", "/libqocinterface.so", "/libQoAudioComponentsUI.so"})
            EXPECT_THAT(LoadedFiles(), Not(HasSubstr(library)));
    }
}

} // namespace
