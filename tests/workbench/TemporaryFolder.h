#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace workbench {

// A folder of a test's own, gone with it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        fFolder = std::filesystem::temp_directory_path() /
                  ("workbench-" + std::to_string(getpid()) + "-" + test->test_suite_name() + "-" + test->name());
        std::filesystem::remove_all(fFolder);
        std::filesystem::create_directories(fFolder);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(fFolder); }

    std::filesystem::path Path(const std::string& name = {}) const { return fFolder / name; }
    // Folders on the way are made.
    void Write(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories(Path(name).parent_path());
        std::ofstream(Path(name), std::ios::binary) << text;
    }
    static std::string Contents(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::filesystem::path fFolder;
};

} // namespace workbench
