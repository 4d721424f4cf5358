#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace tavoren {

/// A folder of its own below the system's temporary one, removed with all it holds at the end.
class TemporaryFolder {
  public:
    TemporaryFolder()
        : path(std::filesystem::temp_directory_path() /
               ("tavoren_" + std::to_string(std::random_device{}()) + "_" + std::to_string(std::random_device{}()))) {
        std::filesystem::create_directories(path);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    /// The name of a file in the folder, joined as the program joins names.
    std::string operator/(const std::string& name) const { return path.string() + "\\" + name; }

    void write(const std::string& name, const std::string& content) const {
        std::ofstream(path / name, std::ios::binary) << content;
    }
    std::string read(const std::string& name) const {
        std::ifstream file(path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::filesystem::path path;
};

}  // namespace tavoren
