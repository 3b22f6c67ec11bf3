// absolutePath and relativePath of the file layer.
#include <gtest/gtest.h>

#include <unistd.h>

#include "qbapi_paths.h"

using quernbase::QBString;

namespace {

std::string abs(const char* path, const char* base) {
    QBString r = absolutePath(QBString(path), QBString(base));
    return r.isNull() ? "<null>" : std::string(r.get(), r.length());
}

std::string rel(const char* path, const char* base, int flags = QBPATH_CLIMB) {
    QBString r = relativePath(QBString(path), QBString(base), flags);
    return r.isNull() ? "<null>" : std::string(r.get(), r.length());
}

TEST(ConfigPaths, AbsoluteResolvesStepsAgainstTheBase) {
    EXPECT_EQ(abs("inc/a.h", "/opt/qb/"), "/opt/qb/inc/a.h");
    EXPECT_EQ(abs("../inc/./a.h", "/opt/qb"), "/opt/inc/a.h");
    EXPECT_EQ(abs("/usr//include/../lib/", "/opt"), "/usr/lib");
    EXPECT_EQ(abs("../../../..", "/a/b"), "/");
    EXPECT_EQ(abs("", "/a"), "");
    EXPECT_EQ(abs(nullptr, "/a"), "<null>");
    EXPECT_EQ(abs("D:\\inc\\a.h", "/opt"), "D:/inc/a.h");
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    EXPECT_EQ(abs("x.h", ""), std::string(cwd) + "/x.h");
}

TEST(ConfigPaths, RelativeClimbsWithDotDot) {
    EXPECT_EQ(rel("/opt/qb/inc/a.h", "/opt/qb/"), "inc/a.h");
    EXPECT_EQ(rel("/opt/other/a.h", "/opt/qb"), "../other/a.h");
    EXPECT_EQ(rel("/a", "/a/b/c"), "../..");
    EXPECT_EQ(rel("/opt/qb", "/opt/qb"), ".");
    EXPECT_EQ(rel("/opt/other/a.h", "/opt/qb", 0), "/opt/other/a.h");
    EXPECT_EQ(rel("/opt/qbx/a.h", "/opt/qb"), "../qbx/a.h");
}

TEST(ConfigPaths, OtherDriveComesBackUnchanged) {
    EXPECT_EQ(rel("D:/inc/a.h", "/opt/qb/"), "D:/inc/a.h");
    EXPECT_EQ(rel("D:\\inc\\a.h", "C:\\qb\\"), "D:\\inc\\a.h");
    EXPECT_EQ(rel("\\\\server\\share\\a.h", "/opt"), "\\\\server\\share\\a.h");
    EXPECT_EQ(rel("d:/qb/inc/a.h", "D:/qb"), "inc/a.h");
}

TEST(ConfigPaths, RelativeThenAbsoluteGivesThePathBack) {
    const char* bases[] = {"/opt/qb/", "/", "/usr/lib/gcc/x86_64-linux-gnu/12"};
    const char* paths[] = {"/opt/qb/h/x.h", "/usr/include/stdio.h", "/x", "/usr/lib/gcc"};
    for (const char* base : bases) {
        for (const char* path : paths) {
            QBString r = relativePath(QBString(path), QBString(base), QBPATH_CLIMB);
            EXPECT_EQ(abs(r.get(), base), path) << path << " from " << base << " via " << r.get();
        }
    }
}

}  // namespace
