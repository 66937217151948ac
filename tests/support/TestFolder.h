#pragma once

#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "support/HostPath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Orvanta {

/// A fresh folder for one test, removed with all it holds at the end; a failed test keeps it and says where it is.
class TestFolder {
public:
    TestFolder() {
        std::random_device random;
        const std::filesystem::path parent = std::filesystem::canonical(std::filesystem::temp_directory_path());
        do {
            path_ = parent / ("orvanta-test-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }

    ~TestFolder() {
        if (testing::Test::HasFailure()) {
            std::cout << "The test's folder is kept: " << Path() << '\n';
            return;
        }
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    /// Absolute, without links and without a separator at its end.
    [[nodiscard]] std::string Path() const { return PathText(path_); }

    /// The absolute path of `name` in this folder, whether it exists or not.
    [[nodiscard]] std::string operator/(std::string_view name) const { return HostPath(JoinPath(Path(), name)); }

    /// Writes a file, making the folders on its way, and returns its absolute path.
    std::string Write(std::string_view name, std::string_view text) const { // NOLINT(modernize-use-nodiscard)
        std::string path = *this / name;
        std::filesystem::create_directories(NativePath(path).parent_path());
        std::ofstream stream(NativePath(path), std::ios::binary);
        stream << text << std::flush;
        if (!stream) {
            throw std::runtime_error("the test can't write " + path);
        }
        return path;
    }

    /// Makes a folder with those on its way and returns its absolute path.
    std::string MakeFolder(std::string_view name) const { // NOLINT(modernize-use-nodiscard)
        std::filesystem::create_directories(NativePath(*this / name));
        return *this / name;
    }

    /// The bytes of a file.
    [[nodiscard]] std::string Read(std::string_view name) const {
        std::ifstream stream(NativePath(*this / name), std::ios::binary);
        if (!stream) {
            throw std::runtime_error("the test can't read " + (*this / name));
        }
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path path_;
};

} // namespace Orvanta
