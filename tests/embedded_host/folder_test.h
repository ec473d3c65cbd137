// A folder for the files of one test, gone with it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace embedded_host::test {

class FolderTest : public ::testing::Test {
protected:
    FolderTest() {
        auto name = (std::filesystem::temp_directory_path() / "roofline-XXXXXX").string();
        m_folder = mkdtemp(name.data());
    }
    ~FolderTest() override { std::filesystem::remove_all(m_folder); }
    std::string path(const std::string& name) const { return (m_folder / name).string(); }
    // Replaces what stands there.
    std::string file(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }

    std::filesystem::path m_folder;
};

}  // namespace embedded_host::test
