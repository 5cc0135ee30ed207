// Library loader and console helpers.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>

#include "SimHarness.h"
#include "module/LibLoader.h"
#include "module/StringUtil.h"

using vtest::Generation;
using vtest::SimLibraryPath;

TEST(LibLoad, TriesUsrLib64WhenUsrLibHasNoFile) {
    vtest::Redirect({{"/usr/lib64/libVORA-4.00.so", SimLibraryPath(Generation::Vora4)}});
    vtest::StdoutCapture out;
    void* handle = voradrv::LibLoad("libVORA-4.00");
    EXPECT_EQ("", out.finish());
    ASSERT_NE(nullptr, handle);
    EXPECT_NE(nullptr, voradrv::LibGetSymbol(handle, "VoraLibInitialize"));
    // The first attempt's error text was discarded.
    EXPECT_EQ(nullptr, dlerror());
    EXPECT_EQ(0, voradrv::LibFree(handle));
}

TEST(LibLoad, PrefersUsrLibOverUsrLib64) {
    vtest::Redirect({{"/usr/lib/libVORA-4.00.so", SimLibraryPath(Generation::Vora4)},
                     {"/usr/lib64/libVORA-4.00.so", SimLibraryPath(Generation::Vora3)}});
    void* handle = voradrv::LibLoad("libVORA-4.00");
    ASSERT_NE(nullptr, handle);
    EXPECT_NE(nullptr, voradrv::LibGetSymbol(handle, "VoraLibInitialize"));
    EXPECT_EQ(nullptr, voradrv::LibGetSymbol(handle, "VoraDllInit"));
}

TEST(LibLoad, MissingLibraryGivesNullAndPrintsNothing) {
    vtest::Redirect();
    vtest::StdoutCapture out;
    EXPECT_EQ(nullptr, voradrv::LibLoad("libVORA-4.00"));
    EXPECT_EQ(nullptr, voradrv::LibLoad("libNoSuchBoard"));
    SysErrorMsgPoP(false);
    SysErrorMsgPoP(true);
    EXPECT_EQ("", out.finish());
}

TEST(FileExists, TrueForAnyFileKindFalseWhenAbsent) {
    vtest::Redirect({{"/usr/lib/libEApi.so", SimLibraryPath(Generation::EApi)}});
    EXPECT_TRUE(FileExists("/tmp"));  // a directory counts
    EXPECT_TRUE(FileExists("/usr/lib/libEApi.so"));
    EXPECT_FALSE(FileExists("/usr/lib64/libEApi.so"));
    EXPECT_FALSE(FileExists("/nonexistent/file"));
}

TEST(StringHelpers, SprintfIgnoresSizeAndCopyKeepsTerminator) {
    char buffer[64];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(8, StringSprintf(buffer, 1, "%u.%u.%u", 4u, 10u, 123u));
    EXPECT_STREQ("4.10.123", buffer + 0) << "size 1 must not cut the text";

    char copy[16];
    std::memset(copy, 'x', sizeof copy);
    EXPECT_EQ(copy, StringCopy(copy, "GPIO37"));
    EXPECT_STREQ("GPIO37", copy);
}
