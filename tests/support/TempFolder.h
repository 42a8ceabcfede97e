// A folder of its own for a test: the working directory while it lives, gone with all it holds afterwards. Files go in
// and out of it byte by byte, whatever the library holds of their names and modes.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

class TempFolder {
public:
    TempFolder() : m_before(std::filesystem::current_path()) {
        static std::atomic<unsigned> made{std::random_device{}()};
        do {
            m_path = std::filesystem::temp_directory_path() / ("kelroots-test-" + std::to_string(++made));
        } while (!std::filesystem::create_directory(m_path));
        std::filesystem::current_path(m_path);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::current_path(m_before, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    const std::filesystem::path& workingFolderBefore() const { return m_before; }

private:
    std::filesystem::path m_before, m_path;
};

inline void writeFile(const std::string& name, const std::string& bytes) {
    std::ofstream file(name, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.flush()) << name;
}

inline std::string fileBytes(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Bytes from a literal with embedded zeros.
template <std::size_t N>
std::string bytes(const char (&literal)[N]) {
    return {literal, N - 1};
}
