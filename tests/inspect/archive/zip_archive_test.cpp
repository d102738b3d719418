#include "inspect/archive/zip_archive.h"

#include "tests/inspect/status_fixture.h"
#include "tests/unit/launch_pieces.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

constexpr time_t kTime = 951782399;  // 2000-02-28 23:59:59 UTC

TEST(ZipArchive, HasItsChecksum) {
    EXPECT_EQ(crc32(""), 0U);
    EXPECT_EQ(crc32("123456789"), 0xcbf43926U);
}

TEST(ZipArchive, IsTheSameForTheSameFiles) {
    const rcp::test::ScopedVariable zone("TZ", "UTC");
    ZipArchive archive(kTime);
    archive.add("a/b.txt", "one\n");
    const std::string bytes = archive.bytes();
    EXPECT_EQ(bytes.size(), 30 + 7 + 4 + 46 + 7 + 22U);
    EXPECT_EQ(bytes.substr(0, 4), "PK\3\4");
    EXPECT_EQ(bytes.substr(10, 4), std::string("\x7d\xbf\x5c\x28"));
    EXPECT_EQ(bytes.substr(30, 11), "a/b.txtone\n");
    EXPECT_EQ(bytes.substr(41, 4), "PK\1\2");
    EXPECT_EQ(bytes.substr(94, 4), "PK\5\6");
    EXPECT_EQ(bytes, archive.bytes());
}

// By a reader that is none of ours.
TEST(ZipArchive, IsReadByOthers) {
    const rcp::test::TestFolder folder;
    ZipArchive archive(kTime);
    archive.add("a/one.txt", "one\n");
    archive.add("a/\xc3\xa4.bin", std::string("\0\xff", 2));
    archive.add("a/empty", "");
    folder.write("x.zip", archive.bytes());
    test::Program python({"/usr/bin/python3", "-c",
                          "import sys, zipfile\n"
                          "z = zipfile.ZipFile(sys.argv[1])\n"
                          "assert z.testzip() is None\n"
                          "print([(i.filename, i.date_time[0], oct(i.external_attr >> 16), "
                          "z.read(i)) for i in z.infolist()])",
                          folder.narrow("x.zip")},
                         {"PYTHONIOENCODING=utf-8"});
    EXPECT_EQ(python.rest(),
              "[('a/one.txt', 2000, '0o100600', b'one\\n'), "
              "('a/\xc3\xa4.bin', 2000, '0o100600', b'\\x00\\xff'), "
              "('a/empty', 2000, '0o100600', b'')]\n");
    EXPECT_EQ(python.wait(), 0);
}

}  // namespace
}  // namespace rcp::inspect
