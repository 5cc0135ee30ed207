// The module opens board libraries only by absolute path: a library of the
// same name in a directory of LD_LIBRARY_PATH (a decoy, set for this program
// by ctest) is never loaded in place of the one under /usr/lib or
// /usr/lib64, nor when neither is there.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "SimHarness.h"
#include "module/LibLoader.h"
#include "voradrv.h"

using vtest::Generation;

namespace {

const char* const kNames[] = {"libVORA-4.00", "libVORA-3.02", "libEApi"};

std::string Decoy(const char* name) { return std::string(VTEST_DECOY_DIR) + "/" + name + ".so"; }

bool Loaded(const std::string& path) {
    void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);  // drops only the reference just taken
    }
    return handle != nullptr;
}

void ExpectNoDecoyLoaded() {
    for (const char* name : kNames) {
        EXPECT_FALSE(Loaded(Decoy(name))) << "the decoy " << name << " was loaded";
    }
}

}  // namespace

// Without a library file at the probed places there is no library, though
// the decoys are one name lookup away.
TEST(LibraryPath, NoFileAtTheProbedPlacesMeansNoLibrary) {
    const char* path = std::getenv("LD_LIBRARY_PATH");
    ASSERT_TRUE(path != nullptr && std::string(path).find(VTEST_DECOY_DIR) != std::string::npos)
        << "run with LD_LIBRARY_PATH holding " << VTEST_DECOY_DIR;
    vtest::Redirect();
    EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, vtest::Quietly(VoraIoTInitialize));
    for (const char* name : kNames) {
        EXPECT_EQ(nullptr, voradrv::LibLoad(name)) << name;
    }
    ExpectNoDecoyLoaded();
    // The decoys are real: a lookup by name alone finds them.
    void* byName = dlopen("libVORA-4.00.so", RTLD_LAZY);
    EXPECT_NE(nullptr, byName);
    EXPECT_TRUE(Loaded(Decoy("libVORA-4.00")));
}

TEST(LibraryPath, TheLibraryComesFromUsrLib) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, vtest::Quietly(VoraIoTInitialize));
    EXPECT_TRUE(Loaded(vtest::SimLibraryPath(Generation::Vora4)));
    ExpectNoDecoyLoaded();
    vtest::Quietly(VoraIoTUninitialize);
}

TEST(LibraryPath, TheLibraryComesFromUsrLib64) {
    vtest::UseSimulator(Generation::EApi, "", "/usr/lib64");
    // Only the fourth generation's name is probed under /usr/lib64.
    vtest::Redirect({{"/usr/lib64/libVORA-4.00.so", vtest::SimLibraryPath(Generation::Vora4)}});
    ASSERT_EQ(0u, vtest::Quietly(VoraIoTInitialize));
    EXPECT_TRUE(Loaded(vtest::SimLibraryPath(Generation::Vora4)));
    ExpectNoDecoyLoaded();
    vtest::Quietly(VoraIoTUninitialize);
}
