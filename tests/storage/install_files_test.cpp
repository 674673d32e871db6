#include "storage/install_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "storage/storage_suite.h"

namespace zelmor::storage::testing {
namespace {

TEST(InstallFiles, MissingFilesReadAsEmptyUserNameIsTrimmedAndLetterLinesJoinedByCrLf) {
    TempDir dir;
    EXPECT_EQ(UserName(dir.path()), "");
    EXPECT_EQ(Pnia(dir.path()), "");
    EXPECT_EQ(UserName(dir.path() + "/no/such/folder"), "");

    SaveUserName(dir.path(), "  רו\"ח ישראל ישראלי \t");
    std::ifstream in(userNamePath(dir.path()), std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "רו\"ח ישראל ישראלי\n");
    EXPECT_EQ(UserName(dir.path()), "רו\"ח ישראל ישראלי");
    // A file written elsewhere: first line only, blanks and CR dropped.
    std::ofstream(userNamePath(dir.path()), std::ios::binary) << "  Dana  \r\nsecond line\r\n";
    EXPECT_EQ(UserName(dir.path()), "Dana");

    // The letter's lines are joined by CR LF.
    std::ofstream(pniaPath(dir.path()), std::ios::binary) << "a\nb\n\nc";
    EXPECT_EQ(Pnia(dir.path()), "a\r\nb\r\n\r\nc");
    SavePnia(dir.path(), "");
    EXPECT_EQ(Pnia(dir.path()), "");
}

TEST(InstallFiles, FailedWritesAreSwallowedAndKeepTheOldFile) {
    TempDir dir;
    SavePnia(dir.path(), "old");
    // The letter's place taken by a folder: nothing can be written there.
    const std::string blocked = dir.path() + "/blocked";
    std::filesystem::create_directories(blocked + "/PNIA.TXT");
    EXPECT_NO_THROW(SavePnia(blocked, "new"));
    EXPECT_EQ(Pnia(blocked), "");
    EXPECT_NO_THROW(SaveUserName(dir.path() + "/no/such/folder", "x"));
    EXPECT_EQ(Pnia(dir.path()), "old");
}

TEST(InstallFiles, FilesThatAreNotUtf8AreReadAsWindows1255) {
    TempDir dir;
    // "שלום רב," and "משרד לוי" as Hebrew Windows writes them.
    std::ofstream(pniaPath(dir.path()), std::ios::binary) << "\xF9\xEC\xE5\xED \xF8\xE1,\r\n\x80 100\r\n";
    EXPECT_EQ(Pnia(dir.path()), "שלום רב,\r\n€ 100");
    std::ofstream(userNamePath(dir.path()), std::ios::binary) << " \xEE\xF9\xF8\xE3 \xEC\xE5\xE9\r\n";
    EXPECT_EQ(UserName(dir.path()), "משרד לוי");
    // UTF-8 stays as it is, without a byte order mark; a byte that would not
    // be UTF-8 anywhere in the file makes the whole file Windows-1255.
    EXPECT_EQ(textFileToUtf8("\xEF\xBB\xBFשלום"), "שלום");
    EXPECT_EQ(textFileToUtf8("\xD7\xA9 \xE0"), "\u05F3\u00A9 א");
}

}  // namespace
}  // namespace zelmor::storage::testing
