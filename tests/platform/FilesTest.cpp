#include "platform/Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>

#include "files/TemporaryFolder.h"
#include "platform/Platform.h"

namespace tavoren {
namespace {

namespace fs = std::filesystem;

class FilesTest : public testing::Test {
  protected:
    std::string inside(const std::string& name) const { return folder / name; }
    auto entries() const { return std::distance(fs::directory_iterator(folder.path), fs::directory_iterator()); }

    const TemporaryFolder folder;
};

TEST_F(FilesTest, BackslashesBecomeNative) {
    EXPECT_EQ(nativePath("a\\\\b/c\\d.x").string(), "a//b/c/d.x");
    EXPECT_TRUE(makeDirectoryTree(inside("one\\two\\")));
    EXPECT_TRUE(makeDirectoryTree(inside("one\\two")));
    EXPECT_TRUE(isDirectory(inside("one\\two")));
    EXPECT_TRUE(fs::is_directory(folder.path / "one" / "two"));
    EXPECT_FALSE(isRegularFile(inside("one")));
}

TEST_F(FilesTest, FolderNamesNeverReachAShell) {
    const std::string name = "a; touch b & `touch c` $(touch d)";
    EXPECT_TRUE(makeDirectoryTree(inside(name)));
    EXPECT_TRUE(isDirectory(inside(name)));
    EXPECT_EQ(entries(), 1);
    EXPECT_FALSE(makeDirectoryTree(""));
    ASSERT_TRUE(replaceFile(inside("file"), "", LineEnds::asWritten));
    EXPECT_FALSE(makeDirectoryTree(inside("file")));
    EXPECT_FALSE(makeDirectoryTree(inside("file\\below")));
}

TEST_F(FilesTest, ReplacementIsCompleteOrAbsent) {
    const std::string path = inside("out.txt");
    const std::string large(200'000, 'x');
    ASSERT_TRUE(replaceFile(path, "old", LineEnds::asWritten));
    {
        FileReplacement file(path, LineEnds::asWritten);
        EXPECT_TRUE(file.write(large));
        EXPECT_EQ(readFile(path), "old") << "not in place before the commit";
    }
    EXPECT_EQ(readFile(path), "old");
    {
        FileReplacement file(path, LineEnds::asWritten);
        EXPECT_TRUE(file.write("a"));
        EXPECT_TRUE(file.write(large));
        EXPECT_TRUE(file.write("b\r\n"));
        EXPECT_TRUE(file.commit());
        EXPECT_FALSE(file.write("late"));
        EXPECT_FALSE(file.commit());
    }
    EXPECT_EQ(readFile(path), "a" + large + "b\r\n");
    EXPECT_EQ(entries(), 1) << "no temporary is left";
}

TEST_F(FilesTest, ReplacementKeepsLinksAndRights) {
    const std::string path = inside("target.txt");
    ASSERT_TRUE(replaceFile(path, "old", LineEnds::asWritten));
    fs::permissions(nativePath(path), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("target.txt", nativePath(inside("link.txt")));
    EXPECT_TRUE(replaceFile(inside("link.txt"), "new", LineEnds::platform));
    EXPECT_EQ(readFile(path), "new");
    EXPECT_TRUE(fs::is_symlink(nativePath(inside("link.txt"))));
    EXPECT_EQ(fs::status(nativePath(path)).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(FilesTest, OnlyRegularFilesAreWrittenOrRead) {
    ASSERT_EQ(mkfifo(nativePath(inside("pipe")).c_str(), 0600), 0);
    for (const auto& place :
         {folder.path.string(), inside("pipe"), inside("no\\where"), std::string(), std::string("\\dev\\null")}) {
        EXPECT_FALSE(replaceFile(place, "x", LineEnds::asWritten)) << place;
        EXPECT_EQ(readFile(place), std::nullopt) << place;
        EXPECT_FALSE(FileReader(place).isOpen()) << place;
    }
    EXPECT_EQ(entries(), 1);
    const std::string longest = inside(std::string(255, 'n'));
    EXPECT_TRUE(replaceFile(longest, "x", LineEnds::asWritten));
    EXPECT_FALSE(replaceFile(longest + "n", "x", LineEnds::asWritten));
}

TEST_F(FilesTest, ReaderGivesAllBytesInPieces) {
    const std::string path = inside("in.bin");
    const std::string bytes("a\0b\r\nc", 6);
    ASSERT_TRUE(replaceFile(path, bytes, LineEnds::asWritten));
    FileReader reader(path);
    std::array<char, 4> piece{};
    EXPECT_EQ(reader.size(), 6U);
    EXPECT_EQ(reader.read(piece), 4U);
    EXPECT_EQ(std::string(piece.data(), 4), bytes.substr(0, 4));
    EXPECT_EQ(reader.read(piece), 2U);
    EXPECT_EQ(reader.read(piece), 0U);
    EXPECT_FALSE(reader.hasFailed());
    EXPECT_EQ(readFile(path), bytes);
    EXPECT_EQ(readFile(path, 6), bytes);
    EXPECT_EQ(readFile(path, 5), std::nullopt);
}

TEST_F(FilesTest, DirectoryCallTellsWhyItFailed) {
    EXPECT_TRUE(CreateDirectoryA(inside("new").c_str(), nullptr));
    EXPECT_FALSE(CreateDirectoryA(inside("new").c_str(), nullptr));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_FALSE(CreateDirectoryA(inside("x\\y").c_str(), nullptr));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

}  // namespace
}  // namespace tavoren
